#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <boost/json/value_to.hpp>
#include <filesystem>
#include <sstream>

#include "tests/cli/command_fixture.h"

namespace marrowpress {
namespace {

namespace json = boost::json;

/// How `publish` and `check` tell of what they find: the map has an undefined key in a.dita.
class FindingsCommandTest : public CommandTest {
protected:
    FindingsCommandTest() { writeTopic("a", R"(<ph keyref="prod"/>)"); }

    static std::vector<json::object> objects(const std::string& text) {
        std::vector<json::object> all;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            all.push_back(json::parse(line).as_object());
        }
        return all;
    }

    static std::string textOf(const json::object& object, const char* member) {
        return json::value_to<std::string>(object.at(member));
    }

    static bool contains(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(FindingsCommandTest, ForPeopleTheSourceLineIsShown) {
    for (const CommandResult& result : {publish(), check()}) {
        EXPECT_TRUE(result.err.starts_with(
            "docs/a.dita:1:103: error: The key `prod` is not defined [MP105]\n    ..."))
            << result.err;
        EXPECT_TRUE(
            contains(result.err, "^\n  hint: no map of this publication defines any key\n"));
        EXPECT_TRUE(contains(result.err, "\n  via docs/m.ditamap:1:66: href a.dita\n"));
        EXPECT_TRUE(
            withoutTime(result.err).ends_with("\n1 error, 0 warnings in 1 file; 2 topics\n"));
    }
}

TEST_F(FindingsCommandTest, ForEditorsALineEachIsShown) {
    for (const CommandResult& result :
         {publish({"--diagnostics", "short", "-v"}), check({"--diagnostics", "short"})}) {
        EXPECT_EQ(withoutTime(result.err),
                  "docs/a.dita:1:103: error: The key `prod` is not defined [MP105]\n"
                  "1 error, 0 warnings in 1 file; 2 topics\n");
    }
}

TEST_F(FindingsCommandTest, ForToolsAnObjectALineIsShownAndNothingElse) {
    const CommandResult result = publish({"--diagnostics", "json", "-v"});
    const std::vector<json::object> lines = objects(result.err);
    ASSERT_EQ(lines.size(), 2U);
    const json::object& finding = lines[0];
    EXPECT_EQ(finding.at("id"), "MP105");
    EXPECT_EQ(finding.at("severity"), "error");
    EXPECT_EQ(textOf(finding, "file"), folder_.file("docs/a.dita"));
    EXPECT_EQ(finding.at("line"), 1);
    EXPECT_EQ(finding.at("target"), "prod");
    EXPECT_EQ(finding.at("artefact"), false);
    EXPECT_EQ(finding.at("hostText"),
              "Die Definition von Schlüssel prod wurde im geladenen Schlüsselraum nicht "
              "gefunden.\r\n");
    const json::object& summary = lines[1].at("summary").as_object();
    EXPECT_EQ(summary.at("errors"), 1);
    EXPECT_EQ(summary.at("topics"), 2);
    EXPECT_EQ(summary.at("files"), 1);
    EXPECT_EQ(summary.at("exit"), 3);
}

TEST_F(FindingsCommandTest, NobodyLooksForAnyWhereNoneAreWanted) {
    const CommandResult result = publish({"--diagnostics", "none"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.err, shownReport(keyNotFound("prod")));
}

TEST_F(FindingsCommandTest, AFileTakesThePlaceOfStandardError) {
    const CommandResult result =
        check({"--diagnostics", "json", "--diagnostics-file", "findings.jsonl"});
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(objects(folder_.read("findings.jsonl")).size(), 2U);
}

TEST_F(FindingsCommandTest, WhatARunCostsIsToldWithoutFindingsToo) {
    for (const char* const format : {"short", "none"}) {
        const CommandResult result =
            publish({"--diagnostics", format, "--stats", "--timings", "out/t.json"});
        EXPECT_NE(result.err.find("Documents: 3 read, "), std::string::npos) << result.err;
        EXPECT_NE(result.err.find("\nMemory: "), std::string::npos) << result.err;
        const std::string timeline = folder_.read("out/t.json");
        for (const char* const name : {"start", "keys", "map", "assembly", "output", "end"}) {
            EXPECT_NE(timeline.find(R"("cat":"phase","name":")" + std::string(name)),
                      std::string::npos)
                << name;
        }
        EXPECT_NE(timeline.find(folder_.file("docs/a.dita")), std::string::npos);
    }
    EXPECT_NE(check({"--stats"}).err.find("\nMemory: "), std::string::npos);
}

TEST_F(FindingsCommandTest, ATimelineTakesThePlaceOfNothingThatIsRead) {
    const std::string before = folder_.read("docs/m.ditamap");
    EXPECT_EQ(publish({"--timings", "docs/m.ditamap"}).code, 2);
    EXPECT_EQ(folder_.read("docs/m.ditamap"), before);
}

TEST_F(FindingsCommandTest, ReportsAreWrittenBesides) {
    const CommandResult result = publish({"--sarif", "f.sarif", "--junit", "f.xml"});
    EXPECT_EQ(result.code, 3);
    EXPECT_TRUE(contains(result.err, "[MP105]"));
    const json::object sarif = json::parse(folder_.read("f.sarif")).as_object();
    EXPECT_EQ(sarif.at("version"), "2.1.0");
    const json::object run = sarif.at("runs").at(0).as_object();
    EXPECT_EQ(run.at("results").as_array().size(), 1U);
    EXPECT_TRUE(contains(folder_.read("f.sarif"), R"("uri":"docs/a.dita")"));
    EXPECT_TRUE(contains(folder_.read("f.xml"), "type=\"MP105\""));
}

TEST_F(FindingsCommandTest, AnnotationsAreShownWhereTheyAreUnderstood) {
    const std::string annotation = "::error file=docs/a.dita,line=1,col=103,title=MP105::";
    CommandSetting setting;
    EXPECT_FALSE(contains(check({}, setting).err, annotation));
    setting.variables["GITHUB_ACTIONS"] = "true";
    EXPECT_TRUE(contains(check({}, setting).err, annotation));
    EXPECT_TRUE(contains(check({"--diagnostics", "json", "--diagnostics-file", "f"}, setting).err,
                         annotation));
    EXPECT_FALSE(contains(check({"--diagnostics", "json"}, setting).err, annotation));
    EXPECT_FALSE(contains(check({"--diagnostics", "short"}, setting).err, annotation));
    EXPECT_FALSE(contains(publish({"--diagnostics", "none"}, setting).err, annotation));
}

TEST_F(FindingsCommandTest, TheBaselineTakesAwayWhatItKnowsWhateverItsLine) {
    EXPECT_EQ(check({"--diagnostics", "json", "--diagnostics-file", "old.json"}).code, 3);
    writeTopic("a", "\n\n  <ph keyref=\"prod\"/>");
    const CommandResult known = check({"--baseline", "old.json"});
    EXPECT_EQ(known.code, 0) << known.err;
    EXPECT_EQ(withoutTime(known.err), "0 errors, 0 warnings; 2 topics\n");
    EXPECT_EQ(publish({"--baseline", "old.json"}).code, 0);
    writeTopic("a", R"(<ph keyref="prod"/><ph keyref="prod"/>)");
    EXPECT_EQ(check({"--baseline", "old.json"}).code, 3);
}

TEST_F(FindingsCommandTest, ArtefactsAreShownOnRequestAndNeverCount) {
    folder_.write("p.ditaval", R"(<val><prop att="audience" val="trade" action="exclude"/></val>)");
    writeTopic("a", R"(<ph audience="trade" keyref="prod"/>)");
    const CommandResult usual = check({"--filter", "p.ditaval"});
    EXPECT_EQ(usual.code, 0);
    EXPECT_FALSE(contains(usual.err, "MP105")) << usual.err;
    const CommandResult all = check({"--filter", "p.ditaval", "--all"});
    EXPECT_EQ(all.code, 0);
    EXPECT_TRUE(contains(all.err, "MP105")) << all.err;
    EXPECT_TRUE(contains(all.err, "\n0 errors, 0 warnings; ")) << all.err;
}

TEST_F(FindingsCommandTest, TheLanguageIsThatOfTheEnvironmentOrTheOnesThatIsAskedFor) {
    const std::string german = "Fehler: Der Schlüssel `prod` ist nicht definiert [MP105]";
    const std::string english = "error: The key `prod` is not defined [MP105]";
    CommandSetting setting;
    const struct {
        const char* locale;
        Texts arguments;
        std::string text;
    } cases[] = {{"C", {}, english},
                 {"de_DE.UTF-8", {}, german},
                 {"tr_TR.UTF-8", {}, english},
                 {"de_CH.ISO-8859-1", {}, german},
                 {"de_DE.UTF-8", {"--lang", "en"}, english},
                 {"C", {"--lang", "de"}, german}};
    for (const auto& expected : cases) {
        setting.locale = expected.locale;
        EXPECT_TRUE(contains(check(expected.arguments, setting).err, expected.text))
            << expected.locale;
    }
    setting.hasNoEnvironment = true;
    EXPECT_TRUE(contains(check({}, setting).err, english));
}

TEST_F(FindingsCommandTest, ColoursAreShownOnRequestWhereThereIsNoTerminal) {
    EXPECT_FALSE(contains(check().err, "\x1B["));
    EXPECT_TRUE(contains(check({"--color", "always"}).err, "\x1B["));
    EXPECT_FALSE(contains(check({"--color", "never"}).err, "\x1B["));
}

TEST_F(FindingsCommandTest, AnyNameIsEscapedAsEachFormatWantsIt) {
    const struct {
        std::string name;
        std::string href;
        std::string shown;
        std::string uri;
        std::string annotation;
    } cases[] = {{"a b", "a b", "a b", "a%20b", "a b"},
                 {"a\"b", "a&quot;b", "a\"b", "a%22b", "a\"b"},
                 {"a\nb", "a&#10;b", "a\\nb", "a%0Ab", "a%0Ab"},
                 {"a%b", "a%b", "a%b", "a%25b", "a%25b"},
                 {"a&b", "a&amp;b", "a&b", "a%26b", "a&b"},
                 {"a?b", "a?b", "a?b", "a%3Fb", "a?b"},
                 {"a:b", "a:b", "a:b", "a%3Ab", "a%3Ab"},
                 {"ä😀", "ä😀", "ä😀", "%C3%A4%F0%9F%98%80", "ä😀"}};
    const std::string topic = folder_.read("docs/a.dita");
    CommandSetting setting;
    setting.variables["GITHUB_ACTIONS"] = "true";
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        folder_.write("docs/" + expected.name + ".dita", topic);
        writeMap("<topicref href=\"" + expected.href + ".dita\"/>");
        const CommandResult human = check({"--sarif", "f.sarif", "--junit", "f.xml"}, setting);
        EXPECT_EQ(human.code, 3);
        EXPECT_TRUE(contains("\n" + human.err, "\ndocs/" + expected.shown + ".dita:1:103: error: "))
            << human.err;
        EXPECT_TRUE(contains(human.err, "::error file=docs/" + expected.annotation + ".dita,"))
            << human.err;
        EXPECT_TRUE(contains(folder_.read("f.sarif"), "\"uri\":\"docs/" + expected.uri + ".dita\""))
            << folder_.read("f.sarif");
        EXPECT_TRUE(contains(folder_.read("f.xml"), "type=\"MP105\""));
        const CommandResult tools = publish({"--diagnostics", "json"});
        EXPECT_EQ(textOf(objects(tools.err).at(0), "file"),
                  folder_.file("docs/" + expected.name + ".dita"));
    }
}

/// What the environment must not change.
class EnvironmentCommandTest : public CommandTest {
protected:
    /// The output of `publish`, which must go well.
    std::string published(const CommandSetting& setting) const {
        const CommandResult result =
            run({"publish", folder_.file("docs/m.ditamap"), "-f", "composite", "-o",
                 folder_.file("out/m.dita"), "--catalog", folder_.file("catalog.xml")},
                setting);
        EXPECT_EQ(result.code, 0) << result.err;
        return folder_.read("out/m.dita");
    }
};

TEST_F(EnvironmentCommandTest, TheOutputIsTheSameInEach) {
    writeTopic("a", "Iı İi äß <ph>I</ph> 😀");
    const std::string usual = published({});
    for (const char* const locale :
         {"C", "POSIX", "de_DE.UTF-8", "tr_TR.UTF-8", "tr_TR.ISO-8859-9", "none"}) {
        CommandSetting setting;
        setting.locale = locale;
        EXPECT_EQ(published(setting), usual) << locale;
    }
    CommandSetting bare;
    bare.hasNoEnvironment = true;
    EXPECT_EQ(published(bare), usual);
    CommandSetting elsewhere;
    elsewhere.currentFolder = "out";
    EXPECT_EQ(published(elsewhere), usual);
    CommandSetting silent;
    silent.inputFile = "";
    EXPECT_EQ(published(silent), usual);
    CommandSetting withoutPlace;
    withoutPlace.variables["TMPDIR"] = "/nonexistent";
    EXPECT_EQ(published(withoutPlace), usual);
}

TEST_F(EnvironmentCommandTest, SourcesMayBeReadOnlyAndSymbolicLinks) {
    namespace fs = std::filesystem;
    const std::string usual = published({});
    fs::remove(folder_.path() / "out/m.dita");
    for (const char* const name : {"docs/a.dita", "docs/b.dita", "docs/m.ditamap"}) {
        fs::permissions(folder_.path() / name, fs::perms(0444));
    }
    fs::permissions(folder_.path() / "docs", fs::perms(0555));
    fs::permissions(folder_.path() / "out", fs::perms::all);
    fs::permissions(folder_.path(), fs::perms::all);
    CommandSetting setting;
    setting.isWithoutRights = true;
    EXPECT_EQ(published(setting), usual);
    fs::permissions(folder_.path() / "docs", fs::perms(0755));
    fs::rename(folder_.path() / "docs/a.dita", folder_.path() / "a.dita");
    fs::create_symlink("../a.dita", folder_.path() / "docs/a.dita");
    fs::remove(folder_.path() / "out/m.dita");
    EXPECT_EQ(published({}), usual);
}

TEST_F(EnvironmentCommandTest, ACompositeMayGoToStandardOutput) {
    const std::string usual = published({});
    const CommandResult result = run(
        {"publish", "docs/m.ditamap", "-f", "composite", "-o", "-", "--catalog", "catalog.xml"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out, usual);
    EXPECT_FALSE(folder_.exists("-"));
    CommandSetting full;
    full.output = "/dev/full";
    const CommandResult failed = run({"publish", "docs/m.ditamap", "-f", "composite", "-o", "-",
                                      "--catalog", "catalog.xml", "--diagnostics", "json"},
                                     full);
    EXPECT_EQ(failed.code, 1);
    EXPECT_NE(failed.err.find(R"("text":"standard output cannot be written")"), std::string::npos);
}

}  // namespace
}  // namespace marrowpress
