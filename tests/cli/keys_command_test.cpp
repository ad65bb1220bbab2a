#include <gtest/gtest.h>

#include "tests/cli/command_fixture.h"

namespace marrowpress {
namespace {

class KeysOfAMapTest : public CommandTest {
protected:
    KeysOfAMapTest() {
        writeTopic("a", R"(<ph keyref="product"/><ph keyref="prodct"/>)");
        folder_.write("docs/k.ditamap",
                      R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd">)"
                      R"(<map><topicref keys="product" href="b.dita"/></map>)");
        writeMap(
            "\n<topicref keys=\"product spare\"><topicmeta><linktext>Drill</linktext>"
            "</topicmeta></topicref>\n<topicref href=\"k.ditamap\"/>"
            "<topicref href=\"a.dita\"/>\n"
            "<topicref keys=\"home\" href=\"b.dita\" audience=\"home\"/>");
    }

    CommandResult keys(const Texts& more = {}) const {
        Texts arguments{"keys",          "docs/m.ditamap", "--catalog",  "catalog.xml",
                        "--diagnostics", "json",           "--severity", "MP105=error"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    }

    /// The first line of a refusal.
    std::string refusal(const Texts& more) const {
        Texts arguments{"keys"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const CommandResult result = run(arguments);
        EXPECT_EQ(result.code, 2) << result.err;
        EXPECT_EQ(result.out, "");
        return result.err.substr(0, result.err.find('\n'));
    }
};

TEST_F(KeysOfAMapTest, ATableShowsEachKeyAndFindingsCountForNothing) {
    const CommandResult result = keys();
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(
        result.out,
        "KEY      STATE      DEFINITION           STANDS FOR   CHAIN  USES  DEFINITIONS  "
        "FIRST USE\n"
        "product  used       docs/m.ditamap:2:1   \"Drill\"      -      1     2            "
        "docs/a.dita:1:103\n"
        "product  shadowed   docs/k.ditamap:1:66  docs/b.dita  -      -     -            -\n"
        "spare    unused     docs/m.ditamap:2:1   \"Drill\"      -      0     1            -\n"
        "home     unused     docs/m.ditamap:4:1   docs/b.dita  -      0     1            -\n"
        "prodct   undefined  -                    -            -      1     0            "
        "docs/a.dita:1:125\n");
    EXPECT_NE(result.err.find("\"MP105\""), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("\"exit\":0}"), std::string::npos) << result.err;
}

TEST_F(KeysOfAMapTest, AKeyThatTheProfileTakesIsExcluded) {
    folder_.write("home.ditaval",
                  R"(<val><prop att="audience" val="home" action="exclude"/></val>)");
    const CommandResult result = keys({"--filter", "home.ditaval", "-f", "csv"});
    EXPECT_EQ(result.code, 0);
    EXPECT_NE(result.out.find("home,excluded," + folder_.file("docs/m.ditamap") + ",4,1," +
                              folder_.file("docs/b.dita") + ",,,0,1,\r\n"),
              std::string::npos)
        << result.out;
}

TEST_F(KeysOfAMapTest, JsonIsALineForEachKey) {
    const CommandResult result = keys({"--format", "json", "--explain", "spare"});
    EXPECT_EQ(result.code, 0);
    const std::string map = folder_.file("docs/m.ditamap");
    EXPECT_EQ(result.out,
              R"({"key":"spare","state":"unused","file":")" + map +
                  R"(","line":2,"column":1,"target":null,"text":"Drill","chain":[],"uses":[],)"
                  R"("definitions":[{"file":")" +
                  map +
                  R"(","line":2,"column":1,"state":"effective","element":"topicref",)"
                  R"("target":null,"text":"Drill","keyref":null,"via":[]}]})"
                  "\n");
}

TEST_F(KeysOfAMapTest, ExplainSaysWhichDefinitionCountsAndWhy) {
    const CommandResult result = keys({"--explain", "product"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(
        result.out,
        "product: 2 definitions\n"
        "Maps are read level by level from the root map on, each from its top to its end; the "
        "first definition counts\n"
        "\n1. docs/m.ditamap:2:1\n"
        "    counts: none in front of it does\n"
        "    stands for the text: Drill\n"
        "\n2. docs/k.ditamap:1:66\n"
        "    does not count: docs/m.ditamap:2:1 is in a map that is read earlier\n"
        "    leads to docs/b.dita\n"
        "    via docs/m.ditamap:3:1: href k.ditamap\n"
        "\n1 reference to the key\n"
        "    docs/a.dita:1:103\n");
}

TEST_F(KeysOfAMapTest, AnUnknownKeyProposesTheNearest) {
    const CommandResult result = keys({"--explain", "produkt"});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("marrowpress keys: --explain: unknown key `produkt`; did you mean "
                              "`product`?\n"),
              std::string::npos)
        << result.err;
    EXPECT_NE(keys({"--explain", "x"})
                  .err.find("unknown key `x`; nothing in the publication "
                            "defines it, or refers to it\n"),
              std::string::npos);
}

TEST_F(KeysOfAMapTest, NothingIsWrittenBesideTheSources) {
    const auto before = folder_.read("docs/m.ditamap");
    keys();
    EXPECT_FALSE(folder_.exists("docs/KeyspaceDoc.ditamap"));
    EXPECT_EQ(folder_.read("docs/m.ditamap"), before);
}

TEST_F(KeysOfAMapTest, AMapThatCannotBeUsedIsRefusedOrFails) {
    EXPECT_EQ(refusal({"docs/a.dita"}),
              "marrowpress keys: MAP: docs/a.dita is a `topic`; a map is wanted");
    EXPECT_EQ(refusal({"none.ditamap"}),
              "marrowpress keys: MAP: cannot read none.ditamap: No such file or directory");
    EXPECT_EQ(refusal({}), "marrowpress keys: MAP is required");
    EXPECT_EQ(refusal({"docs/m.ditamap", "--format", "yaml"}),
              "marrowpress keys: --format: unknown format `yaml`; known: table, csv, json");
    EXPECT_EQ(refusal({"docs/m.ditamap", "--filter", "none.ditaval"}),
              "marrowpress keys: --filter: cannot read none.ditaval: No such file or directory");
    EXPECT_EQ(refusal({"docs/m.ditamap", "--fail-on", "error"}),
              "marrowpress keys: unknown option `--fail-on`");
    folder_.write("docs/m.ditamap", "<map><topicref></map>");
    const CommandResult result = keys();
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("\"MP106\""), std::string::npos) << result.err;
}

TEST_F(KeysOfAMapTest, AnAnswerThatNobodyTakesIsAFailure) {
    CommandSetting setting;
    setting.output = "/dev/full";
    const CommandResult result = run(
        {"keys", "docs/m.ditamap", "--catalog", "catalog.xml", "--diagnostics", "none"}, setting);
    EXPECT_EQ(result.code, 1);
    EXPECT_TRUE(result.err.ends_with("marrowpress: cannot write to standard output\n"))
        << result.err;
}

}  // namespace
}  // namespace marrowpress
