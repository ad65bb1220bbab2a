#include "findings/xml_elements.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <memory>

namespace marrowpress {
namespace {

/// The tag names of a document's elements, in their order, each with a blank behind it.
std::string namesIn(const std::string& text) {
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, 0), xmlFreeDoc);
    std::string names;
    for (xmlNode* element = xmlDocGetRootElement(document.get()); element;
         element = nextElement(*element)) {
        names += tagNameOf(*element) + ' ';
    }
    return names;
}

TEST(NextElementTest, GoesThroughTheDocumentInItsOrder) {
    EXPECT_EQ(namesIn("<a/>"), "a ");
    EXPECT_EQ(namesIn("<a>t<b><c/></b><!--n--><d/><e><f><g/></f></e><?p?>t</a>"), "a b c d e f g ");
}

TEST(TagNameTest, HasItsPrefix) {
    EXPECT_EQ(namesIn("<a xmlns='u' xmlns:p='v'><p:b/><c/></a>"), "a p:b c ");
}

}  // namespace
}  // namespace marrowpress
