#include "references/node_filters.h"

#include "dom/element_walker.h"
#include "references/ditamap_ref_node_filter.h"
#include "references/multimedia_node_filters.h"
#include "tests/unit/references/filter_answers.h"

namespace marrowpress {
namespace {

struct FilterMakerCase {
    const char* name;
    FilterMaker make;
};

constexpr FilterMakerCase kAllFilters[] = {
    {"ClassBasedElementNodeFilter",
     []() -> std::unique_ptr<xercesc::DOMNodeFilter> {
         return std::make_unique<ClassBasedElementNodeFilter>(
             u"topic/object ", std::vector<std::u16string>{u"#text", u"#comment", u"#document"});
     }},
    {"TopicNodeFilter", makeFilter<TopicNodeFilter>},
    {"MapNodeFilter", makeFilter<MapNodeFilter>},
    {"TopicrefNodeFilter", makeFilter<TopicrefNodeFilter>},
    {"TopicmetaNodeFilter", makeFilter<TopicmetaNodeFilter>},
    {"TopicheadNodeFilter", makeFilter<TopicheadNodeFilter>},
    {"TitleNodeFilter", makeFilter<TitleNodeFilter>},
    {"BookTitleNodeFilter", makeFilter<BookTitleNodeFilter>},
    {"ImageNodeFilter", makeFilter<ImageNodeFilter>},
    {"ObjectNodeFilter", makeFilter<ObjectNodeFilter>},
    {"ParamNodeFilter", makeFilter<ParamNodeFilter>},
    {"XrefNodeFilter", makeFilter<XrefNodeFilter>},
    {"LinkNodeFilter", makeFilter<LinkNodeFilter>},
    {"ReltableNodeFilter", makeFilter<ReltableNodeFilter>},
    {"AbbreviatedFormNodeFilter", makeFilter<AbbreviatedFormNodeFilter>},
    {"OwnKeyrefRuleNodeFilter", makeFilter<OwnKeyrefRuleNodeFilter>},
    {"ElemTagBasedElementNodeFilter",
     []() -> std::unique_ptr<xercesc::DOMNodeFilter> {
         return std::make_unique<ElemTagBasedElementNodeFilter>(u"#text");
     }},
    {"DitabaseNodeFilter", makeFilter<DitabaseNodeFilter>},
    {"AttrBasedElementNodeFilter",
     []() -> std::unique_ptr<xercesc::DOMNodeFilter> {
         return std::make_unique<AttrBasedElementNodeFilter>(u"print", u"");
     }},
    {"IdAttrContainingNodeFilter", makeFilter<IdAttrContainingNodeFilter>},
    {"ConrefAttrContainingNodeFilter", makeFilter<ConrefAttrContainingNodeFilter>},
    {"ConkeyrefAttrContainingNodeFilter", makeFilter<ConkeyrefAttrContainingNodeFilter>},
    {"KeyrefAttrContainingNodeFilter", makeFilter<KeyrefAttrContainingNodeFilter>},
    {"KeyDefinitionNodeFilter", makeFilter<KeyDefinitionNodeFilter>},
    {"DirectRefAttrContainingNodeFilter", makeFilter<DirectRefAttrContainingNodeFilter>},
    {"DitamapRefNodeFilter", makeFilter<DitamapRefNodeFilter>},
    {"MultimediaRefAttrContainingNodeFilter", makeFilter<MultimediaRefAttrContainingNodeFilter>},
    {"MultimediaKeyrefAttrContainingNodeFilter",
     makeFilter<MultimediaKeyrefAttrContainingNodeFilter>},
};

class NodeFilterTest : public XmlTest, public testing::WithParamInterface<FilterMakerCase> {
protected:
    std::string answer(const xercesc::DOMNode* node) const { return answerAbout(*filter_, node); }

    const ParsedXml parsed_{"<!DOCTYPE topic><topic id='t'>text<!--comment--><?pi data?></topic>"};

private:
    std::unique_ptr<xercesc::DOMNodeFilter> filter_ = GetParam().make();
};

TEST_P(NodeFilterTest, RejectsNull) {
    EXPECT_EQ(answer(nullptr), "reject");
}

TEST_P(NodeFilterTest, RejectsText) {
    const xercesc::DOMNode* const text = parsed_.root()->getFirstChild();
    ASSERT_EQ(text->getNodeType(), xercesc::DOMNode::TEXT_NODE);
    EXPECT_EQ(answer(text), "reject");
}

TEST_P(NodeFilterTest, RejectsAComment) {
    const xercesc::DOMNode* const comment = parsed_.root()->getFirstChild()->getNextSibling();
    ASSERT_EQ(comment->getNodeType(), xercesc::DOMNode::COMMENT_NODE);
    EXPECT_EQ(answer(comment), "reject");
}

TEST_P(NodeFilterTest, RejectsAProcessingInstruction) {
    const xercesc::DOMNode* const instruction = parsed_.root()->getLastChild();
    ASSERT_EQ(instruction->getNodeType(), xercesc::DOMNode::PROCESSING_INSTRUCTION_NODE);
    EXPECT_EQ(answer(instruction), "reject");
}

TEST_P(NodeFilterTest, RejectsADocument) {
    EXPECT_EQ(answer(&parsed_.document()), "reject");
}

TEST_P(NodeFilterTest, RejectsADoctype) {
    ASSERT_NE(parsed_.document().getDoctype(), nullptr);
    EXPECT_EQ(answer(parsed_.document().getDoctype()), "reject");
}

TEST_P(NodeFilterTest, RejectsAnAttribute) {
    const xercesc::DOMNode* const attribute = parsed_.root()->getAttributeNode(u"id");
    ASSERT_NE(attribute, nullptr);
    EXPECT_EQ(answer(attribute), "reject");
}

TEST_P(NodeFilterTest, RejectsOtherKindsOfNode) {
    EXPECT_EQ(answer(parsed_.document().createCDATASection(u"x")), "reject");
    EXPECT_EQ(answer(parsed_.document().createDocumentFragment()), "reject");
    EXPECT_EQ(answer(parsed_.document().createEntityReference(u"x")), "reject");
}

INSTANTIATE_TEST_SUITE_P(, NodeFilterTest, testing::ValuesIn(kAllFilters),
                         [](const auto& instance) { return std::string(instance.param.name); });

struct ExclusionCase {
    const char* name;
    FilterMaker make;
    const char* xml;
    const char* answer;
};

constexpr ExclusionCase kExclusionCases[] = {
    {"BooktitleByClass", makeFilter<BookTitleNodeFilter>,
     "<x class='- topic/title bookmap/booktitle ' excluded='yes'/>", "reject"},
    {"BooktitleByName", makeFilter<BookTitleNodeFilter>, "<booktitle excluded='yes'/>", "reject"},
    {"BooktitleThatStays", makeFilter<BookTitleNodeFilter>, "<booktitle excluded='no'/>", "accept"},
    {"NoBooktitle", makeFilter<BookTitleNodeFilter>, "<title excluded='yes'/>", "skip"},
    {"NoBooktitleByClass", makeFilter<BookTitleNodeFilter>,
     "<booktitle class='- topic/title ' excluded='yes'/>", "skip"},
    {"KeyDefinition", makeFilter<KeyDefinitionNodeFilter>, "<x keys='k' excluded='yes'/>",
     "reject"},
    {"KeyDefinitionThatStays", makeFilter<KeyDefinitionNodeFilter>, "<x keys='k'/>", "accept"},
    {"NoKeyDefinition", makeFilter<KeyDefinitionNodeFilter>, "<x excluded='yes'/>", "reject"},
    {"NoKeyDefinitionThatStays", makeFilter<KeyDefinitionNodeFilter>, "<x/>", "skip"},
    {"MapReference", makeFilter<DitamapRefNodeFilter>,
     "<x href='http://h/m.ditamap' excluded='yes'/>", "reject"},
    {"MapReferenceThatStays", makeFilter<DitamapRefNodeFilter>, "<x href='http://h/m.ditamap'/>",
     "accept"},
    {"NoMapReference", makeFilter<DitamapRefNodeFilter>, "<x excluded='yes'/>", "reject"},
    {"MissingMap", makeFilter<DitamapRefNodeFilter>, "<x href='none.ditamap' excluded='yes'/>",
     "reject"},
    {"TitleIsNotAsked", makeFilter<TitleNodeFilter>, "<title excluded='yes'/>", "accept"},
    {"TopicrefIsNotAsked", makeFilter<TopicrefNodeFilter>, "<mapref excluded='yes'/>", "accept"},
    {"TopicIsNotAsked", makeFilter<TopicNodeFilter>, "<topic excluded='yes'/>", "accept"},
    {"KeyrefIsNotAsked", makeFilter<KeyrefAttrContainingNodeFilter>,
     "<x keyref='k' excluded='yes'/>", "accept"},
    {"DirectRefIsNotAsked", makeFilter<DirectRefAttrContainingNodeFilter>,
     "<x href='a' excluded='yes'/>", "accept"},
};

class ExclusionTest : public XmlTest, public testing::WithParamInterface<ExclusionCase> {};

TEST_P(ExclusionTest, Answers) {
    excludeMarkedElements();
    EXPECT_EQ(answerAbout(*GetParam().make(), GetParam().xml), GetParam().answer);
    EXPECT_TRUE(host.console().empty()) << "excluded content is not looked for";
}

INSTANTIATE_TEST_SUITE_P(, ExclusionTest, testing::ValuesIn(kExclusionCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

using KeyDefinitionNodeFilterTest = XmlTest;

TEST_F(KeyDefinitionNodeFilterTest, NothingBelowAnExcludedElementDefinesKeys) {
    excludeMarkedElements();
    const ParsedXml parsed(
        "<map><x id='a' keys='a' excluded='yes'><x id='b' keys='b'/></x>"
        "<y id='c' excluded='yes'><x id='d' keys='d'/></y><z><x id='e' keys='e'/></z></map>");
    EXPECT_EQ(idsOf(collectElements(parsed.root(), KeyDefinitionNodeFilter())), "e");
}

}  // namespace
}  // namespace marrowpress
