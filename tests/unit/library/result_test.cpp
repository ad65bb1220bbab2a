#include "library/result.h"

#include <gtest/gtest.h>

#include "tests/support/whole_result.h"

namespace marrowpress {
namespace {

TEST(ResultTest, LinesBecomeWhatCallersRead) {
    const mp_result result(wholeResult());
    ASSERT_EQ(result.findings().size(), 2U);
    EXPECT_STREQ(result.findings()[0].id, "MP208");
    EXPECT_EQ(result.findings()[0].line, 3U);
    EXPECT_STREQ(result.findings()[0].hint, "");
    EXPECT_STREQ(result.findings()[1].file, "");
    EXPECT_EQ(result.findings()[1].line, 0U);
    EXPECT_EQ(std::string(result.findings()[0].json) + "\n" + result.findings()[1].json + "\n",
              result.data().findings);
    ASSERT_EQ(result.dependencies().size(), 2U);
    EXPECT_STREQ(result.dependencies()[0].from, "/m.ditamap");
    EXPECT_EQ(result.dependencies()[0].column, 3U);
    EXPECT_STREQ(result.dependencies()[1].from, "");
    ASSERT_EQ(result.keys().size(), 1U);
    EXPECT_STREQ(result.keys()[0], "{\"key\":\"k\"}");
}

TEST(ResultTest, ValuesHaveWhatTheirTypeHas) {
    const mp_result result(wholeResult());
    ASSERT_EQ(result.values().size(), 4U);
    EXPECT_EQ(result.values()[0].integer, -42);
    EXPECT_EQ(result.values()[0].text, nullptr);
    EXPECT_STREQ(result.values()[1].text, "text");
    ASSERT_EQ(result.values()[2].count, 2U);
    EXPECT_STREQ(result.values()[2].texts[1], "b");
    ASSERT_EQ(result.values()[3].count, 2U);
    EXPECT_EQ(result.values()[3].integers[1], -2);
}

}  // namespace
}  // namespace marrowpress
