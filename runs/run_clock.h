#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "marrowpress/observer.h"

namespace marrowpress {

/// What a part of a command's time was spent on.
enum class TimedKind : std::uint8_t {
    kPhase,     ///< A part of a run, or what the command does before and after it.
    kDocument,  ///< The client was at a document, mostly to parse it.
};

/// A part of a command's time, from its beginning in microseconds.
struct TimedPart {
    TimedKind kind;
    std::string name;  ///< "assembly", or a document's absolute path.
    std::chrono::microseconds begin;
    std::chrono::microseconds duration;
};

/// What a command met, in numbers.
struct RunCounts {
    std::size_t documents = 0;  ///< Those that were read, each once.
    std::uintmax_t bytes = 0;   ///< Of these.
    std::size_t keys = 0;       ///< Definitions that count.
    std::size_t outputs = 0;
};

/// Measures one call of a command, whose runs tell it what they do.
///
/// A document's time is that between the host's commands "start" and "end" for it, and holds that
/// of its DTD. The client sends them also where it has the document already, which takes no time.
class RunClock {
public:
    using Clock = std::chrono::steady_clock;

    /// @param now  The time, for tests.
    explicit RunClock(Clock::time_point (*now)() = Clock::now) : now_(now), start_(now()) {}

    void observe(const Observation& observation);

    /// The client begins with a document, or with an empty path ends with the last one.
    void visit(std::string_view path);

    /// The runs are over, and what comes now is up to the command; or that is over, too.
    void endRuns();
    void end();

    /// In the order in which they ended.
    const std::vector<TimedPart>& parts() const noexcept { return parts_; }
    /// Of all, up to the end.
    std::chrono::microseconds total() const noexcept { return total_; }
    const RunCounts& counts() const noexcept { return counts_; }

private:
    struct Open {
        std::string name;
        std::chrono::microseconds begin;
    };

    std::chrono::microseconds elapsed() const;
    void beginPhase(std::string name);
    void close(TimedKind kind, Open& open);
    void countDocument(const std::string& path);

    Clock::time_point (*now_)();
    Clock::time_point start_;
    std::optional<Open> phase_ = Open{"start", {}};
    std::vector<Open> documents_;  ///< That the client is at, the innermost last.
    std::vector<TimedPart> parts_;
    std::chrono::microseconds total_{};
    RunCounts counts_;
    std::unordered_set<std::string> documentPaths_;
};

}  // namespace marrowpress
