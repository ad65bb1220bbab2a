#include "cli/diagnostics_arguments.h"

#include <gtest/gtest.h>

#include "tests/unit/cli/parsed_options.h"

namespace marrowpress {
namespace {

Texts checkWith(const Texts& more) {
    Texts arguments{"check", "m"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

DiagnosticsOptions optionsOf(const Texts& more) {
    return parseAs<CheckOptions>(checkWith(more)).diagnostics;
}

TEST(DiagnosticsArgumentsTest, HaveTheirDefaults) {
    const DiagnosticsOptions options = optionsOf({});
    EXPECT_EQ(options.format, DiagnosticsFormat::kHuman);
    EXPECT_EQ(options.file, std::nullopt);
    EXPECT_EQ(options.sarif, std::nullopt);
    EXPECT_EQ(options.junit, std::nullopt);
    EXPECT_EQ(options.language, Language::kAuto);
    EXPECT_EQ(options.failOn, FailOn::kError);
    EXPECT_TRUE(options.severities.empty());
    EXPECT_EQ(options.baseline, std::nullopt);
    EXPECT_FALSE(options.showsAll);
    EXPECT_FALSE(options.isVerbose);
    EXPECT_FALSE(options.isQuiet);
    EXPECT_EQ(options.color, ColorChoice::kAuto);
    EXPECT_FALSE(options.hasNoProgress);
}

TEST(DiagnosticsArgumentsTest, TakeEveryOption) {
    const DiagnosticsOptions options = optionsOf({"--diagnostics",
                                                  "json",
                                                  "--diagnostics-file",
                                                  "d",
                                                  "--sarif",
                                                  "s",
                                                  "--junit",
                                                  "j",
                                                  "--lang",
                                                  "en",
                                                  "--fail-on",
                                                  "warning",
                                                  "--severity",
                                                  "MP208=error",
                                                  "--severity",
                                                  "MP105=note",
                                                  "--baseline",
                                                  "b",
                                                  "--all",
                                                  "-v",
                                                  "--color",
                                                  "always",
                                                  "--no-progress"});
    EXPECT_EQ(options.format, DiagnosticsFormat::kJson);
    EXPECT_EQ(options.file, "d");
    EXPECT_EQ(options.sarif, "s");
    EXPECT_EQ(options.junit, "j");
    EXPECT_EQ(options.language, Language::kEnglish);
    EXPECT_EQ(options.failOn, FailOn::kWarning);
    EXPECT_EQ(options.severities, (std::map<std::string, Severity>{{"MP105", Severity::kNote},
                                                                   {"MP208", Severity::kError}}));
    EXPECT_EQ(options.baseline, "b");
    EXPECT_TRUE(options.showsAll);
    EXPECT_TRUE(options.isVerbose);
    EXPECT_EQ(options.color, ColorChoice::kAlways);
    EXPECT_TRUE(options.hasNoProgress);
}

TEST(DiagnosticsArgumentsTest, AreTheSameForPublish) {
    const DiagnosticsOptions options =
        parseAs<PublishOptions>({"publish", "m", "-f", "composite", "-o", "o", "--diagnostics",
                                 "short", "-q", "--severity=MP110=error"})
            .diagnostics;
    EXPECT_EQ(options.format, DiagnosticsFormat::kShort);
    EXPECT_TRUE(options.isQuiet);
    EXPECT_EQ(options.severities.at("MP110"), Severity::kError);
}

TEST(DiagnosticsArgumentsTest, TakeTheLastLevelOfAnId) {
    EXPECT_EQ(optionsOf({"--severity", "MP208=error", "--severity", "MP208=warning"})
                  .severities.at("MP208"),
              Severity::kWarning);
}

struct BadDiagnosticsCase {
    Texts arguments;
    const char* fault;
};

TEST(DiagnosticsArgumentsTest, RefuseWhatMakesNoSense) {
    const BadDiagnosticsCase cases[] = {
        {{"--diagnostics", "jsn"}, "--diagnostics: unknown format `jsn`; did you mean `json`?"},
        {{"--diagnostics", "xml"},
         "--diagnostics: unknown format `xml`; known: human, short, json, none"},
        {{"--fail-on", "errors"}, "--fail-on: unknown level `errors`; did you mean `error`?"},
        {{"--fail-on", "note"}, "--fail-on: unknown level `note`; known: error, warning, never"},
        {{"--color", "red"}, "--color: unknown choice `red`; known: auto, always, never"},
        {{"--lang", "english"}, "--lang: unknown language `english`; known: de, en, auto"},
        {{"--severity", "MP208"}, "--severity: `MP208` has no level; write it as MP208=error"},
        {{"--severity", "MP28=error"}, "--severity: unknown id `MP28`; did you mean `MP208`?"},
        {{"--severity", "conref=error"},
         "--severity: unknown id `conref`; `marrowpress explain` lists all"},
        {{"--severity", "MP208=fatal"},
         "--severity: unknown level `fatal`; known: error, warning, note"},
        {{"--severity", "MP208="}, "--severity: unknown level ``; known: error, warning, note"},
        {{"--diagnostics", "none", "--diagnostics-file", "d"},
         "--diagnostics-file: with --diagnostics none there are no findings"},
        {{"--diagnostics", "none", "--junit", "j"},
         "--junit: with --diagnostics none there are no findings"},
        {{"--diagnostics", "none", "--baseline", "b"},
         "--baseline: with --diagnostics none there are no findings"},
        {{"--diagnostics", "json", "--stats"},
         "--stats: standard error holds JSON; send it elsewhere with --diagnostics-file"},
        {{"--sarif", "a", "--sarif", "b"}, "--sarif: is given more than once"},
        {{"--all=yes"}, "--all: takes no value"},
        {{"--verbos"}, "unknown option `--verbos`; did you mean `--verbose`?"},
    };
    for (const BadDiagnosticsCase& c : cases) {
        EXPECT_EQ(faultOf("check", checkWith(c.arguments)), c.fault);
    }
}

}  // namespace
}  // namespace marrowpress
