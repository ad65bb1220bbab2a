#include "dom/element_node_filter.h"

#include "support/xerces_ptr.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using xercesc::DOMNodeFilter;

TEST(FilterActionTest, HasTheValuesOfTheEngine) {
    EXPECT_EQ(static_cast<int>(DOMNodeFilter::FILTER_ACCEPT), 1);
    EXPECT_EQ(static_cast<int>(DOMNodeFilter::FILTER_REJECT), 2);
    EXPECT_EQ(static_cast<int>(DOMNodeFilter::FILTER_SKIP), 3);
}

/// Selects "a", and rejects "r".
class LetterFilter final : public ElementNodeFilter {
protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override {
        const std::u16string_view name = domText(element.getTagName());
        return name == u"r" ? FILTER_REJECT : acceptIf(name == u"a");
    }
};

using ElementNodeFilterTest = XmlTest;

TEST_F(ElementNodeFilterTest, AsksAboutElements) {
    const LetterFilter filter;
    EXPECT_EQ(filter.acceptNode(ParsedXml("<a/>").root()), DOMNodeFilter::FILTER_ACCEPT);
    EXPECT_EQ(filter.acceptNode(ParsedXml("<b/>").root()), DOMNodeFilter::FILTER_SKIP);
    EXPECT_EQ(filter.acceptNode(ParsedXml("<r/>").root()), DOMNodeFilter::FILTER_REJECT);
}

TEST_F(ElementNodeFilterTest, RejectsWhatIsNone) {
    const LetterFilter filter;
    const ParsedXml parsed("<a>text<!--c--><?a?></a>");
    for (const xercesc::DOMNode* node = parsed.root()->getFirstChild(); node;
         node = node->getNextSibling()) {
        EXPECT_EQ(filter.acceptNode(node), DOMNodeFilter::FILTER_REJECT) << printed(*node);
    }
    EXPECT_EQ(filter.acceptNode(&parsed.document()), DOMNodeFilter::FILTER_REJECT);
    EXPECT_EQ(filter.acceptNode(nullptr), DOMNodeFilter::FILTER_REJECT);
}

TEST_F(ElementNodeFilterTest, SelectsWhatItAcceptsAlone) {
    const LetterFilter filter;
    EXPECT_TRUE(selects(filter, ParsedXml("<a/>").root()));
    EXPECT_FALSE(selects(filter, ParsedXml("<b/>").root()));
    EXPECT_FALSE(selects(filter, ParsedXml("<r/>").root()));
    EXPECT_FALSE(selects(filter, nullptr));
}

}  // namespace
}  // namespace marrowpress
