#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/command_fixture.h"

namespace marrowpress {
namespace {

/// The command on a map, for the format "flatbook".
class FlatBookCommandTest : public CommandTest {
protected:
    /// `publish` of the map into "out", with `more` behind the usual arguments.
    CommandResult publishBook(const Texts& more = {}, const CommandSetting& setting = {}) const {
        Texts arguments{"publish", "docs/m.ditamap", "-f",         "flatbook", "-o",
                        "out",     "--catalog",      "catalog.xml"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments, setting);
    }

    /// `names` as lines of absolute paths.
    std::string lines(const Texts& names) const {
        std::string text;
        for (const std::string& name : names) {
            text += folder_.file(name) + "\n";
        }
        return text;
    }

    /// The id of the last topic in a component.
    std::string lastTopicId(const std::string& name) const {
        const std::string text = folder_.read(name);
        const std::string start = "<topic id=\"";
        const std::size_t begin = text.rfind(start) + start.size();
        return text.substr(begin, text.find('"', begin) - begin);
    }
};

TEST_F(FlatBookCommandTest, WritesEachComponentBesideItsSource) {
    const CommandResult result = publishBook({"-v"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out, lines({"docs/a.qs", "docs/b.qs"}));
    EXPECT_EQ(withoutTime(result.err),
              shownProgress({processingKeySpaces(), updatingReferences(), appending("a.dita"),
                             processingReferences(), appending("b.dita"), processingReferences()}) +
                  "0 errors, 0 warnings; 2 topics\n");
    EXPECT_EQ(bodiesOf("docs/a.qs"), "Text of a;");
    EXPECT_EQ(bodiesOf("docs/b.qs"), "Text of b;");
    EXPECT_FALSE(folder_.exists("out/a.qs"));
    EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap"));
}

TEST_F(FlatBookCommandTest, PutsEveryComponentIntoOneFolder) {
    const CommandResult result = publishBook({"--one-location", "--print"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out, lines({"out/a.qs"}));
    EXPECT_EQ(bodiesOf("out/a.qs"), "Text of a;");
    EXPECT_FALSE(folder_.exists("docs/a.qs"));
    EXPECT_FALSE(folder_.exists("out/b.qs"));
}

TEST_F(FlatBookCommandTest, TakesAFolderWithASeparatorBehindIt) {
    writeMap(R"(<topicref href="a.dita"/>)");
    const CommandResult result = run({"publish", "docs/m.ditamap", "-f", "flatbook", "-o", "out/",
                                      "--one-location", "--catalog", "catalog.xml"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, lines({"out/a.qs"}));
}

TEST_F(FlatBookCommandTest, ListsAComponentThatStandsTwiceOnce) {
    writeMap(R"(<topicref href="a.dita"/><topicref href="b.dita"/><topicref href="a.dita"/>)");
    const CommandResult result = publishBook();
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out, lines({"docs/a.qs", "docs/b.qs"}));
    EXPECT_EQ(bodiesOf("docs/a.qs"), "Text of a;Text of a;");
}

TEST_F(FlatBookCommandTest, ListsNothingForAMapWithoutTopics) {
    writeMap("<topicref/>");
    EXPECT_EQ(publishBook({"--diagnostics", "none"}).code, 0);
    const CommandResult result = publishBook();
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.out, "");
}

TEST_F(FlatBookCommandTest, ReplacesComponentsOfAnEarlierRun) {
    EXPECT_EQ(publishBook().code, 0);
    writeTopic("a", "New text");
    const CommandResult result = publishBook();
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(bodiesOf("docs/a.qs"), "New text;");
    EXPECT_FALSE(folder_.exists("docs/a.qs.kept-1"));
}

TEST_F(FlatBookCommandTest, LeadsReferencesToTheComponentThatHoldsTheTopic) {
    writeTopic("a", R"(See <xref href="b.dita">b</xref>)");
    EXPECT_EQ(publishBook({"--one-location"}).code, 0);
    EXPECT_EQ(bodiesOf("out/a.qs"), "See <xref href=\"" + folder_.file("out/b.qs") + "#" +
                                        lastTopicId("out/b.qs") + "\">b</xref>;");
}

TEST_F(FlatBookCommandTest, LeavesOutWhatTheFilterExcludes) {
    folder_.write("f.ditaval", R"(<val><prop att="audience" val="trade" action="exclude"/></val>)");
    writeTopic("a", R"(For <ph audience="trade">the trade and </ph>all)");
    writeMap(R"(<topicref href="a.dita"/><topicref href="b.dita" audience="trade"/>)");

    const CommandResult book = publishBook({"--filter", "f.ditaval"});
    EXPECT_EQ(book.code, 0);
    EXPECT_EQ(book.out, lines({"docs/a.qs"}));
    EXPECT_EQ(bodiesOf("docs/a.qs"), "For all;");
    EXPECT_FALSE(folder_.exists("docs/b.qs"));

    EXPECT_EQ(publish({"--filter", "f.ditaval"}).code, 0);
    EXPECT_EQ(bodiesOf("out/m.dita"), "For all;");
    EXPECT_EQ(publish().code, 0);
    EXPECT_NE(bodiesOf("out/m.dita").find("Text of b;"), std::string::npos);
}

TEST_F(FlatBookCommandTest, ResolvesKeysAndContentReferences) {
    writeMap(R"(<topicref keys="name" processing-role="resource-only"><topicmeta>)"
             R"(<linktext>Bramble</linktext></topicmeta></topicref>)"
             R"(<topicref keys="words" href="b.dita" processing-role="resource-only"/>)"
             R"(<topicref href="a.dita"/>)");
    writeTopic(
        "a",
        R"(The <ph keyref="name"/> is <ph conref="b.dita#b/one"/><ph conkeyref="words/two"/>)");
    writeTopic("b", R"(<ph id="one">light</ph><ph id="two"> and small</ph>)");
    const std::string body = "The <ph>Bramble</ph> is <ph>light</ph><ph> and small</ph>;";

    const CommandResult book = publishBook();
    EXPECT_EQ(book.code, 0);
    EXPECT_EQ(book.out, lines({"docs/a.qs"})) << book.err;
    EXPECT_EQ(bodiesOf("docs/a.qs"), body);

    EXPECT_EQ(publish().code, 0);
    EXPECT_EQ(bodiesOf("out/m.dita"), body);
}

TEST_F(FlatBookCommandTest, SaysThatAComponentCouldNotBeWritten) {
    writeTopic("a", std::string(40000, 'x'));
    CommandSetting setting;
    setting.largestFile = 16384;
    const CommandResult result = publishBook({}, setting);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(
                  "\ndocs/a.qs: error: `docs/a.qs` cannot be written: File too large [MP107]\n"),
              std::string::npos)
        << result.err;
    EXPECT_TRUE(result.err.starts_with("marrowpress publish: a document could not be written.\n"))
        << result.err;
    EXPECT_EQ(bodiesOf("docs/b.qs"), "Text of b;");
}

TEST_F(FlatBookCommandTest, SaysThatTheRunFailed) {
    folder_.write("docs/m.ditamap", "<map>");
    const CommandResult result = publishBook();
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(result.err.starts_with("marrowpress publish: the run failed (status -42).\n"))
        << result.err;
    EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap"));
}

TEST_F(FlatBookCommandTest, MakesTheFolderThatItWritesTo) {
    const Texts arguments{"publish", "docs/m.ditamap", "-f",          "flatbook",      "-o",
                          "new/b",   "--catalog",      "catalog.xml", "--one-location"};
    EXPECT_EQ(run(arguments).code, 0);
    EXPECT_TRUE(folder_.exists("new/b/a.qs"));
}

TEST_F(FlatBookCommandTest, LeavesNoEmptyFolderBehind) {
    EXPECT_EQ(run({"publish", "docs/m.ditamap", "-f", "flatbook", "-o", "new/b", "--catalog",
                   "catalog.xml"})
                  .code,
              0);
    EXPECT_TRUE(folder_.exists("docs/a.qs"));
    EXPECT_FALSE(folder_.exists("new"));
}

TEST_F(FlatBookCommandTest, RefusesWrongUsageBeforeAnythingRuns) {
    const auto refusal = [this](const Texts& arguments) {
        Texts all{"publish", "--catalog", "catalog.xml"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const CommandResult result = run(all);
        EXPECT_EQ(result.code, 2);
        EXPECT_EQ(result.out, "");
        return result.err.substr(0, result.err.find('\n'));
    };
    const std::string start = "marrowpress publish: ";
    EXPECT_EQ(refusal({"docs/m.ditamap", "-f", "flatbook", "-o", "docs/a.dita"}),
              start + "--output: docs/a.dita is no folder");
    EXPECT_EQ(refusal({"docs/m.ditamap", "-f", "composite", "-o", "out/m.dita", "--one-location"}),
              start + "--one-location: a composite is one file; this is for flatbook only");
    EXPECT_FALSE(folder_.exists("docs/a.qs"));
    EXPECT_FALSE(folder_.exists("out/m.dita"));

    const std::string map = folder_.read("docs/m.ditamap");
    folder_.write("docs/KeyspaceDoc.ditamap", map);
    EXPECT_EQ(refusal({"docs/KeyspaceDoc.ditamap", "-f", "flatbook", "-o", "docs"}),
              start + "MAP: the run would overwrite or remove " +
                  folder_.file("docs/KeyspaceDoc.ditamap") + "; choose another output");
    EXPECT_EQ(folder_.read("docs/KeyspaceDoc.ditamap"), map);

    for (const char* const name : {"docs/m.qs", "docs/m.qs_tmp"}) {
        folder_.write(name, map);
        EXPECT_EQ(refusal({name, "-f", "flatbook", "-o", "docs"}),
                  start + "MAP: " + folder_.file(name) +
                      " has the name of a component, which the run may write over it; rename it");
        EXPECT_EQ(folder_.read(name), map);
    }
}

}  // namespace
}  // namespace marrowpress
