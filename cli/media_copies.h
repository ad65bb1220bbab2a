#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace marrowpress {

/// The copies of media in one folder, each under its own name. Where that is taken by another file
/// a number comes behind it: "logo-2.png". Nothing that is there is replaced.
class MediaCopies {
public:
    /// `folder` is absolute, and there.
    explicit MediaCopies(std::filesystem::path folder) : folder_(std::move(folder)) {}

    /// The path of the copy of the file at `path`. Whatever leads to the same file, the copy is the
    /// same, and a file of the folder that has the same content is taken for it. Links are
    /// followed. Empty when no regular file is there.
    ///
    /// @throws FileFailure when the file can't be read, or the copy can't be made. Neither it nor
    ///         part of it is there then.
    std::optional<std::filesystem::path> copyOf(const std::filesystem::path& path);

    /// The paths of all copies.
    std::vector<std::string> paths() const;

private:
    using FileNumber = std::pair<dev_t, ino_t>;

    std::filesystem::path place(const std::filesystem::path& source);

    std::filesystem::path folder_;
    std::map<FileNumber, std::filesystem::path> copies_;
    std::map<std::string, int> numbers_;  ///< The last of each name, without differences of case.
    std::set<std::string> names_;         ///< Of all copies, without differences of case.
};

}  // namespace marrowpress
