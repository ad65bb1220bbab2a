#include "host/fatal_catalog.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

struct CatalogCase {
    const char* name;
    const char* entries;
    bool isFatal;
};

constexpr CatalogCase kCatalogCases[] = {
    {"None", "", false},
    {"One", "<nextCatalog catalog='a.xml'/>", false},
    {"Two", "<nextCatalog catalog='a.xml'/><nextCatalog catalog='b%20c.xml'/>", false},
    {"TheSameTwice", "<nextCatalog catalog='a.xml'/><nextCatalog catalog='a.xml'/>", false},
    {"AnEmptyOne", "<nextCatalog catalog='a.xml'/><nextCatalog catalog=''/>", false},
    {"OneWithoutAttribute", "<nextCatalog/>", false},
    {"TwoWithoutAttribute", "<nextCatalog/><nextCatalog/>", false},
    {"OneThatIsNoUri", "<nextCatalog catalog='a b'/>", false},
    {"OneBehindAnotherEntry", "<public publicId='a' uri='b'/><nextCatalog/>", false},
    {"WithoutAttributeBehindAnother", "<nextCatalog catalog='a.xml'/><nextCatalog/>", true},
    {"NoUriBehindAnother", "<nextCatalog catalog='a.xml'/><nextCatalog catalog='b c.xml'/>", true},
    {"InGroups", "<group><nextCatalog catalog='a.xml'/></group><group><nextCatalog/></group>",
     true},
};

class FatalCatalogTest : public testing::TestWithParam<CatalogCase> {};

TEST_P(FatalCatalogTest, IsKnown) {
    const TemporaryFolder folder;
    const std::string text = "<catalog xmlns='urn:oasis:names:tc:entity:xmlns:xml:catalog'>" +
                             std::string(GetParam().entries) + "</catalog>";
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, 0),
        &xmlFreeDoc);
    ASSERT_TRUE(document);
    EXPECT_EQ(isFatalCatalog(*document), GetParam().isFatal);

    const int file = open(folder.write("c.xml", text).c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(isFatalCatalog(file), GetParam().isFatal);
    close(file);
}

INSTANTIATE_TEST_SUITE_P(Of, FatalCatalogTest, testing::ValuesIn(kCatalogCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(FatalCatalogFileTest, WhatIsNoXmlIsNone) {
    const TemporaryFolder folder;
    const int file = open(folder.write("c", "no XML").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_FALSE(isFatalCatalog(file));
    close(file);
    EXPECT_FALSE(isFatalCatalog(-1));
}

}  // namespace
}  // namespace marrowpress
