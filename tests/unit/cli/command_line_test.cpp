#include "cli/command_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tests/unit/cli/parsed_options.h"

namespace marrowpress {
namespace {

constexpr const char* kCommands[] = {"publish", "check", "keys",       "deps", "doctor",
                                     "explain", "host",  "completion", "help", "version"};

std::size_t longestLine(const std::string& text) {
    std::istringstream in(text);
    std::size_t longest = 0;
    for (std::string line; std::getline(in, line);) {
        longest = std::max(longest, line.size());
    }
    return longest;
}

TEST(CommandLineTest, VersionIsTheProjectsAndThatOfItsLibraries) {
    const std::string text = parseAs<Information>({"--version"}).text;
    EXPECT_TRUE(text.starts_with("marrowpress ")) << text;
    for (const char* const library : {"\nbuilt with Xerces-C ", "ICU ", "Boost ", "libxml2 "}) {
        EXPECT_NE(text.find(library), std::string::npos) << text;
    }
    EXPECT_EQ(parseAs<Information>({"-V"}).text, text);
    EXPECT_EQ(parseAs<Information>({"version"}).text, text);
}

TEST(CommandLineTest, HelpIsThereInEachWayToAsk) {
    const std::string text = parseAs<Information>({"--help"}).text;
    EXPECT_EQ(parseAs<Information>({"-h"}).text, text);
    EXPECT_EQ(parseAs<Information>({"help"}).text, text);
    for (const std::string command : kCommands) {
        EXPECT_NE(text.find("\n  " + command + " "), std::string::npos) << text;
        const std::string help = parseAs<Information>({command, "--help"}).text;
        EXPECT_NE(help.find("\nUsage: marrowpress " + command + " "), std::string::npos) << help;
        EXPECT_EQ(parseAs<Information>({command, "-h"}).text, help);
        EXPECT_EQ(parseAs<Information>({"help", command}).text, help);
    }
}

TEST(CommandLineTest, HelpHasAnExample) {
    for (const Texts& arguments : {Texts{"--help"}, Texts{"publish", "--help"}}) {
        const std::string text = parseAs<Information>(arguments).text;
        EXPECT_NE(text.find("marrowpress publish \\\n"
                            "      examples/drill-guide/drill-guide.ditamap -f composite"),
                  std::string::npos)
            << text;
    }
    EXPECT_NE(parseAs<Information>({"publish", "-h"}).text.find("-f flatbook -o out/book"),
              std::string::npos);
    const std::string text = parseAs<Information>({"host", "-h"}).text;
    EXPECT_NE(text.find("marrowpress host -"), std::string::npos) << text;
    EXPECT_NE(text.find("--no-xml-utilities"), std::string::npos) << text;
}

TEST(CommandLineTest, HelpTellsWhatTheExitCodesMean) {
    for (const Texts& arguments :
         {Texts{"--help"}, Texts{"publish", "-h"}, Texts{"check", "-h"}, Texts{"keys", "-h"},
          Texts{"deps", "-h"}, Texts{"doctor", "-h"}, Texts{"explain", "-h"}, Texts{"host", "-h"},
          Texts{"completion", "-h"}}) {
        const std::string text = parseAs<Information>(arguments).text;
        for (const char* const line :
             {"\n  0      clean\n", "\n  1      the run failed, or an output is missing or ",
              "\n  2      usage or configuration; nothing was started, nothing written or ",
              "\n  3      complete, with findings at or above --fail-on\n",
              "\n  128+n  ended by signal n\n"}) {
            EXPECT_NE(text.find(line), std::string::npos) << text;
        }
    }
}

TEST(CommandLineTest, HelpFitsIntoEightyColumns) {
    EXPECT_LE(longestLine(parseAs<Information>({"--help"}).text), kUsualHelpWidth);
    for (const std::string command : kCommands) {
        EXPECT_LE(longestLine(parseAs<Information>({command, "--help"}).text), kUsualHelpWidth)
            << command;
    }
}

TEST(CommandLineTest, HelpTakesTheWidthThatItGets) {
    const auto helpOf = [](std::size_t width) {
        return std::get<Information>(parseOptions({"publish", "--help"}, width)).text;
    };
    EXPECT_GT(longestLine(helpOf(120)), kUsualHelpWidth);
    EXPECT_LE(longestLine(helpOf(120)), 120U);
    EXPECT_GT(helpOf(60).size(), helpOf(80).size());
}

struct BadLineCase {
    Texts arguments;
    const char* command;
    const char* fault;
};

TEST(CommandLineTest, WrongUsageNamesTheArgumentAndPointsToHelp) {
    const BadLineCase cases[] = {
        {{},
         "",
         "a command is missing; known: publish, watch, check, keys, deps, doctor, batch, explain, "
         "host, "
         "completion, help, version"},
        {{"pubish", "m"}, "", "unknown command `pubish`; did you mean `publish`?"},
        {{"Check"}, "", "unknown command `Check`; did you mean `check`?"},
        {{"print", "m"},
         "",
         "unknown command `print`; known: publish, watch, check, keys, deps, doctor, batch, "
         "explain, "
         "host, "
         "completion, help, version"},
        {{""},
         "",
         "unknown command ``; known: publish, watch, check, keys, deps, doctor, batch, explain, "
         "host, "
         "completion, help, version"},
        {{"pubish", "--help"}, "", "unknown command `pubish`; did you mean `publish`?"},
        {{"--quiet"}, "", "unknown option `--quiet`"},
        {{"--vesion"}, "", "unknown option `--vesion`; did you mean `--version`?"},
        {{"--quiet", "publish", "m"}, "", "unknown option `--quiet`"},
        {{"help", "explian"}, "help", "unknown command `explian`; did you mean `explain`?"},
        {{"help", "check", "host"}, "help", "there is no place for the argument `host`"},
        {{"version", "now"}, "version", "there is no place for the argument `now`"},
        {{"version", "--all"}, "version", "unknown option `--all`"},
    };
    for (const BadLineCase& c : cases) {
        EXPECT_EQ(faultOf(c.command, c.arguments), c.fault);
    }
}

}  // namespace
}  // namespace marrowpress
