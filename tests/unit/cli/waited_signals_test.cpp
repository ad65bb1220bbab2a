#include "cli/waited_signals.h"

#include <gtest/gtest.h>

#include <vector>

namespace marrowpress {
namespace {

class WaitedSignalsTest : public testing::Test {
protected:
    ~WaitedSignalsTest() override {
        for (const int number : kNumbers) {
            std::signal(number, SIG_DFL);
        }
    }

    static std::vector<int> waitedFor() {
        const sigset_t signals = waitedSignals();
        std::vector<int> numbers;
        for (const int number : kNumbers) {
            if (sigismember(&signals, number) == 1) {
                numbers.push_back(number);
            }
        }
        return numbers;
    }

    static bool isBlocked(int number) {
        sigset_t signals;
        sigprocmask(SIG_BLOCK, nullptr, &signals);
        return sigismember(&signals, number) == 1;
    }

    static constexpr int kNumbers[] = {SIGCHLD, SIGHUP, SIGINT, SIGTERM};
};

TEST_F(WaitedSignalsTest, AreThoseThatEndAProcessAndThatOfItsChildren) {
    EXPECT_EQ(waitedFor(), std::vector({SIGCHLD, SIGHUP, SIGINT, SIGTERM}));
}

TEST_F(WaitedSignalsTest, OfThoseThatTheCallerIgnoresOnlyHangingUpIsLeftOut) {
    for (const int number : kNumbers) {
        std::signal(number, SIG_IGN);
    }
    EXPECT_EQ(waitedFor(), std::vector({SIGCHLD, SIGINT, SIGTERM}));
}

TEST_F(WaitedSignalsTest, AreHeldBackForAWhile) {
    std::signal(SIGCHLD, SIG_IGN);
    {
        const BlockedSignals blocked;
        EXPECT_TRUE(isBlocked(SIGINT));
        EXPECT_TRUE(isBlocked(SIGCHLD));
        EXPECT_FALSE(isBlocked(SIGUSR1));
    }
    EXPECT_FALSE(isBlocked(SIGINT));
    EXPECT_EQ(std::signal(SIGCHLD, SIG_DFL), SIG_DFL) << "who ignores children hears of none";
}

}  // namespace
}  // namespace marrowpress
