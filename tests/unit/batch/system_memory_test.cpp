#include "cli/batch/system_memory.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(SystemMemoryTest, SomeMemoryIsThere) {
    constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20;
    EXPECT_GT(availableMemory(), kMegabyte);
}

TEST(SystemMemoryTest, TheCountOfKilledProcessesOnlyGrows) {
    const std::uint64_t before = memoryKillCount();
    EXPECT_GE(memoryKillCount(), before);
}

}  // namespace
}  // namespace marrowpress
