#include "cli/trace_events.h"

#include <gtest/gtest.h>

#include "tests/support/observations.h"
#include "tests/unit/runs/set_clock.h"

namespace marrowpress {
namespace {

TEST(TraceEventsTest, PhasesAndDocumentsAreCompleteEventsInMicroseconds) {
    SetClock time;
    RunClock clock(SetClock::now);
    time.pass(4);
    clock.visit("/w/\"a\xFF.dita");
    time.pass(3);
    clock.visit("");
    clock.end();
    EXPECT_EQ(traceEvents(clock, "t"),
              R"({"displayTimeUnit":"ms","traceEvents":[)"
              R"({"name":"process_name","ph":"M","pid":1,"args":{"name":"t"}},)"
              R"({"cat":"document","name":"\"a�.dita","ph":"X","pid":1,"tid":1,"ts":4,"dur":3,)"
              R"("args":{"file":"/w/\"a�.dita"}},)"
              R"({"cat":"phase","name":"start","ph":"X","pid":1,"tid":1,"ts":0,"dur":7}]})"
              "\n");
}

}  // namespace
}  // namespace marrowpress
