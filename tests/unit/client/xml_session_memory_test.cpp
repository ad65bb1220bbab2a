#include <gtest/gtest.h>

#include <optional>

#include "client/xml_session.h"
#include "tests/support/failing_allocations.h"
#include "tests/unit/client/xml_platform.h"

namespace marrowpress {
namespace {

/// An engine starts with thousands of allocations.
constexpr AllocationSteps kSome{1, 23};

TEST(XmlSessionMemoryTest, AStartThatFailsForGoodLeavesNothingStarted) {
    std::size_t failures = 0;
    tryEachAllocation(
        true,
        [&](const AllocationFault& fault) {
            std::optional<XmlSession> session;
            try {
                const FailingAllocations failing(fault);
                session.emplace();
            } catch (...) {
                ++failures;
                EXPECT_FALSE(isXmlPlatformUp()) << fault.number;
                return;
            }
            EXPECT_TRUE(isXmlPlatformUp()) << fault.number;
        },
        kSome);
    EXPECT_GT(failures, 0U);
    const XmlSession session;
    EXPECT_TRUE(isXmlPlatformUp());
}

}  // namespace
}  // namespace marrowpress
