#include <fcntl.h>
#include <unistd.h>
#include <csignal>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/library/library_fixture.h"
#include "tests/support/texts.h"
#include "tests/support/tmp_dir.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// The children of this thread.
std::vector<pid_t> children() {
    std::ifstream list("/proc/thread-self/children");
    return {std::istream_iterator<pid_t>(list), {}};
}

std::size_t openDescriptors() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
}

class SpawnTest : public LibraryTest {
protected:
    /// Makes the child wait at the map's DTD until `work` is done.
    void atDtd(std::function<void()> work) {
        folder.write("m.ditamap", "<!DOCTYPE map PUBLIC \"own\" \"none.dtd\"><map/>");
        work_ = std::move(work);
        options.entity_user = &work_;
        options.resolve_entity = [](void* user, const char*, char*, std::size_t) {
            (*static_cast<std::function<void()>*>(user))();
            return 0;
        };
    }

private:
    std::function<void()> work_;
};

TEST_F(SpawnTest, HasTheResultOfARunInTheProcess) {
    options.flags = MP_DEPENDENCIES | MP_KEYS;
    for (const std::string& request : {composite(), flatBook(), std::string("{}")}) {
        const ResultPtr own = run(request);
        const ResultPtr child = spawn(request);
        EXPECT_EQ(mp_result_status(child.get()), mp_result_status(own.get()));
        EXPECT_STREQ(mp_result_error(child.get()), mp_result_error(own.get()));
        EXPECT_EQ(findings(child), findings(own));
        EXPECT_EQ(dependencies(child), dependencies(own));
        EXPECT_EQ(mp_result_key_count(child.get()), mp_result_key_count(own.get()));
        EXPECT_EQ(mp_result_value_count(child.get()), mp_result_value_count(own.get()));
        ASSERT_EQ(mp_result_output_count(child.get()), mp_result_output_count(own.get()));
        for (std::size_t i = 0; i < mp_result_output_count(own.get()); ++i) {
            EXPECT_STREQ(mp_result_output(child.get(), i), mp_result_output(own.get(), i));
        }
    }
}

TEST_F(SpawnTest, CallbacksAreCalledHere) {
    std::vector<std::string> own;
    std::vector<std::string> child;
    onProgress([&](const char* line) { own.emplace_back(line); });
    run(composite());
    onProgress([&](const char* line) { child.emplace_back(line); });
    spawn(composite());
    EXPECT_EQ(child, own);
}

TEST_F(SpawnTest, ACrashCostsTheRequestAlone) {
    // The sanitizers have no hand in these.
    for (const int signal : {SIGKILL, SIGABRT}) {
        atDtd([signal] {
            ASSERT_EQ(children().size(), 1U);
            kill(children().front(), signal);
        });
        const ResultPtr result = spawn(composite());
        EXPECT_EQ(mp_result_code(result.get()), MP_CRASHED);
        EXPECT_EQ(mp_result_signal(result.get()), signal);
        EXPECT_NE(std::string(mp_result_error(result.get())).find(std::to_string(signal)),
                  std::string::npos);
        EXPECT_EQ(mp_result_status(result.get()), MP_NO_STATUS);
    }
    EXPECT_TRUE(children().empty());
}

TEST_F(SpawnTest, OneThatTakesTooLongIsEnded) {
    options.time_limit = 100;
    atDtd([] { std::this_thread::sleep_for(200ms); });
    EXPECT_EQ(mp_result_code(spawn(composite()).get()), MP_TIMED_OUT);
    EXPECT_TRUE(children().empty());
}

TEST_F(SpawnTest, ALimitOfTimeMayBeAnyNumber) {
    for (const std::uint64_t limit : {std::uint64_t{INT64_MAX}, UINT64_MAX}) {
        options.time_limit = limit;
        EXPECT_EQ(mp_result_status(spawn(composite()).get()), 0) << limit;
    }
}

TEST_F(SpawnTest, WhateverDoesNotFitIntoTheLimitOfMemoryIsNoMemory) {
    if (kIsSanitized) {
        GTEST_SKIP() << "takes more than any limit";
    }
    bool isAnyShort = false;
    for (std::uint64_t megabytes = 8; megabytes <= 256; megabytes += 8) {
        options.memory_limit = megabytes << 20;
        const ResultPtr result = spawn(composite());
        const int code = mp_result_code(result.get());
        // A child that cannot even begin ends by itself, or by what the loader does then.
        isAnyShort |= code == MP_NO_MEMORY;
        EXPECT_TRUE(code == MP_NO_MEMORY || code == MP_CRASHED ||
                    mp_result_status(result.get()) == 0)
            << megabytes << " MB: " << code << ", " << mp_result_error(result.get());
    }
    EXPECT_TRUE(isAnyShort);
    EXPECT_EQ(mp_result_status(spawn(composite()).get()), 0) << "256 MB are enough";
}

TEST_F(SpawnTest, OneThatDoesNotEndByItselfIsKilled) {
    options.time_limit = 100;
    atDtd([] {
        kill(children().front(), SIGSTOP);
        std::this_thread::sleep_for(200ms);
    });
    EXPECT_EQ(mp_result_code(spawn(composite()).get()), MP_TIMED_OUT);
    EXPECT_TRUE(children().empty());
}

TEST_F(SpawnTest, IsCancelledByTheFlag) {
    std::int32_t cancel = 0;
    options.cancel = &cancel;
    atDtd([&] { __atomic_store_n(&cancel, 1, __ATOMIC_RELAXED); });
    EXPECT_EQ(mp_result_code(spawn(composite()).get()), MP_CANCELLED);
    EXPECT_FALSE(folder.exists("KeyspaceDoc.ditamap"));
}

TEST_F(SpawnTest, WhatATerminalSendsEndsTheChildInGoodOrder) {
    fs::create_directory(folder.path() / "temporary");
    const TmpDir temporary(folder.file("temporary").c_str());
    for (const int signal : {SIGINT, SIGHUP, SIGTERM}) {
        for (const std::uint32_t flags : {0U, std::uint32_t{MP_CHECK}}) {
            options.flags = flags;
            atDtd([signal] { kill(children().front(), signal); });
            EXPECT_EQ(mp_result_code(spawn(composite()).get()), MP_CANCELLED) << signal;
            EXPECT_FALSE(folder.exists("KeyspaceDoc.ditamap")) << signal;
            EXPECT_TRUE(fs::is_empty(folder.path() / "temporary")) << signal;
        }
    }
}

TEST_F(SpawnTest, ALimitOfMemoryCostsTheRequestAlone) {
    if (kIsSanitized) {
        GTEST_SKIP() << "takes more than any limit";
    }
    options.memory_limit = 300 << 20;
    EXPECT_EQ(mp_result_status(spawn(composite()).get()), 0);
    std::string text;
    for (int i = 0; i < 1000000; ++i) {
        text += "<b id=\"i" + std::to_string(i) + "\"/>";
    }
    folder.write("t.dita", "<topic id=\"t\"><title>T</title><body>" + text + "</body></topic>");
    const ResultPtr result = spawn(composite());
    EXPECT_NE(mp_result_status(result.get()), 0);
    EXPECT_STRNE(mp_result_error(result.get()), "");
    EXPECT_EQ(mp_result_status(spawn("{}").get()), -43);
}

TEST_F(SpawnTest, TheChildHasNothingOpenOfTheCaller) {
    const std::string path = folder.write("open", "");
    const int leaked = open(path.c_str(), O_RDONLY);
    ASSERT_GE(leaked, 0);
    std::size_t seen = 0;
    bool isLeaked = false;
    atDtd([&] {
        const fs::path descriptors = "/proc/" + std::to_string(children().front()) + "/fd";
        for (const auto& entry : fs::directory_iterator(descriptors)) {
            std::error_code ignored;
            isLeaked |= fs::read_symlink(entry.path(), ignored) == path;
            ++seen;
        }
    });
    const std::size_t before = openDescriptors();
    EXPECT_EQ(mp_result_status(spawn(composite()).get()), 0);
    EXPECT_GT(seen, 2U);
    EXPECT_FALSE(isLeaked);
    EXPECT_EQ(openDescriptors(), before);
    close(leaked);
}

TEST_F(SpawnTest, SeveralRunAtATime) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this] {
            mp_options check = MP_OPTIONS_INIT;
            check.flags = MP_CHECK;
            mp_result* made = nullptr;
            EXPECT_EQ(mp_spawn(composite().c_str(), &check, &made), MP_OK);
            EXPECT_EQ(mp_result_status(made), 0);
            mp_result_free(made);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST_F(SpawnTest, SeveralIntoOneFolderTakeTurns) {
    constexpr int kRuns = 6;
    std::vector<std::thread> threads;
    for (int number = 0; number < kRuns; ++number) {
        threads.emplace_back([this, number] {
            const std::string request =
                replacedAll(composite(), "out.dita", "out" + std::to_string(number) + ".dita");
            mp_result* made = nullptr;
            EXPECT_EQ(mp_spawn(request.c_str(), nullptr, &made), MP_OK);
            EXPECT_EQ(mp_result_status(made), 0) << mp_result_error(made);
            EXPECT_EQ(mp_result_output_count(made), 1U);
            mp_result_free(made);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST_F(SpawnTest, ACallerThatIgnoresItsChildrenGetsTheResult) {
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(mp_result_status(spawn(composite()).get()), 0);
    std::signal(SIGCHLD, before);
}

}  // namespace
}  // namespace marrowpress
