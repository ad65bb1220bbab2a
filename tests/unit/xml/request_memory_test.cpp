#include "xml/request_memory.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdint>
#include <cstdlib>
#include <vector>
#include <xercesc/util/OutOfMemoryException.hpp>

#include "support/publish_exception.h"
#include "support/text.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

using xercesc::OutOfMemoryException;

constexpr std::size_t kLarge = 64 << 10;
constexpr std::size_t kHuge = std::size_t{1} << 60;
constexpr RequestMemory::Limits kLimits{10 << 20, 1 << 20, 20};

/// Takes blocks until one is refused, and gives how many there were; they stay taken.
std::size_t takenUntilRefused(RequestMemory& memory, std::size_t size) {
    for (std::size_t count = 0; count < 100000; ++count) {
        try {
            memory.allocate(size);
        } catch (const OutOfMemoryException&) {
            return count;
        }
    }
    return SIZE_MAX;
}

TEST(RequestMemoryTest, GivesAlignedBlocksThatDoNotOverlap) {
    RequestMemory memory(kLimits);
    std::vector<unsigned char*> blocks;
    for (std::size_t size = 0; size < 100; ++size) {
        auto* const block = static_cast<unsigned char*>(memory.allocate(size));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0U);
        std::fill_n(block, size, static_cast<unsigned char>(size));
        blocks.push_back(block);
    }
    for (std::size_t size = 0; size < blocks.size(); ++size) {
        EXPECT_EQ(std::count(blocks[size], blocks[size] + size, size),
                  static_cast<std::ptrdiff_t>(size));
    }
}

TEST(RequestMemoryTest, CountsWhatIsTakenAndGivenBackInAnyOrder) {
    RequestMemory memory(kLimits);
    void* const first = memory.allocate(1000);
    const std::size_t ofOne = memory.taken();
    EXPECT_GE(ofOne, 1000U);
    void* const second = memory.allocate(1000);
    void* const third = memory.allocate(1000);
    EXPECT_GE(memory.taken(), ofOne + 2000U);
    memory.deallocate(second);
    memory.deallocate(third);
    memory.deallocate(nullptr);
    EXPECT_EQ(memory.taken(), ofOne);
    memory.deallocate(first);
    EXPECT_EQ(memory.taken(), 0U);
}

// The leak checker of the sanitizers looks after this one.
TEST(RequestMemoryTest, TakesBackWhatWasLost) {
    RequestMemory memory(kLimits);
    memory.allocate(100);
    memory.allocate(kLarge);
}

TEST(RequestMemoryTest, IsTheCurrentOneWhileItLives) {
    EXPECT_EQ(RequestMemory::current(), nullptr);
    {
        const RequestMemory memory;
        EXPECT_EQ(RequestMemory::current(), &memory);
        {
            const RequestMemory inner;
            EXPECT_EQ(RequestMemory::current(), &inner);
        }
        EXPECT_EQ(RequestMemory::current(), &memory);
    }
    EXPECT_EQ(RequestMemory::current(), nullptr);
    EXPECT_FALSE(isMemoryExhausted());
    EXPECT_NO_THROW(requireMemory());
}

TEST(RequestMemoryTest, BoundsARequestByTheMachine) {
    const RequestMemory::Limits limits = RequestMemory::usualLimits();
    EXPECT_LE(limits.total, std::size_t{4} << 30);
    EXPECT_GT(limits.total, limits.tryBytes);
}

TEST(RequestMemoryTest, ARequestThatTakesAllThatItMayIsOver) {
    RequestMemory memory(kLimits);
    EXPECT_LT(takenUntilRefused(memory, 1 << 20), 10U);
    EXPECT_TRUE(memory.isExhausted());
    EXPECT_TRUE(isMemoryExhausted());
    EXPECT_THROW(requireMemory(), PublishException);
}

TEST(RequestMemoryTest, RefusesOnceSinceDestructorsAllocate) {
    RequestMemory memory(kLimits);
    memory.beginTry(0);
    takenUntilRefused(memory, 1000);
    EXPECT_NO_THROW(memory.allocate(2 << 20));
    memory.endTry();
    EXPECT_FALSE(memory.isExhausted());
    memory.beginTry(0);
    EXPECT_THROW(memory.allocate(2 << 20), OutOfMemoryException);
}

TEST(RequestMemoryTest, ATryMayTakeMoreForALargerFile) {
    for (const std::size_t fileBytes : {0, 100000}) {
        RequestMemory memory(kLimits);
        memory.allocate(2 << 20);
        memory.beginTry(fileBytes);
        const std::size_t most = (1 << 20) + 32 * fileBytes;
        const std::size_t taken = 1000 * takenUntilRefused(memory, 1000);
        EXPECT_LT(taken, most);
        EXPECT_GT(taken, most * 9 / 10);
    }
}

TEST(RequestMemoryTest, WhatATryGivesBackDoesNotCount) {
    RequestMemory memory(kLimits);
    memory.beginTry(0);
    for (int count = 0; count < 10000; ++count) {
        memory.deallocate(memory.allocate(1000));
    }
    EXPECT_EQ(memory.taken(), 0U);
}

TEST(RequestMemoryTest, CountsTheLargeBlocksOfATryWhetherOrNotTheyAreGivenBack) {
    RequestMemory memory(kLimits);
    memory.beginTry(0);
    for (std::size_t count = 0; count < kLimits.largeBlocks; ++count) {
        memory.deallocate(memory.allocate(kLarge));
    }
    EXPECT_NO_THROW(memory.deallocate(memory.allocate(kLarge - 1)));
    EXPECT_THROW(memory.allocate(kLarge), OutOfMemoryException);
    memory.endTry();
    EXPECT_NO_THROW(memory.deallocate(memory.allocate(kLarge)));
    memory.beginTry(0);
    EXPECT_NO_THROW(memory.deallocate(memory.allocate(kLarge)));
}

TEST(RequestMemoryTest, TheTryOfAFileKnowsItsSizeAndEndsWithItsScope) {
    const TemporaryFolder folder;
    const std::u16string path = toUtf16(folder.write("a.dita", std::string(100000, ' ')));
    RequestMemory memory(kLimits);
    {
        const TryLimits limits(path);
        EXPECT_NO_THROW(memory.allocate(2 << 20));
        EXPECT_THROW(memory.allocate(3 << 20), OutOfMemoryException);
    }
    EXPECT_NO_THROW(memory.allocate(3 << 20));
    const TryLimits limits(folder.file16("none"));
    EXPECT_THROW(memory.allocate(2 << 20), OutOfMemoryException);
}

TEST(RequestMemoryTest, WithoutARequestATryHasNoLimits) {
    const TryLimits limits(u"/none");
    EXPECT_EQ(RequestMemory::current(), nullptr);
}

TEST(RequestMemoryTest, RefusesNothingWhileTheEngineStartsOrEnds) {
    RequestMemory memory(kLimits);
    memory.setUnlimited(true);
    EXPECT_NO_THROW(memory.allocate(20 << 20));
    memory.setUnlimited(false);
    EXPECT_THROW(memory.allocate(20 << 20), OutOfMemoryException);
}

/// From here on, for good, the system has no large block for the process.
void takeAddressSpace() {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_AS, &none);
}

TEST(RequestMemoryDeathTest, HalfOfTheReserveServesWithoutAnExceptionTheOtherHalfAfterOne) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "AddressSanitizer ends the process for it";
#endif
    EXPECT_EXIT(
        {
            constexpr std::size_t kBlock = 3 << 20;
            RequestMemory memory;
            takeAddressSpace();
            const bool isServed = takenUntilRefused(memory, kBlock) == 1 && isMemoryExhausted();
            const bool isServedAfter = takenUntilRefused(memory, kBlock) == 1;
            std::_Exit(isServed && isServedAfter ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(RequestMemoryDeathTest, TheReserveRefusesNothingWhileTheEngineStartsOrEnds) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "AddressSanitizer ends the process for it";
#endif
    EXPECT_EXIT(
        {
            RequestMemory memory;
            memory.setUnlimited(true);
            takeAddressSpace();
            std::_Exit(takenUntilRefused(memory, 3 << 20) == 2 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

// Beyond what any system has.
TEST(RequestMemoryTest, WhatTheSystemHasNotIsRefusedOnceAndComesFromTheReserveThen) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "AddressSanitizer ends the process for it";
#endif
    RequestMemory memory({SIZE_MAX, SIZE_MAX, SIZE_MAX});
    EXPECT_THROW(memory.allocate(kHuge), OutOfMemoryException);
    EXPECT_TRUE(memory.isExhausted());
    // The reserve hasn't that either.
    EXPECT_THROW(memory.allocate(kHuge), OutOfMemoryException);
    EXPECT_NO_THROW(memory.deallocate(memory.allocate(100)));
}

TEST(RequestMemoryTest, ServesItsOwnExceptions) {
    RequestMemory memory(kLimits);
    EXPECT_EQ(memory.getExceptionMemoryManager(), &memory);
}

}  // namespace
}  // namespace marrowpress
