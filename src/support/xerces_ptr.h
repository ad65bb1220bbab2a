#pragma once

#include <memory>
#include <string_view>
#include <type_traits>
#include <xercesc/util/XercesDefs.hpp>

namespace marrowpress {

static_assert(std::is_same_v<XMLCh, char16_t>, "DOM text is written as u\"\" literals");

/// Ends what Xerces allocated in the way Xerces asks for.
struct XercesRelease {
    template <class Object>
    void operator()(Object* object) const noexcept {
        object->release();
    }
};

/// Owner of what a `DOMImplementation` gave away: a document, doctype,
/// serializer or output.
///
/// Never holds a node that has a parent: that belongs to its document. Must
/// end before the `XmlSession` does.
template <class T>
using XercesPtr = std::unique_ptr<T, XercesRelease>;

/// Text as the DOM gives it; null reads as empty. The view ends when the node that the text
/// came from changes.
inline std::u16string_view domText(const XMLCh* text) {
    return text ? std::u16string_view(text) : std::u16string_view();
}

}  // namespace marrowpress
