#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "cli/start_tag.h"

namespace marrowpress {

/// What a reference is there for.
enum class ReferenceUse : std::uint8_t {
    kLink,   ///< It leads somewhere, or pulls content in.
    kMedia,  ///< What it names is shown or played where the element stands.
};

/// An attribute that may hold the path of a local file.
struct TagReference {
    const TagAttribute* attribute;  ///< One of the tag's.
    ReferenceUse use;
    /// A path in it is a reference in any case. Else it may mean something on a server, or to a
    /// player, unless it names a file.
    bool isCertain;
};

/// The attributes of `tag` in which a run writes references, in their order: those that lead
/// somewhere or pull content, the data of objects, and the values of their parameters.
std::vector<TagReference> referencesOf(const StartTag& tag);

/// Whether the path ends as those of images, sound and film do.
bool hasMediaExtension(std::string_view path);

}  // namespace marrowpress
