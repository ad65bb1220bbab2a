#include "support/paths.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "support/file_descriptor.h"
#include "support/text.h"
#include "support/work_counts.h"

namespace marrowpress {
namespace {

constexpr char16_t kSeparator = u'/';

bool isAsciiLetter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

bool hasDriveLetter(std::u16string_view path) {
    return path.size() >= 2 && isAsciiLetter(path[0]) && path[1] == u':';
}

/// Whether `path` begins with `\\?\`, `\\.\` or `\??\`, with one separator at its end.
bool hasDevicePrefix(std::u16string_view path) {
    if (path.size() < 4 || !isPathSeparator(path[0]) || !isPathSeparator(path[3]) ||
        (path.size() > 4 && isPathSeparator(path[4]))) {
        return false;
    }
    const bool isUnc = isPathSeparator(path[1]) && (path[2] == u'?' || path[2] == u'.');
    return isUnc || (path[1] == u'?' && path[2] == u'?');
}

std::size_t rootNameLength(std::u16string_view path) {
    if (hasDriveLetter(path)) {
        return 2;
    }
    if (hasDevicePrefix(path)) {
        return 3;
    }
    const bool isServer = path.size() >= 3 && isPathSeparator(path[0]) &&
                          isPathSeparator(path[1]) && !isPathSeparator(path[2]);
    if (!isServer) {
        return 0;
    }
    const auto* end = std::find_if(path.begin() + 2, path.end(), isPathSeparator);
    return static_cast<std::size_t>(end - path.begin());
}

/// A normal form that grows name by name behind a root.
class NormalForm {
public:
    NormalForm(std::u16string root, bool hasRootDirectory)
        : text_(std::move(root)), start_(text_.size()), hasRootDirectory_(hasRootDirectory) {}

    /// An empty name stands for a separator at the end.
    void add(std::u16string_view name);
    std::u16string take();

private:
    bool isEmpty() const { return text_.size() == start_; }
    bool endsUpwards() const { return lastName() == u".."; }
    std::size_t lastNameStart() const;
    std::u16string_view lastName() const {
        return std::u16string_view(text_).substr(lastNameStart());
    }
    void push(std::u16string_view name);
    void pop();

    std::u16string text_;
    std::size_t start_;
    bool hasRootDirectory_;
    bool endsInSeparator_ = false;
};

void NormalForm::add(std::u16string_view name) {
    endsInSeparator_ = false;
    const bool leadsUp = name == u"..";
    if (name.empty() || name == u".") {
        endsInSeparator_ = true;
    } else if (leadsUp && !isEmpty() && !endsUpwards()) {
        pop();
        endsInSeparator_ = true;
    } else if (!leadsUp || !hasRootDirectory_) {
        push(name);
    }
}

std::u16string NormalForm::take() {
    if (endsInSeparator_ && !isEmpty() && !endsUpwards()) {
        text_ += kSeparator;
    }
    return std::move(text_);
}

std::size_t NormalForm::lastNameStart() const {
    const std::size_t separator = text_.rfind(kSeparator);
    return separator == std::u16string::npos ? start_ : std::max(separator + 1, start_);
}

void NormalForm::push(std::u16string_view name) {
    if (!isEmpty()) {
        text_ += kSeparator;
    }
    text_ += name;
}

void NormalForm::pop() {
    const std::size_t start = lastNameStart();
    text_.resize(start == start_ ? start : start - 1);
}

/// Whether `path` is absolute, of nothing but names with one "/" in front of each, and so its own
/// normal form: most are, and the question costs a tenth of making it.
bool isPlainPath(std::u16string_view path) {
    if (path.size() < 2 || path.front() != kSeparator || path[1] == u'?') {
        return false;
    }
    std::size_t start = 1;
    for (std::size_t position = 1; position <= path.size(); ++position) {
        const bool isAtEnd = position == path.size();
        if (!isAtEnd && !isPathSeparator(path[position])) {
            continue;
        }
        const std::u16string_view name = path.substr(start, position - start);
        if (name.empty() || name == u"." || name == u".." ||
            (!isAtEnd && path[position] != kSeparator)) {
            return false;
        }
        start = position + 1;
    }
    return true;
}

/// `path` with all links followed, as far as it is there; empty when the system can't tell.
std::u16string realPath(std::u16string_view path) {
    std::error_code error;
    const std::filesystem::path found = std::filesystem::weakly_canonical(
        nativePath(absolutePath(path.empty() ? u"." : path)), error);
    return toUtf16(std::string_view(found.native()));
}

/// Whether a file of that status is there.
bool isThere(std::filesystem::file_status status, std::error_code error, std::u16string_view path) {
    ++WorkCounts::total().fileQuestions;
    if (status.type() == std::filesystem::file_type::not_found) {
        return false;
    }
    for (const std::errc impossibleName :
         {std::errc::filename_too_long, std::errc::too_many_symbolic_link_levels,
          std::errc::not_a_directory, std::errc::invalid_argument}) {
        if (error == impossibleName) {
            return false;
        }
    }
    if (error) {
        throw std::filesystem::filesystem_error("exists", nativePath(path), error);
    }
    return true;
}

}  // namespace

bool isAbsolutePath(std::u16string_view path) {
    if (hasDriveLetter(path)) {
        return path.size() > 2 && isPathSeparator(path[2]);
    }
    return !path.empty() && isPathSeparator(path[0]);
}

std::u16string joinPath(std::u16string_view path, std::u16string_view second) {
    const std::size_t secondRoot = rootNameLength(second);
    const std::u16string_view rootName = path.substr(0, rootNameLength(path));
    if (isAbsolutePath(second) || (secondRoot > 0 && second.substr(0, secondRoot) != rootName)) {
        return std::u16string(second);
    }
    std::u16string joined(path);
    const bool isShortRootName = rootName.size() == path.size() && path.size() < 3;
    if (!path.empty() && !isPathSeparator(path.back()) && !isShortRootName) {
        joined += kSeparator;
    }
    joined += second.substr(secondRoot);
    return joined;
}

std::u16string normalizePath(std::u16string_view path) {
    if (path.empty()) {
        return {};
    }
    if (isPlainPath(path)) {
        return std::u16string(path);
    }
    const std::size_t rootLength = rootNameLength(path);
    std::u16string root;
    root.reserve(path.size() + 1);
    root.append(path.substr(0, rootLength));
    std::replace(root.begin(), root.end(), u'\\', kSeparator);

    std::u16string_view rest = path.substr(rootLength);
    const bool hasRootDirectory = !rest.empty() && isPathSeparator(rest[0]);
    if (hasRootDirectory) {
        root += kSeparator;
    }
    NormalForm normal(std::move(root), hasRootDirectory);
    while (!rest.empty()) {
        const auto* const end = std::find_if(rest.begin(), rest.end(), isPathSeparator);
        const auto* const next = std::find_if_not(end, rest.end(), isPathSeparator);
        if (end != rest.begin()) {
            normal.add(std::u16string_view(rest.begin(), end));
        }
        if (next == rest.end() && end != rest.end()) {
            normal.add({});
        }
        rest = std::u16string_view(next, rest.end());
    }
    std::u16string text = normal.take();
    return text.empty() ? u"." : text;
}

std::u16string besideFile(std::u16string_view base, std::u16string_view path) {
    std::u16string beside;
    beside.reserve(base.size() + path.size() + 5);
    const std::size_t folderEnd = base.rfind(kSeparator);
    if (isPlainPath(base) && folderEnd > 0) {
        // The same with less to undo.
        beside.append(base.substr(0, folderEnd + 1));
    } else {
        beside.append(base).append(u"/..//");
    }
    return normalizePath(beside.append(path));
}

std::u16string_view pathFileName(std::u16string_view path) {
    return path.substr(path.find_last_of(u"/\\") + 1);
}

std::u16string pathStem(std::u16string_view path) {
    std::u16string_view name = pathFileName(path);
    name = name.substr(0, name.find(u':'));
    const std::size_t dot = name.rfind(u'.');
    if (name.size() <= 1 || name == u".." || dot == std::u16string_view::npos || dot == 0) {
        return std::u16string(name);
    }
    return std::u16string(name.substr(0, dot));
}

std::u16string_view parentPath(std::u16string_view path) {
    const std::size_t rootLength = rootNameLength(path);
    std::size_t end = path.size() - std::min(pathFileName(path).size(), path.size() - rootLength);
    while (end > rootLength && isPathSeparator(path[end - 1])) {
        --end;
    }
    const bool hasRootDirectory = path.size() > rootLength && isPathSeparator(path[rootLength]);
    return path.substr(0, end == rootLength && hasRootDirectory ? end + 1 : end);
}

bool isBelow(std::u16string_view path, std::u16string_view folder) {
    if (folder.empty()) {
        return !isAbsolutePath(path) && !path.starts_with(u"../");
    }
    return path.size() > folder.size() && path.starts_with(folder) &&
           (folder.ends_with(u'/') || path[folder.size()] == u'/');
}

bool leadsOutOf(std::u16string_view path, std::u16string_view folder) {
    const std::u16string_view parent = parentPath(path);
    return parent != folder && !isBelow(realPath(parent).append(u"/name"), realPath(folder));
}

std::u16string absolutePath(std::u16string_view path) {
    if (path.empty()) {
        return {};
    }
    if (isAbsolutePath(path)) {
        return normalizePath(path);
    }
    std::error_code error;
    const std::filesystem::path current = std::filesystem::current_path(error);
    if (error) {
        throw std::filesystem::filesystem_error("absolute", nativePath(path), error);
    }
    return normalizePath(joinPath(toUtf16(std::string_view(current.native())), path));
}

bool pathExists(std::u16string_view path) {
    std::error_code error;
    return isThere(std::filesystem::status(nativePath(path), error), error, path);
}

bool entryExists(std::u16string_view path) {
    std::error_code error;
    return isThere(std::filesystem::symlink_status(nativePath(path), error), error, path);
}

bool isReplaceable(std::u16string_view path) noexcept try {
    std::error_code error;
    const std::filesystem::file_status status =
        std::filesystem::symlink_status(nativePath(path), error);
    return std::filesystem::is_regular_file(status) || std::filesystem::is_symlink(status);
} catch (...) {
    return false;
}

bool isIrregularFile(std::u16string_view path) noexcept try {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(nativePath(path), error);
    return !error && std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
} catch (...) {
    return false;
}

std::string unreadableReason(std::u16string_view path) {
    // Not blocking: it may be a pipe that nobody writes to.
    const FileDescriptor descriptor(
        ::open(nativePath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!descriptor) {
        return std::generic_category().message(errno);
    }
    struct stat status {};
    const bool isRegular = ::fstat(descriptor.get(), &status) == 0 && S_ISREG(status.st_mode);
    return isRegular ? std::string() : std::string("not a regular file");
}

std::u16string partThatCutsReferences(std::u16string_view path) noexcept try {
    const std::size_t sign = path.find_first_of(u"#\\");
    std::error_code error;
    if (sign == std::u16string_view::npos || !std::filesystem::exists(nativePath(path), error)) {
        return {};
    }
    return std::u16string(path.substr(0, path.find(u'/', sign)));
} catch (...) {
    return {};
}

std::u16string partThatHadBackslash(std::u16string_view path) noexcept try {
    std::u16string several(path);
    for (std::size_t slash = path.rfind(u'/'); slash != std::u16string_view::npos && slash > 0;
         slash = path.rfind(u'/', slash - 1)) {
        std::u16string one(path);
        one[slash] = u'\\';
        several[slash] = u'\\';
        for (const std::u16string& meant : {one, several}) {
            std::u16string part = partThatCutsReferences(meant);
            if (!part.empty()) {
                return part;
            }
        }
    }
    return {};
} catch (...) {
    return {};
}

std::filesystem::path nativePath(std::u16string_view path) {
    return std::filesystem::path(toUtf8(path));
}

}  // namespace marrowpress
