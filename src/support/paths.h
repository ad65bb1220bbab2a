#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Lexical path arithmetic and the few questions to the file system.
///
/// Paths are UTF-16 and are read by one grammar on every system, so that
/// documents that were written elsewhere mean the same here:
///
/// - "/" and the backslash both separate; "/" is the one that is written.
/// - A root name is a letter and a colon, a device prefix of three characters
///   in front of a separator (as in `\\?\` and `\\.\`), or two separators and
///   a server name. Three separators at the start are no root name.
/// - A path is absolute when it begins with a separator, or with a letter, a
///   colon and a separator.
namespace marrowpress {

/// Whether `unit` separates the elements of a path.
constexpr bool isPathSeparator(char16_t unit) {
    return unit == u'/' || unit == u'\\';
}

bool isAbsolutePath(std::u16string_view path);

/// `path` with `second` appended; `second` alone when it is absolute or has another root name.
std::u16string joinPath(std::u16string_view path, std::u16string_view second);

/// The lexical normal form: no ".", no ".." behind a name, single separators, all of them "/".
///
/// An empty path stays empty, a path that cancels itself out becomes ".". Never asks the file
/// system, so that ".." behind a symbolic link is taken by its name.
std::u16string normalizePath(std::u16string_view path);

/// The normal form of `path`, which is relative, in the folder of the file at `base`: that file
/// taken as a folder that is left again, whatever the two are.
std::u16string besideFile(std::u16string_view base, std::u16string_view path);

/// The last element of `path` without its extension. A leading dot begins no extension, and a
/// colon ends the name.
std::u16string pathStem(std::u16string_view path);

/// The last element of `path`: what stands behind the last separator.
std::u16string_view pathFileName(std::u16string_view path);

/// `path` without its last element and the separators in front of it; a root stays.
std::u16string_view parentPath(std::u16string_view path);

/// Whether `path` stands below `folder` by its text. Both are in normal form; an empty folder is
/// the current one.
bool isBelow(std::u16string_view path, std::u16string_view folder);

/// Whether links lead the folder of `path`, which is below `folder` by its text, out of that. A
/// link in the place of `path` itself does not count: a file takes the link's place.
///
/// @throws std::filesystem::filesystem_error "absolute" for relative paths without a current
///         directory.
bool leadsOutOf(std::u16string_view path, std::u16string_view folder);

/// The normal form of `path` taken against the current directory. An empty path stays empty.
///
/// @throws std::filesystem::filesystem_error "absolute" when there is no current directory.
std::u16string absolutePath(std::u16string_view path);

/// Whether something of that name exists. A name that can't exist (too long, through a file, in
/// a loop of links) does not.
///
/// @throws std::filesystem::filesystem_error "exists" when the system won't say, such as for
///         want of permission.
bool pathExists(std::u16string_view path);

/// As `pathExists`, of the name itself: a link exists that leads to nothing.
bool entryExists(std::u16string_view path);

/// Whether a regular file stands at `path`, or a link, whatever it leads to. Never throws.
bool isReplaceable(std::u16string_view path) noexcept;

/// Whether `path` leads to something that is there but is no regular file: a directory, a
/// device, a pipe. Never throws; what can't be looked at isn't there.
bool isIrregularFile(std::u16string_view path) noexcept;

/// The system's reason, in UTF-8, why the file at `path` can't be read; empty when it can.
std::string unreadableReason(std::u16string_view path);

/// `path` up to the end of the first name in it that holds "#" or a backslash, where references are
/// cut, if there is something at the whole of `path`; else empty. Never throws.
std::u16string partThatCutsReferences(std::u16string_view path) noexcept;

/// For a path that was made from a reference, and whose backslashes are slashes since then: that
/// part of the file or folder with a backslash in its name that the reference was meant for. Empty
/// when there is none.
std::u16string partThatHadBackslash(std::u16string_view path) noexcept;

/// The path in the form of the standard library, its name in UTF-8.
std::filesystem::path nativePath(std::u16string_view path);

}  // namespace marrowpress
