#pragma once

#include <cstddef>
#include <map>
#include <unordered_map>
#include <utility>
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

    /// Whether `reference` was copied.
    bool isCopy(const Element& reference) const { return originOf(reference).followed != kNone; }

    /// Whether following `reference` to `start` would never end.
    bool isEndless(const Element& reference, const Element& start) const;

    /// The originals of the references that lead to each other where `isEndless` is true, the
    /// reference's own first.
    std::vector<const Element*> ringOf(const Element& reference, const Element& start) const;

    /// Begins to follow `reference`; what is recorded next was copied on its account.
    void follow(const Element& reference);

    /// `copy` stands for `original`, which is a member of a range, at the place behind the
    /// reference.
    void recordRangeMember(const Element& original, const Element& copy);

    /// The references in the subtree of `copy`, a child of an element that got the content of
    /// `owner`, are copies of those in the subtree of `original`. Both have the same shape.
    void recordContent(Element& original, Element& copy, const Element& owner);

    /// `element` got the reference of `start`, on which the walk won't stand again: what copies it
    /// from now on copies that reference.
    void recordTakenReference(const Element& element, const Element& start);

    /// References in the subtree of `copy` that were not recorded before came through keys: each
    /// time that the same key reference is copied, it gives the same.
    void recordPulledContent(Element& copy);

private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    struct Origin {
        const Element* source;      ///< the first of all originals
        const Element* copiedFrom;  ///< whose content it came with; null for a range member
        std::size_t followed;       ///< on whose account, as an index; `kNone` for no copy
    };

    Origin originOf(const Element& element) const;
    const Element& recordedHost(const Element& element, const Element& root) const;

    std::unordered_map<const Element*, Origin> origins_;
    std::vector<Origin> followed_;
    /// For what a key reference gives: its first original, by the original of the key reference and
    /// the place in what it gives.
    std::map<std::pair<const Element*, std::size_t>, const Element*> pulled_;
};

}  // namespace marrowpress
