#pragma once

#include <cstddef>

/// Allocations of the whole process, libraries included, that fail when they are told to.
///
/// Stands in for malloc and its like, so that `new` and the engine's memory count as well. For one
/// thread.
namespace marrowpress {

struct AllocationFault {
    std::size_t number;      ///< which allocation fails, from 1 on; none where it is 0
    bool isLasting = false;  ///< whether all that follow fail as well
};

/// For the length of a scope allocations are counted, and one of them fails.
class FailingAllocations {
public:
    explicit FailingAllocations(const AllocationFault& fault) noexcept;
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;
    ~FailingAllocations();

    /// Those that were asked for so far, whether they failed or not.
    static std::size_t count() noexcept;
};

/// For the length of a scope nothing fails, and nothing is counted.
class UnfailingAllocations {
public:
    UnfailingAllocations() noexcept;
    UnfailingAllocations(const UnfailingAllocations&) = delete;
    UnfailingAllocations& operator=(const UnfailingAllocations&) = delete;
    ~UnfailingAllocations();

private:
    bool wasCounting_;
};

/// Which allocations are tried: from `first` on, each `step`-th.
struct AllocationSteps {
    std::size_t first = 1;
    std::size_t step = 1;
};

/// Calls `attempt` with one fault after the other, each at an allocation further on, until it has
/// none that could fail. `attempt` lets its allocations fail by a scope of its own.
///
/// @return how many faults there were
template <class Attempt>
std::size_t tryEachAllocation(bool isLasting, const Attempt& attempt,
                              const AllocationSteps& steps = {}) {
    std::size_t faults = 0;
    for (std::size_t number = steps.first;; number += steps.step) {
        attempt(AllocationFault{number, isLasting});
        if (FailingAllocations::count() < number) {
            return faults;
        }
        ++faults;
    }
}

}  // namespace marrowpress
