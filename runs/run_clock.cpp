#include "runs/run_clock.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace marrowpress {

using std::chrono::microseconds;

void RunClock::observe(const Observation& observation) {
    switch (observation.kind) {
        case ObservationKind::kPhase:
            beginPhase(observation.target);
            break;
        case ObservationKind::kDocumentRead:
            countDocument(observation.target);
            break;
        case ObservationKind::kKeyDefinition:
            counts_.keys += static_cast<KeyState>(observation.code) == KeyState::kEffective ? 1 : 0;
            break;
        case ObservationKind::kOutputWritten:
            ++counts_.outputs;
            break;
        default:
            break;
    }
}

void RunClock::visit(std::string_view path) {
    if (!path.empty()) {
        documents_.push_back({std::string(path), elapsed()});
    } else if (!documents_.empty()) {
        close(TimedKind::kDocument, documents_.back());
        documents_.pop_back();
    }
}

void RunClock::endRuns() {
    beginPhase("end");
}

void RunClock::end() {
    if (phase_) {
        close(TimedKind::kPhase, *phase_);
        phase_.reset();
    }
    total_ = elapsed();
}

microseconds RunClock::elapsed() const {
    return std::chrono::duration_cast<microseconds>(now_() - start_);
}

void RunClock::beginPhase(std::string name) {
    end();
    phase_ = Open{std::move(name), elapsed()};
}

void RunClock::close(TimedKind kind, Open& open) {
    parts_.push_back({kind, std::move(open.name), open.begin, elapsed() - open.begin});
}

void RunClock::countDocument(const std::string& path) {
    if (!documentPaths_.insert(path).second) {
        return;
    }
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    ++counts_.documents;
    counts_.bytes += error ? 0 : size;
}

}  // namespace marrowpress
