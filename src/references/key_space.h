#pragma once

#include <string_view>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

/// The keys of a publication, and what each of them stands for.
///
/// The definitions are children of the document element of a map document:
/// each has one key name as its "keys", which is an ID. There is one flat name
/// space, and names differ by case.
class KeySpace {
public:
    /// `document` belongs to the `DocumentStore` and must outlive the key space.
    explicit KeySpace(xercesc::DOMDocument& document) : document_(&document) {}

    xercesc::DOMDocument& document() const noexcept { return *document_; }

    /// The definition of exactly this name, as `reference`, the element that refers through the
    /// key, is to see it; null if there is none. Today every reference sees the same keys.
    xercesc::DOMElement* find(std::u16string_view keyName,
                              const xercesc::DOMElement& reference) const;

    bool defines(std::u16string_view keyName) const;

    /// Makes `definition`, an element of the document that has no parent yet, that of `keyName`,
    /// which is not defined so far.
    void add(std::u16string_view keyName, xercesc::DOMElement& definition);

    /// Whether no definition refers to a key any more, as far as anybody has looked since the last
    /// change.
    bool areChainsResolved() const noexcept { return areChainsResolved_; }
    void noteThatChainsAreResolved() noexcept { areChainsResolved_ = true; }

    /// Called for whatever changes the document: references may have come into it.
    void noteChange() noexcept { areChainsResolved_ = false; }

private:
    xercesc::DOMElement* elementOf(std::u16string_view keyName) const;

    xercesc::DOMDocument* document_;
    bool areChainsResolved_ = false;
};

}  // namespace marrowpress
