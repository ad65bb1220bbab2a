#include "results/run_result.h"

#include "findings/fold.h"

namespace marrowpress {

const char* stateName(ResultState state) {
    switch (state) {
        case ResultState::kClean:
            return "clean";
        case ResultState::kFindings:
            return "findings";
        case ResultState::kFailed:
            break;
    }
    return "failed";
}

ResultState stateOfExit(int exit) {
    constexpr int kExitOfFindings = 3;
    if (exit == 0) {
        return ResultState::kClean;
    }
    return exit == kExitOfFindings ? ResultState::kFindings : ResultState::kFailed;
}

FindingSummary summaryOf(const RunResult& result) {
    FindingSummary summary = summarize(result.findings);
    summary.topics = result.topics;
    summary.dropped = result.dropped;
    summary.seconds = result.run.seconds;
    summary.exit = result.exit;
    return summary;
}

}  // namespace marrowpress
