#pragma once

#include <libxml/tree.h>

#include <memory>
#include <string_view>

/// What libxml2 hands out, with an owner, and its texts as others are.
namespace marrowpress {

struct FreeLibxmlText {
    void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};
using LibxmlText = std::unique_ptr<xmlChar, FreeLibxmlText>;

struct FreeLibxmlDocument {
    void operator()(xmlDoc* document) const noexcept { xmlFreeDoc(document); }
};
using LibxmlDocument = std::unique_ptr<xmlDoc, FreeLibxmlDocument>;

inline std::string_view asText(const xmlChar* text) {
    return text ? reinterpret_cast<const char*>(text) : std::string_view();
}

}  // namespace marrowpress
