#include "tests/support/failing_allocations.h"

#include <cerrno>
#include <cstdlib>
#include <utility>

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the C library's names

/// What the C library's own allocator is called beside the names that are taken here. Its `free`
/// stays in use.
extern "C" {
void* __libc_malloc(std::size_t size) noexcept;
void* __libc_calloc(std::size_t nmemb, std::size_t size) noexcept;
void* __libc_realloc(void* ptr, std::size_t size) noexcept;
void* __libc_memalign(std::size_t alignment, std::size_t size) noexcept;
}

namespace {

marrowpress::AllocationFault currentFault{};
bool isCounting = false;
std::size_t allocations = 0;

/// Counts an allocation, and says whether it fails.
bool fails() noexcept {
    if (!isCounting) {
        return false;
    }
    ++allocations;
    const bool isMeant = currentFault.isLasting ? allocations >= currentFault.number
                                                : allocations == currentFault.number;
    if (!isMeant || currentFault.number == 0) {
        return false;
    }
    errno = ENOMEM;
    return true;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) noexcept {
    return fails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t nmemb, std::size_t size) noexcept {
    return fails() ? nullptr : __libc_calloc(nmemb, size);
}

void* realloc(void* ptr, std::size_t size) noexcept {
    return fails() ? nullptr : __libc_realloc(ptr, size);
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return fails() ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return memalign(alignment, size);
}

int posix_memalign(void** memptr, std::size_t alignment, std::size_t size) noexcept {
    void* const found = memalign(alignment, size);
    if (!found) {
        return ENOMEM;
    }
    *memptr = found;
    return 0;
}
}

// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace marrowpress {

FailingAllocations::FailingAllocations(const AllocationFault& fault) noexcept {
    currentFault = fault;
    allocations = 0;
    isCounting = true;
}

FailingAllocations::~FailingAllocations() {
    isCounting = false;
}

std::size_t FailingAllocations::count() noexcept {
    return allocations;
}

UnfailingAllocations::UnfailingAllocations() noexcept
    : wasCounting_(std::exchange(isCounting, false)) {}

UnfailingAllocations::~UnfailingAllocations() {
    isCounting = wasCounting_;
}

}  // namespace marrowpress
