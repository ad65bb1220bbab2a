#include "runs/run_clock.h"

#include <gtest/gtest.h>

#include "tests/support/observations.h"
#include "tests/support/temporary_folder.h"
#include "tests/unit/runs/set_clock.h"

namespace marrowpress {
namespace {

class RunClockTest : public testing::Test {
protected:
    void begin(const char* phase) { clock.observe(observationOf(ObservationKind::kPhase, phase)); }

    /// "keys 5+10" for each part.
    std::vector<std::string> parts() const {
        std::vector<std::string> texts;
        for (const TimedPart& part : clock.parts()) {
            texts.push_back(part.name + " " + std::to_string(part.begin.count()) + "+" +
                            std::to_string(part.duration.count()));
        }
        return texts;
    }

    SetClock time;
    RunClock clock{SetClock::now};
};

using Texts = std::vector<std::string>;

TEST_F(RunClockTest, APhaseLastsUntilTheNextOne) {
    time.pass(5);
    begin("keys");
    time.pass(10);
    begin("map");
    time.pass(1);
    clock.endRuns();
    time.pass(2);
    clock.end();
    EXPECT_EQ(parts(), (Texts{"start 0+5", "keys 5+10", "map 15+1", "end 16+2"}));
    EXPECT_EQ(clock.total().count(), 18);
}

TEST_F(RunClockTest, ADocumentWithinAnotherIsToldForItself) {
    clock.visit("/a");
    time.pass(1);
    clock.visit("/b");
    time.pass(2);
    clock.visit("");
    time.pass(3);
    clock.visit("");
    clock.visit("");
    EXPECT_EQ(parts(), (Texts{"/b 1+2", "/a 0+6"}));
    EXPECT_EQ(clock.parts()[0].kind, TimedKind::kDocument);
}

TEST_F(RunClockTest, DocumentsCountOnceAndDefinitionsThatCount) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.dita", "12345");
    clock.observe(observationOf(ObservationKind::kDocumentRead, path.c_str()));
    clock.observe(observationOf(ObservationKind::kDocumentRead, path.c_str()));
    clock.observe(observationOf(ObservationKind::kDocumentRead, "/none"));
    Observation definition = observationOf(ObservationKind::kKeyDefinition, "k");
    definition.code = static_cast<std::uint32_t>(KeyState::kEffective);
    clock.observe(definition);
    definition.code = static_cast<std::uint32_t>(KeyState::kShadowed);
    clock.observe(definition);
    clock.observe(observationOf(ObservationKind::kOutputWritten, "/o"));
    EXPECT_EQ(clock.counts().documents, 2U);
    EXPECT_EQ(clock.counts().bytes, 5U);
    EXPECT_EQ(clock.counts().keys, 1U);
    EXPECT_EQ(clock.counts().outputs, 1U);
}

}  // namespace
}  // namespace marrowpress
