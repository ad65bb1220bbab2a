#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/json.hpp>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "host/client_module.h"
#include "host/file_text.h"
#include "host/stand_in_host.h"
#include "host/typed_record.h"
#include "tests/harness/host_with_dtds.h"
#include "tests/support/failing_allocations.h"
#include "tests/support/host_with_memory.h"

// Sends the module requests for which an allocation fails: fail_allocations REQUEST NEXT DTDS. DTDS
// is a folder with "map.dtd" and "topic.dtd". Each line of standard input is a number and `single`
// or `lasting`: a process of its own sends REQUEST, for which the allocation of that number fails,
// none for 0, and then NEXT, for which none does. It prints a line of JSON for each, and the one
// that waits for it prints how it ended.

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kMostSeconds = 30;

/// Requests to a module that was started once.
class Requests {
public:
    Requests(const fs::path& modulePath, const fs::path& dtds)
        : module_(modulePath), host_(optionsWith(dtds)), between_(host_.provider()) {
        const ClientEntry start = module_.entry();
        if (start(module_.handle(), &between_.provider(), nullptr, nullptr) != 0 ||
            !host_.initialize()) {
            throw std::runtime_error("the module can't be started");
        }
    }
    Requests(const Requests&) = delete;
    Requests& operator=(const Requests&) = delete;
    ~Requests() { host_.detach(); }

    /// Sends a request that meets `fault`, and gives what it came to.
    boost::json::object send(const std::string& request, const AllocationFault& fault) {
        lines_.clear();
        const std::size_t earlier = between_.operations();
        std::optional<TypedValues> answer;
        {
            const FailingAllocations failing(fault);
            answer = host_.send(request);
        }
        return {{"allocations", FailingAllocations::count()},
                {"operations", between_.operations() - earlier},
                {"answer", answer ? boost::json::value(toJson(*answer)) : nullptr},
                {"lines", lines_}};
    }

private:
    StandInHostOptions optionsWith(const fs::path& dtds) {
        StandInHostOptions options = hostWithDtds(dtds);
        options.onConsole = [this](std::optional<MessageId>, std::string_view line) {
            lines_.emplace_back(line);
        };
        return options;
    }

    ClientModule module_;
    boost::json::array lines_;
    StandInHost host_;
    HostWithMemory between_;
};

AllocationFault faultOf(const std::string& line) {
    std::size_t end = 0;
    const std::size_t number = std::stoul(line, &end);
    const std::string mode = line.substr(end);
    if (mode != " single" && mode != " lasting") {
        throw std::runtime_error("no point: " + line);
    }
    return {number, mode == " lasting"};
}

/// How a process ended, in a word.
std::string endOf(pid_t process) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            throw std::runtime_error("a process is lost");
        }
    }
    if (WIFSIGNALED(status)) {
        return "signal " + std::to_string(WTERMSIG(status));
    }
    return "code " + std::to_string(WEXITSTATUS(status));
}

void run(const std::string& requestFile, const std::string& nextFile, const fs::path& dtds) {
    const std::string request = readFile(requestFile);
    const std::string next = readFile(nextFile);
    Requests requests(fs::canonical(defaultModulePath()), dtds);
    for (std::string line; std::getline(std::cin, line);) {
        const AllocationFault fault = faultOf(line);
        const pid_t process = fork();
        if (process < 0) {
            throw std::runtime_error("no process can be made");
        }
        if (process == 0) {
            alarm(kMostSeconds);
            std::cout << requests.send(request, fault) << std::endl;
            std::cout << requests.send(next, {0}) << std::endl;
            return;
        }
        std::cout << endOf(process) << std::endl;
    }
}

void leaveNoCores() {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

}  // namespace
}  // namespace marrowpress

int main(int argc, char** argv) try {
    if (argc != 4) {
        std::cerr << "usage: fail_allocations REQUEST NEXT DTDS\n";
        return 2;
    }
    marrowpress::leaveNoCores();
    marrowpress::run(argv[1], argv[2], argv[3]);
    return EXIT_SUCCESS;
} catch (const std::exception& fault) {
    std::cerr << "fail_allocations: " << fault.what() << '\n';
    return EXIT_FAILURE;
}
