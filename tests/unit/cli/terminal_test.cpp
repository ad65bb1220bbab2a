#include "cli/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <thread>

#include "tests/support/pseudo_terminal.h"

namespace marrowpress {
namespace {

constexpr const char* kTerminalVariables[] = {"TERM", "NO_COLOR", "COLUMNS"};

/// A pseudo terminal, and an environment without what says something of terminals.
class TerminalTest : public testing::Test {
protected:
    TerminalTest() {
        for (const char* const name : kTerminalVariables) {
            const char* const value = getenv(name);
            before_[name] = value ? std::optional<std::string>(value) : std::nullopt;
            unsetenv(name);
        }
        out_.open(screen_.path());
        setWidth(20);
    }
    ~TerminalTest() override {
        for (const auto& [name, value] : before_) {
            if (value) {
                setenv(name.c_str(), value->c_str(), 1);
            } else {
                unsetenv(name.c_str());
            }
        }
    }

    void setWidth(unsigned short columns) const { screen_.setWidth(columns); }

    /// What has come to the terminal since the last time.
    std::string shown() const { return screen_.shown(); }

    /// The line that a text comes to.
    std::string lineOf(const std::string& text) {
        LiveLine line(out_, terminal_);
        line.showAtOnce(text);
        const std::string drawn = shown();
        EXPECT_TRUE(drawn.starts_with('\r')) << drawn;
        EXPECT_TRUE(drawn.ends_with("\x1B[K")) << drawn;
        line.clear();
        shown();
        return drawn.substr(1, drawn.size() - 4);
    }

    PseudoTerminal screen_;
    int terminal_ = screen_.descriptor();
    std::ofstream out_;

private:
    std::map<std::string, std::optional<std::string>> before_;
};

TEST_F(TerminalTest, IsOneUnlessItCanDoNothing) {
    EXPECT_TRUE(isTerminal(terminal_));
    setenv("TERM", "xterm", 1);
    EXPECT_TRUE(isTerminal(terminal_));
    setenv("TERM", "dumb", 1);
    EXPECT_FALSE(isTerminal(terminal_));
}

TEST_F(TerminalTest, NothingElseIsOne) {
    const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    EXPECT_FALSE(isTerminal(null));
    EXPECT_FALSE(isColoredByItself(null));
    close(null);
    EXPECT_FALSE(isTerminal(-1));
}

TEST_F(TerminalTest, HasColorsUnlessTheEnvironmentSaysNo) {
    EXPECT_TRUE(isColoredByItself(terminal_));
    setenv("NO_COLOR", "", 1);
    EXPECT_TRUE(isColoredByItself(terminal_));
    setenv("NO_COLOR", "0", 1);
    EXPECT_FALSE(isColoredByItself(terminal_));
    unsetenv("NO_COLOR");
    setenv("TERM", "dumb", 1);
    EXPECT_FALSE(isColoredByItself(terminal_));
}

TEST_F(TerminalTest, SaysItsWidthItself) {
    setenv("COLUMNS", "33", 1);
    EXPECT_EQ(terminalWidth(terminal_), 20U);
    setWidth(132);
    EXPECT_EQ(terminalWidth(terminal_), 132U);
}

TEST_F(TerminalTest, WhereItDoesNotSayItsWidthTheEnvironmentDoes) {
    setWidth(0);
    EXPECT_EQ(terminalWidth(terminal_), 80U);
    setenv("COLUMNS", "33", 1);
    EXPECT_EQ(terminalWidth(terminal_), 33U);
    EXPECT_EQ(terminalWidth(-1), 33U);
    for (const char* const wrong : {"", "0", "-4", "3x", "wide", "99999999999999999999999"}) {
        setenv("COLUMNS", wrong, 1);
        EXPECT_EQ(terminalWidth(terminal_), 80U) << wrong;
    }
}

using LiveLineTest = TerminalTest;

TEST_F(LiveLineTest, IsRedrawnInItsPlace) {
    LiveLine line(out_, terminal_);
    line.showAtOnce("first");
    line.showAtOnce("second");
    EXPECT_EQ(shown(), "\rfirst\x1B[K\rsecond\x1B[K");
}

TEST_F(LiveLineTest, IsTakenAwayOnce) {
    {
        LiveLine line(out_, terminal_);
        line.clear();
        EXPECT_EQ(shown(), "");
        line.showAtOnce("text");
        shown();
        line.clear();
        EXPECT_EQ(shown(), "\r\x1B[K");
        line.clear();
        EXPECT_EQ(shown(), "");
        line.showAtOnce("text");
        shown();
    }
    EXPECT_EQ(shown(), "\r\x1B[K");
}

TEST_F(LiveLineTest, LeavesTheLastColumnFree) {
    EXPECT_EQ(lineOf("1234567890123456789"), "1234567890123456789");
    EXPECT_EQ(lineOf("12345678901234567890"), "1234567890123456789");
    setWidth(5);
    EXPECT_EQ(lineOf("1234567890"), "1234");
    setWidth(1);
    EXPECT_EQ(lineOf("1234567890"), "");
}

TEST_F(LiveLineTest, IsCutBetweenCharacters) {
    setWidth(5);
    EXPECT_EQ(lineOf("\u00E4\u00F6\u00FC\u00DF\u20AC"), "\u00E4\u00F6\u00FC\u00DF");
    EXPECT_EQ(lineOf("\u4E2D\u6587\u5B57"), "\u4E2D\u6587");
    EXPECT_EQ(lineOf("a\u4E2D\u6587\u5B57"), "a\u4E2D");
    EXPECT_EQ(lineOf("e\u0301e\u0301e\u0301e\u0301e"), "e\u0301e\u0301e\u0301e\u0301");
}

TEST_F(LiveLineTest, NothingMovesTheCursor) {
    EXPECT_EQ(lineOf("a\nb\rc\x1B[2Jd\x9B"), "a\\nb\\rc\\x1B[2Jd\\x9B");
    setWidth(5);
    EXPECT_EQ(lineOf("abc\n"), "abc");
}

TEST_F(LiveLineTest, FollowsTheWidthOfTheTerminal) {
    LiveLine line(out_, terminal_);
    line.showAtOnce("12345678");
    setWidth(5);
    line.showAtOnce("12345678");
    EXPECT_EQ(shown(), "\r12345678\x1B[K\r1234\x1B[K");
}

TEST_F(LiveLineTest, WhatComesTooSoonIsNotShown) {
    LiveLine line(out_, terminal_);
    const auto start = std::chrono::steady_clock::now();
    for (int count = 0; count < 1000; ++count) {
        line.show("text");
    }
    const auto elapsed = std::chrono::steady_clock::now() - start;
    const std::string drawn = shown();
    const auto draws = std::count(drawn.begin(), drawn.end(), '\r');
    EXPECT_GE(draws, 1);
    EXPECT_LE(draws, 1 + elapsed / std::chrono::milliseconds(50));
    line.showAtOnce("at once");
    EXPECT_EQ(shown(), "\rat once\x1B[K");
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    line.show("later");
    EXPECT_EQ(shown(), "\rlater\x1B[K");
}

TEST_F(LiveLineTest, DoesNothingWithoutATerminal) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    {
        LiveLine line(out_, ends[1]);
        line.show("text");
        line.showAtOnce("text");
        line.clear();
    }
    EXPECT_EQ(shown(), "");
    close(ends[0]);
    close(ends[1]);
}

}  // namespace
}  // namespace marrowpress
