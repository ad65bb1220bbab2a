#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/command_fixture.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// What bad input gets from `publish` and from `check`.
class BadInputCommandTest : public CommandTest {
protected:
    /// The first line of a refusal; both commands say the same, and nothing is written.
    std::string refusal(const Texts& more, const CommandSetting& setting = {}) const {
        const CommandResult published = publish(more, setting);
        const CommandResult checked = check(more, setting);
        EXPECT_EQ(published.code, 2) << published.err;
        EXPECT_EQ(checked.code, 2) << checked.err;
        EXPECT_FALSE(folder_.exists("out/m.dita"));
        const std::string line = published.err.substr(0, published.err.find('\n'));
        EXPECT_EQ("marrowpress publish" + checked.err.substr(0, checked.err.find('\n')).substr(17),
                  line);
        return line.substr(std::string("marrowpress publish: ").size());
    }

    static bool contains(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(BadInputCommandTest, AFilterThatIsNotThereIsRefused) {
    EXPECT_EQ(refusal({"--filter", "none.ditaval"}),
              "--filter: cannot read none.ditaval: No such file or directory");
}

TEST_F(BadInputCommandTest, AFilterThatMayNotBeReadIsRefused) {
    folder_.write("p.ditaval", "<val/>");
    fs::permissions(folder_.path() / "p.ditaval", fs::perms::none);
    fs::permissions(folder_.path(), fs::perms::all);
    fs::permissions(folder_.path() / "out", fs::perms::all);
    CommandSetting setting;
    setting.isWithoutRights = true;
    EXPECT_EQ(refusal({"--filter", "p.ditaval"}, setting),
              "--filter: cannot read p.ditaval: Permission denied");
}

TEST_F(BadInputCommandTest, AFilterThatIsNotWellFormedIsRefusedWithItsPlace) {
    folder_.write("p.ditaval", "<val>\n  <prop>\n</val>");
    const std::string line = refusal({"--filter", "p.ditaval"});
    EXPECT_TRUE(line.starts_with("--filter: p.ditaval:3:")) << line;
}

TEST_F(BadInputCommandTest, AFilterWithAnotherRootIsRefused) {
    folder_.write("p.ditaval", "\n<topic/>");
    EXPECT_EQ(refusal({"--filter", "p.ditaval"}),
              "--filter: p.ditaval:2:1: the root is a `topic`; that of a DITAVAL file is a `val`");
}

TEST_F(BadInputCommandTest, AFilterThatCannotBeUsedMayBeDoneWithout) {
    folder_.write("broken.ditaval", "<val>\n  <prop>\n</val>");
    folder_.write("other.ditaval", "<topic/>");
    const struct {
        const char* filter;
        const char* finding;
    } cases[] = {{"none.ditaval", "none.ditaval: warning: `none.ditaval` cannot be read: "},
                 {"broken.ditaval", "broken.ditaval:3:"},
                 {"other.ditaval", "other.ditaval:1:1: warning: "}};
    for (const auto& expected : cases) {
        const Texts arguments{"--filter", expected.filter, "--allow-missing-filter"};
        for (const CommandResult& result : {publish(arguments), check(arguments)}) {
            EXPECT_EQ(result.code, 0) << result.err;
            EXPECT_TRUE(result.err.starts_with(expected.finding)) << result.err;
            EXPECT_TRUE(contains(result.err, "\n0 errors, 1 warning in 1 file; ")) << result.err;
        }
        EXPECT_EQ(bodiesOf("out/m.dita"), "Text of a;Text of b;");
    }
}

TEST_F(BadInputCommandTest, AMapThatIsNotThereIsRefused) {
    for (const char* const command : {"publish", "check"}) {
        const CommandResult result =
            run({command, "none.ditamap", "-f", "composite", "-o", "out/m.dita"});
        EXPECT_EQ(result.code, 2);
        EXPECT_TRUE(result.err.starts_with(std::string("marrowpress ") + command +
                                           ": MAP: cannot read none.ditamap: No such file or "
                                           "directory\n"))
            << result.err;
    }
}

TEST_F(BadInputCommandTest, WhatIsNoMapIsRefused) {
    folder_.write("parts.dita", "<?xml version=\"1.0\"?>\n<!-- x -->\n<reference id=\"r\"/>");
    folder_.write("p.ditaval", "<val/>");
    folder_.write("page.html", "<html xmlns=\"http://www.w3.org/1999/xhtml\"/>");
    const struct {
        const char* file;
        const char* root;
    } cases[] = {{"docs/a.dita", "topic"},
                 {"parts.dita", "reference"},
                 {"p.ditaval", "val"},
                 {"page.html", "html"}};
    for (const auto& expected : cases) {
        for (const char* const command : {"publish", "check"}) {
            const CommandResult result =
                run({command, expected.file, "-f", "composite", "-o", "out/m.dita"});
            EXPECT_EQ(result.code, 2);
            EXPECT_TRUE(contains(result.err, std::string(expected.file) + " is a `" +
                                                 expected.root + "`; a map is wanted\n"))
                << result.err;
            EXPECT_FALSE(folder_.exists("out/m.dita"));
        }
    }
}

TEST_F(BadInputCommandTest, AMapWithoutItsDtdIsTold) {
    folder_.write("empty.xml", R"(<catalog xmlns="urn:oasis:names:tc:entity:xmlns:xml:catalog"/>)");
    folder_.write("docs/real.ditamap",
                  R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "none.dtd">)"
                  R"(<map><topicref href="a.dita"/></map>)");
    for (const char* const command : {"publish", "check"}) {
        const CommandResult result = run({command, "docs/real.ditamap", "-f", "composite", "-o",
                                          "out/r.dita", "--catalog", "empty.xml"});
        EXPECT_EQ(result.code, 3);
        EXPECT_TRUE(contains(result.err, "docs/real.ditamap:1:1: error: ")) << result.err;
        EXPECT_TRUE(contains(result.err, "[MP201]")) << result.err;
        EXPECT_TRUE(contains(result.err, "\"-//OASIS//DTD DITA Map//EN\"")) << result.err;
        EXPECT_TRUE(contains(result.err, "empty.xml")) << result.err;
        EXPECT_TRUE(contains(result.err, "[MP206]")) << result.err;
    }
}

TEST_F(BadInputCommandTest, CatalogsOfTheEnvironmentThatAreNotThereAreTold) {
    folder_.write("docs/real.ditamap",
                  R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "none.dtd">)"
                  R"(<map><topicref href="a.dita"/></map>)");
    CommandSetting setting;
    setting.catalogs = "/none/catalog.xml";
    const CommandResult result = run({"check", "docs/real.ditamap"}, setting);
    EXPECT_EQ(result.code, 3);
    EXPECT_TRUE(contains(result.err, "[MP201]")) << result.err;
    EXPECT_TRUE(contains(result.err, "a catalog cannot be used (/none/catalog.xml: No such file"))
        << result.err;
    EXPECT_TRUE(contains(result.err, "[MP206]")) << result.err;
    folder_.write("bad.xml", "<catalog>");
    setting.catalogs = folder_.file("bad.xml");
    const CommandResult broken = run({"check", "docs/real.ditamap"}, setting);
    EXPECT_EQ(broken.code, 3);
    EXPECT_TRUE(contains(broken.err, "bad.xml: not well-formed XML), and no other one knows"))
        << broken.err;
}

TEST_F(BadInputCommandTest, AFolderThatMayNotBeWrittenIsRefused) {
    fs::create_directory(folder_.path() / "ro");
    fs::permissions(folder_.path() / "ro", fs::perms(0555));
    fs::permissions(folder_.path(), fs::perms::all);
    CommandSetting setting;
    setting.isWithoutRights = true;
    const Texts cases[] = {{"-f", "composite", "-o", "ro/m.dita"},
                           {"-f", "flatbook", "-o", "ro", "--one-location"},
                           {"-f", "composite", "-o", "ro/new/m.dita"}};
    for (const Texts& output : cases) {
        for (const char* const command : {"publish", "check"}) {
            Texts arguments{command, "docs/m.ditamap", "--catalog", "catalog.xml"};
            arguments.insert(arguments.end(), output.begin(), output.end());
            const CommandResult result = run(arguments, setting);
            EXPECT_EQ(result.code, 2) << result.err;
            EXPECT_TRUE(contains(result.err, "--output: cannot ")) << result.err;
            EXPECT_TRUE(contains(result.err, ": Permission denied\n")) << result.err;
            EXPECT_FALSE(contains(result.err, "KeyspaceDoc")) << result.err;
        }
    }
}

TEST_F(BadInputCommandTest, CheckRefusesAnOutputBelowAFileAsPublishDoes) {
    folder_.write("file", "");
    for (const Texts& output : {Texts{"-f", "composite", "-o", "file/m.dita"},
                                Texts{"-f", "composite", "-o", "file/new/m.dita"},
                                Texts{"-f", "flatbook", "-o", "file/new", "--one-location"}}) {
        std::vector<std::string> answers;
        for (const char* const command : {"publish", "check"}) {
            Texts arguments{command, "docs/m.ditamap", "--catalog", "catalog.xml"};
            arguments.insert(arguments.end(), output.begin(), output.end());
            const CommandResult result = run(arguments);
            EXPECT_EQ(result.code, 2) << result.err;
            answers.push_back(result.err.substr(result.err.find("--output")));
        }
        EXPECT_EQ(answers[0].substr(0, answers[0].find('\n')),
                  answers[1].substr(0, answers[1].find('\n')));
    }
}

TEST_F(BadInputCommandTest, AReportMayTakeTheFileOfNobody) {
    fs::create_directory(folder_.path() / "d");
    folder_.write("p.ditaval", "<val/>");
    folder_.write("old.json", "{\"summary\":{}}\n");
    const Texts cases[] = {{"--sarif", "docs/m.ditamap"},
                           {"--sarif", "out/../docs/m.ditamap"},
                           {"--junit", "catalog.xml"},
                           {"--sarif", "p.ditaval", "--filter", "p.ditaval"},
                           {"--sarif", "old.json", "--baseline", "old.json"},
                           {"--sarif", "f", "--junit", "f"},
                           {"--sarif", "f", "--diagnostics-file", "./f"},
                           {"--sarif", "none/f"},
                           {"--junit", "d"}};
    for (const Texts& arguments : cases) {
        SCOPED_TRACE(arguments[1]);
        refusal(arguments);
        EXPECT_FALSE(folder_.exists("f"));
    }
    EXPECT_EQ(publish({"--sarif", "out/m.dita"}).code, 2);
    EXPECT_EQ(publish({"--sarif", "out/m.dita_tmp"}).code, 2);
    EXPECT_EQ(publish({"--sarif", "out/KeyspaceDoc.ditamap"}).code, 2);
    EXPECT_EQ(folder_.read("p.ditaval"), "<val/>");
}

TEST_F(BadInputCommandTest, AnEmptyFileOfAFailedRunIsNoObstacle) {
    folder_.write("out/m.dita", "");
    EXPECT_EQ(check({"-o", "out/m.dita"}).code, 0);
    EXPECT_EQ(publish().code, 0);
}

TEST_F(BadInputCommandTest, ATopicThatIsNotWellFormedIsToldWhereTheParserStopped) {
    folder_.write("docs/a.dita", "<topic id=\"a\">\n<title>A\n</topic>");
    for (const CommandResult& result : {publish(), check()}) {
        EXPECT_EQ(result.code, 3);
        EXPECT_TRUE(result.err.starts_with("docs/a.dita:3:")) << result.err;
        EXPECT_TRUE(contains(result.err, "[MP106]")) << result.err;
        EXPECT_TRUE(contains(result.err, "  via docs/m.ditamap:1:")) << result.err;
    }
}

TEST_F(BadInputCommandTest, ATopicThatMayNotBeReadIsToldAtItsReference) {
    fs::permissions(folder_.path() / "docs/a.dita", fs::perms::none);
    fs::permissions(folder_.path(), fs::perms::all);
    CommandSetting setting;
    setting.isWithoutRights = true;
    const CommandResult result = check({}, setting);
    EXPECT_EQ(result.code, 3);
    EXPECT_TRUE(result.err.starts_with("docs/m.ditamap:1:")) << result.err;
    EXPECT_TRUE(contains(result.err, "Permission denied [MP106]")) << result.err;
}

}  // namespace
}  // namespace marrowpress
