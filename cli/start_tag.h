#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace marrowpress {

/// An attribute as it stands in its tag. Views into the tag's bytes.
struct TagAttribute {
    std::string_view name;
    std::string_view value;  ///< Between the quotes, with its references.
    char quote = '"';
};

/// A start tag, or the tag of an empty element. Views into its bytes.
struct StartTag {
    std::string_view name;
    std::vector<TagAttribute> attributes;
};

/// What stands in the tag with these bytes, from "<" to ">". Empty when it is not well-formed.
std::optional<StartTag> parseStartTag(std::string_view bytes);

/// The text that an attribute's value stands for, with its references undone. Empty when one of
/// them is neither to a character nor to an entity that XML itself defines.
std::optional<std::string> textOfValue(std::string_view value);

/// The value that stands for `text`, between two of `quote`.
std::string valueOfText(std::string_view text, char quote);

/// The text of the attribute; empty when there is none, or its text is not known.
std::string attributeText(const StartTag& tag, std::string_view name);

}  // namespace marrowpress
