#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include "cli/removal_on_signal.h"
#include "findings/finding.h"

namespace marrowpress {

/// A run would give something else in a private folder than in its place.
class NeedsItsPlace : public std::runtime_error {
public:
    NeedsItsPlace() : std::runtime_error("the composite can only be made in its place") {}
};

/// A private folder beside the place of a composite, in which it is made. It is held by a lock, and
/// goes at the end and by a signal; one whose process was killed is removed by the next batch.
class AsideComposite {
public:
    /// @param place  Absolute; its folder is there.
    /// @throws FileFailure when the folder cannot be made.
    explicit AsideComposite(std::filesystem::path place);
    AsideComposite(const AsideComposite&) = delete;
    AsideComposite& operator=(const AsideComposite&) = delete;
    ~AsideComposite();

    /// Where the composite is made. No file is there yet.
    const std::filesystem::path& path() const noexcept { return path_; }
    const std::filesystem::path& place() const noexcept { return place_; }

    /// Gives the composite its place, in one step.
    ///
    /// @throws FileFailure
    void moveToPlace() const;

    /// Whether what was written tells of the private folder.
    bool isTold() const;

    /// Told as of the place.
    std::string asOfPlace(std::string text) const;
    Finding asOfPlace(Finding finding) const;

private:
    std::filesystem::path place_;
    std::filesystem::path folder_;
    std::filesystem::path path_;
    std::optional<RemovalOnSignal> removal_;
    int lock_ = -1;
};

/// Removes the private folders in `folder` that nobody holds any more.
void removeLeftAside(const std::filesystem::path& folder);

}  // namespace marrowpress
