#include "references/reference_resolution.h"

#include "support/text.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

struct ExternalCase {
    std::u16string_view text;
    bool isExternal;
};

constexpr ExternalCase kExternalCases[] = {
    {u"http://host/a", true},
    {u"https://host/a", true},
    {u"mailto:a@b", true},
    {u"http://", true},
    {u"https://", true},
    {u"mailto:", true},
    {u"", false},
    {u"h", false},
    {u"http:/", false},
    {u"http:/host", false},
    {u"https:/", false},
    {u"mailto", false},
    {u"HTTP://host", false},
    {u"Https://host", false},
    {u"MAILTO:a@b", false},
    {u"httpS://host", false},
    {u" http://host", false},
    {u"ftp://host", false},
    {u"file:///p/a", false},
    {u"a/http://host", false},
    {u"#http://host", false},
    {u"http//host/a.dita", false},
};

TEST(IsExternalUriTest, ComparesTheSchemeExactly) {
    for (const ExternalCase& example : kExternalCases) {
        EXPECT_EQ(isExternalUri(example.text), example.isExternal) << toUtf8(example.text);
    }
}

struct SplitCase {
    std::u16string_view href;
    std::u16string_view path;
    std::u16string_view topicId;
    std::u16string_view elementId;
    std::u16string_view joined;
};

constexpr SplitCase kSplitCases[] = {
    {u"a.dita#t/e", u"a.dita", u"t", u"e", u"a.dita#t"},
    {u"a.dita#t", u"a.dita", u"t", u"", u"a.dita#t"},
    {u"#t/e/f", u"", u"t", u"e/f", u"#t"},
    {u"a.dita", u"a.dita", u"", u"", u"a.dita"},
    {u"a#b#c/d", u"a#b", u"c", u"d", u"a#b#c"},
    {u"", u"", u"", u"", u""},
    {u"#", u"", u"", u"", u""},
    {u"a.dita#", u"a.dita", u"", u"", u"a.dita"},
    {u"a.dita#/e", u"a.dita", u"", u"e", u"a.dita"},
    {u"a.dita#/", u"a.dita", u"", u"", u"a.dita"},
    {u"a.dita#t/", u"a.dita", u"t", u"", u"a.dita#t"},
    {u"a.dita#t//e", u"a.dita", u"t", u"/e", u"a.dita#t"},
    {u"sub/a.dita#t", u"sub/a.dita", u"t", u"", u"sub/a.dita#t"},
    {u"sub/a.dita", u"sub/a.dita", u"", u"", u"sub/a.dita"},
    {u"a##t", u"a#", u"t", u"", u"a##t"},
    {u"a#b/c#", u"a#b/c", u"", u"", u"a#b/c"},
    {u"a.dita#./e", u"a.dita", u".", u"e", u"a.dita#."},
    {u"a.dita#t e", u"a.dita", u"t e", u"", u"a.dita#t e"},
    {u"http://h/p?q#f/g", u"http://h/p?q", u"f", u"g", u"http://h/p?q#f"},
    {u"a\\b#t\\e", u"a\\b", u"t\\e", u"", u"a\\b#t\\e"},
};

TEST(SplitHrefTest, SplitsAtTheLastHashAndTheFirstSlashBehindIt) {
    for (const SplitCase& example : kSplitCases) {
        const HrefParts parts = splitHref(example.href);
        EXPECT_EQ(parts.path, example.path) << toUtf8(example.href);
        EXPECT_EQ(parts.topicId, example.topicId) << toUtf8(example.href);
        EXPECT_EQ(parts.elementId, example.elementId) << toUtf8(example.href);
    }
}

TEST(SplitHrefTest, GivesViewsIntoItsText) {
    const std::u16string href = u"a.dita#t/e";
    const HrefParts parts = splitHref(href);
    EXPECT_EQ(parts.path.data(), href.data());
    EXPECT_EQ(parts.topicId.data(), href.data() + 7);
    EXPECT_EQ(parts.elementId.data(), href.data() + 9);
}

TEST(JoinHrefTest, LeavesOutTheElementIdAndAnEmptyTopicId) {
    for (const SplitCase& example : kSplitCases) {
        EXPECT_EQ(joinHref(splitHref(example.href)), example.joined) << toUtf8(example.href);
    }
    EXPECT_EQ(joinHref({u"", u"", u"e"}), u"");
    EXPECT_EQ(joinHref({u"p", u"", u"e"}), u"p");
}

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
    DitaReference reference{std::u16string(example.type), std::u16string(example.format),
                            std::u16string(example.path), u""};
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

}  // namespace
}  // namespace marrowpress
