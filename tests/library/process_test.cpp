#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>
#include <csignal>

#include <clocale>
#include <filesystem>

#include "tests/library/library_fixture.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// What a process has one of, as a text.
std::string processState() {
    std::string state =
        std::string(std::setlocale(LC_ALL, nullptr)) + "\n" + fs::current_path().string() + "\n";
    const mode_t mask = umask(0);
    umask(mask);
    state += std::to_string(mask) + "\n";
    for (char** variable = environ; *variable; ++variable) {
        state += std::string(*variable) + "\n";
    }
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        state += std::to_string(reinterpret_cast<std::uintptr_t>(action.sa_handler)) + " ";
    }
    sigset_t mask2;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask2);
    for (int signal = 1; signal < NSIG; ++signal) {
        state += sigismember(&mask2, signal) == 1 ? "1" : "0";
    }
    return state;
}

std::size_t descriptorCount() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
}

class ProcessTest : public LibraryTest {};

TEST_F(ProcessTest, StaysAsItWas) {
    const std::string before = processState();
    for (const LibraryFunction function : {mp_run, mp_spawn}) {
        for (const int language : {MP_LANGUAGE_ENGLISH, MP_LANGUAGE_GERMAN, MP_LANGUAGE_AUTO}) {
            options.language = language;
            call(function, composite());
            call(function, "{}");
            EXPECT_EQ(processState(), before);
        }
    }
}

TEST_F(ProcessTest, NothingIsPrinted) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    folder.write("t.dita", "<topic");
    run(composite());
    spawn(composite());
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(out, "");
    EXPECT_EQ(err, "");
}

TEST_F(ProcessTest, AThousandRunsTakeNoMoreThanAFew) {
    if (kIsSanitized) {
        GTEST_SKIP() << "keeps what was freed";
    }
    constexpr int kFew = 50;
    constexpr int kMany = 1000;
    constexpr std::size_t kSlack = 64 << 10;
    options.flags = MP_DEPENDENCIES | MP_KEYS;
    std::size_t bytes = 0;
    std::size_t descriptors = 0;
    for (int number = 0; number < kMany; ++number) {
        ASSERT_EQ(mp_result_status(run(number % 2 == 0 ? composite() : flatBook()).get()), 0);
        if (number == kFew) {
            bytes = mallinfo2().uordblks;
            descriptors = descriptorCount();
        }
    }
    EXPECT_LE(mallinfo2().uordblks, bytes + kSlack);
    EXPECT_EQ(descriptorCount(), descriptors);
}

}  // namespace
}  // namespace marrowpress
