#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <future>
#include <thread>
#include <vector>

#include "tests/library/library_fixture.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class TurnTest : public LibraryTest {
protected:
    /// The code of a call with `flags` beside the one that is served.
    int codeBeside(LibraryFunction function, std::uint32_t flags) const {
        mp_options other = MP_OPTIONS_INIT;
        other.flags = flags | MP_CHECK;
        mp_result* made = nullptr;
        const int code = function(composite().c_str(), &other, &made);
        mp_result_free(made);
        return code;
    }
};

TEST_F(TurnTest, ACallFromACallbackIsBusyAndTheServedOneTakesNoNotice) {
    std::vector<int> codes;
    onProgress([&](const char*) {
        codes.push_back(codeBeside(mp_run, 0));
        codes.push_back(codeBeside(mp_run, MP_WAIT));
    });
    const ResultPtr result = run(composite());
    EXPECT_EQ(mp_result_status(result.get()), 0);
    EXPECT_FALSE(codes.empty());
    EXPECT_EQ(codes, std::vector<int>(codes.size(), MP_BUSY));
}

TEST_F(TurnTest, AnotherThreadIsBusyAtOnceOrWaits) {
    int busy = MP_OK;
    std::future<int> waiting;
    onProgress([&](const char*) {
        if (!waiting.valid()) {
            busy = std::async(std::launch::async, [&] { return codeBeside(mp_run, 0); }).get();
            waiting = std::async(std::launch::async, [&] { return codeBeside(mp_run, MP_WAIT); });
        }
    });
    run(composite());
    EXPECT_EQ(busy, MP_BUSY);
    ASSERT_TRUE(waiting.valid());
    EXPECT_EQ(waiting.get(), MP_OK);
}

TEST_F(TurnTest, AChildOfACallerMayRunBesideAndFromACallback) {
    std::vector<int> codes;
    onProgress([&](const char*) {
        if (codes.empty()) {
            codes.push_back(codeBeside(mp_spawn, 0));
        }
    });
    run(composite());
    EXPECT_EQ(codes, std::vector<int>{MP_OK});
}

TEST_F(TurnTest, AChildIntoTheFolderOfTheRunThatCallsBackIsBusyInsteadOfWaitingForEver) {
    const auto spawnInto = [this](const std::string& output) {
        mp_result* made = nullptr;
        const int code = mp_spawn(composite(output).c_str(), nullptr, &made);
        mp_result_free(made);
        return code;
    };
    fs::create_directory(folder.path() / "other");
    for (const LibraryFunction function : {mp_run, mp_spawn}) {
        std::vector<int> codes;
        onProgress([&](const char*) {
            if (codes.empty()) {
                codes = {spawnInto("beside.dita"), spawnInto("other/../beside.dita"),
                         spawnInto("other/beside.dita")};
            }
        });
        mp_result* made = nullptr;
        EXPECT_EQ(function(composite().c_str(), &options, &made), MP_OK);
        mp_result_free(made);
        EXPECT_EQ(codes, (std::vector<int>{MP_BUSY, MP_BUSY, MP_OK}));
    }
    EXPECT_EQ(spawnInto("beside.dita"), MP_OK) << "nobody calls back any more";
}

TEST_F(TurnTest, ACallWhileDocumentsAreAskedForIsBusy) {
    std::vector<int> codes;
    std::function<void()> ask = [&] { codes.push_back(codeBeside(mp_run, MP_WAIT)); };
    options.document_user = &ask;
    options.open_document = [](void* user, std::size_t, mp_document*) {
        (*static_cast<std::function<void()>*>(user))();
        return 0;
    };
    EXPECT_EQ(mp_result_status(run(composite()).get()), 0);
    EXPECT_EQ(codes, std::vector<int>{MP_BUSY});
}

TEST_F(TurnTest, AForkedProcessHasToSpawn) {
    run(composite());
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        alarm(120);
        const bool isRefused =
            codeBeside(mp_run, 0) == MP_FORKED && codeBeside(mp_run, MP_WAIT) == MP_FORKED;
        const bool isSpawned = codeBeside(mp_spawn, 0) == MP_OK;
        _exit((isRefused ? 0 : 1) + (isSpawned ? 0 : 2));
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "1: not refused, 2: not spawned, by 256";
    EXPECT_EQ(mp_result_status(run(composite()).get()), 0);
}

TEST_F(TurnTest, AProcessThatIsForkedWhileAThreadWaitsComesToItsEnd) {
    if (kIsSanitized) {
        GTEST_SKIP() << "looks for leaks at the end, and takes for some what other threads had";
    }
    std::future<int> waiting;
    std::vector<int> statuses;
    onProgress([&](const char*) {
        if (waiting.valid()) {
            return;
        }
        waiting = std::async(std::launch::async, [&] { return codeBeside(mp_run, MP_WAIT); });
        // It looks about every 50 ms, and waits nearly all of the time.
        for (int forks = 0; forks < 5; ++forks) {
            std::this_thread::sleep_for(std::chrono::milliseconds(23));
            const pid_t child = fork();
            if (child == 0) {
                alarm(20);
                std::exit(0);
            }
            int status = -1;
            waitpid(child, &status, 0);
            statuses.push_back(status);
        }
    });
    run(composite());
    ASSERT_TRUE(waiting.valid());
    EXPECT_EQ(waiting.get(), MP_OK);
    EXPECT_EQ(statuses, std::vector<int>(5, 0));
}

TEST_F(TurnTest, ACancelFlagEndsTheRunBetweenDocuments) {
    std::int32_t cancel = 0;
    options.cancel = &cancel;
    onProgress([&](const char*) { __atomic_store_n(&cancel, 1, __ATOMIC_RELAXED); });
    EXPECT_EQ(mp_result_code(run(composite()).get()), MP_CANCELLED);
    EXPECT_FALSE(folder.exists("out.dita"));
    options.cancel = nullptr;
    EXPECT_EQ(mp_result_code(run(composite()).get()), MP_OK);
}

}  // namespace
}  // namespace marrowpress
