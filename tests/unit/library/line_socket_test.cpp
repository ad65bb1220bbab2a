#include "library/line_socket.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <thread>

namespace marrowpress {
namespace {

using namespace std::chrono_literals;

class LineSocketTest : public testing::Test {
protected:
    LineSocketTest() {
        std::array<int, 2> ends{};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
        here = std::make_unique<LineSocket>(ends[0]);
        there = std::make_unique<LineSocket>(ends[1]);
    }

    std::unique_ptr<LineSocket> here;
    std::unique_ptr<LineSocket> there;
};

TEST_F(LineSocketTest, LinesComeWholeAndInTheirOrder) {
    EXPECT_TRUE(there->send("one"));
    EXPECT_TRUE(there->send(""));
    EXPECT_TRUE(there->send("three"));
    EXPECT_EQ(here->receive(1s), "one");
    EXPECT_EQ(here->receive(1s), "");
    EXPECT_EQ(here->receive(1s), "three");
    EXPECT_EQ(here->receive(0ms), std::nullopt);
    EXPECT_FALSE(here->isAtEnd());
}

TEST_F(LineSocketTest, ALineMayBeLongerThanWhatTheSystemHolds) {
    const std::string line(10 << 20, 'x');
    std::thread sender([&] { EXPECT_TRUE(there->send(line)); });
    EXPECT_TRUE(here->receive(60s) == line);
    sender.join();
}

TEST_F(LineSocketTest, TheEndIsSeenWhenAllLinesHaveBeenReceived) {
    ASSERT_TRUE(there->send("last"));
    ASSERT_EQ(write(there->descriptor(), "cut", 3), 3);
    there.reset();
    EXPECT_EQ(here->receive(1s), "last");
    EXPECT_EQ(here->receive(1s), std::nullopt);
    EXPECT_TRUE(here->isAtEnd());
}

TEST_F(LineSocketTest, WhatNobodyReceivesRaisesNoSignal) {
    there.reset();
    EXPECT_FALSE(here->send("line"));
}

}  // namespace
}  // namespace marrowpress
