#include "cli/unfinished_outputs.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <list>

#include "tests/support/observations.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class UnfinishedOutputsTest : public testing::Test {
protected:
    UnfinishedOutputsTest() {
        for (const char* const name : {"m.dita", "m.dita_tmp", "a.qs", "a.qs_tmp", "b.qs"}) {
            folder.write(name, "text");
        }
    }

    NamedPath output(const std::string& name) const {
        return {"--output", name, folder.file(name)};
    }

    Observation observation(ObservationKind kind, const std::string& name) {
        paths_.push_back(folder.file(name));
        return observationOf(kind, paths_.back().c_str());
    }

    /// Does something in a process of its own, which a signal then ends.
    void endBySignal(const std::function<void()>& action) const {
        const pid_t child = fork();
        if (child == 0) {
            alarm(60);
            action();
            raise(SIGTERM);
            _exit(0);
        }
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
    }

    TemporaryFolder folder;

private:
    std::list<std::string> paths_;
};

TEST_F(UnfinishedOutputsTest, AreRemovedByASignal) {
    endBySignal([this] {
        new UnfinishedOutputs({output("m.dita"), output("m.dita_tmp"), output("a.qs")});
        folder.write("m.dita", "<dita/>");
        folder.write("m.dita_tmp", "<dita/>");
    });
    EXPECT_FALSE(folder.exists("m.dita"));
    EXPECT_FALSE(folder.exists("m.dita_tmp"));
    // What the run hasn't come to is still that of an earlier one.
    EXPECT_TRUE(folder.exists("a.qs"));
    EXPECT_TRUE(folder.exists("b.qs"));
}

TEST_F(UnfinishedOutputsTest, StayWhenTheyWereWritten) {
    endBySignal([this] {
        auto* const outputs = new UnfinishedOutputs({output("m.dita"), output("m.dita_tmp")});
        folder.write("m.dita", "<dita/>");
        folder.write("m.dita_tmp", "<dita/>");
        outputs->observe(observation(ObservationKind::kOutputWritten, "m.dita"));
    });
    EXPECT_TRUE(folder.exists("m.dita"));
    EXPECT_TRUE(folder.exists("m.dita_tmp"));
}

TEST_F(UnfinishedOutputsTest, MayBeComponentsThatHaveBegun) {
    endBySignal([this] {
        auto* const outputs = new UnfinishedOutputs({});
        outputs->observe(observation(ObservationKind::kComponent, "a.qs"));
        outputs->observe(observation(ObservationKind::kComponent, "b.qs"));
        outputs->observe(observation(ObservationKind::kOutputWritten, "b.qs"));
    });
    EXPECT_FALSE(folder.exists("a.qs"));
    EXPECT_FALSE(folder.exists("a.qs_tmp"));
    EXPECT_TRUE(folder.exists("b.qs"));
}

TEST_F(UnfinishedOutputsTest, StayWhenTheRunIsOver) {
    endBySignal([this] {
        const UnfinishedOutputs outputs({output("m.dita")});
        folder.write("m.dita", "<dita/>");
    });
    EXPECT_TRUE(folder.exists("m.dita"));
}

}  // namespace
}  // namespace marrowpress
