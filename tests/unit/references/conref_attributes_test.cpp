#include "references/conref_attributes.h"
#include "tests/unit/references/conref_samples.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

struct MergeCase {
    const char* name;
    const char* destination;
    const char* source;
    const char* merged;
};

constexpr MergeCase kMergeCases[] = {
    {"TakesWhatIsMissing", "<p/>", "<p a='1' b='2'/>", "<p a='1' b='2'/>"},
    {"TakesWhatIsEmpty", "<p a=''/>", "<p a='1'/>", "<p a='1'/>"},
    {"KeepsWhatIsThere", "<p a='1'/>", "<p a='2'/>", "<p a='1'/>"},
    {"KeepsABlank", "<p a=' '/>", "<p a='2'/>", "<p a=' '/>"},
    {"ReplacesTheMarker", "<p a='-dita-use-conref-target'/>", "<p a='2'/>", "<p a='2'/>"},
    {"ReplacesTheMarkerByTheMarker", "<p a='-dita-use-conref-target'/>",
     "<p a='-dita-use-conref-target'/>", "<p a='-dita-use-conref-target'/>"},
    {"TakesTheMarker", "<p/>", "<p a='-dita-use-conref-target'/>",
     "<p a='-dita-use-conref-target'/>"},
    {"KeepsAValueThatEndsInTheMarker", "<p a='/-dita-use-conref-target'/>", "<p a='2'/>",
     "<p a='/-dita-use-conref-target'/>"},
    {"KeepsTheMarkerForAMissingValue", "<p a='-dita-use-conref-target'/>", "<p/>",
     "<p a='-dita-use-conref-target'/>"},
    {"KeepsTheMarkerForAnEmptyValue", "<p a='-dita-use-conref-target'/>", "<p a=''/>",
     "<p a='-dita-use-conref-target'/>"},
    {"NeverTakesAnEmptyValue", "<p a='1'/>", "<p a='' b=''/>", "<p a='1'/>"},
    {"NeverTakesIdOrClass", "<p/>", "<p class='c' id='i' other='o'/>", "<p other='o'/>"},
    {"NeverReplacesTheMarkerInIdOrClass",
     "<p class='-dita-use-conref-target' id='-dita-use-conref-target'/>", "<p class='c' id='i'/>",
     "<p class='-dita-use-conref-target' id='-dita-use-conref-target'/>"},
    {"NamesAreCaseSensitive", "<p/>", "<p Class='c' ID='i'/>", "<p Class='c' ID='i'/>"},
    {"TakesReferences", "<p/>", "<p conref='c' conrefend='e' conkeyref='k' xtrf='x'/>",
     "<p conkeyref='k' conref='c' conrefend='e' xtrf='x'/>"},
    {"HrefOfAnImageCounts", "<p href='1'/>", "<image href='2'/>", "<p href='2'/>"},
    {"HrefOfALinkCounts", "<p href='1'/>", "<link href='2'/>", "<p href='2'/>"},
    {"HrefOfAnXrefCounts", "<p href='1'/>", "<xref href='2'/>", "<p href='2'/>"},
    {"HrefOfAnImageByClassCounts", "<p href='1'/>", "<x class='- topic/image ' href='2'/>",
     "<p href='2'/>"},
    {"HrefOfALinkByClassCounts", "<p href='1'/>", "<x class='- topic/link ' href='2'/>",
     "<p href='2'/>"},
    {"HrefOfAnXrefByClassCounts", "<p href='1'/>", "<x class='- topic/xref ' href='2'/>",
     "<p href='2'/>"},
    {"ClassWinsOverName", "<p href='1'/>", "<xref class='- topic/ph ' href='2'/>", "<p href='1'/>"},
    {"EmptyHrefOfAnXrefDoesNot", "<p href='1'/>", "<xref href=''/>", "<p href='1'/>"},
    {"HrefOfOthersDoesNot", "<xref href='1'/>", "<p href='2'/>", "<xref href='1'/>"},
    {"OtherAttributesOfAnXrefDoNot", "<p format='1' scope='1'/>", "<xref format='2' scope='2'/>",
     "<p format='1' scope='1'/>"},
    {"HrefMarkerOfOthersIsReplaced", "<p href='-dita-use-conref-target'/>", "<p href='2'/>",
     "<p href='2'/>"},
};

class MergeAttributesTest : public ConrefTest, public testing::WithParamInterface<MergeCase> {};

TEST_P(MergeAttributesTest, GivesWhatIsLacking) {
    const ParsedXml destination(GetParam().destination);
    const ParsedXml source(GetParam().source);
    mergeAttributes(*destination.root(), *source.root());
    EXPECT_EQ(readable(printed(*destination.root())), GetParam().merged);
    EXPECT_EQ(printed(*source.root()), printed(*ParsedXml(GetParam().source).root()));
}

INSTANTIATE_TEST_SUITE_P(, MergeAttributesTest, testing::ValuesIn(kMergeCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

struct RangeAttributeCase {
    const char* name;
    const char* reference;  // attributes of the reference
    const char* start;      // of the range's first element
    const char* further;    // of its second
    const char* first;      // of what stands for the first
    const char* second;     // of what stands for the second
    const char* tagName = "p";
};

/// One row of attributes each, for the element that refers and for the one that is put behind it.
constexpr RangeAttributeCase kRangeAttributeCases[] = {
    {"Id", "id='e'", "", "id='n'", " id='e'", ""},
    {"Class", "class='e'", "class='s'", "class='n'", " class='e'", ""},
    {"ClassOfTheTargetAlone", "", "class='s'", "class='n'", "", ""},
    {"OwnValue", "a='e'", "a='s'", "a='n'", " a='e'", " a='e'"},
    {"OwnValueTargetHasNone", "a='e'", "", "", " a='e'", " a='e'"},
    {"NoValue", "", "a='s'", "a='n'", " a='s'", " a='n'"},
    {"EmptyValue", "a=''", "a='s'", "a='n'", " a='s'", " a='n'"},
    {"EmptyValueTargetHasNone", "a=''", "", "", " a=''", ""},
    {"EmptyValueOfTheTarget", "", "a=''", "a=''", "", ""},
    {"Marker", "a='-dita-use-conref-target'", "a='s'", "a='n'", " a='s'", " a='n'"},
    {"MarkerTargetHasNone", "a='-dita-use-conref-target'", "", "", " a='-dita-use-conref-target'",
     " a='-dita-use-conref-target'"},
    {"MarkerTargetIsEmpty", "a='-dita-use-conref-target'", "a=''", "a=''",
     " a='-dita-use-conref-target'", " a='-dita-use-conref-target'"},
    {"HrefOfOthers", "href='e'", "href='s'", "href='n'", " href='e'", " href='e'"},
    {"HrefOfAnImage", "href='e'", "href='s'", "href='n'", " href='s'", " href='n'", "image"},
    {"HrefOfALink", "href='e'", "href='s'", "href='n'", " href='s'", " href='n'", "link"},
    {"HrefOfAnXref", "href='e'", "href='s'", "href='n'", " href='s'", " href='n'", "xref"},
    {"HrefOfAnXrefTargetHasNone", "href='e'", "", "", " href='e'", " href='e'", "xref"},
    {"HrefOfAnXrefTargetIsEmpty", "href='e'", "href=''", "href=''", " href='e'", " href='e'",
     "xref"},
    {"Xtrf", "", "xtrf='s'", "xtrf='n'", " xtrf='s'", " xtrf='n'"},
    {"ConrefendAlone", "", "conrefend='s'", "conrefend='n'", " conrefend='s'", " conrefend='n'"},
    // On the first it stays, on the second it is followed.
    {"Conref", "", "conref='#t/u'", "conref='#t/u'", " conref='#t/u'", ""},
};

class RangeAttributesTest : public ConrefTest,
                            public testing::WithParamInterface<RangeAttributeCase> {};

TEST_P(RangeAttributesTest, OfTheFirstAndOfAFurtherElement) {
    const RangeAttributeCase& example = GetParam();
    const std::string tag = example.tagName;
    const std::string id = std::string(example.further).starts_with("id=") ? "" : " id='n'";
    const ParsedXml document = parse(topicOf("<x mark='result'><" + tag + " " + example.reference +
                                             " conref='#t/s' conrefend='#t/n'/>" + "</x><" + tag +
                                             " id='s' " + example.start + "/><" + tag + id + " " +
                                             example.further + "/><" + tag + " id='u'/>"));
    resolve(document);
    EXPECT_EQ(readable(printed(*document.root()->getFirstElementChild())),
              "<x mark='result'><" + tag + example.first + "/><" + tag + example.second + "/></x>");
    EXPECT_EQ(console(), "");
}

INSTANTIATE_TEST_SUITE_P(, RangeAttributesTest, testing::ValuesIn(kRangeAttributeCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

using ConrefDefaultsTest = ConrefTest;

TEST_F(ConrefDefaultsTest, NewElementsHaveTheDefaultsOfTheDocumentTypeAndTheyWin) {
    const ParsedXml document(
        "<!DOCTYPE topic [<!ATTLIST topic id ID #IMPLIED>"
        "<!ATTLIST p class CDATA '- topic/p ' kind CDATA 'default'>"
        "<!ATTLIST ph class CDATA '- topic/ph '>]>"
        "<topic id='t'><x><p conref='#t/s' conrefend='#t/n' kind='own'/></x>"
        "<p id='s' kind='of s'><ph>S</ph></p>"
        "<ph class='- topic/ph mine/n '>N</ph><p id='n' class='- topic/p mine/n ' kind='of n'/>"
        "</topic>",
        u"file:///d.dita");
    resolve(document);
    DOMElement* const first = document.root()->getFirstElementChild()->getFirstElementChild();
    DOMElement* const second = first->getNextElementSibling();
    DOMElement* const third = second->getNextElementSibling();
    EXPECT_EQ(attribute(*first, "class"), "- topic/p ");
    EXPECT_EQ(attribute(*first, "kind"), "own");
    EXPECT_EQ(attribute(*first->getFirstElementChild(), "class"), "- topic/ph ");
    EXPECT_EQ(attribute(*second, "class"), "- topic/ph ");
    EXPECT_EQ(attribute(*third, "class"), "- topic/p ");
    EXPECT_EQ(attribute(*third, "kind"), "default");
    EXPECT_EQ(third->getNextElementSibling(), nullptr);
}

}  // namespace
}  // namespace marrowpress
