#include "findings/file_hints.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>
#include <unordered_set>
#include <utility>

#include "findings/letter_case.h"
#include "findings/nearest.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Whether two paths to one file are two spellings, and not two names of it.
bool isSpelling(const struct stat& status, const std::string& left, const std::string& right) {
    if (status.st_nlink == 1) {
        return true;
    }
    std::error_code error;
    const std::string canonicalLeft = fs::canonical(left, error).string();
    const std::string canonicalRight = fs::canonical(right, error).string();
    // Where letter case is ignored, the canonical path keeps the one that was asked for.
    return foldedCase(canonicalLeft) == foldedCase(canonicalRight);
}

}  // namespace

std::optional<FileHint> FileHints::find(const std::string& missing) {
    const auto known = answers_.find(missing);
    return known != answers_.end() ? known->second
                                   : answers_.emplace(missing, search(missing)).first->second;
}

std::optional<FileHint> FileHints::search(const std::string& missing) {
    fs::path path = fs::path(missing).lexically_normal();
    if (!path.has_filename()) {
        path = path.parent_path();
    }
    fs::path found = path.root_path();
    bool isLetterCaseOnly = true;
    const fs::path relative = path.relative_path();
    for (auto part = relative.begin(); part != relative.end(); ++part) {
        std::error_code ignored;
        if (fs::exists(found / *part, ignored)) {
            found /= *part;
            continue;
        }
        const Folder& folder = folderAt(found.string());
        const Names& names = std::next(part) == relative.end() ? folder.files : folder.folders;
        const auto sameLetters = names.byFoldedCase.find(foldedCase(part->string()));
        if (sameLetters != names.byFoldedCase.end()) {
            found /= sameLetters->second;
            continue;
        }
        // One name may be wrong; where two are, something else was meant.
        const std::optional<std::string> nearest =
            isLetterCaseOnly ? nearestIn(names, part->string()) : std::nullopt;
        if (!nearest) {
            return std::nullopt;
        }
        found /= *nearest;
        isLetterCaseOnly = false;
    }
    if (found == path) {
        return std::nullopt;
    }
    return FileHint{found.string(), isLetterCaseOnly};
}

FileHints::Names FileHints::namesOf(std::vector<std::string> all) {
    std::sort(all.begin(), all.end());
    Names names;
    for (const std::string& name : all) {
        names.byFoldedCase.emplace(foldedCase(name), name);
    }
    names.all = std::move(all);
    return names;
}

FileHints::Folder FileHints::readFolder(const std::string& path) {
    std::vector<std::string> folders;
    std::vector<std::string> files;
    std::error_code error;
    for (fs::directory_iterator entry(path, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code ignored;
        const fs::file_status status = entry->status(ignored);
        if (fs::is_directory(status)) {
            folders.push_back(entry->path().filename().string());
        } else if (fs::is_regular_file(status)) {
            files.push_back(entry->path().filename().string());
        }
    }
    return {namesOf(std::move(folders)), namesOf(std::move(files))};
}

const FileHints::Folder& FileHints::folderAt(const std::string& path) {
    const auto known = folders_.find(path);
    return known != folders_.end() ? known->second
                                   : folders_.emplace(path, readFolder(path)).first->second;
}

std::optional<std::string> FileHints::nearestIn(const Names& names, const std::string& name) {
    if (names.all.size() > comparisonsLeft_) {
        return std::nullopt;
    }
    comparisonsLeft_ -= names.all.size();
    return nearestName(name, names.all);
}

std::vector<SameFile> findSameFiles(const std::vector<std::string>& paths) {
    std::map<std::pair<dev_t, ino_t>, std::vector<std::string>> known;
    std::unordered_set<std::string> seen;
    std::vector<SameFile> same;
    for (const std::string& path : paths) {
        struct stat status {};
        if (!seen.insert(path).second || stat(path.c_str(), &status) != 0) {
            continue;
        }
        std::vector<std::string>& names = known[{status.st_dev, status.st_ino}];
        const auto earlier = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
            return isSpelling(status, name, path);
        });
        if (earlier == names.end()) {
            names.push_back(path);
        } else {
            same.push_back({path, *earlier});
        }
    }
    return same;
}

}  // namespace marrowpress
