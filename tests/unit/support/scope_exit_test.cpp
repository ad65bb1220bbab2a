#include "support/scope_exit.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace marrowpress {
namespace {

TEST(ScopeExitTest, RunsOnceAtTheEndOfTheScope) {
    int runs = 0;
    {
        const ScopeExit action([&] { ++runs; });
        EXPECT_EQ(runs, 0);
    }
    EXPECT_EQ(runs, 1);
}

TEST(ScopeExitTest, RunsWhenAnExceptionPasses) {
    int runs = 0;
    EXPECT_THROW(
        {
            const ScopeExit action([&] { ++runs; });
            throw std::runtime_error("passes");
        },
        std::runtime_error);
    EXPECT_EQ(runs, 1);
}

TEST(ScopeExitTest, RunsAtAnEarlyReturn) {
    int runs = 0;
    const auto leave = [&](bool early) {
        const ScopeExit action([&] { ++runs; });
        return early ? 1 : 2;
    };
    EXPECT_EQ(leave(true), 1);
    EXPECT_EQ(leave(false), 2);
    EXPECT_EQ(runs, 2);
}

TEST(ScopeExitTest, ActionsRunInReverseOrder) {
    std::string order;
    {
        const ScopeExit first([&] { order += "1"; });
        const ScopeExit second([&] { order += "2"; });
    }
    EXPECT_EQ(order, "21");
}

TEST(ScopeExitTest, TakesAnActionThatCanOnlyBeMoved) {
    int seen = 0;
    {
        auto value = std::make_unique<int>(7);
        const ScopeExit action([&seen, held = std::move(value)] { seen = *held; });
    }
    EXPECT_EQ(seen, 7);
}

}  // namespace
}  // namespace marrowpress
