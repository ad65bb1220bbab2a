#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "tests/cli/command_fixture.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

const std::string kTrade = R"(<prop att="audience" val="trade" action="exclude"/>)";
const std::string kHome = R"(<prop att="audience" val="home" action="exclude"/>)";

class CheckedMapTest : public CommandTest {
protected:
    CheckedMapTest() {
        folder_.write("trade.ditaval", "<val>" + kTrade + "</val>");
        folder_.write("home.ditaval", "<val>" + kHome + "</val>");
    }

    /// All files below the test's folder, with their bytes.
    std::map<std::string, std::string> files() const {
        std::map<std::string, std::string> all;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder_.path())) {
            const std::string name = entry.path().lexically_relative(folder_.path()).string();
            all[name] = entry.is_regular_file() ? folder_.read(name) : "";
        }
        return all;
    }

    static std::size_t count(const std::string& text, const std::string& part) {
        std::size_t found = 0;
        for (std::size_t at = text.find(part); at != std::string::npos;
             at = text.find(part, at + 1)) {
            ++found;
        }
        return found;
    }
};

TEST_F(CheckedMapTest, NothingIsWrittenAnywhere) {
    fs::create_directory(folder_.path() / "scratch");
    CommandSetting setting;
    setting.variables["TMPDIR"] = folder_.file("scratch");
    const auto before = files();
    for (const Texts& more :
         {Texts{}, Texts{"-f", "flatbook"}, Texts{"-f", "flatbook", "-o", "out"},
          Texts{"-o", "out/m.dita"}, Texts{"-o", "new/m.dita"}, Texts{"-o", "-"},
          Texts{"--each-filter", "trade.ditaval", "--each-filter", "home.ditaval"},
          Texts{"-f", "flatbook", "-o", "new", "--one-location"}}) {
        const CommandResult result = check(more, setting);
        EXPECT_NE(result.code, 2) << result.err;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(files(), before);
    }
}

TEST_F(CheckedMapTest, FindsWhatPublishFinds) {
    writeTopic("a", R"(<ph keyref="none"/><xref href="none.dita"/>)");
    writeMap(R"(<topicref href="a.dita"/><topicref href="c.dita"/>)");
    for (const Texts& more : {Texts{}, Texts{"--filter", "home.ditaval"}, Texts{"--print"}}) {
        EXPECT_EQ(withoutTime(check(more).err), withoutTime(publish(more).err));
    }
}

TEST_F(CheckedMapTest, SeveralProfilesGiveOneResultThatSaysWhichOneShowsAFinding) {
    writeTopic("a", R"(<ph audience="trade" keyref="t"/><ph audience="home" keyref="h"/>)"
                    R"(<ph keyref="both"/>)");
    const CommandResult result = check({"--diagnostics", "json", "--each-filter", "trade.ditaval",
                                        "--each-filter", "home.ditaval"});
    EXPECT_EQ(result.code, 3);
    const std::string trade = '"' + folder_.file("trade.ditaval") + '"';
    const std::string home = '"' + folder_.file("home.ditaval") + '"';
    const auto lineOf = [&](const std::string& key) {
        const std::size_t at = result.err.find("\"target\":\"" + key + '"');
        const std::size_t begin = result.err.rfind('\n', at) + 1;
        return result.err.substr(begin, result.err.find('\n', at) - begin);
    };
    // What one profile takes away is no fault under it.
    EXPECT_NE(lineOf("t").find("\"profile\":[" + home + "],\"artefact\":false"), std::string::npos)
        << result.err;
    EXPECT_NE(lineOf("h").find("\"profile\":[" + trade + "],\"artefact\":false"), std::string::npos)
        << result.err;
    EXPECT_NE(lineOf("both").find("\"profile\":[" + trade + ',' + home + "],\"artefact\":false"),
              std::string::npos)
        << result.err;
    EXPECT_EQ(count(result.err, "\"summary\""), 1U);
}

TEST_F(CheckedMapTest, AFilterCountsForEachOfTheProfiles) {
    writeTopic("a", R"(<ph audience="trade" keyref="t"/><ph audience="home" keyref="h"/>)");
    EXPECT_EQ(check({"--filter", "trade.ditaval", "--each-filter", "home.ditaval"}).code, 0);
    EXPECT_EQ(check({"--filter", "trade.ditaval"}).code, 3);
}

TEST_F(CheckedMapTest, OfSeveralFiltersTheEarlierRuleForAPairCounts) {
    folder_.write("1.ditaval", R"(<val><prop att="audience" val="trade" action="include"/></val>)");
    folder_.write("3.ditaval", R"(<val><prop att="audience" val="home" action="include"/></val>)");
    writeTopic("a", R"(<ph audience="trade">T</ph><ph audience="home">H</ph>)");
    writeMap(R"(<topicref href="a.dita"/>)");
    const std::string trade = R"(<ph audience="trade">T</ph>)";
    const std::string home = R"(<ph audience="home">H</ph>)";
    const struct {
        Texts filters;
        std::string body;
    } cases[] = {{{"trade.ditaval", "1.ditaval"}, home},
                 {{"1.ditaval", "trade.ditaval"}, trade + home},
                 {{"1.ditaval", "trade.ditaval", "home.ditaval"}, trade},
                 {{"home.ditaval", "1.ditaval", "3.ditaval"}, trade},
                 {{"3.ditaval", "1.ditaval", "home.ditaval"}, trade + home}};
    for (const auto& expected : cases) {
        Texts arguments{"--diagnostics", "none"};
        for (const std::string& filter : expected.filters) {
            arguments.insert(arguments.end(), {"--filter", filter});
        }
        EXPECT_EQ(publish(arguments).code, 0);
        EXPECT_EQ(bodiesOf("out/m.dita"), expected.body + ";");
    }
}

TEST_F(CheckedMapTest, ComponentsThatClashAreTold) {
    folder_.write("docs/x/a.dita", folder_.read("docs/a.dita"));
    folder_.write("docs/a.qs", "own notes");
    folder_.write("out/b.qs", "own notes");
    writeMap(R"(<topicref href="a.dita"/><topicref href="x/a.dita"/><topicref href="b.dita"/>)");

    const CommandResult beside = check({"-f", "flatbook", "-o", "out"});
    EXPECT_EQ(beside.code, 3);
    EXPECT_EQ(count(beside.err, "[MP211]"), 1U) << beside.err;
    EXPECT_NE(beside.err.find("`docs/a.qs`"), std::string::npos) << beside.err;

    const CommandResult together = check({"-f", "flatbook", "-o", "out", "--one-location"});
    EXPECT_EQ(together.code, 3);
    EXPECT_EQ(count(together.err, "[MP211]"), 2U) << together.err;
    EXPECT_NE(together.err.find("`out/a.qs`"), std::string::npos) << together.err;
    EXPECT_NE(together.err.find("`out/b.qs`"), std::string::npos) << together.err;
    EXPECT_EQ(folder_.read("out/b.qs"), "own notes");
    EXPECT_EQ(folder_.read("docs/a.qs"), "own notes");
}

TEST_F(CheckedMapTest, PublishKeepsAFileOfSomebodyElsesBesideTheComponent) {
    folder_.write("out/b.qs", "own notes");
    const Texts arguments{"publish", "docs/m.ditamap", "-f",          "flatbook",      "-o",
                          "out",     "--catalog",      "catalog.xml", "--one-location"};
    const CommandResult first = run(arguments);
    EXPECT_EQ(first.code, 3);
    EXPECT_EQ(count(first.err, "[MP211]"), 1U) << first.err;
    EXPECT_NE(first.err.find("`out/b.qs.kept-1`"), std::string::npos) << first.err;
    EXPECT_EQ(folder_.read("out/b.qs.kept-1"), "own notes");
    EXPECT_EQ(bodiesOf("out/b.qs"), "Text of b;");
    EXPECT_EQ(run(arguments).code, 0);
}

TEST_F(CheckedMapTest, ANavtitleThatIsNoFileNameIsToldOnce) {
    writeMap(R"(<topicref class="+ map/topicref mapgroup-d/topichead " navtitle="../a/b">)"
             R"(<topicref href="a.dita"/></topicref>)");
    const CommandResult result = check({"-f", "flatbook"});
    EXPECT_EQ(result.code, 1) << result.err;
    EXPECT_EQ(count(result.err, "[MP212]"), 1U) << result.err;
    EXPECT_EQ(count(result.err, "[MP106]") + count(result.err, "[MP107]"), 0U) << result.err;
}

TEST_F(CheckedMapTest, APathThatIsCutIsTold) {
    folder_.write("docs/c#/a.dita", folder_.read("docs/a.dita"));
    writeMap(R"(<topicref href="c%23/a.dita"/><topicref href="b.dita"/>)");
    const CommandResult literal = check();
    writeMap(R"(<topicref href="c#/a.dita"/><topicref href="b.dita"/>)");
    const CommandResult cut = check();
    EXPECT_EQ(literal.code, 3);
    EXPECT_EQ(cut.code, 3);
    EXPECT_EQ(count(literal.err, "[MP213]"), 1U) << literal.err;
    EXPECT_EQ(count(cut.err, "[MP213]"), 1U) << cut.err;
}

TEST_F(CheckedMapTest, AFileUnderTwoNamesIsTold) {
    fs::create_directory_symlink(".", folder_.path() / "docs/link");
    writeMap(R"(<topicref href="a.dita"/><topicref href="link/a.dita"/>)");
    const CommandResult result = check();
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(count(result.err, "[MP214]"), 1U) << result.err;
}

}  // namespace
}  // namespace marrowpress
