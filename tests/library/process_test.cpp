#include <malloc.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <filesystem>

#include "tests/library/library_fixture.h"
#include "tests/support/texts.h"

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

/// The most memory that this process has had, in bytes.
std::size_t peakMemory() {
    constexpr std::size_t kKilobyte = 1024;
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return static_cast<std::size_t>(used.ru_maxrss) * kKilobyte;
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

TEST_F(ProcessTest, FurtherRunsOfALargeMapTakeNoMoreThanTheFirst) {
    if (kIsSanitized) {
        GTEST_SKIP() << "keeps what was freed";
    }
    constexpr int kTopics = 500;
    constexpr int kParagraphs = 40;
    constexpr int kRuns = 5;
    const std::string body =
        "<body class=\"- topic/body \">" +
        repeated(
            R"(<p class="- topic/p ">Loosen the <b class="+ topic/ph hi-d/b ">collar</b>.</p>)",
            kParagraphs) +
        "</body></topic>";
    std::string references;
    for (int number = 0; number < kTopics; ++number) {
        const std::string id = "large" + std::to_string(number);
        folder.write(id + ".dita", R"(<topic class="- topic/topic " id=")" + id + "\">" + body);
        references += R"(<topicref class="- map/topicref " href=")" + id + ".dita\"/>";
    }
    folder.write("m.ditamap", R"(<map class="- map/map ">)" + references + "</map>");
    ASSERT_EQ(mp_result_status(run(composite()).get()), 0);
    const std::size_t first = peakMemory();
    for (int number = 0; number < kRuns; ++number) {
        ASSERT_EQ(mp_result_status(run(composite()).get()), 0);
    }
    EXPECT_LE(peakMemory(), first + first / 20);
}

}  // namespace
}  // namespace marrowpress
