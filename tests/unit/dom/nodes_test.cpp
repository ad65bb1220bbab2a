#include "dom/nodes.h"

#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using AsElementTest = XmlTest;

TEST_F(AsElementTest, GivesElementsAlone) {
    const ParsedXml parsed("<p>text</p>");
    EXPECT_EQ(asElement(parsed.root()), parsed.root());
    EXPECT_EQ(asElement(parsed.root()->getFirstChild()), nullptr);
    EXPECT_EQ(asElement(static_cast<const xercesc::DOMNode*>(nullptr)), nullptr);
}

}  // namespace
}  // namespace marrowpress
