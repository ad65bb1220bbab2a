#include <gtest/gtest.h>

#include "tests/cli/command_fixture.h"

namespace marrowpress {
namespace {

/// What asks for nothing to be run, or for what cannot be.
class UsageCommandTest : public CommandTest {
protected:
    /// What goes to standard output; the test fails when anything else happens.
    std::string answer(const Texts& arguments, const CommandSetting& setting = {}) const {
        const CommandResult result = run(arguments, setting);
        EXPECT_EQ(result.code, 0);
        EXPECT_EQ(result.err, "");
        return result.out;
    }

    /// The first line that goes to standard error; the test fails when anything else happens.
    std::string refusal(const Texts& arguments) const {
        const CommandResult result = run(arguments);
        EXPECT_EQ(result.code, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(result.err.ends_with(" --help` for help.\n")) << result.err;
        return result.err.substr(0, result.err.find('\n'));
    }
};

TEST_F(UsageCommandTest, HelpIsTheSameInEachWayToAsk) {
    const std::string text = answer({"--help"});
    EXPECT_EQ(answer({"help"}), text);
    EXPECT_EQ(answer({"help", "publish"}), answer({"publish", "--help"}));
}

TEST_F(UsageCommandTest, VersionIsTheSameInEachWayToAsk) {
    const std::string text = answer({"--version"});
    EXPECT_TRUE(text.starts_with("marrowpress 0.1.0\nbuilt with Xerces-C ")) << text;
    EXPECT_EQ(answer({"-V"}), text);
    EXPECT_EQ(answer({"version"}), text);
}

TEST_F(UsageCommandTest, ExplainSpeaksTheLanguageOfTheEnvironment) {
    CommandSetting setting;
    setting.locale = "C.UTF-8";
    EXPECT_TRUE(answer({"explain", "MP105"}, setting).starts_with("MP105  error: Key not defined"));
    setting.locale = "tr_TR.UTF-8";
    EXPECT_TRUE(answer({"explain"}, setting).starts_with("MP105  error: Key not defined\n"));
    setting.locale = "de_AT.UTF-8";
    EXPECT_TRUE(answer({"explain"}, setting).starts_with("MP105  Fehler: Schlüssel nicht "));
}

TEST_F(UsageCommandTest, ExplainSpeaksTheLanguageThatItIsTold) {
    CommandSetting setting;
    setting.locale = "de_DE.UTF-8";
    EXPECT_TRUE(answer({"explain", "--lang", "en"}, setting).starts_with("MP105  error: Key"));
    setting.locale = "C";
    EXPECT_TRUE(answer({"explain", "--lang", "de"}, setting).starts_with("MP105  Fehler: Schl"));
}

TEST_F(UsageCommandTest, AnAnswerThatNobodyTakesIsAFailure) {
    CommandSetting setting;
    setting.output = "/dev/full";
    for (const Texts& arguments : {Texts{"--help"}, Texts{"help", "check"}, Texts{"version"},
                                   Texts{"explain"}, Texts{"explain", "MP201"}}) {
        const CommandResult result = run(arguments, setting);
        EXPECT_EQ(result.code, 1);
        EXPECT_EQ(result.err, "marrowpress: cannot write to standard output\n");
    }
}

TEST_F(UsageCommandTest, WhatIsUnknownIsToldWithWhatIsNear) {
    EXPECT_EQ(refusal({"pubish", "docs/m.ditamap"}),
              "marrowpress: unknown command `pubish`; did you mean `publish`?");
    EXPECT_EQ(refusal({"help", "chek"}),
              "marrowpress help: unknown command `chek`; did you mean `check`?");
    EXPECT_EQ(refusal({"publish", "docs/m.ditamap", "--ouput", "out/m.dita"}),
              "marrowpress publish: unknown option `--ouput`; did you mean `--output`?");
    EXPECT_EQ(refusal({"check", "docs/m.ditamap", "-f", "flatbok"}),
              "marrowpress check: --format: unknown format `flatbok`; did you mean `flatbook`?");
    EXPECT_EQ(refusal({"explain", "MP106a"}),
              "marrowpress explain: unknown id `MP106a`; did you mean `MP106`?");
    EXPECT_EQ(refusal({"host", "--no-xml-utilites", "r.json"}),
              "marrowpress host: unknown option `--no-xml-utilites`; did you mean "
              "`--no-xml-utilities`?");
}

TEST_F(UsageCommandTest, WhatIsMissingIsTold) {
    EXPECT_EQ(refusal({}),
              "marrowpress: a command is missing; known: publish, watch, check, keys, deps, "
              "doctor, batch, "
              "explain, host, completion, help, version");
    EXPECT_EQ(refusal({"check"}), "marrowpress check: MAP is required");
    EXPECT_EQ(refusal({"publish", "docs/m.ditamap", "-f"}),
              "marrowpress publish: -f: its value is missing");
}

TEST_F(UsageCommandTest, WrongUsageWritesAndRemovesNothing) {
    folder_.write("out/m.dita", "");
    const Texts faults[] = {
        {"--severity", "MP999=note"},
        {"--diagnostics", "xml"},
        {"--diagnostics", "none", "--sarif", "out/s.sarif"},
        {"--quiet", "--verbose"},
        {"--unknown"},
    };
    for (const Texts& fault : faults) {
        EXPECT_EQ(publish(fault).code, 2);
    }
    EXPECT_TRUE(folder_.exists("out/m.dita"));
    EXPECT_FALSE(folder_.exists("out/s.sarif"));
    EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap"));
}

}  // namespace
}  // namespace marrowpress
