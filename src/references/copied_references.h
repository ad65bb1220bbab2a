#pragma once

#include <cstddef>

namespace marrowpress {

/// What a request spends on references that stand in copied content.
///
/// Copies that hold references to what holds further copies double with each step: forty
/// references, none of which leads back to itself, would take longer than anybody waits. Honest
/// publications have thousands of such references.
class CopiedReferences {
public:
    static CopiedReferences& instance();

    /// One more is followed.
    ///
    /// @throws PublishException behind the 1,000,000th of the request: the run is to end.
    void follow();

    /// Its target was looked for among so many elements.
    ///
    /// @throws PublishException behind the 300,000,000th of the request.
    void search(std::size_t elements);

    /// Whether one of the limits was met.
    bool isSpent() const noexcept;

private:
    std::size_t followed_ = 0;
    std::size_t searched_ = 0;
};

}  // namespace marrowpress
