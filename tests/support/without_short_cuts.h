#pragma once

#include "support/short_cuts.h"

namespace marrowpress {

/// All work is done in full for the length of a scope.
class WithoutShortCuts {
public:
    WithoutShortCuts() { takeShortCuts(false); }
    WithoutShortCuts(const WithoutShortCuts&) = delete;
    WithoutShortCuts& operator=(const WithoutShortCuts&) = delete;
    ~WithoutShortCuts() { takeShortCuts(true); }

private:
    static void takeShortCuts(bool areTaken) noexcept {
        ShortCuts::taken().passOverRepeatedTries = areTaken;
        ShortCuts::taken().shareDtds = areTaken;
        ShortCuts::taken().rememberDtdPaths = areTaken;
        ShortCuts::taken().noteIds = areTaken;
        ShortCuts::taken().keepConditions = areTaken;
        ShortCuts::taken().lookAhead = areTaken;
    }
};

}  // namespace marrowpress
