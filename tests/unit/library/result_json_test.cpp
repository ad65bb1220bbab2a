#include <gtest/gtest.h>

#include "tests/support/whole_result.h"

namespace marrowpress {
namespace {

TEST(ResultJsonTest, IsTheSameWhenItHasGoneThroughALine) {
    const ResultData data = wholeResult();
    const std::string line = toJsonLine(data);
    EXPECT_EQ(line.find('\n'), std::string::npos);
    const ResultData again = resultFromJson(line);
    EXPECT_EQ(again.code, data.code);
    EXPECT_EQ(again.error, data.error);
    EXPECT_EQ(again.signal, data.signal);
    EXPECT_EQ(again.status, data.status);
    EXPECT_EQ(again.values, data.values);
    EXPECT_EQ(again.findings, data.findings);
    EXPECT_EQ(again.dependencies, data.dependencies);
    EXPECT_EQ(again.keys, data.keys);
    EXPECT_EQ(again.outputs, data.outputs);
    EXPECT_EQ(resultFromJson(toJsonLine(failedResult(MP_SYSTEM, "e"))).status, std::nullopt);
    EXPECT_THROW(resultFromJson("{}"), std::exception);
}

}  // namespace
}  // namespace marrowpress
