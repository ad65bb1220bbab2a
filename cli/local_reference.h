#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace marrowpress {

/// A reference to a file by its absolute path, as a run writes it.
///
/// Where the reference's author wrote a path with escapes, a run has undone them, but not in a mere
/// name: "/docs/a%20b.png" may be either the file of that name or that of "a b.png".
struct LocalReference {
    std::string path;
    std::string fragment;  ///< With its "#"; may be empty.
    bool hasEscapes;       ///< The path is that of a URI, and else that of a file.
};

/// The parts of a reference; empty where it is relative, a URI, or a path of another system. Asks
/// the file system where the text alone does not say what it means.
std::optional<LocalReference> localReference(std::string_view text);

/// A reference to the file at the absolute `path`.
LocalReference referenceToFile(std::string path, std::string fragment);

/// The path of the file that the reference means.
std::string filePathOf(const LocalReference& reference);

/// The reference as a relative URI, for a document in `folder`, which must be absolute and normal.
/// All is taken by its spelling; no link is followed.
///
/// Characters that a URI can't hold are escaped, but for letters of other alphabets. What is only a
/// name and has escapes begins with "./": a run takes escapes in a mere name for part of it.
std::string relativeUri(const LocalReference& reference, std::string_view folder);

}  // namespace marrowpress
