#include "cli/run_statistics.h"

#include <gtest/gtest.h>

#include "tests/support/chosen_language.h"
#include "tests/support/observations.h"
#include "tests/unit/runs/set_clock.h"

namespace marrowpress {
namespace {

TEST(RunStatisticsTest, CountsTimesAndMemoryAreALineEach) {
    const ChosenLanguage english(Language::kEnglish);
    SetClock time;
    RunClock clock(SetClock::now);
    time.pass(1'200);
    for (int run = 0; run < 2; ++run) {
        clock.observe(observationOf(ObservationKind::kPhase, "keys"));
        time.pass(250'000);
        clock.endRuns();
    }
    clock.end();
    EXPECT_EQ(statisticsText(clock, {std::chrono::milliseconds(450), 41'943'040}),
              "Documents: 0 read, 0.0 KB\n"
              "Keys: 0 defined; outputs: 0\n"
              "Time: 0.501 s (start 0.001 s, keys 0.500 s, end 0.000 s); CPU: 0.450 s\n"
              "Memory: 40.0 MB at most\n");
}

TEST(RunStatisticsTest, AProcessHasUsedSomething) {
    const UsedResources used = usedResources();
    EXPECT_GT(used.cpu.count(), 0);
    EXPECT_GT(used.peakMemory, 1'000'000U);
}

}  // namespace
}  // namespace marrowpress
