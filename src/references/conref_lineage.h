#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>
#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

/// Where the copies of one run over content references came from, so that
/// references that would copy each other without end are found.
///
/// A reference is endless in two cases, and in no finite one:
///
/// - it points to an element that it stands in a copy of: each further copy
///   would hold the reference again;
/// - it is itself a copy of a reference that led to it: what happened between
///   the two would happen again.
///
/// Holds pointers to elements and never looks into them.
class ConrefLineage {
public:
    using Element = xercesc::DOMElement;

    /// Whether following `reference` to `start` would never end.
    bool isEndless(const Element& reference, const Element& start) const;

    /// Begins to follow `reference`; what is recorded next was copied on its account.
    void follow(const Element& reference);

    /// `copy` stands for `original`, which is a member of a range, at the place behind the
    /// reference.
    void recordRangeMember(const Element& original, const Element& copy);

    /// The references in the subtree of `copy`, a child of an element that got the content of
    /// `owner`, are copies of those in the subtree of `original`. Both have the same shape.
    void recordContent(Element& original, Element& copy, const Element& owner);

private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    struct Origin {
        const Element* source;      ///< the first of all originals
        const Element* copiedFrom;  ///< whose content it came with; null for a range member
        std::size_t followed;       ///< on whose account, as an index; `kNone` for no copy
    };

    Origin originOf(const Element& element) const;

    std::unordered_map<const Element*, Origin> origins_;
    std::vector<Origin> followed_;
};

}  // namespace marrowpress
