#include "xml/request_memory.h"

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <new>
#include <system_error>
#include <utility>
#include <xercesc/util/OutOfMemoryException.hpp>

#include "support/paths.h"
#include "support/publish_exception.h"

namespace marrowpress {
namespace {

constexpr std::size_t kReserve = 8 << 20;
constexpr std::size_t kLargeBlock = 64 << 10;
constexpr std::size_t kBytesPerFileByte = 32;
constexpr std::size_t kOfSystem = 16;  ///< what the C library has for each block beside its bytes

RequestMemory* currentMemory = nullptr;

std::size_t machineMemory() {
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0
               ? static_cast<std::size_t>(pages) * static_cast<std::size_t>(pageSize)
               : SIZE_MAX;
}

}  // namespace

/// Stands in front of each block, which keeps the strictest alignment by it.
struct alignas(std::max_align_t) RequestMemory::Block {
    Block* earlier;
    Block* later;
};

/// What a block costs the machine: content models are made of millions that are smaller than what
/// stands in front of them.
std::size_t RequestMemory::costOf(std::size_t size) noexcept {
    return std::min(size, SIZE_MAX / 2) + sizeof(Block) + kOfSystem;
}

/// The same of one that is there.
std::size_t RequestMemory::costOf(Block& block) noexcept {
    return ::malloc_usable_size(&block) + kOfSystem;
}

RequestMemory::Limits RequestMemory::usualLimits() {
    constexpr std::size_t kMost = std::size_t{4} << 30;
    constexpr std::size_t kTryBytes = 256 << 20;
    constexpr std::size_t kLargeBlocks = 300000;
    return {std::min(kMost, machineMemory() / 4 * 3), kTryBytes, kLargeBlocks};
}

RequestMemory* RequestMemory::current() noexcept {
    return currentMemory;
}

RequestMemory::RequestMemory(const Limits& limits)
    : limits_(limits),
      earlier_(currentMemory),
      bound_(limits.total),
      reserve_(new std::byte[kReserve]) {
    currentMemory = this;
}

RequestMemory::~RequestMemory() {
    while (last_) {
        std::free(std::exchange(last_, last_->earlier));
    }
    currentMemory = earlier_;
}

void* RequestMemory::allocate(XMLSize_t size) {
    const std::size_t cost = costOf(size);
    if (taken_ + cost > bound_ || (size >= kLargeBlock && isOneLargeBlockTooMany())) {
        isExhausted_ |= taken_ + cost > limits_.total;
        refuse();
    }
    if (void* const memory = fromSystem(size)) {
        return memory;
    }
    isExhausted_ = true;
    return fromReserve(size);
}

void RequestMemory::deallocate(void* memory) {
    if (!memory || isOfReserve(memory)) {
        return;
    }
    Block* const block = static_cast<Block*>(memory) - 1;
    (block->later ? block->later->earlier : last_) = block->earlier;
    if (block->earlier) {
        block->earlier->later = block->later;
    }
    taken_ -= costOf(*block);
    std::free(block);
}

void RequestMemory::beginTry(std::size_t fileBytes) noexcept {
    isInTry_ = true;
    hasRefused_ = false;
    takenBeforeTry_ = taken_;
    largeBlocks_ = 0;
    // What is more than the limit of all is as good as that.
    tryLimit_ = limits_.tryBytes + std::min(fileBytes, limits_.total) * kBytesPerFileByte;
    setBound();
}

void RequestMemory::endTry() noexcept {
    isInTry_ = false;
    hasRefused_ = false;
    setBound();
}

void RequestMemory::setUnlimited(bool isUnlimited) noexcept {
    isUnlimited_ = isUnlimited;
    setBound();
}

void RequestMemory::setBound() noexcept {
    if (isUnlimited_ || hasRefused_) {
        bound_ = SIZE_MAX;
    } else if (isInTry_) {
        bound_ = std::min(limits_.total, takenBeforeTry_ + tryLimit_);
    } else {
        bound_ = limits_.total;
    }
}

bool RequestMemory::isOneLargeBlockTooMany() noexcept {
    ++largeBlocks_;
    return isInTry_ && bound_ != SIZE_MAX && largeBlocks_ > limits_.largeBlocks;
}

void RequestMemory::refuse() {
    hasRefused_ = true;
    setBound();
    throw xercesc::OutOfMemoryException();
}

void* RequestMemory::fromSystem(std::size_t size) noexcept {
    void* const memory = size < SIZE_MAX / 2 ? std::malloc(sizeof(Block) + size) : nullptr;
    if (!memory) {
        return nullptr;
    }
    auto* const block = new (memory) Block{last_, nullptr};
    if (last_) {
        last_->later = block;
    }
    last_ = block;
    taken_ += costOf(*block);
    return block + 1;
}

/// Nothing of it is given back: it lasts for what has to be ended, and for no more.
void* RequestMemory::fromReserve(std::size_t size) {
    constexpr std::size_t kAlignment = alignof(std::max_align_t);
    constexpr std::size_t kForDestructors = kReserve / 2;
    const bool isShort =
        size > kReserve - kForDestructors || reserveUsed_ > kReserve - kForDestructors - size;
    if (isShort && !isUnlimited_ && !std::exchange(isReserveRefused_, true)) {
        refuse();
    }
    if (size > kReserve - reserveUsed_) {
        throw xercesc::OutOfMemoryException();
    }
    void* const memory = reserve_.get() + reserveUsed_;
    reserveUsed_ += (size + kAlignment - 1) / kAlignment * kAlignment;
    return memory;
}

bool RequestMemory::isOfReserve(const void* memory) const noexcept {
    const auto* const byte = static_cast<const std::byte*>(memory);
    return std::greater_equal<>()(byte, reserve_.get()) &&
           std::less<>()(byte, reserve_.get() + kReserve);
}

TryLimits::TryLimits(const std::u16string& path) {
    if (currentMemory) {
        std::error_code unknown;
        const std::uintmax_t size = std::filesystem::file_size(nativePath(path), unknown);
        currentMemory->beginTry(unknown ? 0 : size);
    }
}

TryLimits::~TryLimits() {
    if (currentMemory) {
        currentMemory->endTry();
    }
}

bool isMemoryExhausted() noexcept {
    return currentMemory && currentMemory->isExhausted();
}

void requireMemory() {
    if (isMemoryExhausted()) {
        throw PublishException();
    }
}

}  // namespace marrowpress
