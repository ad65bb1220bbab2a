#include "dom/element_walker.h"

#include <pthread.h>

#include "references/node_filters.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::DOMNodeFilter;

/// Does what the attribute "do" of an element says, and keeps the ids of those that it was asked
/// about, in order.
class ScriptedFilter final : public xercesc::DOMNodeFilter {
public:
    FilterAction acceptNode(const xercesc::DOMNode* node) const override {
        const DOMElement* const element = asElement(node);
        if (!element) {
            asked_ += "(no element)";
            return FILTER_REJECT;
        }
        asked_ += asked_.empty() ? "" : " ";
        asked_ += attribute(*element, "id");
        const std::string action = attribute(*element, "do");
        return action == "skip" ? FILTER_SKIP : action == "reject" ? FILTER_REJECT : FILTER_ACCEPT;
    }

    const std::string& asked() const noexcept { return asked_; }

private:
    mutable std::string asked_;
};

/// Goes on with `walker` to its end; the ids of what it gives.
std::string rest(ElementWalker& walker) {
    std::vector<DOMElement*> elements;
    while (DOMElement* const element = walker.nextNode()) {
        elements.push_back(element);
    }
    return idsOf(elements);
}

struct WalkCase {
    const char* name;
    const char* xml;
    const char* given;
    const char* asked;
};

constexpr WalkCase kWalkCases[] = {
    {"DocumentOrder", "<p id='r'><p id='a'><p id='a1'/></p><p id='b'/></p>", "r a a1 b",
     "r a a1 b"},
    {"RootAlone", "<p id='r'/>", "r", "r"},
    {"SeveralLevelsUp",
     "<p id='r'><p id='a'><p id='b'><p id='c'/></p></p><p id='d'/><p id='e'><p id='f'/></p></p>",
     "r a b c d e f", "r a b c d e f"},
    {"SkippedElement", "<p id='r'><p id='a' do='skip'><p id='a1'/></p><p id='b'/></p>", "r a1 b",
     "r a a1 b"},
    {"SkippedLeaf", "<p id='r'><p id='a' do='skip'/><p id='b'/></p>", "r b", "r a b"},
    {"RejectedElement",
     "<p id='r'><p id='a' do='reject'><p id='a1'><p id='a2'/></p></p><p id='b'/></p>", "r b",
     "r a b"},
    {"RejectedLast", "<p id='r'><p id='a'/><p id='b' do='reject'><p id='b1'/></p></p>", "r a",
     "r a b"},
    {"RejectedBelowSkipped",
     "<p id='r' do='skip'><p id='a' do='skip'><p id='b' do='reject'><p id='c'/></p><p id='d'/></p>"
     "<p id='e'/></p>",
     "d e", "r a b d e"},
    {"RootSkipped", "<p id='r' do='skip'><p id='a'/></p>", "a", "r a"},
    {"RootRejected", "<p id='r' do='reject'><p id='a'/></p>", "", "r"},
    {"EverythingSkipped",
     "<p id='r' do='skip'><p id='a' do='skip'><p id='b' do='skip'/></p><p id='c' do='skip'/></p>",
     "", "r a b c"},
    {"OtherNodesAreNeverSeen",
     "<p id='r'>text<!--c--><p id='a'><?pi?>text</p><?pi?><![CDATA[x]]><p id='b'/>text</p>",
     "r a b", "r a b"},
};

class ElementWalkTest : public XmlTest, public testing::WithParamInterface<WalkCase> {};

TEST_P(ElementWalkTest, GivesWhatTheFilterAcceptsAndAsksOnce) {
    const ParsedXml parsed(GetParam().xml);
    const ScriptedFilter filter;
    ElementWalker walker(parsed.root(), filter);
    EXPECT_EQ(rest(walker), GetParam().given);
    EXPECT_EQ(filter.asked(), GetParam().asked);
}

TEST_P(ElementWalkTest, CollectsTheSame) {
    const ParsedXml parsed(GetParam().xml);
    EXPECT_EQ(idsOf(collectElements(parsed.root(), ScriptedFilter())), GetParam().given);
}

INSTANTIATE_TEST_SUITE_P(, ElementWalkTest, testing::ValuesIn(kWalkCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

class ElementWalkerTest : public XmlTest {
protected:
    DOMElement* created(const ParsedXml& parsed, const char16_t* id) {
        DOMElement* const element = parsed.document().createElement(u"p");
        element->setAttribute(u"id", id);
        return element;
    }

    ScriptedFilter filter_;
};

TEST_F(ElementWalkerTest, NullRootIsAWalkWithoutElements) {
    ElementWalker walker(nullptr, filter_);
    EXPECT_EQ(walker.nextNode(), nullptr);
    EXPECT_EQ(walker.nextNode(), nullptr);
    EXPECT_EQ(filter_.asked(), "");
}

TEST_F(ElementWalkerTest, GivesNullAgainAndAgainAtTheEnd) {
    const ParsedXml parsed("<p id='r'><p id='a'/></p>");
    ElementWalker walker(parsed.root(), filter_);
    EXPECT_EQ(rest(walker), "r a");
    parsed.root()->appendChild(created(parsed, u"late"));
    for (int turn = 0; turn < 3; ++turn) {
        EXPECT_EQ(walker.nextNode(), nullptr);
    }
    EXPECT_EQ(filter_.asked(), "r a");
}

TEST_F(ElementWalkerTest, GivesNullAgainAfterARejectedRoot) {
    const ParsedXml parsed("<p id='r' do='reject'/>");
    ElementWalker walker(parsed.root(), filter_);
    EXPECT_EQ(walker.nextNode(), nullptr);
    EXPECT_EQ(walker.nextNode(), nullptr);
    EXPECT_EQ(filter_.asked(), "r");
}

TEST_F(ElementWalkerTest, NeverLeavesItsRoot) {
    const ParsedXml parsed(
        "<p id='r'><p id='a'/><p id='b'><p id='b1'/></p><p id='c'/><p id='d' do='reject'/>"
        "<p id='e'/></p>");
    ElementWalker fromB(parsed.byId("b"), filter_);
    EXPECT_EQ(rest(fromB), "b b1");
    ElementWalker fromLeaf(parsed.byId("c"), filter_);
    EXPECT_EQ(rest(fromLeaf), "c");
    ElementWalker fromRejected(parsed.byId("d"), filter_);
    EXPECT_EQ(rest(fromRejected), "");
    EXPECT_EQ(filter_.asked(), "b b1 c d");
}

TEST_F(ElementWalkerTest, AsksNothingBeforeTheFirstCall) {
    const ParsedXml parsed("<p id='r'/>");
    ElementWalker walker(parsed.root(), filter_);
    EXPECT_EQ(filter_.asked(), "");
    EXPECT_EQ(walker.nextNode(), parsed.root());
}

TEST_F(ElementWalkerTest, WalksNewChildrenInPlaceOfOldOnes) {
    const ParsedXml parsed("<p id='r'><p id='a'><p id='old'/></p><p id='b'/></p>");
    ElementWalker walker(parsed.root(), filter_);
    walker.nextNode();
    DOMElement* const a = walker.nextNode();
    ASSERT_EQ(a, parsed.byId("a"));
    a->removeChild(a->getFirstChild());
    DOMElement* const fresh = created(parsed, u"fresh");
    fresh->appendChild(created(parsed, u"nested"));
    a->appendChild(fresh);
    EXPECT_EQ(rest(walker), "fresh nested b");
}

TEST_F(ElementWalkerTest, WalksChildrenThatALeafGot) {
    const ParsedXml parsed("<p id='r'/>");
    ElementWalker walker(parsed.root(), filter_);
    walker.nextNode();
    parsed.root()->appendChild(created(parsed, u"a"));
    EXPECT_EQ(rest(walker), "a");
}

TEST_F(ElementWalkerTest, GoesOnWhereChildrenHaveGone) {
    const ParsedXml parsed("<p id='r'><p id='a'><p id='old'/></p><p id='b'/></p>");
    ElementWalker walker(parsed.root(), filter_);
    walker.nextNode();
    DOMElement* const a = walker.nextNode();
    a->removeChild(a->getFirstChild());
    EXPECT_EQ(rest(walker), "b");
}

TEST_F(ElementWalkerTest, WalksSiblingsInsertedBehindTheElement) {
    const ParsedXml parsed("<p id='r'><p id='a'><p id='a1'/></p><p id='b'/></p>");
    ElementWalker walker(parsed.root(), filter_);
    walker.nextNode();
    walker.nextNode();
    parsed.root()->insertBefore(created(parsed, u"between"), parsed.byId("b"));
    EXPECT_EQ(rest(walker), "a1 between b");
}

TEST_F(ElementWalkerTest, WalksSiblingsInsertedBehindTheLastElement) {
    const ParsedXml parsed("<p id='r'><p id='a'><p id='a1'/></p></p>");
    ElementWalker walker(parsed.root(), filter_);
    walker.nextNode();
    walker.nextNode();
    walker.nextNode();
    parsed.byId("a")->appendChild(created(parsed, u"a2"));
    parsed.root()->appendChild(created(parsed, u"b"));
    EXPECT_EQ(rest(walker), "a2 b");
}

TEST_F(ElementWalkerTest, DoesNotWalkSiblingsInsertedInFront) {
    const ParsedXml parsed("<p id='r'><p id='a'/><p id='b'/></p>");
    ElementWalker walker(parsed.root(), filter_);
    walker.nextNode();
    DOMElement* const a = walker.nextNode();
    parsed.root()->insertBefore(created(parsed, u"front"), a);
    EXPECT_EQ(rest(walker), "b");
}

TEST_F(ElementWalkerTest, DoesNotWalkSiblingsInsertedBehindTheRoot) {
    const ParsedXml parsed("<p id='o'><p id='r'/></p>");
    ElementWalker walker(parsed.byId("r"), filter_);
    walker.nextNode();
    parsed.root()->appendChild(created(parsed, u"behind"));
    EXPECT_EQ(rest(walker), "");
}

TEST_F(ElementWalkerTest, SeesAttributesAsTheyAreWhenItArrives) {
    const ParsedXml parsed(
        "<p id='r'><p id='a'><p id='a1'/></p><p id='b'><p id='b1'/></p><p id='c'/></p>");
    ElementWalker walker(parsed.root(), filter_);
    walker.nextNode();
    DOMElement* const a = walker.nextNode();
    a->setAttribute(u"do", u"reject");
    parsed.byId("b")->setAttribute(u"do", u"reject");
    EXPECT_EQ(rest(walker), "a1 c") << "what was given is not asked about again";
}

/// Counts the elements of a very deep tree: given by a filter that accepts all, and by one that
/// accepts none.
struct DeepWalk {
    DOMElement* root;
    std::size_t accepted = 0;
    std::size_t skipped = 0;

    void run() {
        accepted = collectElements(root, AttrBasedElementNodeFilter(u"none", u"")).size();
        skipped = collectElements(root, IdAttrContainingNodeFilter()).size();
    }
};

void* runDeepWalk(void* walk) {
    static_cast<DeepWalk*>(walk)->run();
    return nullptr;
}

TEST_F(ElementWalkerTest, DepthCostsNoStack) {
    constexpr std::size_t kDepth = 100'000;
    constexpr std::size_t kStackBytes = 512UL * 1024;
    std::string xml;
    for (std::size_t level = 0; level < kDepth; ++level) {
        xml += "<e>";
    }
    for (std::size_t level = 0; level < kDepth; ++level) {
        xml += "</e>";
    }
    const ParsedXml parsed(xml);
    DeepWalk walk{parsed.root()};

    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStackBytes), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, runDeepWalk, &walk), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);

    EXPECT_EQ(walk.accepted, kDepth);
    EXPECT_EQ(walk.skipped, 0U);
}

TEST_F(ElementWalkerTest, WalksNestedIntoEachOtherDoNotDisturbOneAnother) {
    const ParsedXml parsed("<p id='r'><p id='a'><p id='a1'/></p><p id='b'/></p>");
    std::string pairs;
    ElementWalker outer(parsed.root(), filter_);
    while (DOMElement* const element = outer.nextNode()) {
        ElementWalker inner(element, filter_);
        pairs += "[" + rest(inner) + "]";
    }
    EXPECT_EQ(pairs, "[r a a1 b][a a1][a1][b]");
}

using CollectElementsTest = XmlTest;

TEST_F(CollectElementsTest, NullRootGivesNone) {
    EXPECT_TRUE(collectElements(nullptr, ScriptedFilter()).empty());
}

TEST_F(CollectElementsTest, LeavesTheTreeAsItIs) {
    const char* const kXml = "<p id=\"r\"><p id=\"a\">x</p></p>";
    const ParsedXml parsed(kXml);
    EXPECT_EQ(collectElements(parsed.root(), ScriptedFilter()).size(), 2U);
    EXPECT_EQ(printed(*parsed.root()), kXml);
}

using RemoveElementsTest = XmlTest;

TEST_F(RemoveElementsTest, TakesOutWhatWasCollected) {
    const ParsedXml parsed("<p id='r'><q id='a'/>text<p id='b'><q id='c'/></p><q id='d'/></p>");
    removeElements(collectElements(parsed.root(), ElemTagBasedElementNodeFilter(u"q")));
    EXPECT_EQ(printed(*parsed.root()), R"(<p id="r">text<p id="b"/></p>)");
}

TEST_F(RemoveElementsTest, TakesNestedElementsApart) {
    const ParsedXml parsed("<p><q id='a'><q id='b'><q id='c'/></q></q></p>");
    const std::vector<DOMElement*> elements =
        collectElements(parsed.root(), ElemTagBasedElementNodeFilter(u"q"));
    ASSERT_EQ(idsOf(elements), "a b c");
    removeElements(elements);
    EXPECT_EQ(printed(*parsed.root()), "<p/>");
    for (DOMElement* const element : elements) {
        EXPECT_EQ(element->getParentNode(), nullptr);
        EXPECT_EQ(element->getFirstElementChild(), nullptr);
        EXPECT_EQ(element->getOwnerDocument(), &parsed.document()) << "removed nodes stay alive";
    }
}

TEST_F(RemoveElementsTest, TakesTheRootOutOfItsDocument) {
    const ParsedXml parsed("<p/>");
    removeElements({parsed.root()});
    EXPECT_EQ(parsed.root(), nullptr);
}

TEST_F(RemoveElementsTest, LeavesAnElementWithoutAParentAlone) {
    const ParsedXml parsed("<p/>");
    DOMElement* const loose = parsed.document().createElement(u"q");
    removeElements({loose, loose});
    EXPECT_EQ(loose->getParentNode(), nullptr);
    EXPECT_EQ(printed(*parsed.root()), "<p/>");
}

TEST_F(RemoveElementsTest, NothingToRemoveChangesNothing) {
    const ParsedXml parsed("<p><q/></p>");
    removeElements({});
    EXPECT_EQ(printed(*parsed.root()), "<p><q/></p>");
}

/// Rejects comments, and asks elements by their attribute "do".
class KindFilter final : public DOMNodeFilter {
public:
    FilterAction acceptNode(const DOMNode* node) const override {
        if (node->getNodeType() == DOMNode::COMMENT_NODE) {
            return FILTER_REJECT;
        }
        if (node->getNodeType() != DOMNode::ELEMENT_NODE) {
            return FILTER_ACCEPT;
        }
        const auto& element = static_cast<const xercesc::DOMElement&>(*node);
        const std::string action = attribute(element, "do");
        return action == "skip" ? FILTER_SKIP : action == "reject" ? FILTER_REJECT : FILTER_ACCEPT;
    }
};

/// The names of what `walker` gives from now on.
std::string rest(NodeWalker& walker) {
    std::string names;
    while (const DOMNode* const node = walker.nextNode()) {
        names += names.empty() ? "" : " ";
        names += toUtf8(domText(node->getNodeName()));
    }
    return names;
}

using NodeWalkerTest = XmlTest;

TEST_F(NodeWalkerTest, GivesEveryKindOfNodeInDocumentOrder) {
    const ParsedXml parsed(
        "<?one?><!--passed--><r>text<a><?two?><b/>more</a><!--passed--><![CDATA[x]]><?three?></r>"
        "<?four?>");
    const KindFilter filter;
    NodeWalker walker(&parsed.document(), filter);
    EXPECT_EQ(rest(walker), "#document one r #text a two b #text #cdata-section three four");
    EXPECT_EQ(walker.nextNode(), nullptr);
}

TEST_F(NodeWalkerTest, SkippedNodesAreEnteredAndRejectedOnesAreNot) {
    const ParsedXml parsed(
        "<r do='skip'><a do='reject'><?never?><b/></a><c do='skip'><?two?><d/></c><?three?></r>");
    const KindFilter filter;
    NodeWalker walker(parsed.root(), filter);
    EXPECT_EQ(rest(walker), "two d three");
}

TEST_F(NodeWalkerTest, StaysBelowItsRoot) {
    const ParsedXml parsed("<r><?one?><a><?two?></a><?three?></r>");
    const KindFilter filter;
    NodeWalker walker(parsed.root()->getFirstElementChild(), filter);
    EXPECT_EQ(rest(walker), "a two");
    NodeWalker leaf(parsed.root()->getFirstChild(), filter);
    EXPECT_EQ(rest(leaf), "one");
    NodeWalker none(nullptr, filter);
    EXPECT_EQ(none.nextNode(), nullptr);
    const ParsedXml rejected("<r do='reject'><?one?></r>");
    NodeWalker nothing(rejected.root(), filter);
    EXPECT_EQ(nothing.nextNode(), nullptr);
    EXPECT_EQ(nothing.nextNode(), nullptr);
}

TEST_F(NodeWalkerTest, ReadsTheTreeLazily) {
    const ParsedXml parsed("<r><?one?><a/><?three?></r>");
    xercesc::DOMDocument& document = parsed.document();
    const KindFilter filter;
    NodeWalker walker(parsed.root(), filter);
    walker.nextNode();
    DOMNode* const one = walker.nextNode();
    parsed.root()->insertBefore(document.createProcessingInstruction(u"two", u""),
                                one->getNextSibling());
    EXPECT_EQ(domText(walker.nextNode()->getNodeName()), u"two");
    DOMNode* const a = walker.nextNode();
    a->appendChild(document.createTextNode(u"text"));
    EXPECT_EQ(rest(walker), "#text three");
}

}  // namespace
}  // namespace marrowpress
