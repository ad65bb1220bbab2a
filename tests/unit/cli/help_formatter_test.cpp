#include "cli/help_formatter.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <stdlib.h>
#include <unistd.h>

#include <optional>

namespace marrowpress {
namespace {

TEST(WrappedTest, BreaksAtBlanks) {
    EXPECT_EQ(wrapped("", 10, 2, 0), "");
    EXPECT_EQ(wrapped("one two", 10, 2, 0), "one two");
    EXPECT_EQ(wrapped("one two three", 10, 2, 0), "one two\n  three");
    EXPECT_EQ(wrapped("one two three four", 10, 2, 0), "one two\n  three\n  four");
    EXPECT_EQ(wrapped("0123456789 a", 10, 0, 0), "0123456789\na");
    EXPECT_EQ(wrapped("a 012345678901234 b", 10, 1, 0), "a\n 012345678901234\n b");
}

TEST(WrappedTest, CountsCharactersAndNotBytes) {
    EXPECT_EQ(wrapped("äöü äöüß", 8, 0, 0), "äöü äöüß");
    EXPECT_EQ(wrapped("äöü äöüß", 7, 0, 0), "äöü\näöüß");
}

TEST(WrappedTest, KnowsWhatIsTaken) {
    EXPECT_EQ(wrapped("one two", 10, 3, 3), "one two");
    EXPECT_EQ(wrapped("one two", 10, 3, 4), "one\n   two");
}

class HelpFormatterTest : public testing::Test {
protected:
    std::string help(std::size_t width) {
        app_.formatter(std::make_shared<HelpFormatter>(width));
        return app_.help();
    }

    CLI::App app_{"Does this and that, and a few other things too.", "program"};
};

TEST_F(HelpFormatterTest, PutsDescriptionsBesideTheNames) {
    std::string text = "usual";
    bool flag = false;
    app_.set_help_flag("-h,--help", "Show this help");
    app_.add_option("FILE", text, "The file")->required();
    app_.add_option("-t,--text", text, "Some words that take more than a line")
        ->type_name("TEXT")
        ->default_str("usual");
    app_.add_option("--needed", text, "Needed")->type_name("TEXT")->required();
    app_.add_flag("--a-flag-with-a-long-name", flag, "A flag");
    EXPECT_EQ(help(48),
              "Does this and that, and a few other things too.\n"
              "\n"
              "Usage: program [OPTIONS] FILE\n"
              "\n"
              "Arguments:\n"
              "  FILE          The file\n"
              "\n"
              "Options:\n"
              "  -h, --help    Show this help\n"
              "  -t, --text TEXT\n"
              "                Some words that take more than a\n"
              "                line; usual unless given\n"
              "  --needed TEXT\n"
              "                Needed; required\n"
              "  --a-flag-with-a-long-name\n"
              "                A flag\n");
}

TEST_F(HelpFormatterTest, LeavesExamplesAsTheyAre) {
    app_.set_help_flag();
    app_.footer(
        "Example:\n"
        "  program --with many words that would not fit into a line of that width\n"
        "\n"
        "Prose that would not fit into a line of that width.");
    EXPECT_EQ(help(40),
              "Does this and that, and a few other\n"
              "things too.\n"
              "\n"
              "Usage: program\n"
              "\n"
              "Example:\n"
              "  program --with many words that would not fit into a line of that width\n"
              "\n"
              "Prose that would not fit into a line of\n"
              "that width.\n");
}

TEST_F(HelpFormatterTest, TakesAWidthWithoutRoomForAWiderOne) {
    EXPECT_EQ(help(0), help(40));
    EXPECT_EQ(help(39), help(40));
}

/// A terminal, and COLUMNS as a test sets it.
class HelpWidthTest : public testing::Test {
protected:
    HelpWidthTest() {
        if (const char* const value = getenv("COLUMNS")) {
            before_ = value;
        }
        EXPECT_EQ(openpty(&outer_, &inner_, nullptr, nullptr, nullptr), 0);
    }
    ~HelpWidthTest() override {
        close(outer_);
        close(inner_);
        unsetenv("COLUMNS");
        if (before_) {
            setenv("COLUMNS", before_->c_str(), 1);
        }
    }

    void setColumns(unsigned short columns) const {
        winsize size{};
        size.ws_row = 24;
        size.ws_col = columns;
        EXPECT_EQ(ioctl(outer_, TIOCSWINSZ, &size), 0);
    }

    int outer_ = -1;
    int inner_ = -1;

private:
    std::optional<std::string> before_;
};

TEST_F(HelpWidthTest, IsThatOfTheTerminal) {
    setenv("COLUMNS", "70", 1);
    setColumns(132);
    EXPECT_EQ(helpWidth(inner_), 132U);
}

TEST_F(HelpWidthTest, IsThatOfTheEnvironmentWhereTheTerminalDoesNotKnow) {
    setColumns(0);
    setenv("COLUMNS", "70", 1);
    EXPECT_EQ(helpWidth(inner_), 70U);
    for (const char* const odd : {"", "0", "wide", "70x", "-70", "99999999999999999999999"}) {
        setenv("COLUMNS", odd, 1);
        EXPECT_EQ(helpWidth(inner_), kUsualHelpWidth) << odd;
    }
    unsetenv("COLUMNS");
    EXPECT_EQ(helpWidth(inner_), kUsualHelpWidth);
}

TEST_F(HelpWidthTest, IsTheUsualOneWhereThereIsNoTerminal) {
    setenv("COLUMNS", "70", 1);
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    EXPECT_EQ(helpWidth(ends[1]), kUsualHelpWidth);
    close(ends[0]);
    close(ends[1]);
    EXPECT_EQ(helpWidth(-1), kUsualHelpWidth);
}

}  // namespace
}  // namespace marrowpress
