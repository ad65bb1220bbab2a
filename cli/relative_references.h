#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "cli/local_reference.h"
#include "cli/media_copies.h"
#include "cli/tag_references.h"

namespace marrowpress {

/// Makes the references in finished outputs relative, and has what they show or play copied where
/// that is asked for. Only values of attributes change, and of those only absolute paths.
class RelativeReferences {
public:
    /// @param sources  Absolute and normal; what is in this folder or below is a local file in any
    ///                 case.
    /// @param copies  Where copies of media go; without one references lead to where these are.
    ///                Must outlive this object.
    RelativeReferences(std::filesystem::path sources, MediaCopies* copies)
        : sources_(std::move(sources)), copies_(copies) {}

    /// Rewrites the file at `path`, which then is complete at any time. `folder`, absolute and
    /// normal, is where the references begin.
    ///
    /// @throws FileFailure when it can't be read or written, or a copy can't be made; the file is
    ///         as it was then.
    void rewriteFile(const std::filesystem::path& path, std::string_view folder) const;

    /// The bytes of a start tag as they are to be; empty when it stays as it is.
    ///
    /// @throws FileFailure
    std::optional<std::string> rewrittenTag(std::string_view bytes, std::string_view folder) const;

private:
    std::optional<std::string> rewrittenValue(const TagReference& reference,
                                              std::string_view folder) const;
    bool isLocal(const LocalReference& reference) const;
    std::optional<LocalReference> toCopy(const LocalReference& reference) const;

    std::filesystem::path sources_;
    MediaCopies* copies_;
};

}  // namespace marrowpress
