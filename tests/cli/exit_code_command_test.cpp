#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <thread>

#include "tests/cli/command_fixture.h"
#include "tests/support/file_conditions.h"
#include "tests/support/waiting.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Each exit code of `publish` and `check`, on each path to it.
class ExitCodeCommandTest : public CommandTest {
protected:
    ExitCodeCommandTest() {
        fs::create_directory(folder_.path() / "scratch");
        setting.variables["TMPDIR"] = folder_.file("scratch");
    }

    /// A map whose topics take a while.
    void writeLongMap() const {
        std::string references;
        std::string text;
        for (int number = 0; number < 3000; ++number) {
            text += "<ph>word</ph> ";
        }
        for (int number = 0; number < 40; ++number) {
            const std::string id = "t" + std::to_string(number);
            writeTopic(id, text);
            references += "<topicref href=\"" + id + ".dita\"/>";
        }
        writeMap(references);
    }

    bool isEmpty(const std::string& name) const { return fs::is_empty(folder_.path() / name); }

    /// The codes of both commands.
    void expectBoth(int code, const Texts& more = {}) const {
        for (const CommandResult& result : {publish(more, setting), check(more, setting)}) {
            EXPECT_EQ(result.code, code) << result.err;
        }
        EXPECT_TRUE(isEmpty("scratch"));
    }

    CommandSetting setting;
};

TEST_F(ExitCodeCommandTest, IsZeroForACleanMap) {
    expectBoth(0);
    expectBoth(0, {"--fail-on", "warning"});
}

TEST_F(ExitCodeCommandTest, IsThreeForFindingsAtTheLevelThatWasAskedFor) {
    writeTopic("a", R"(<ph keyref="none"/>)");
    expectBoth(3);
    expectBoth(0, {"--fail-on", "never"});
    expectBoth(0, {"--severity", "MP105=warning"});
    expectBoth(3, {"--severity", "MP105=warning", "--fail-on", "warning"});
    EXPECT_NE(bodiesOf("out/m.dita").find("Text of b"), std::string::npos);
}

TEST_F(ExitCodeCommandTest, IsZeroAfterAnotherRunIntoTheFolder) {
    auto other = std::make_unique<HeldFolder>(folder_.file("out"));
    std::thread end([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        other.reset();
    });
    EXPECT_EQ(publish({}, setting).code, 0);
    end.join();
    EXPECT_NE(bodiesOf("out/m.dita").find("Text of b"), std::string::npos);
}

TEST_F(ExitCodeCommandTest, IsOneWhenAnotherRunDoesNotEnd) {
    folder_.write("out/m.dita", "");
    const HeldFolder other(folder_.file("out"));
    const CommandResult result = publish({}, setting);
    EXPECT_EQ(result.code, 1);
    EXPECT_NE(result.err.find("another run writes into the same folder"), std::string::npos)
        << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(folder_.read("out/m.dita"), "");
}

TEST_F(ExitCodeCommandTest, IsOneForAMapThatIsNotWellFormed) {
    folder_.write("docs/m.ditamap", "<map>\n<topicref>\n</map>");
    for (const CommandResult& result : {publish({}, setting), check({}, setting)}) {
        EXPECT_EQ(result.code, 1);
        EXPECT_NE(("\n" + result.err).find("\ndocs/m.ditamap:3:"), std::string::npos) << result.err;
        EXPECT_NE(result.err.find("[MP106]"), std::string::npos) << result.err;
    }
    EXPECT_TRUE(isEmpty("scratch"));
    EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap"));
}

TEST_F(ExitCodeCommandTest, IsOneForAMapInTheMapThatIsNotWellFormed) {
    folder_.write("docs/n.ditamap", "<map>\n<title>N</map>");
    folder_.write("dtd/map.dtd",
                  folder_.read("dtd/map.dtd") + "<!ATTLIST topicref format CDATA #IMPLIED>");
    writeMap(R"(<topicref href="n.ditamap" format="ditamap"/><topicref href="a.dita"/>)");
    for (const CommandResult& result : {publish({}, setting), check({}, setting)}) {
        EXPECT_EQ(result.code, 1);
        EXPECT_NE(("\n" + result.err).find("\ndocs/n.ditamap:2:"), std::string::npos) << result.err;
    }
}

TEST_F(ExitCodeCommandTest, IsTwoForWhatCannotBeStarted) {
    expectBoth(2, {"--filter", "none.ditaval"});
    expectBoth(2, {"--baseline", "none.json"});
    expectBoth(2, {"--catalog", "none.xml"});
    expectBoth(2, {"--sarif", "none/s.sarif"});
    expectBoth(2, {"--severity", "MP105=loud"});
    EXPECT_FALSE(folder_.exists("out/m.dita"));
}

TEST_F(ExitCodeCommandTest, IsTwoWithoutAPlaceForPrivateFiles) {
    setting.variables["TMPDIR"] = "/nonexistent";
    const std::string fault =
        "cannot make a folder in /nonexistent (TMPDIR): No such file or directory\n";
    const CommandResult checked = check({}, setting);
    EXPECT_EQ(checked.code, 2);
    EXPECT_EQ(checked.err,
              "marrowpress check: " + fault + "Run `marrowpress check --help` for help.\n");
    const CommandResult published =
        run({"publish", "docs/m.ditamap", "-f", "composite", "-o", "-", "--catalog", "catalog.xml"},
            setting);
    EXPECT_EQ(published.code, 2);
    EXPECT_EQ(published.out, "");
    EXPECT_TRUE(published.err.starts_with("marrowpress publish: " + fault)) << published.err;
    // What needs no private file does without.
    EXPECT_EQ(publish({}, setting).code, 0);
}

TEST_F(ExitCodeCommandTest, ASignalEndsACompositeWithNothingHalfWritten) {
    writeLongMap();
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        RunningCommand command(folder_,
                               {"publish", "docs/m.ditamap", "-f", "composite", "-o", "out/m.dita",
                                "--catalog", "catalog.xml"},
                               setting);
        const char* const begun = signal == SIGHUP ? "out/KeyspaceDoc.ditamap" : "out/m.dita";
        ASSERT_TRUE(waitUntil([&] { return folder_.exists(begun); }));
        command.send(signal);
        EXPECT_EQ(command.wait().code, 1000 + signal);
        EXPECT_FALSE(folder_.exists("out/m.dita"));
        EXPECT_FALSE(folder_.exists("out/m.dita_tmp"));
        EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap"));
        EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap_tmp"));
    }
}

TEST_F(ExitCodeCommandTest, ASignalEndsARequestWithNothingHalfWritten) {
    writeLongMap();
    folder_.write("1.json", request("out/m.dita"));
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        RunningCommand command(folder_, {"host", "1.json", "--catalog", "catalog.xml"}, setting);
        const char* const begun = signal == SIGHUP ? "out/KeyspaceDoc.ditamap" : "out/m.dita";
        ASSERT_TRUE(waitUntil([&] { return folder_.exists(begun); }));
        command.send(signal);
        const CommandResult result = command.wait();
        EXPECT_EQ(result.code, 1000 + signal);
        EXPECT_EQ(result.out, "");
        EXPECT_FALSE(folder_.exists("out/m.dita"));
        EXPECT_FALSE(folder_.exists("out/m.dita_tmp"));
        EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap"));
        EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap_tmp"));
    }
}

TEST_F(ExitCodeCommandTest, ASignalDuringALaterRequestLeavesWhatIsFinished) {
    folder_.write("1.json", request("out/1.dita"));
    folder_.write("2.json", request("out/2.dita"));
    writeLongMap();
    RunningCommand command(folder_, {"host", "1.json", "2.json", "--catalog", "catalog.xml"},
                           setting);
    ASSERT_TRUE(waitUntil([&] { return folder_.exists("out/2.dita"); }));
    command.send(SIGTERM);
    EXPECT_EQ(command.wait().code, 1000 + SIGTERM);
    EXPECT_TRUE(folder_.read("out/1.dita").ends_with("</body></topic></dita>"));
    EXPECT_FALSE(folder_.exists("out/2.dita"));
}

TEST_F(ExitCodeCommandTest, ASignalEndsAFlatBookWithNoComponentHalfWritten) {
    writeLongMap();
    RunningCommand command(folder_,
                           {"publish", "docs/m.ditamap", "-f", "flatbook", "-o", "out",
                            "--one-location", "--catalog", "catalog.xml"},
                           setting);
    ASSERT_TRUE(waitUntil([this] { return folder_.exists("out/t0.qs"); }));
    command.send(SIGTERM);
    EXPECT_EQ(command.wait().code, 1000 + SIGTERM);
    EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap"));
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_.path() / "out")) {
        const std::string name = "out/" + entry.path().filename().string();
        if (name != "out/keep.txt") {
            EXPECT_TRUE(folder_.read(name).ends_with("</body></topic></dita>")) << name;
        }
    }
}

TEST_F(ExitCodeCommandTest, ASignalLeavesNoPrivateFile) {
    writeLongMap();
    const Texts commands[] = {
        {"check", "docs/m.ditamap", "--catalog", "catalog.xml"},
        {"publish", "docs/m.ditamap", "-f", "composite", "-o", "-", "--catalog", "catalog.xml"}};
    for (const Texts& arguments : commands) {
        RunningCommand command(folder_, arguments, setting);
        ASSERT_TRUE(waitUntil([this] { return !isEmpty("scratch"); }));
        command.send(SIGTERM);
        const CommandResult result = command.wait();
        EXPECT_EQ(result.code, 1000 + SIGTERM);
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(isEmpty("scratch"));
    }
}

TEST_F(ExitCodeCommandTest, AStandardErrorThatTakesNothingIsAFailureAndTheOutputIsWhole) {
    for (const std::string& error : {std::string("/dev/full"), std::string()}) {
        setting.error = error;
        EXPECT_EQ(publish({}, setting).code, 1);
        EXPECT_EQ(bodiesOf("out/m.dita"), "Text of a;Text of b;");
        EXPECT_EQ(check({}, setting).code, 1);
        EXPECT_EQ(publish({"--diagnostics", "none"}, setting).code, 0);
    }
}

TEST_F(ExitCodeCommandTest, AReportThatCannotBeWrittenIsAFailure) {
    for (const char* const option : {"--sarif", "--junit", "--diagnostics-file"}) {
        expectBoth(1, {option, "/dev/full"});
    }
}

TEST_F(ExitCodeCommandTest, ReportsAreWrittenWhenTheRunFails) {
    folder_.write("docs/m.ditamap", "<map>");
    const Texts reports{"--diagnostics", "json",    "--diagnostics-file",
                        "f.json",        "--sarif", "f.sarif",
                        "--junit",       "f.xml"};
    for (const bool isCheck : {false, true}) {
        EXPECT_EQ((isCheck ? check(reports) : publish(reports)).code, 1);
        for (const char* const name : {"f.json", "f.sarif", "f.xml"}) {
            EXPECT_NE(folder_.read(name).find("MP106"), std::string::npos) << name;
            fs::remove(folder_.path() / name);
        }
    }
}

TEST_F(ExitCodeCommandTest, NothingIsWrittenWhenNothingIsStarted) {
    const Texts arguments{"--filter", "none.ditaval",       "--sarif", "f.sarif", "--junit",
                          "f.xml",    "--diagnostics-file", "f.txt"};
    expectBoth(2, arguments);
    for (const char* const name : {"f.txt", "f.sarif", "f.xml", "out/m.dita"}) {
        EXPECT_FALSE(folder_.exists(name)) << name;
    }
}

TEST_F(ExitCodeCommandTest, AFullDiskIsAFailureAndTheNextRunWorks) {
    writeTopic("a", std::string(40000, 'x'));
    CommandSetting full = setting;
    full.largestFile = 16384;
    const CommandResult result = publish({"--diagnostics", "json"}, full);
    EXPECT_EQ(result.code, 1);
    EXPECT_NE(result.err.find(R"("id":"MP107")"), std::string::npos) << result.err;
    EXPECT_NE(result.err.find(R"("file":")" + folder_.file("out/m.dita") + '"'), std::string::npos);
    EXPECT_NE(result.err.find(R"("exit":1}})"), std::string::npos);
    EXPECT_EQ(publish({}, setting).code, 0);
}

}  // namespace
}  // namespace marrowpress
