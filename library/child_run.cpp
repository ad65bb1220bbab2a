#include "library/child_run.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value_to.hpp>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <system_error>
#include <utility>

#include "findings/json_values.h"
#include "host/own_place.h"
#include "library/child_process.h"
#include "library/failure.h"
#include "library/line_socket.h"
#include "library/order_json.h"
#include "library/served_run.h"

namespace marrowpress {
namespace {

namespace json = boost::json;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr const char* kHelperName = "marrowpress-run";
const InstalledPaths kInstalledHelper{MARROWPRESS_HELPER_FROM_PROGRAM,
                                      MARROWPRESS_HELPER_FROM_LIBRARY};

/// How often a parent looks whether it is to wait no longer.
constexpr auto kChildPause = 20ms;
/// Beyond this a limit of time is none; what the clock counts in does not hold any number.
constexpr auto kLongestRun = std::chrono::years(100);
/// What a child gets for cleaning up.
constexpr auto kGrace = 5s;

// What a child writes, each the only member of an object; and the parent's answer to the second.
constexpr const char* kProgress = "progress";
constexpr const char* kPublicId = "publicId";
constexpr const char* kResult = "result";
constexpr const char* kPath = "path";

/// A pair of sockets, of which the child gets the second.
struct SocketPair {
    SocketPair() {
        std::array<int, 2> ends{};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
            throw std::system_error(errno, std::generic_category(), "cannot make a socket");
        }
        ours = std::make_unique<LineSocket>(ends[0]);
        theirs = std::make_unique<LineSocket>(ends[1]);
    }

    std::unique_ptr<LineSocket> ours;
    std::unique_ptr<LineSocket> theirs;
};

/// One request in a child, as the parent sees it.
class ChildRun {
public:
    explicit ChildRun(const Order& order)
        : order_(order),
          helper_(findBesideOrInstalled(kHelperName, kInstalledHelper).string()),
          child_(start()) {}

    ResultData serve();

private:
    std::unique_ptr<ChildProcess> start() const;
    /// What the child says; a failure when it is to end.
    void take(const std::string& line);
    void answerPublicId(const std::string& publicId) const;
    void lookAtLimits();
    void end(int code);
    ResultData crashed();

    const Order& order_;
    const std::string helper_;
    SocketPair sockets_;
    std::unique_ptr<ChildProcess> child_;
    const std::chrono::milliseconds longest_{
        std::min<std::uint64_t>(order_.timeLimit, std::chrono::milliseconds(kLongestRun).count())};
    Clock::time_point start_ = Clock::now();
    std::optional<Clock::time_point> endOfGrace_;
    int reason_ = MP_OK;  ///< Why the child is to end.
    std::optional<ResultData> result_;
};

std::unique_ptr<ChildProcess> ChildRun::start() const {
    try {
        return std::make_unique<ChildProcess>(std::vector{helper_, ownPath().string()},
                                              sockets_.theirs->descriptor());
    } catch (const std::system_error& failure) {
        const bool isMissing = failure.code() == std::errc::no_such_file_or_directory ||
                               failure.code() == std::errc::permission_denied;
        throw LibraryFailure(isMissing ? MP_UNAVAILABLE : MP_SYSTEM,
                             "cannot start " + helper_ + ": " + failure.code().message());
    }
}

ResultData ChildRun::serve() {
    sockets_.theirs.reset();
    sockets_.ours->send(toJsonLine(order_));
    while (!result_ && !sockets_.ours->isAtEnd()) {
        if (const std::optional<std::string> line = sockets_.ours->receive(kChildPause)) {
            take(*line);
        }
        lookAtLimits();
    }
    if (reason_ != MP_OK) {
        throw LibraryFailure(reason_, mp_code_text(reason_));
    }
    if (!result_) {
        return crashed();
    }
    child_->wait();
    return *std::move(result_);
}

void ChildRun::take(const std::string& line) {
    const json::value said = json::parse(line);
    const json::object& object = said.as_object();
    if (const json::value* const progress = object.if_contains(kProgress)) {
        order_.onProgress(json::value_to<std::string>(*progress));
    } else if (const json::value* const publicId = object.if_contains(kPublicId)) {
        answerPublicId(json::value_to<std::string>(*publicId));
    } else {
        result_ = resultFromJson(json::serialize(object.at(kResult)));
    }
}

void ChildRun::answerPublicId(const std::string& publicId) const {
    const std::optional<std::string> path = order_.resolvePublicId(publicId);
    sockets_.ours->send(
        json::serialize(json::object{{kPath, path ? jsonText(*path) : json::value()}}));
}

void ChildRun::lookAtLimits() {
    const Clock::time_point now = Clock::now();
    if (endOfGrace_) {
        if (now > *endOfGrace_) {
            child_->send(SIGKILL);
        }
    } else if (order_.isCancelled()) {
        end(MP_CANCELLED);
    } else if (order_.timeLimit > 0 && now - start_ > longest_) {
        end(MP_TIMED_OUT);
    }
}

void ChildRun::end(int code) {
    reason_ = code;
    endOfGrace_ = Clock::now() + kGrace;
    child_->send(SIGTERM);
}

ResultData ChildRun::crashed() {
    ResultData data = failedResult(MP_CRASHED, mp_code_text(MP_CRASHED));
    data.signal = child_->wait();
    if (data.signal != 0) {
        data.error = std::string("the child ended by signal ") + std::to_string(data.signal) +
                     " (" + sigdescr_np(data.signal) + ")";
    }
    return data;
}

std::int32_t isToEnd = 0;

void noteEnd(int /*signal*/) {
    __atomic_store_n(&isToEnd, 1, __ATOMIC_RELAXED);
}

/// Makes the process end early, in good order, by SIGTERM, by what a terminal sends to all of its
/// processes, and with its parent.
void endOnRequest() {
    struct sigaction action {};
    action.sa_handler = noteEnd;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        sigaction(signal, &action, nullptr);
    }
    prctl(PR_SET_PDEATHSIG, SIGTERM);
}

void limitMemory(std::uint64_t bytes) {
    const rlimit limit{bytes, bytes};
    if (bytes > 0 && setrlimit(RLIMIT_AS, &limit) != 0) {
        throw LibraryFailure(MP_SYSTEM, "cannot limit the memory");
    }
}

/// The parent's callbacks, from afar.
void connectCallbacks(SentOrder& sent, LineSocket& parent) {
    if (sent.wantsProgress) {
        sent.order.onProgress = [&parent](std::string_view line) {
            const std::string_view text = line.substr(0, line.find_last_not_of("\r\n") + 1);
            parent.send(json::serialize(json::object{{kProgress, jsonText(text)}}));
        };
    }
    if (sent.canResolve) {
        sent.order.resolvePublicId =
            [&parent](std::string_view publicId) -> std::optional<std::string> {
            parent.send(json::serialize(json::object{{kPublicId, jsonText(publicId)}}));
            const std::optional<std::string> answer = parent.receive(std::chrono::milliseconds(-1));
            const json::value path = answer ? json::parse(*answer).at(kPath) : json::value();
            return path.is_string() ? std::optional(json::value_to<std::string>(path))
                                    : std::nullopt;
        };
    }
}

ResultData serveSent(SentOrder& sent) {
    try {
        limitMemory(sent.order.memoryLimit);
        chooseLanguage(sent.order.language);
        ResultData data = serve(sent.order);
        if (data.isMemoryShort && sent.order.memoryLimit > 0) {
            data.code = MP_NO_MEMORY;
        }
        return data;
    } catch (const LibraryFailure& failure) {
        return failedResult(failure.code(), failure.what());
    } catch (const std::bad_alloc&) {
        return failedResult(MP_NO_MEMORY, mp_code_text(MP_NO_MEMORY));
    } catch (const std::system_error& failure) {
        return failedResult(MP_SYSTEM, failure.what());
    } catch (const std::exception& failure) {
        return failedResult(MP_INTERNAL, failure.what());
    }
}

}  // namespace

ResultData serveInChild(const Order& order) {
    return ChildRun(order).serve();
}

int serveParent(int socket) noexcept {
    try {
        endOnRequest();
        LineSocket parent(socket);
        const std::optional<std::string> line = parent.receive(std::chrono::milliseconds(-1));
        if (!line) {
            return 1;
        }
        SentOrder sent = orderFromJson(*line);
        sent.order.cancel = &isToEnd;
        connectCallbacks(sent, parent);
        const std::string result = toJsonLine(serveSent(sent));
        return parent.send("{\"" + std::string(kResult) + "\":" + result + "}") ? 0 : 1;
    } catch (...) {
        return 1;
    }
}

}  // namespace marrowpress
