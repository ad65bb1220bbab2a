#pragma once

#include <string_view>

/// The names of what a run writes. All are ASCII.
namespace marrowpress {

/// The key space document, in the folder of a composite and in "outputDir" of a flat book. It
/// stands there while the run lasts.
inline constexpr std::string_view kKeySpaceDocName = "KeyspaceDoc.ditamap";

/// Behind the name of a file that is being replaced, until its successor is complete.
inline constexpr std::string_view kAsideSuffix = "_tmp";

/// The extension of a flat book's components.
inline constexpr std::string_view kComponentExtension = ".qs";

/// The document element and the public identifier of a composite, and of a component.
inline constexpr std::string_view kCompositeRootName = "dita";
inline constexpr std::string_view kCompositePublicId = "-//OASIS//DTD DITA Composite//EN";

/// The document element and the public identifier of the key space document.
inline constexpr std::string_view kKeySpaceRootName = "map";
inline constexpr std::string_view kKeySpacePublicId = "-//OASIS//DTD DITA Map//EN";

}  // namespace marrowpress
