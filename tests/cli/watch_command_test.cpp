#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

#include "tests/cli/command_fixture.h"
#include "tests/support/waiting.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;

std::size_t countOf(const std::string& text, const std::string& piece) {
    std::size_t count = 0;
    for (std::size_t at = text.find(piece); at != std::string::npos;
         at = text.find(piece, at + 1)) {
        ++count;
    }
    return count;
}

/// `watch`, and `batch watch`, while sources change.
class WatchTest : public CommandTest {
protected:
    void start(const Texts& arguments, const std::string& lastWords = "waiting for changes") {
        watch_ = std::make_unique<RunningCommand>(folder_, arguments);
        ASSERT_TRUE(isTold(lastWords)) << watch_->errSoFar();
    }

    void watchMap(const Texts& more = {}) {
        Texts arguments{"watch", "docs/m.ditamap", "-o", "out/c.dita", "--catalog", "catalog.xml"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        start(arguments);
    }

    bool isTold(const std::string& text) const {
        return waitUntil([&] { return countOf(watch_->errSoFar(), text) > 0; });
    }

    /// Whether the output comes to hold `text`.
    bool isPublished(const std::string& text) const {
        return waitUntil([&] {
            return folder_.exists("out/c.dita") &&
                   folder_.read("out/c.dita").find(text) != std::string::npos;
        });
    }

    static std::string lineOf(const std::string& id, const std::string& folder) {
        return R"({"id":")" + id + R"(","request":{"type":"PublishComp","params":{"ditaVal":"",)" +
               R"("usePrint":false,"ditamap":")" + folder + R"(/m.ditamap","output":"out/)" + id +
               R"(.dita","compositeDocDtd":"ditabase.dtd","keyspaceDocDtd":"map.dtd"}}})" + "\n";
    }

    /// Makes it hold `jobs` when the first run has written its result, and may not have ended yet.
    void changeJobsInTheFirstRun(const std::string& jobs) {
        folder_.write("jobs.jsonl", lineOf("one", "docs"));
        watch_ = std::make_unique<RunningCommand>(
            folder_, Texts{"batch", "watch", "jobs.jsonl", "--catalog", "catalog.xml"});
        ASSERT_TRUE(waitUntil([&] { return folder_.exists("marrowpress-results/one.json"); }));
        folder_.write("jobs.jsonl", jobs);
    }

    std::size_t runs() const { return countOf(watch_->errSoFar(), "marrowpress watch: changed: "); }

    std::unique_ptr<RunningCommand> watch_;
};

TEST_F(WatchTest, ATopicThatChangesIsPublishedAgain) {
    watchMap();
    EXPECT_EQ(watch_->outSoFar(), "out/c.dita\n");
    writeTopic("a", "second words");
    EXPECT_TRUE(isPublished("second words"));
    EXPECT_TRUE(isTold("marrowpress watch: changed: docs/a.dita.\n"));
}

TEST_F(WatchTest, TellsWhatBecameBetterAndWorse) {
    writeTopic("a", R"(<ph keyref="nowhere"/><ph keyref="gone"/>)");
    watchMap();
    writeTopic("a", R"(<ph keyref="other"/>)");
    EXPECT_TRUE(isTold("2 fixed, 1 new"));
}

TEST_F(WatchTest, AnEditorThatSavesByRenamingIsSeen) {
    watchMap();
    writeTopic("new", "renamed words");
    fs::rename(folder_.path() / "docs/new.dita", folder_.path() / "docs/a.dita");
    EXPECT_TRUE(isPublished("renamed words"));
    EXPECT_EQ(runs(), 1U);
}

TEST_F(WatchTest, AFileThatWasMissingIsWaitedFor) {
    writeMap(R"(<topicref href="a.dita"/><topicref href="sub/later.dita"/>)");
    watchMap();
    writeTopic("sub/later", "came later");
    EXPECT_TRUE(isPublished("came later"));
}

TEST_F(WatchTest, ACheckoutOfManyFilesIsOneRun) {
    std::string references;
    for (int number = 0; number < 300; ++number) {
        references += "<topicref href=\"t" + std::to_string(number) + ".dita\"/>";
        writeTopic("t" + std::to_string(number), "before");
    }
    writeMap(references);
    watchMap();
    // However slow the machine is, nothing is quiet in between.
    watch_->send(SIGSTOP);
    for (int number = 0; number < 300; ++number) {
        writeTopic("t" + std::to_string(number), "after" + std::to_string(number));
    }
    watch_->send(SIGCONT);
    ASSERT_TRUE(isPublished("after299"));
    EXPECT_TRUE(isTold("and 297 more"));
    EXPECT_EQ(runs(), 1U);
}

TEST_F(WatchTest, AFolderThatDisappearsAndComesBackIsSeen) {
    watchMap();
    fs::rename(folder_.path() / "docs", folder_.path() / "elsewhere");
    ASSERT_TRUE(isTold("docs/m.ditamap")) << "the map is not there any more";
    fs::rename(folder_.path() / "elsewhere", folder_.path() / "docs");
    ASSERT_TRUE(isTold("findings as before"));
    writeTopic("a", "back again");
    EXPECT_TRUE(isPublished("back again"));
}

TEST_F(WatchTest, TheCurrentFolderIsNotFollowedToAnotherName) {
    const fs::path away = folder_.path().string() + "-away";
    watchMap();
    fs::rename(folder_.path(), away);
    ASSERT_TRUE(isTold("there is no folder " + folder_.path().string()));
    fs::copy(away, folder_.path(), fs::copy_options::recursive);
    fs::remove_all(away);
    ASSERT_TRUE(isTold("findings as before"));
    writeTopic("a", "back again");
    EXPECT_TRUE(isPublished("back again"));
}

TEST_F(WatchTest, ALinksTargetIsWatched) {
    fs::create_directory(folder_.path() / "shared");
    fs::rename(folder_.path() / "docs/a.dita", folder_.path() / "shared/a.dita");
    fs::create_symlink("../shared/a.dita", folder_.path() / "docs/a.dita");
    watchMap();
    writeTopic("../shared/a", "behind the link");
    EXPECT_TRUE(isPublished("behind the link"));
}

TEST_F(WatchTest, NeitherTheOutputNorATouchMakesARun) {
    watchMap();
    folder_.write("out/c.dita", "spoilt");
    const fs::path topic = folder_.path() / "docs/a.dita";
    fs::last_write_time(topic, fs::file_time_type::clock::now());
    // What comes behind is seen, so what came before would have been.
    writeTopic("b", "a change");
    ASSERT_TRUE(isTold("changed: docs/b.dita.\n"));
    EXPECT_EQ(runs(), 1U);
}

TEST_F(WatchTest, ASignalEndsItAndNothingPrivateStays) {
    watchMap();
    writeTopic("a", "on the way");
    watch_->send(SIGINT);
    EXPECT_EQ(watch_->wait().code, 1000 + SIGINT) << "130 for a shell";
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_.path() / "out")) {
        EXPECT_FALSE(entry.is_directory()) << entry.path();
    }
}

TEST_F(WatchTest, TheCommandBehindTheDashesIsRunAfterEachPublication) {
    watchMap({"--", "sh", "-c", "[ -s out/c.dita ] && cat out/c.dita >>seen"});
    writeTopic("a", "for the command");
    EXPECT_TRUE(waitUntil([&] {
        return folder_.exists("seen") && countOf(folder_.read("seen"), "for the command") == 1;
    }));
}

TEST_F(WatchTest, AnIdleWatchDoesNotEvenWakeUp) {
    watchMap();
    const std::string process = "/proc/" + std::to_string(watch_->process());
    const auto switches = [&] {
        std::ifstream in(process + "/status");
        std::string counts;
        for (std::string line; std::getline(in, line);) {
            counts += line.find("_switches:") != std::string::npos ? line : "";
        }
        return counts;
    };
    ASSERT_THAT(switches(), HasSubstr("nonvoluntary_ctxt_switches:"));
    // When it has come to rest is not to be seen from here; whoever looks at files again and again
    // has no such second at all.
    EXPECT_TRUE(waitUntil([&] {
        const std::string before = switches();
        std::this_thread::sleep_for(std::chrono::seconds(1));
        return switches() == before;
    }));
}

TEST_F(WatchTest, AMapThatIsNotThereEndsItBeforeItBegins) {
    const CommandResult result =
        run({"watch", "docs/none.ditamap", "-o", "out/c.dita", "--catalog", "catalog.xml"});
    EXPECT_EQ(result.code, 2);
    EXPECT_THAT(result.err, HasSubstr("docs/none.ditamap"));
}

TEST_F(WatchTest, StandardOutputIsRefused) {
    EXPECT_EQ(run({"watch", "docs/m.ditamap", "-o", "-"}).code, 2);
}

TEST_F(WatchTest, OnlyTheJobsConcernedAreRunAgain) {
    fs::create_directory(folder_.path() / "other");
    fs::copy(folder_.path() / "docs", folder_.path() / "other", fs::copy_options::recursive);
    folder_.write("jobs.jsonl", lineOf("one", "docs") + lineOf("two", "other"));
    start({"batch", "watch", "jobs.jsonl", "--catalog", "catalog.xml"});
    const auto startOf = [&](const std::string& id) {
        std::error_code absent;
        return fs::last_write_time(folder_.path() / "marrowpress-results" / (id + ".json"), absent);
    };
    const auto one = startOf("one");
    const auto two = startOf("two");
    std::string topic = folder_.read("other/a.dita");
    folder_.write("other/a.dita", topic.insert(topic.find("<body>") + 6, "for the second "));
    ASSERT_TRUE(waitUntil([&] { return startOf("two") != two; }));
    ASSERT_TRUE(isTold("findings as before"));
    EXPECT_EQ(startOf("one"), one);
    EXPECT_EQ(countOf(watch_->errSoFar(), "] one: "), 1U) << "nothing is told of it again";
    EXPECT_THAT(folder_.read("out/two.dita"), HasSubstr("for the second"));
    folder_.write("jobs.jsonl", "{");
    ASSERT_TRUE(isTold("jobs.jsonl:1")) << watch_->errSoFar();
    folder_.write("jobs.jsonl", lineOf("three", "docs"));
    EXPECT_TRUE(waitUntil([&] { return folder_.exists("out/three.dita"); }));
}

TEST_F(WatchTest, AFileOfJobsThatChangesDuringTheFirstRunIsReadAgain) {
    changeJobsInTheFirstRun(lineOf("two", "docs"));
    EXPECT_TRUE(waitUntil([&] { return folder_.exists("out/two.dita"); })) << watch_->errSoFar();
}

TEST_F(WatchTest, AFileOfJobsThatBreaksDuringTheFirstRunIsToldAndWaitedFor) {
    changeJobsInTheFirstRun("{");
    ASSERT_TRUE(isTold("jobs.jsonl:1")) << watch_->errSoFar();
    folder_.write("jobs.jsonl", lineOf("three", "docs"));
    EXPECT_TRUE(waitUntil([&] { return folder_.exists("out/three.dita"); }));
}

TEST_F(WatchTest, AFileThatAProjectIncludesIsWatched) {
    const auto writeContext = [this](const std::string& map) {
        folder_.write("common.xml", R"(<project xmlns="https://www.dita-ot.org/project">)"
                                    R"(<context id="c"><input href="docs/)" +
                                        map + R"("/></context></project>)");
    };
    writeContext("m.ditamap");
    fs::copy_file(folder_.path() / "docs/m.ditamap", folder_.path() / "docs/n.ditamap");
    folder_.write("project.xml",
                  R"(<project xmlns="https://www.dita-ot.org/project"><include href="common.xml"/>)"
                  R"(<deliverable id="one"><context idref="c"/><output href="."/>)"
                  R"(<publication transtype="composite"/></deliverable></project>)");
    start({"batch", "watch", "project.xml", "--output", "out", "--catalog", "catalog.xml"});
    EXPECT_TRUE(folder_.exists("out/m.dita"));
    writeContext("n.ditamap");
    EXPECT_TRUE(waitUntil([&] { return folder_.exists("out/n.dita"); }));
}

}  // namespace
}  // namespace marrowpress
