#include <algorithm>
#include <array>
#include <iterator>

#include "dom/element_walker.h"
#include "tests/unit/references/filter_answers.h"

namespace marrowpress {
namespace {

struct ClassBasedCase {
    const char* name;
    FilterMaker make;
    std::string token;
    std::vector<std::string> elementNames;
};

const std::vector<ClassBasedCase>& cases() {
    static const std::vector<ClassBasedCase> cases{
        {"TopicNodeFilter",
         makeFilter<TopicNodeFilter>,
         "topic/topic",
         {"topic", "concept", "reference", "task", "glossentry", "glossgroup", "troubleshooting"}},
        {"MapNodeFilter", makeFilter<MapNodeFilter>, "map/map", {"map", "bookmap"}},
        {"TopicrefNodeFilter",
         makeFilter<TopicrefNodeFilter>,
         "map/topicref ",
         {"topicmeta", "keydef", "mapref"}},
        {"TopicmetaNodeFilter", makeFilter<TopicmetaNodeFilter>, "map/topicmeta ", {"topicmeta"}},
        {"TopicheadNodeFilter",
         makeFilter<TopicheadNodeFilter>,
         "map/topicref mapgroup-d/topichead ",
         {}},
        {"TitleNodeFilter", makeFilter<TitleNodeFilter>, "topic/title ", {"title"}},
        {"BookTitleNodeFilter",
         makeFilter<BookTitleNodeFilter>,
         "topic/title bookmap/booktitle ",
         {"booktitle"}},
        {"ImageNodeFilter", makeFilter<ImageNodeFilter>, "topic/image ", {"image"}},
        {"ObjectNodeFilter", makeFilter<ObjectNodeFilter>, "topic/object ", {"object"}},
        {"ParamNodeFilter", makeFilter<ParamNodeFilter>, "topic/param ", {"param"}},
        {"XrefNodeFilter", makeFilter<XrefNodeFilter>, "topic/xref ", {"xref"}},
        {"LinkNodeFilter", makeFilter<LinkNodeFilter>, "topic/link ", {"link"}},
        {"ReltableNodeFilter", makeFilter<ReltableNodeFilter>, "map/reltable ", {"reltable"}},
        {"AbbreviatedFormNodeFilter",
         makeFilter<AbbreviatedFormNodeFilter>,
         "topic/term abbrev-d/abbreviated-form ",
         {"abbreviated-form"}},
    };
    return cases;
}

/// Names that some filter knows, in its order, and names that one could expect one to know.
constexpr std::array kNames{"topic",
                            "concept",
                            "reference",
                            "task",
                            "glossentry",
                            "glossgroup",
                            "troubleshooting",
                            "map",
                            "bookmap",
                            "topicref",
                            "topicmeta",
                            "keydef",
                            "mapref",
                            "topichead",
                            "topicgroup",
                            "title",
                            "booktitle",
                            "mainbooktitle",
                            "image",
                            "xref",
                            "link",
                            "reltable",
                            "abbreviated-form",
                            "term",
                            "chapter",
                            "appendix",
                            "part",
                            "fig",
                            "learningContent",
                            "subjectScheme",
                            "linkpool",
                            "relrow",
                            "object",
                            "param",
                            "dita",
                            "navtitle",
                            "titlealts",
                            "topicsetref"};

std::string element(const std::string& name) {
    return "<" + name + "/>";
}

std::string element(const std::string& name, const std::string& classValue) {
    return "<" + name + " class='" + classValue + "'/>";
}

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char unit) {
        return unit >= 'a' && unit <= 'z' ? static_cast<char>(unit - 'a' + 'A') : unit;
    });
    return text;
}

class ClassBasedElementNodeFilterTest : public XmlTest,
                                        public testing::WithParamInterface<ClassBasedCase> {
protected:
    std::string answer(const std::string& xml) const { return answerAbout(*filter_, xml); }

    /// Which of the names the filter accepts when `makeElement` makes an element of them.
    template <class MakeElement>
    std::vector<std::string> acceptedNames(const MakeElement& makeElement) const {
        std::vector<std::string> names;
        std::copy_if(kNames.begin(), kNames.end(), std::back_inserter(names),
                     [&](const char* name) { return answer(makeElement(name)) == "accept"; });
        return names;
    }

    const std::string& token() const { return GetParam().token; }

private:
    std::unique_ptr<xercesc::DOMNodeFilter> filter_ = GetParam().make();
};

TEST_P(ClassBasedElementNodeFilterTest, AcceptsTheTokenWhateverTheName) {
    EXPECT_EQ(answer(element("any", "- " + token())), "accept");
    EXPECT_EQ(answer(element("any", "- " + token() + " more/more ")), "accept");
    EXPECT_EQ(answer(element("any", "- " + token() + "more")), "accept");
}

TEST_P(ClassBasedElementNodeFilterTest, DoesNotLookAtTheFirstTwoCharacters) {
    for (const std::string opening : {"+ ", "xy", "--", "  ", "\xC3\xA4\xC3\xB6"}) {
        EXPECT_EQ(answer(element("any", opening + token() + " more/more ")), "accept") << opening;
    }
}

TEST_P(ClassBasedElementNodeFilterTest, SkipsTheTokenAnywhereElse) {
    for (const std::string front : {"", "-", "-  ", "- topic/ph ", "- map/navref "}) {
        EXPECT_EQ(answer(element("any", front + token() + " more/more ")), "skip") << front;
    }
}

TEST_P(ClassBasedElementNodeFilterTest, SkipsTheTokenInOtherCase) {
    EXPECT_EQ(answer(element("any", "- " + upperCase(token()))), "skip");
}

TEST_P(ClassBasedElementNodeFilterTest, SkipsAValueThatIsTooShort) {
    const std::string asLongAsTheToken = "- " + token().substr(0, token().size() - 2);
    for (const std::string& value :
         {asLongAsTheToken, asLongAsTheToken + token()[token().size() - 2],
          asLongAsTheToken.substr(1), token(), std::string("- "), std::string("-")}) {
        EXPECT_EQ(answer(element("any", value)), "skip") << value;
    }
}

TEST_P(ClassBasedElementNodeFilterTest, OnlyABlankInTheTokenEndsTheClassName) {
    const bool isWholeName = token().back() == ' ';
    const std::string stem = token().substr(0, token().size() - (isWholeName ? 1 : 0));
    EXPECT_EQ(answer(element("any", "- " + stem + "x ")), isWholeName ? "skip" : "accept");
    EXPECT_EQ(answer(element("any", "- " + stem)), isWholeName ? "skip" : "accept");
}

TEST_P(ClassBasedElementNodeFilterTest, AcceptsItsNamesAndNoOthersWithoutAClass) {
    EXPECT_EQ(acceptedNames([](const std::string& name) { return element(name); }),
              GetParam().elementNames);
}

TEST_P(ClassBasedElementNodeFilterTest, TakesAnEmptyClassForNone) {
    EXPECT_EQ(acceptedNames([](const std::string& name) { return element(name, ""); }),
              GetParam().elementNames);
}

TEST_P(ClassBasedElementNodeFilterTest, ComparesNamesWholeAndExactly) {
    for (const std::string name : kNames) {
        for (const std::string& other :
             {upperCase(name), name + "x", "x" + name, name.substr(0, name.size() - 1),
              upperCase(name.substr(0, 1)) + name.substr(1)}) {
            EXPECT_EQ(answer(element(other)), "skip") << other;
        }
    }
}

TEST_P(ClassBasedElementNodeFilterTest, ClassWinsOverName) {
    for (const std::string value : {"- topic/ph ", " ", "x", "- "}) {
        EXPECT_EQ(acceptedNames([&](const std::string& name) { return element(name, value); }),
                  std::vector<std::string>())
            << value;
    }
}

INSTANTIATE_TEST_SUITE_P(, ClassBasedElementNodeFilterTest, testing::ValuesIn(cases()),
                         [](const auto& instance) { return std::string(instance.param.name); });

struct ClassValueCase {
    const char* name;
    const char* classValue;
    const char* acceptedBy;  // the filters, in the order of `cases`, joined by blanks
};

constexpr ClassValueCase kClassValueCases[] = {
    {"Topic", "- topic/topic ", "TopicNodeFilter"},
    {"Concept", "- topic/topic concept/concept ", "TopicNodeFilter"},
    {"Map", "- map/map ", "MapNodeFilter"},
    {"Bookmap", "- map/map bookmap/bookmap ", "MapNodeFilter"},
    {"Topicref", "- map/topicref ", "TopicrefNodeFilter"},
    {"Chapter", "- map/topicref bookmap/chapter ", "TopicrefNodeFilter"},
    {"Topichead", "+ map/topicref mapgroup-d/topichead ", "TopicrefNodeFilter TopicheadNodeFilter"},
    {"Topicgroup", "+ map/topicref mapgroup-d/topicgroup ", "TopicrefNodeFilter"},
    {"Topicmeta", "- map/topicmeta ", "TopicmetaNodeFilter"},
    {"Title", "- topic/title ", "TitleNodeFilter"},
    {"Booktitle", "- topic/title bookmap/booktitle ", "TitleNodeFilter BookTitleNodeFilter"},
    {"Mainbooktitle", "- topic/ph bookmap/mainbooktitle ", ""},
    {"Image", "- topic/image ", "ImageNodeFilter"},
    {"EquationImage", "+ topic/image x-d/equation ", "ImageNodeFilter"},
    {"Xref", "- topic/xref ", "XrefNodeFilter"},
    {"Link", "- topic/link ", "LinkNodeFilter"},
    {"Linkpool", "- topic/linkpool ", ""},
    {"Reltable", "- map/reltable ", "ReltableNodeFilter"},
    {"Relrow", "- map/relrow ", ""},
    {"AbbreviatedForm", "+ topic/term abbrev-d/abbreviated-form ", "AbbreviatedFormNodeFilter"},
    {"Term", "- topic/term ", ""},
};

class ClassValueTest : public XmlTest, public testing::WithParamInterface<ClassValueCase> {};

TEST_P(ClassValueTest, IsAcceptedByItsFiltersAlone) {
    std::string acceptedBy;
    for (const ClassBasedCase& filter : cases()) {
        if (answerAbout(*filter.make(), element("any", GetParam().classValue)) == "accept") {
            acceptedBy += acceptedBy.empty() ? "" : " ";
            acceptedBy += filter.name;
        }
    }
    EXPECT_EQ(acceptedBy, GetParam().acceptedBy);
}

INSTANTIATE_TEST_SUITE_P(, ClassValueTest, testing::ValuesIn(kClassValueCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

using ClassBasedConstructorTest = XmlTest;

TEST_F(ClassBasedConstructorTest, TakesAnyTokenAndAnyNames) {
    const ClassBasedElementNodeFilter filter(u"topic/object ", {u"object", u"objekt"});
    EXPECT_EQ(answerAbout(filter, "<x class='- topic/object '/>"), "accept");
    EXPECT_EQ(answerAbout(filter, "<x class='- topic/objects '/>"), "skip");
    EXPECT_EQ(answerAbout(filter, "<object/>"), "accept");
    EXPECT_EQ(answerAbout(filter, "<objekt/>"), "accept");
    EXPECT_EQ(answerAbout(filter, "<param/>"), "skip");
}

TEST_F(ClassBasedConstructorTest, NamesMayBeMissing) {
    const ClassBasedElementNodeFilter filter(u"a/b ", {});
    EXPECT_EQ(answerAbout(filter, "<x class='- a/b '/>"), "accept");
    EXPECT_EQ(answerAbout(filter, "<b/>"), "skip");
}

TEST_F(ClassBasedConstructorTest, OneFilterServesAgainAndAgain) {
    const XrefNodeFilter filter;
    const ParsedXml parsed(
        "<p><xref id='a'><ph/></xref><x id='b' class='- topic/xref '/><y class='- topic/ph '/>"
        "<xref id='c'/></p>");
    for (int turn = 0; turn < 3; ++turn) {
        EXPECT_EQ(idsOf(collectElements(parsed.root(), filter)), "a b c");
    }
}

using OwnKeyrefRuleNodeFilterTest = XmlTest;

TEST_F(OwnKeyrefRuleNodeFilterTest, AcceptsByClassElseByName) {
    const OwnKeyrefRuleNodeFilter filter;
    for (const std::string& xml :
         {element("object"), element("param"), element("image"), element("abbreviated-form"),
          element("any", "- topic/object "), element("any", "- topic/param more/more "),
          element("any", "- topic/image "),
          element("any", "- topic/term abbrev-d/abbreviated-form "),
          element("image", "- topic/object ")}) {
        EXPECT_EQ(answerAbout(filter, xml), "accept") << xml;
    }
    for (const std::string& xml :
         {element("term"), element("image", "- topic/ph "), element("any", "- topic/objects ")}) {
        EXPECT_EQ(answerAbout(filter, xml), "skip") << xml;
    }
}

}  // namespace
}  // namespace marrowpress
