#include "dom/nesting_depth.h"

#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

class NestingDepthTest : public XmlTest {
protected:
    /// Appends a chain of elements below `parent` and gives its last one.
    DOMElement* appendChain(DOMElement* parent, std::size_t length) const {
        for (std::size_t level = 0; level < length; ++level) {
            DOMElement* const child = parsed_.document().createElement(u"e");
            parent->appendChild(child);
            parent = child;
        }
        return parent;
    }

    DOMElement* root() const { return parsed_.root(); }

    const ParsedXml parsed_{"<root/>"};
};

// The root is the first level.
constexpr std::size_t kDeepestChain = kDeepestNesting - 1;

TEST_F(NestingDepthTest, TheLimitIsFiveThousandLevels) {
    EXPECT_EQ(kDeepestNesting, 5000U);
}

TEST_F(NestingDepthTest, NothingIsNotTooDeep) {
    EXPECT_FALSE(isNestedTooDeeply(nullptr));
    EXPECT_FALSE(isNestedTooDeeply(root()));
}

TEST_F(NestingDepthTest, TheDeepestNestingIsAllowedAndOneMoreIsNot) {
    DOMElement* const deepest = appendChain(root(), kDeepestChain);
    EXPECT_FALSE(isNestedTooDeeply(root()));
    appendChain(deepest, 1);
    EXPECT_TRUE(isNestedTooDeeply(root()));
}

TEST_F(NestingDepthTest, TextAndCommentsAreNoLevel) {
    DOMElement* const deepest = appendChain(root(), kDeepestChain);
    deepest->appendChild(parsed_.document().createTextNode(u"text"));
    deepest->appendChild(parsed_.document().createComment(u"comment"));
    EXPECT_FALSE(isNestedTooDeeply(root()));
}

TEST_F(NestingDepthTest, ManySiblingsAreNotDeep) {
    for (std::size_t index = 0; index < 2 * kDeepestNesting; ++index) {
        appendChain(root(), 2);
    }
    EXPECT_FALSE(isNestedTooDeeply(root()));
}

TEST_F(NestingDepthTest, EachBranchIsMeasuredOnItsOwn) {
    for (int branch = 0; branch < 3; ++branch) {
        appendChain(root(), kDeepestChain);
    }
    EXPECT_FALSE(isNestedTooDeeply(root()));
    appendChain(root(), kDeepestChain + 1);
    EXPECT_TRUE(isNestedTooDeeply(root()));
}

TEST_F(NestingDepthTest, ABranchDeepInsideIsFoundBehindAnother) {
    DOMElement* const middle = appendChain(root(), 3000);
    appendChain(middle, 1000);
    DOMElement* const last = appendChain(middle, kDeepestChain - 3000);
    EXPECT_FALSE(isNestedTooDeeply(root()));
    appendChain(last, 1);
    EXPECT_TRUE(isNestedTooDeeply(root()));
}

TEST_F(NestingDepthTest, OnlyWhatIsBelowTheRootCounts) {
    DOMElement* const first = appendChain(root(), 1);
    DOMElement* const second = appendChain(root(), 1);
    appendChain(first, 10);
    appendChain(second, kDeepestNesting);
    EXPECT_FALSE(isNestedTooDeeply(first));
    EXPECT_TRUE(isNestedTooDeeply(second));
    EXPECT_TRUE(isNestedTooDeeply(root()));
    EXPECT_FALSE(isNestedTooDeeply(second->getFirstElementChild()));
}

TEST_F(NestingDepthTest, ACopyAddsToTheDepthOfItsPlace) {
    const ParsedXml other("<other><e><e/></e></other>");
    DOMElement* const deepest = appendChain(root(), kDeepestNesting - 4);
    EXPECT_FALSE(wouldNestTooDeeply(deepest, *other.root()));
    EXPECT_TRUE(wouldNestTooDeeply(appendChain(deepest, 1), *other.root()));
    EXPECT_FALSE(wouldNestTooDeeply(&parsed_.document(), *other.root()));
    DOMElement* const full = appendChain(root(), kDeepestChain);
    EXPECT_TRUE(wouldNestTooDeeply(full, *other.root()->getFirstElementChild()));
    EXPECT_FALSE(wouldNestTooDeeply(full->getParentNode(), *full));
}

}  // namespace
}  // namespace marrowpress
