#pragma once

#include <cstddef>

namespace marrowpress {

/// What the process has done so far, in counts that need no clock: tests compare them before and
/// after a piece of work, so that what makes a run slow shows on any machine.
struct WorkCounts {
    std::size_t documents = 0;       ///< that were to be parsed
    std::size_t tries = 0;           ///< to parse them
    std::size_t dtdScans = 0;        ///< external DTDs that were read
    std::size_t resolverCalls = 0;   ///< entities that the engine asked for
    std::size_t conditionReads = 0;  ///< of all conditional text in a document
    std::size_t walkSteps = 0;       ///< nodes that walks have asked their filter about
    std::size_t searchSteps = 0;     ///< elements that were looked at for their id
    std::size_t chainWalks = 0;      ///< over the key space for keys that lead to keys
    std::size_t fileQuestions = 0;   ///< whether a file is there

    static WorkCounts& total() noexcept {
        static WorkCounts counts;
        return counts;
    }
};

}  // namespace marrowpress
