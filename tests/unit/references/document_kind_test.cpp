#include "references/document_kind.h"

#include "references/dita_reference.h"
#include "support/text.h"
#include "tests/support/message_texts.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

struct ClassifyCase {
    const char* name;
    std::u16string_view path;
    std::u16string_view type;
    std::u16string_view format;
    DitaDocKind kind;
};

using enum DitaDocKind;

constexpr ClassifyCase kClassifyCases[] = {
    {"Empty", u"", u"topic", u"ditamap", DitaDocNone},
    {"Dita", u"/p/a.dita", u"", u"", DitaDocTopic},
    {"DitaOfSixCharacters", u"a.dita", u"", u"", DitaDocTopic},
    {"DitaAlone", u".dita", u"topic", u"", DitaDocNone},
    {"DitaWithMapFormat", u"/p/a.dita", u"", u"ditamap", DitaDocTopic},
    {"DitaWithMapType", u"/p/a.dita", u"map", u"", DitaDocTopic},
    {"DitaInUpperCase", u"/p/a.DITA", u"topic", u"", DitaDocNone},
    {"DitaInMixedCase", u"/p/a.Dita", u"topic", u"", DitaDocNone},
    {"DitaBeyondTheNetwork", u"http://host/a.dita", u"", u"", DitaDocTopic},
    {"DitaInTheMiddle", u"/p/a.dita.png", u"", u"", DitaDocNone},
    {"Ditamap", u"/p/a.ditamap", u"", u"", DitaDocMap},
    {"DitamapOfNineCharacters", u"a.ditamap", u"", u"", DitaDocMap},
    {"DitamapAlone", u".ditamap", u"", u"ditamap", DitaDocNone},
    {"DitamapWithTopicType", u"/p/a.ditamap", u"topic", u"dita", DitaDocMap},
    {"DitamapInUpperCase", u"/p/a.DITAMAP", u"", u"ditamap", DitaDocNone},
    {"Bookmap", u"/p/a.bookmap", u"", u"ditamap", DitaDocNone},
    {"OtherEnding", u"/p/a.png", u"topic", u"ditamap", DitaDocNone},
    {"NoEnding", u"/p/abc", u"task", u"", DitaDocNone},
    {"Html", u"http://host/a.html", u"topic", u"", DitaDocNone},
    {"FiveCharacters", u"a.txt", u"topic", u"", DitaDocNone},
    {"XmlInUpperCase", u"A.XML", u"topic", u"", DitaDocNone},
    {"FourCharacters", u"abcd", u"", u"", DitaDocUnknownXml},
    {"FourCharactersWithOtherEnding", u"a.md", u"", u"", DitaDocUnknownXml},
    {"FourCharactersInUpperCase", u".XML", u"", u"", DitaDocUnknownXml},
    {"FourCharactersWithType", u"/p/a", u"task", u"", DitaDocTopic},
    {"FourCharactersWithFormat", u"/p/a", u"", u"ditamap", DitaDocMap},
    {"OneCharacter", u"/", u"", u"", DitaDocUnknownXml},
    {"XmlAlone", u".xml", u"", u"", DitaDocUnknownXml},
    {"XmlOfFiveCharacters", u"a.xml", u"", u"", DitaDocUnknownXml},
    {"Xml", u"/p/a.xml", u"", u"", DitaDocUnknownXml},
    {"XmlConcept", u"/p/a.xml", u"concept", u"", DitaDocTopic},
    {"XmlReference", u"/p/a.xml", u"reference", u"", DitaDocTopic},
    {"XmlTask", u"/p/a.xml", u"task", u"", DitaDocTopic},
    {"XmlTopic", u"/p/a.xml", u"topic", u"", DitaDocTopic},
    {"XmlTaskWithMapFormat", u"/p/a.xml", u"task", u"ditamap", DitaDocTopic},
    {"XmlGlossentry", u"/p/a.xml", u"glossentry", u"", DitaDocUnknownXml},
    {"XmlGlossgroup", u"/p/a.xml", u"glossgroup", u"", DitaDocUnknownXml},
    {"XmlTroubleshooting", u"/p/a.xml", u"troubleshooting", u"", DitaDocUnknownXml},
    {"XmlGlossentryWithMapFormat", u"/p/a.xml", u"glossentry", u"ditamap", DitaDocMap},
    {"XmlTypeInUpperCase", u"/p/a.xml", u"Topic", u"", DitaDocUnknownXml},
    {"XmlTypeWithBlank", u"/p/a.xml", u"topic ", u"", DitaDocUnknownXml},
    {"XmlMapType", u"/p/a.xml", u"map", u"", DitaDocUnknownXml},
    {"XmlMapFormat", u"/p/a.xml", u"", u"ditamap", DitaDocMap},
    {"XmlMapFormatInUpperCase", u"/p/a.xml", u"", u"DITAMAP", DitaDocUnknownXml},
    {"XmlDitaFormat", u"/p/a.xml", u"", u"dita", DitaDocUnknownXml},
};

class ClassifyReferenceTest : public testing::TestWithParam<ClassifyCase> {};

TEST_P(ClassifyReferenceTest, TellsByPathTypeAndFormat) {
    const ClassifyCase& example = GetParam();
    DitaReference reference{std::u16string(example.type),
                            std::u16string(example.format),
                            std::u16string(example.path),
                            u"",
                            {}};
    EXPECT_EQ(classifyReference(reference), example.kind);
    reference.fragment = u"fragment";
    EXPECT_EQ(classifyReference(reference), example.kind) << "the fragment takes no part";
}

INSTANTIATE_TEST_SUITE_P(, ClassifyReferenceTest, testing::ValuesIn(kClassifyCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST(DitaDocKindTest, HasFixedNumbers) {
    EXPECT_EQ(static_cast<unsigned>(DitaDocNone), 0U);
    EXPECT_EQ(static_cast<unsigned>(DitaDocTopic), 1U);
    EXPECT_EQ(static_cast<unsigned>(DitaDocMap), 2U);
    EXPECT_EQ(static_cast<unsigned>(DitaDocUnknownXml), 3U);
}

struct DocumentCase {
    const char* xml;
    DitaDocKind kind;
};

constexpr DocumentCase kDocumentCases[] = {
    {"<topic/>", DitaDocTopic},
    {"<concept/>", DitaDocTopic},
    {"<reference/>", DitaDocTopic},
    {"<task/>", DitaDocTopic},
    {"<glossentry/>", DitaDocTopic},
    {"<glossgroup/>", DitaDocTopic},
    {"<troubleshooting/>", DitaDocTopic},
    {"<x class='- topic/topic x/x '/>", DitaDocTopic},
    {"<map/>", DitaDocMap},
    {"<bookmap/>", DitaDocMap},
    {"<x class='- map/map x/x '/>", DitaDocMap},
    {"<topic class='- map/map '/>", DitaDocMap},
    {"<map class='- topic/topic '/>", DitaDocTopic},
    {"<dita><topic/></dita>", DitaDocNone},
    {"<topicref/>", DitaDocNone},
    {"<map class='- x/x '/>", DitaDocNone},
    {"<html/>", DitaDocNone},
};

using ClassifyDocumentTest = XmlTest;

TEST_F(ClassifyDocumentTest, TellsByTheDocumentElement) {
    for (const DocumentCase& example : kDocumentCases) {
        EXPECT_EQ(classifyDocument(&ParsedXml(example.xml).document()), example.kind)
            << example.xml;
    }
}

TEST_F(ClassifyDocumentTest, NothingIsNeitherTopicNorMap) {
    EXPECT_EQ(classifyDocument(nullptr), DitaDocNone);
    const ParsedXml parsed("<topic/>");
    parsed.document().removeChild(parsed.root());
    EXPECT_EQ(classifyDocument(&parsed.document()), DitaDocNone);
}

class KindOfReferenceTest : public XmlTest {
protected:
    DitaDocKind kindOf(const std::string& attributes) {
        const ParsedXml parsed("<topicref " + attributes + "/>",
                               u"file://" + folder.file16("root.ditamap"));
        const DitaReference reference = readDitaReference(*parsed.root(), nullptr);
        return kindOfReference(reference, *parsed.root());
    }
};

TEST_F(KindOfReferenceTest, IsLookedUpWhereTheNameDoesNotTell) {
    folder.write("map.xml", "<map/>");
    folder.write("topic.xml", "<topic/>");
    folder.write("other.xml", "<other/>");
    folder.write("malformed.xml", "<topic>");
    folder.write("a.dita", "not looked at");
    EXPECT_EQ(kindOf("href='map.xml'"), DitaDocKind::DitaDocMap);
    EXPECT_EQ(kindOf("href='topic.xml'"), DitaDocKind::DitaDocTopic);
    EXPECT_EQ(kindOf("href='other.xml'"), DitaDocKind::DitaDocNone);
    EXPECT_EQ(kindOf("href='a.dita'"), DitaDocKind::DitaDocTopic);
    EXPECT_EQ(kindOf(""), DitaDocKind::DitaDocNone);
    EXPECT_TRUE(host.console().empty());
    EXPECT_EQ(kindOf("href='malformed.xml'"), DitaDocKind::DitaDocNone);
    EXPECT_EQ(host.console(), std::vector<std::string>{cannotRead(folder.file("malformed.xml"))});
}

}  // namespace
}  // namespace marrowpress
