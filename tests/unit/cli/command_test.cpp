#include "cli/command.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace marrowpress {
namespace {

class EchoCommand final : public Command {
public:
    explicit EchoCommand(CLI::App& program) : Command(program, "echo", "Says it again", "The end") {
        arguments().addText("TEXT", text_, "What to say", "TEXT");
    }

private:
    Options finish() override {
        if (text_ == "silence") {
            return wrongUsage("TEXT: cannot be said");
        }
        return Information{text_};
    }

    std::string text_ = "nothing";
};

class CommandClassTest : public testing::Test {
protected:
    void parse(std::vector<std::string> arguments) {
        std::reverse(arguments.begin(), arguments.end());
        program_.parse(arguments);
    }

    CLI::App program_{"Echoes", "program"};
    EchoCommand command_{program_};
};

TEST_F(CommandClassTest, IsChosenByItsName) {
    EXPECT_EQ(command_.name(), "echo");
    parse({});
    EXPECT_FALSE(command_.isChosen());
    parse({"echo"});
    EXPECT_TRUE(command_.isChosen());
}

TEST_F(CommandClassTest, GivesWhatTheArgumentsAskFor) {
    parse({"echo", "hello"});
    EXPECT_EQ(std::get<Information>(command_.read()).text, "hello");
}

TEST_F(CommandClassTest, SaysWhatIsWrongInItsName) {
    const std::string help = "\nRun `marrowpress echo --help` for help.\n";
    parse({"echo", ""});
    EXPECT_EQ(std::get<UsageError>(command_.read()).text,
              "marrowpress echo: TEXT: is empty" + help);
    parse({"echo", "silence"});
    EXPECT_EQ(std::get<UsageError>(command_.read()).text,
              "marrowpress echo: TEXT: cannot be said" + help);
    try {
        parse({"echo", "a", "b"});
        FAIL();
    } catch (const CLI::ParseError& error) {
        EXPECT_EQ(command_.explain(error, {"echo", "a", "b"}).text,
                  "marrowpress echo: there is no place for the argument `b`" + help);
    }
}

TEST(FooterTextTest, HasTheExampleTheRemarkAndTheExitCodes) {
    const std::string codes = footerText("", "");
    EXPECT_TRUE(codes.starts_with("Exit status:\n  0      clean\n")) << codes;
    EXPECT_EQ(footerText("  this\n", ""), "Example:\n  this\n\n" + codes);
    EXPECT_EQ(footerText("", "That."), "That.\n\n" + codes);
}

}  // namespace
}  // namespace marrowpress
