#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "findings/finding.h"

struct _xmlDoc;

namespace marrowpress {

/// The tag name of a profile's root.
inline constexpr std::string_view kProfileRoot = "val";

/// The tag name of a rule.
inline constexpr std::string_view kRuleElement = "prop";

/// An element of a DITAVAL file, as it stands there. All texts are UTF-8.
struct ProfileElement {
    FindingPlace place;  ///< The file as a whole for what an entity brings.
    std::string name;    ///< Tag name, with its prefix.
    /// Names with their prefixes, and values, in their order.
    std::vector<std::pair<std::string, std::string>> attributes;

    /// The value of an attribute, empty when the element doesn't have it.
    std::string_view valueOf(std::string_view attribute) const;
};

/// What a `prop` says.
struct ProfileRule {
    FindingPlace place;
    std::string attribute;  ///< "audience"; empty for the default.
    std::string value;      ///< "trade"; empty for all values.
    std::string action;     ///< As it stands there.
};

/// A DITAVAL file that could be read, whatever its root is.
struct Profile {
    std::vector<ProfileElement> elements;  ///< In document order, the root first.
    std::vector<ProfileRule> rules;        ///< In document order.
    std::shared_ptr<_xmlDoc> document;     ///< Its elements are those above, in the same order.

    const ProfileElement& root() const { return elements.front(); }
};

/// Why a DITAVAL file could not be read.
struct ProfileFault {
    enum class Kind : std::uint8_t {
        kUnreadable,     ///< `reason`: the system's, or "not a regular file".
        kNotWellFormed,  ///< `reason`: the parser's; the place is where it stopped.
    };

    Kind kind = Kind::kUnreadable;
    FindingPlace place;
    std::string reason;
};

/// Reads the DITAVAL file at an absolute path. Neither its DTD nor any other entity outside the
/// file is read; a reference to one stands for nothing.
std::variant<Profile, ProfileFault> readProfile(const std::string& path);

}  // namespace marrowpress
