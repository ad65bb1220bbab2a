#pragma once

#include <span>
#include <string_view>

namespace marrowpress {

/// The root of one of DITA's own document types.
struct RootType {
    std::string_view root;
    std::string_view publicId;
};

/// All that have a root element of their own and are no learning content.
std::span<const RootType> rootTypes();

/// The type of documents with that root element; null when DITA has none.
const RootType* rootTypeOf(std::string_view rootName);

/// Whether the file at `path`, with that root element, is a map.
bool isMap(std::string_view rootName, std::string_view path);

}  // namespace marrowpress
