#include "findings/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace marrowpress {
namespace {

TEST(FindingIdsTest, AreSortedAndDiffer) {
    const std::vector<std::string>& ids = findingIds();
    EXPECT_EQ(ids.size(), 25U);
    EXPECT_EQ(ids.front(), "MP105");
    EXPECT_EQ(ids.back(), "MP218");
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
    EXPECT_EQ(std::adjacent_find(ids.begin(), ids.end()), ids.end());
}

TEST(DefaultSeverityTest, EachIdHasOne) {
    for (const std::string& id : findingIds()) {
        EXPECT_TRUE(defaultSeverity(id)) << id;
    }
    EXPECT_EQ(defaultSeverity("MP105"), Severity::kError);
    EXPECT_EQ(defaultSeverity("MP110"), Severity::kWarning);
    EXPECT_EQ(defaultSeverity("MP215"), Severity::kNote);
}

TEST(DefaultSeverityTest, AnUnknownIdHasNone) {
    EXPECT_FALSE(defaultSeverity("MP100"));
    EXPECT_FALSE(defaultSeverity(""));
    EXPECT_FALSE(defaultSeverity("mp105"));
}

}  // namespace
}  // namespace marrowpress
