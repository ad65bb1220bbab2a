#include "cli/map_run.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(ComponentsTest, AreTheFifthValueEachOnce) {
    using Texts = std::vector<std::string>;
    TypedValues answer{{1, 0},
                       {6, Texts{"/open"}},
                       {15, std::vector<std::int32_t>{7}},
                       {15, std::vector<std::int32_t>{}}};
    EXPECT_EQ(componentsOf(answer), std::nullopt);
    answer.push_back({6, Texts{"/b.qs", "/a.qs", "/b.qs", "/c.qs", "/a.qs"}});
    EXPECT_EQ(componentsOf(answer), (Texts{"/b.qs", "/a.qs", "/c.qs"}));
    answer.back() = {6, Texts{}};
    EXPECT_EQ(componentsOf(answer), Texts{});
    answer.back() = {15, std::vector<std::int32_t>{1}};
    EXPECT_EQ(componentsOf(answer), std::nullopt);
}

}  // namespace
}  // namespace marrowpress
