#include "cli/media_copies.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>

#include "cli/file_failure.h"
#include "cli/new_file.h"
#include "findings/letter_case.h"
#include "findings/regular_file.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

using Block = std::array<char, 65536>;

/// "logo.png", "logo-2.png", "logo-3.png"
std::string numbered(const fs::path& name, int number) {
    return number == 1
               ? name.string()
               : name.stem().string() + "-" + std::to_string(number) + name.extension().string();
}

/// A file that media are copied from, or that may be a copy already.
class MediaFile {
public:
    /// @throws FileFailure when it can't be read.
    explicit MediaFile(const fs::path& path) : path_(path), file_(path.string()) {
        if (!file_.isOpen()) {
            throw FileFailure(FileAction::kRead, path.string(), file_.fault());
        }
    }

    std::size_t size() const {
        struct stat status {};
        return fstat(file_.descriptor(), &status) == 0 ? static_cast<std::size_t>(status.st_size)
                                                       : 0;
    }

    /// The next bytes: a whole block unless it is the last.
    std::string_view read(Block& block) const {
        std::size_t size = 0;
        while (size < block.size()) {
            const ssize_t count =
                ::read(file_.descriptor(), block.data() + size, block.size() - size);
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count < 0) {
                throw FileFailure::ofLastCall(FileAction::kRead, path_.string());
            }
            if (count == 0) {
                break;
            }
            size += static_cast<std::size_t>(count);
        }
        return {block.data(), size};
    }

private:
    fs::path path_;
    RegularFile file_;
};

bool haveSameBytes(const MediaFile& left, const MediaFile& right) {
    Block leftBlock;
    Block rightBlock;
    while (true) {
        const std::string_view bytes = left.read(leftBlock);
        if (bytes != right.read(rightBlock)) {
            return false;
        }
        if (bytes.size() < leftBlock.size()) {
            return true;
        }
    }
}

/// Whether what is at `path` is a file that has the content of `source`.
bool hasContentOf(const fs::path& source, const fs::path& path) {
    std::error_code ignored;
    if (fs::equivalent(source, path, ignored)) {
        return true;
    }
    if (!fs::is_regular_file(path, ignored) || access(path.c_str(), R_OK) != 0) {
        return false;
    }
    const MediaFile wanted(source);
    const MediaFile there(path);
    return wanted.size() == there.size() && haveSameBytes(wanted, there);
}

void copyBytes(const MediaFile& source, NewFile& target) {
    Block block;
    // No more than there are now: a file may grow for as long as it is read.
    for (std::size_t left = source.size(); left > 0;) {
        const std::string_view bytes = source.read(block).substr(0, left);
        if (bytes.empty()) {
            break;
        }
        target.write(bytes);
        left -= bytes.size();
    }
    target.close();
}

/// False when something is at `path` already.
bool copyTo(const fs::path& path, const fs::path& source) {
    const MediaFile file(source);
    NewFile copy(passingPath(path.parent_path()), path);
    copyBytes(file, copy);
    return copy.moveTo(path);
}

/// Whether the content of `source` is at `path` in the end: nothing that is there is replaced.
bool isOrGetsAt(const fs::path& path, const fs::path& source) {
    std::error_code ignored;
    const bool isFree = !fs::exists(fs::symlink_status(path, ignored));
    return (isFree && copyTo(path, source)) || hasContentOf(source, path);
}

}  // namespace

std::optional<fs::path> MediaCopies::copyOf(const fs::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    const FileNumber number(status.st_dev, status.st_ino);
    const auto known = copies_.find(number);
    if (known != copies_.end()) {
        return known->second;
    }
    return copies_.emplace(number, place(path)).first->second;
}

fs::path MediaCopies::place(const fs::path& source) {
    const fs::path name = source.filename();
    // Names that differ by case alone are one in other systems, where a result may be sent.
    int& number = numbers_[foldedCase(name.string())];
    while (true) {
        ++number;
        fs::path path = folder_ / numbered(name, number);
        const std::string folded = foldedCase(path.filename().string());
        if (!names_.contains(folded) && isOrGetsAt(path, source)) {
            names_.insert(folded);
            return path;
        }
    }
}

std::vector<std::string> MediaCopies::paths() const {
    std::vector<std::string> paths;
    for (const auto& [number, path] : copies_) {
        paths.push_back(path.string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace marrowpress
