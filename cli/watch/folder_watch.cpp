#include "cli/watch/folder_watch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// As many as the system follows.
constexpr unsigned kMostLinks = 40;

constexpr std::uint32_t kNameEvents =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ATTRIB;
constexpr std::uint32_t kContentEvents = IN_MODIFY | IN_CLOSE_WRITE;
constexpr std::uint32_t kOwnEvents = IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
/// The folder is not the one any more that was watched, or something was not heard.
constexpr std::uint32_t kUncertainEvents =
    IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_Q_OVERFLOW;

/// Walks along paths, each folder once.
class NameWalk {
public:
    void add(const fs::path& path) {
        const std::optional<fs::path> folder = enter(path.parent_path(), 0);
        if (folder && path.has_filename()) {
            addIn(*folder, path.filename(), 0);
        }
    }

    WatchedNames take() { return std::move(names_); }

private:
    /// The folder at `path` without links; empty when there is none.
    std::optional<fs::path> enter(const fs::path& path, unsigned links) {
        if (!path.has_relative_path()) {
            return path;
        }
        const auto known = folders_.find(path.string());
        if (known != folders_.end()) {
            return known->second;
        }
        std::optional<fs::path> result = enter(path.parent_path(), links);
        if (result && path.has_filename() && path.filename() != ".") {
            result = path.filename() == ".." ? result->parent_path()
                                             : addIn(*result, path.filename(), links);
            std::error_code ignored;
            if (result && !fs::is_directory(*result, ignored)) {
                result.reset();
            }
        }
        folders_[path.string()] = result;
        return result;
    }

    /// What the name in the folder leads to; empty when nothing is there.
    std::optional<fs::path> addIn(const fs::path& folder, const fs::path& name, unsigned links) {
        names_[folder.string()].insert(name.string());
        const fs::path path = folder / name;
        std::error_code error;
        const fs::file_status status = fs::symlink_status(path, error);
        if (!fs::exists(status)) {
            return std::nullopt;
        }
        if (!fs::is_symlink(status)) {
            return path;
        }
        const fs::path target = folder / fs::read_symlink(path, error);
        if (error || links >= kMostLinks) {
            return std::nullopt;
        }
        std::optional<fs::path> targetFolder = enter(target.parent_path(), links + 1);
        if (!targetFolder || !target.has_filename()) {
            return targetFolder;
        }
        return addIn(*targetFolder, target.filename(), links + 1);
    }

    WatchedNames names_;
    std::unordered_map<std::string, std::optional<fs::path>> folders_;
};

/// Folders below it tell of themselves when they go. So where there are no other names nothing else
/// is heard: much may go on in "/tmp", and wake a watch that has nothing to do.
std::uint32_t eventsFor(const fs::path& folder, const std::set<std::string>& names) {
    for (const std::string& name : names) {
        std::error_code ignored;
        if (fs::symlink_status(folder / name, ignored).type() != fs::file_type::directory) {
            return kNameEvents | kContentEvents | kOwnEvents;
        }
    }
    return kOwnEvents;
}

}  // namespace

WatchedNames watchedNames(const std::vector<std::string>& paths) {
    NameWalk walk;
    for (const std::string& path : paths) {
        walk.add(path);
    }
    return walk.take();
}

FolderWatch::FolderWatch() : descriptor_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

FolderWatch::~FolderWatch() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

bool FolderWatch::follow(const WatchedNames& names) {
    std::unordered_map<int, std::set<std::string>> now;
    std::set<int> kept;
    for (const auto& [folder, wanted] : names) {
        const int watch = inotify_add_watch(descriptor_, folder.c_str(), eventsFor(folder, wanted));
        if (watch >= 0) {
            now[watch].insert(wanted.begin(), wanted.end());
            kept.insert(watch);
        } else if (errno != ENOENT && errno != ENOTDIR && errno != EACCES) {
            forgetOthers({});
            return false;
        }
    }
    forgetOthers(kept);
    namesOf_ = std::move(now);
    return true;
}

void FolderWatch::forgetOthers(const std::set<int>& kept) {
    for (const auto& [watch, names] : namesOf_) {
        if (!kept.contains(watch)) {
            inotify_rm_watch(descriptor_, watch);
        }
    }
    namesOf_.clear();
}

bool FolderWatch::takeEvents() {
    constexpr std::size_t kBufferSize = 65536;
    alignas(inotify_event) std::array<char, kBufferSize> buffer{};
    bool isAnyWanted = false;
    for (;;) {
        const ssize_t size = read(descriptor_, buffer.data(), buffer.size());
        if (size <= 0) {
            return isAnyWanted;
        }
        for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            const char* const name = event.len > 0 ? buffer.data() + at + sizeof event : "";
            isAnyWanted |= isWanted(event.wd, event.mask, name);
            at += sizeof event + event.len;
        }
    }
}

bool FolderWatch::isWanted(int watch, std::uint32_t mask, const char* name) const {
    if ((mask & kUncertainEvents) != 0) {
        return true;
    }
    const auto entry = namesOf_.find(watch);
    return entry != namesOf_.end() && entry->second.contains(name);
}

}  // namespace marrowpress
