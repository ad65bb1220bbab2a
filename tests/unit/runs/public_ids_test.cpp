#include "runs/public_ids.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>

#include "host/catalog_resolver.h"
#include "tests/support/chosen_language.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class PublicIdsTest : public testing::Test {
protected:
    /// Writes a catalog that knows one public identifier, and gives its path.
    std::string catalog(const std::string& name, const std::string& publicId) const {
        return folder.write(name, R"(<catalog xmlns="urn:oasis:names:tc:entity:xmlns:xml:catalog">)"
                                  R"(<public publicId=")" +
                                      publicId + R"(" uri=")" + name + R"(.dtd"/></catalog>)");
    }

    TemporaryFolder folder;
};

TEST_F(PublicIdsTest, FilesAreThoseThatAreNamed) {
    EXPECT_EQ(catalogFiles({"/a/../b.xml", "file:///c.xml"}),
              (std::vector<fs::path>{"/b.xml", "/c.xml"}));
}

TEST_F(PublicIdsTest, WithoutANameTheDefaultCatalogsAreUsed) {
    std::vector<fs::path> expected;
    for (const std::string& name : defaultCatalogs()) {
        expected.push_back(catalogPath(name).lexically_normal());
    }
    EXPECT_FALSE(expected.empty());
    EXPECT_EQ(catalogFiles({}), expected);
}

TEST_F(PublicIdsTest, ACatalogThatIsNotThereIsShownAsSuch) {
    const ChosenLanguage english(Language::kEnglish);
    const std::string good = catalog("good.xml", "a");
    const std::string none = folder.file("none.xml");
    EXPECT_EQ(shownCatalogs({good, none, "file://" + none}),
              (std::vector{good, none + " (which is not there)",
                           "file://" + none + " (which is not there)"}));
}

TEST_F(PublicIdsTest, ACatalogOfTheEnvironmentThatCannotBeUsedIsToldUnlessOthersAreNamed) {
    const char* const value = std::getenv("XML_CATALOG_FILES");
    const std::optional<std::string> saved =
        value ? std::optional<std::string>(value) : std::nullopt;
    const std::string good = catalog("good.xml", "a");
    const std::string bad = folder.write("bad.xml", "<catalog>");
    unsetenv("XML_CATALOG_FILES");
    EXPECT_EQ(findListedCatalogFault({}), "");
    setenv("XML_CATALOG_FILES", good.c_str(), 1);
    EXPECT_EQ(findListedCatalogFault({}), "");
    setenv("XML_CATALOG_FILES", (good + " " + bad).c_str(), 1);
    EXPECT_EQ(findListedCatalogFault({}), bad + ": not well-formed XML");
    EXPECT_EQ(findListedCatalogFault({good}), "");
    if (saved) {
        setenv("XML_CATALOG_FILES", saved->c_str(), 1);
    } else {
        unsetenv("XML_CATALOG_FILES");
    }
}

TEST_F(PublicIdsTest, TheFirstFaultIsTold) {
    const std::string good = catalog("good.xml", "a");
    EXPECT_EQ(findCatalogOptionFault(std::vector<std::string>{}), std::nullopt);
    EXPECT_EQ(findCatalogOptionFault(std::vector{good, good}), std::nullopt);
    const auto fault =
        findCatalogOptionFault(std::vector{good, folder.file("none.xml"), folder.file("x")});
    ASSERT_TRUE(fault);
    EXPECT_TRUE(fault->starts_with("--catalog: ")) << *fault;
    EXPECT_NE(fault->find(folder.file("none.xml")), std::string::npos) << *fault;
}

TEST_F(PublicIdsTest, IdentifiersAreAnsweredFromAllCatalogs) {
    const auto resolve = makePublicIdResolver({catalog("a.xml", "a"), catalog("b.xml", "b")});
    EXPECT_EQ(resolve("a"), folder.file("a.xml.dtd"));
    EXPECT_EQ(resolve("b"), folder.file("b.xml.dtd"));
    EXPECT_EQ(resolve("c"), std::nullopt);
}

}  // namespace
}  // namespace marrowpress
