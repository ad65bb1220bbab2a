#include "findings/document_types.h"

#include <algorithm>
#include <array>

namespace marrowpress {
namespace {

constexpr std::array kRootTypes{
    RootType{"map", "-//OASIS//DTD DITA Map//EN"},
    RootType{"bookmap", "-//OASIS//DTD DITA BookMap//EN"},
    RootType{"topic", "-//OASIS//DTD DITA Topic//EN"},
    RootType{"concept", "-//OASIS//DTD DITA Concept//EN"},
    RootType{"task", "-//OASIS//DTD DITA Task//EN"},
    RootType{"reference", "-//OASIS//DTD DITA Reference//EN"},
    RootType{"glossentry", "-//OASIS//DTD DITA Glossary Entry//EN"},
    RootType{"glossgroup", "-//OASIS//DTD DITA Glossary Group//EN"},
    RootType{"troubleshooting", "-//OASIS//DTD DITA Troubleshooting//EN"},
    RootType{"dita", "-//OASIS//DTD DITA Composite//EN"},
    RootType{"subjectScheme", "-//OASIS//DTD DITA Subject Scheme Map//EN"},
};

}  // namespace

std::span<const RootType> rootTypes() {
    return kRootTypes;
}

const RootType* rootTypeOf(std::string_view rootName) {
    const auto* const found =
        std::find_if(kRootTypes.begin(), kRootTypes.end(),
                     [rootName](const RootType& type) { return type.root == rootName; });
    return found == kRootTypes.end() ? nullptr : found;
}

bool isMap(std::string_view rootName, std::string_view path) {
    constexpr std::array<std::string_view, 5> kMaps{"map", "bookmap", "subjectScheme",
                                                    "learningMap", "learningBookmap"};
    return path.ends_with(".ditamap") ||
           std::find(kMaps.begin(), kMaps.end(), rootName) != kMaps.end();
}

}  // namespace marrowpress
