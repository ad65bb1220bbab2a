#include "cli/version_text.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(VersionTextTest, NamesTheProgramAndItsLibraries) {
    const std::string text = versionText();
    EXPECT_TRUE(text.starts_with("marrowpress ")) << text;
    for (const char* const library : {"Xerces-C 3.", "ICU 7", "Boost 1.", "libxml2 2."}) {
        EXPECT_NE(text.find(library), std::string::npos) << library;
    }
}

TEST(VersionTextTest, EachLibraryHasAVersion) {
    ASSERT_EQ(libraryVersions().size(), 5U);
    EXPECT_EQ(libraryVersions().front().first, "marrowpress");
    for (const auto& [name, version] : libraryVersions()) {
        EXPECT_NE(version.find('.'), std::string::npos) << name;
    }
}

}  // namespace
}  // namespace marrowpress
