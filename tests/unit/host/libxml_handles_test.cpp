#include "host/libxml_handles.h"

#include <gtest/gtest.h>

#include <string_view>

namespace marrowpress {
namespace {

// That everything is given back is for LeakSanitizer to find.

TEST(LibxmlHandlesTest, TextsGoThereAndBack) {
    const LibxmlText text(xmlStrdup(asXml("Größe")));
    EXPECT_EQ(asText(text.get()), "Größe");
    EXPECT_EQ(asText(nullptr), "");
}

TEST(LibxmlHandlesTest, AReaderOwnsTheDocumentThatWasAskedFor) {
    constexpr std::string_view kXml = "<a id='one'><b/></a>";
    const LibxmlReader reader(
        xmlReaderForMemory(kXml.data(), static_cast<int>(kXml.size()), nullptr, nullptr, 0));
    ASSERT_TRUE(reader);
    ASSERT_EQ(xmlTextReaderRead(reader.get()), 1);
    ASSERT_TRUE(xmlTextReaderCurrentDoc(reader.get()));
    EXPECT_EQ(asText(xmlTextReaderConstName(reader.get())), "a");
    EXPECT_EQ(attributeOf(*reader, "id"), "one");
    EXPECT_EQ(attributeOf(*reader, "class"), "");
}

}  // namespace
}  // namespace marrowpress
