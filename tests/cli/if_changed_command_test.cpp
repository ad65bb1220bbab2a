#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/command_fixture.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// `publish` and `check` that are called again.
class IfChangedTest : public CommandTest {
protected:
    IfChangedTest() {
        writeTopic("a", R"(<ph keyref="nowhere"/>)");
        writeMap(R"(<topicref href="a.dita"/><topicref href="later.dita"/>)");
    }

    CommandResult again(const Texts& more = {}) const {
        Texts arguments{"--if-changed", "--result", "r.json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return publish(arguments);
    }
};

TEST_F(IfChangedTest, TheFindingsAndTheCodeAreThoseOfTheRun) {
    const CommandResult first = again();
    const CommandResult second = again();
    EXPECT_EQ(first.code, 3);
    EXPECT_EQ(second.code, 3);
    EXPECT_EQ(second.out, first.out);
    EXPECT_TRUE(second.err.ends_with("up to date\n")) << second.err;
    const std::string told = second.err.substr(0, second.err.size() - 11);
    EXPECT_EQ(withoutTime(told), withoutTime(first.err));
}

TEST_F(IfChangedTest, ReportsAreWrittenAgain) {
    ASSERT_EQ(again().code, 3);
    EXPECT_EQ(again({"--sarif", "all.sarif"}).code, 3);
    EXPECT_NE(folder_.read("all.sarif").find("MP105"), std::string::npos);
    EXPECT_EQ(again({"--sarif", "docs/m.ditamap"}).code, 2)
        << "what is refused is refused here, too";
}

TEST_F(IfChangedTest, AFileThatWasMissingMakesARunWhenItComes) {
    ASSERT_EQ(again().code, 3);
    writeTopic("later", "here");
    writeTopic("a", "right");
    const CommandResult result = again();
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err.find("up to date"), std::string::npos);
}

TEST_F(IfChangedTest, KeysAreToldAgainInTheirForm) {
    writeMap(R"(<keydef keys="k" href="a.dita"/><topicref href="a.dita"/>)");
    const auto keys = [this](const Texts& more) {
        Texts arguments{"keys",         "docs/m.ditamap", "--catalog", "catalog.xml",
                        "--if-changed", "--result",       "k.json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    };
    const CommandResult first = keys({"-f", "csv"});
    const CommandResult second = keys({"-f", "csv"});
    EXPECT_EQ(first.code, 0) << first.err;
    EXPECT_NE(first.out.find("k,"), std::string::npos);
    EXPECT_EQ(second.code, 0);
    EXPECT_EQ(second.out, first.out);
    EXPECT_TRUE(second.err.ends_with("up to date\n")) << second.err;
    EXPECT_FALSE(keys({"-f", "json"}).err.ends_with("up to date\n"));
    EXPECT_EQ(keys({"--explain", "none"}).code, 2);
    EXPECT_EQ(keys({"--explain", "none"}).code, 2) << "what is refused has no result";
    writeMap(R"(<keydef keys="other" href="a.dita"/><topicref href="a.dita"/>)");
    EXPECT_NE(keys({"-f", "csv"}).out.find("other,"), std::string::npos);
}

TEST_F(IfChangedTest, CheckRemembersEachOfItsFilters) {
    folder_.write("p.ditaval", "<val/>");
    folder_.write("q.ditaval", "<val/>");
    const Texts more{"--if-changed", "--result",      "c.json",   "--each-filter",
                     "p.ditaval",    "--each-filter", "q.ditaval"};
    const CommandResult first = check(more);
    ASSERT_EQ(first.code, 3) << first.err;
    EXPECT_TRUE(check(more).err.ends_with("up to date\n"));
    folder_.write("q.ditaval", R"(<val><prop action="exclude" att="audience" val="x"/></val>)");
    EXPECT_EQ(check(more).err.find("up to date"), std::string::npos);
}

TEST_F(IfChangedTest, CheckSeesWhatComesToStandWhereAComponentWould) {
    writeTopic("a", "right");
    writeMap(R"(<topicref href="a.dita"/>)");
    const Texts more{"-f",  "flatbook",     "--one-location", "-o",
                     "out", "--if-changed", "--result",       "c.json"};
    ASSERT_EQ(check(more).code, 0);
    EXPECT_TRUE(check(more).err.ends_with("up to date\n"));
    folder_.write("out/a.qs", "somebody else's");
    const CommandResult result = check(more);
    EXPECT_EQ(result.code, 3);
    EXPECT_NE(result.err.find("MP211"), std::string::npos) << result.err;
    EXPECT_EQ(check(more).code, 3);
    fs::remove(folder_.path() / "out/a.qs");
    EXPECT_EQ(check(more).code, 0);
}

TEST_F(IfChangedTest, WhatGoesToStandardOutputIsNotThereTheNextTime) {
    EXPECT_EQ(run({"publish", "docs/m.ditamap", "-f", "composite", "-o", "-", "--if-changed"}).code,
              2);
}

TEST_F(IfChangedTest, CopiesOfMediaAreOutputs) {
    folder_.write("docs/i.png", "image");
    writeTopic("a", R"(<image href="i.png"/>)");
    writeMap(R"(<topicref href="a.dita"/>)");
    ASSERT_EQ(again({"--copy-media", "media"}).code, 0);
    EXPECT_TRUE(again({"--copy-media", "media"}).err.ends_with("up to date\n"));
    fs::remove(folder_.path() / "out/media/i.png");
    EXPECT_EQ(again({"--copy-media", "media"}).code, 0);
    EXPECT_TRUE(folder_.exists("out/media/i.png"));
}

TEST_F(IfChangedTest, AResultTakesThePlaceOfNoOtherFile) {
    const std::string map = folder_.read("docs/m.ditamap");
    const std::string topic = folder_.read("docs/a.dita");
    for (const char* const file : {"docs/m.ditamap", "docs/a.dita", "out/c.dita"}) {
        const CommandResult refused =
            run({"publish", "docs/m.ditamap", "-f", "composite", "-o", "out/c.dita", "--catalog",
                 "catalog.xml", "--result", file});
        EXPECT_EQ(refused.code, 2);
        EXPECT_NE(refused.err.find(std::string("--result: ") + file), std::string::npos)
            << refused.err;
    }
    for (const char* const command : {"check", "keys"}) {
        EXPECT_EQ(
            run({command, "docs/m.ditamap", "--catalog", "catalog.xml", "--result", "docs/a.dita"})
                .code,
            2);
    }
    EXPECT_EQ(run({"watch", "docs/m.ditamap", "-o", "out/c.dita", "--catalog", "catalog.xml",
                   "--result", "docs/a.dita"})
                  .code,
              2);
    EXPECT_EQ(folder_.read("docs/m.ditamap"), map);
    EXPECT_EQ(folder_.read("docs/a.dita"), topic);
    EXPECT_FALSE(folder_.exists("out/c.dita"));
}

}  // namespace
}  // namespace marrowpress
