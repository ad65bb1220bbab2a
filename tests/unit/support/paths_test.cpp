#include "support/paths.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(NormalizePathTest, AnEmptyPathStaysEmpty) { EXPECT_EQ(normalizePath(u""), u""); }

}  // namespace
}  // namespace marrowpress
