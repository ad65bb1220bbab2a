#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace marrowpress {

/// The file that somebody may have meant who named one that is not there.
struct FileHint {
    std::string path;               ///< Absolute.
    bool isLetterCaseOnly = false;  ///< It differs in nothing but letter case.

    friend bool operator==(const FileHint&, const FileHint&) = default;
};

/// Looks for files beside those that are missing. What it has read of a folder, and what it has
/// found, it keeps.
class FileHints {
public:
    /// For the absolute path of a file that is not there: the one whose name, or the names of whose
    /// folders, differ in letter case only, else one with a name in which little differs. After
    /// very many names have been compared only letter case is looked at.
    std::optional<FileHint> find(const std::string& missing);

private:
    /// Some of the names in a folder.
    struct Names {
        std::vector<std::string> all;  ///< Sorted.
        std::unordered_map<std::string, std::string> byFoldedCase;
    };
    struct Folder {
        Names folders;
        Names files;
    };

    std::optional<FileHint> search(const std::string& missing);

    static Names namesOf(std::vector<std::string> all);
    static Folder readFolder(const std::string& path);

    const Folder& folderAt(const std::string& path);
    std::optional<std::string> nearestIn(const Names& names, const std::string& name);

    std::unordered_map<std::string, Folder> folders_;
    std::unordered_map<std::string, std::optional<FileHint>> answers_;
    std::size_t comparisonsLeft_ = 20000;
};

/// A path that leads to the file of another one.
struct SameFile {
    std::string path;
    std::string earlier;

    friend bool operator==(const SameFile&, const SameFile&) = default;
};

/// Of absolute paths in the order in which they were met those that lead to a file which an earlier
/// one leads to, by a link or by letter case, each once. Two names that a file has by itself, as
/// hard links, are two files.
std::vector<SameFile> findSameFiles(const std::vector<std::string>& paths);

}  // namespace marrowpress
