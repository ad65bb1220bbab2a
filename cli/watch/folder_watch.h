#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace marrowpress {

/// By folder, each without links in its path, the names in it that decide on what some paths lead
/// to: folders, links and files, down to where a path ends or nothing is there any more.
using WatchedNames = std::map<std::string, std::set<std::string>>;

/// @param paths  Absolute. Links in them are followed, and their targets decide, too.
WatchedNames watchedNames(const std::vector<std::string>& paths);

/// Hears of changes in folders by inotify(7), which tells what this machine does, and not what
/// others do to folders of the network.
class FolderWatch {
public:
    FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;
    ~FolderWatch();

    /// Hears of these names from now on, and of no others.
    ///
    /// @return  False when the system allows no more watches, or none at all; nothing is heard
    /// then.
    bool follow(const WatchedNames& names);

    /// Readable when there is something to hear; negative where there are no watches.
    int descriptor() const noexcept { return descriptor_; }

    /// Whether what has been heard since the last call may be about the names. Does not wait.
    bool takeEvents();

private:
    void forgetOthers(const std::set<int>& kept);
    bool isWanted(int watch, std::uint32_t mask, const char* name) const;

    int descriptor_;
    std::unordered_map<int, std::set<std::string>> namesOf_;  ///< By watch.
};

}  // namespace marrowpress
