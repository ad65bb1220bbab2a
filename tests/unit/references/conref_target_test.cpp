#include "references/conref_target.h"

#include <xercesc/dom/DOMImplementation.hpp>

#include "references/reference_paths.h"
#include "support/hrefs.h"
#include "support/xerces_ptr.h"
#include "tests/unit/references/conref_samples.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

struct TargetCase {
    const char* name;
    const char* xml;
    const char* reference;  // what stands behind "#"
    const char* tagName;
    const char* found;    // the value of "mark"; empty for none
    const char* message;  // "108 element topic", "109 id" or empty
};

constexpr const char* kTopics =
    "<dita><topic mark='no id'/>"
    "<topic id='t' mark='t'><p id='e' mark='p'/><ph id='e' mark='ph'/><p id='e' mark='second'/>"
    "<x id='t' mark='x'/><p id='f/g' mark='slash'/><p mark='no id'/>"
    "<topic id='n' mark='n'><p id='inner' mark='inner'/></topic></topic>"
    "<topic id='u' mark='u'><p id='only-u' mark='only u'/></topic></dita>";

constexpr const char* kMap =
    "<map mark='map'><topicref id='a' mark='a'><keydef id='b' mark='b'/></topicref>"
    "<topicref id='b' mark='second b'><ph id='e' mark='e of second b'/></topicref>"
    "<topicref id='a' mark='second a'/>"
    "<ph id='c' mark='c'><ph id='e' mark='e'/></ph></map>";

constexpr TargetCase kTargetCases[] = {
    {"Topic", kTopics, "t", "topic", "t", ""},
    {"NestedTopic", kTopics, "n", "topic", "n", ""},
    {"ElementInTopic", kTopics, "t/e", "ph", "ph", ""},
    {"FirstElementOfIdAndName", kTopics, "t/e", "p", "p", ""},
    {"ElementInNestedTopic", kTopics, "t/inner", "p", "inner", ""},
    {"ContainerItselfAsElement", kTopics, "t/t", "topic", "t", ""},
    {"OtherElementWithTheContainersId", kTopics, "t/t", "x", "x", ""},
    {"SlashInElementId", kTopics, "t/f/g", "p", "slash", ""},
    {"FirstTopicWithId", kTopics, ".", "topic", "t", ""},
    {"ElementInFirstTopicWithId", kTopics, "./e", "ph", "ph", ""},
    {"EmptyElementIdMeansTheTopic", kTopics, "t/", "topic", "t", ""},
    {"FirstTopicIsTheRoot", "<topic id='r' mark='r'><topic id='s'/></topic>", ".", "topic", "r",
     ""},
    {"FirstTopicOfAnyType", "<dita><p id='p'/><concept id='c' mark='c'/></dita>", ".", "concept",
     "c", ""},
    {"FirstTopicByClass", "<dita><mine id='c' mark='c' class='- topic/topic mine/mine '/></dita>",
     ".", "mine", "c", ""},
    {"ClassesAreNotCompared", "<topic id='t'><p id='e' class='- topic/ph ' mark='e'/></topic>",
     "t/e", "p", "e", ""},
    {"MapByValue", kMap, "a", "topicref", "a", ""},
    {"MapByValueInDocumentOrder", kMap, "b", "keydef", "b", ""},
    {"MapByValueOfAnyElement", kMap, "c", "ph", "c", ""},
    {"ElementInMap", kMap, "c/e", "ph", "e", ""},
    {"MapByClass", "<x class='- map/map '><topicref id='a' mark='a'/></x>", "a", "topicref", "a",
     ""},
    {"EmptyIdInMapIsTheFirstElementWithoutId", kMap, "", "map", "map", ""},
    {"ElementBehindEmptyIdInMap", kMap, "/e", "ph", "e of second b", ""},
    {"IdAttributeOfAnyElement", "<topic id='t'><keydef keys='k' mark='k'/></topic>", "k", "keydef",
     "k", ""},

    {"NoSuchTopic", kTopics, "v", "topic", "", "109 v"},
    {"NoSuchTopicForAnElement", kTopics, "v/e", "p", "", "109 v"},
    {"TopicOfOtherName", kTopics, "t", "concept", "", "109 t"},
    {"TopicNameInOtherCase", kTopics, "t", "Topic", "", "109 t"},
    {"IdInOtherCase", kTopics, "T", "topic", "", "109 T"},
    {"EmptyIdInTopic", kTopics, "", "topic", "", "109 "},
    {"ElementBehindEmptyId", kTopics, "/e", "p", "", "109 "},
    {"ElementIdAsTopicId", kTopics, "e", "p", "", "109 e"},
    {"NoSuchElement", kTopics, "t/none", "p", "", "108 none t"},
    {"ElementOfOtherName", kTopics, "t/inner", "ph", "", "108 inner t"},
    {"ElementNameInOtherCase", kTopics, "t/e", "PH", "", "108 e t"},
    {"ElementOfOtherTopic", kTopics, "t/only-u", "p", "", "108 only-u t"},
    {"NoSuchElementInFirstTopic", kTopics, "./none", "p", "", "108 none ."},
    {"ContainerOfOtherNameAsElement", kTopics, "u/u", "p", "", "108 u u"},
    {"FirstOfTheIdInMapHasOtherName", kMap, "b", "topicref", "", "109 b"},
    {"FirstOfTheIdInMapLacksTheElement", kMap, "b/e", "ph", "", "108 e b"},
    {"NoSuchIdInMap", kMap, "d", "topicref", "", "109 d"},
    {"FirstTopicComesBeforeAnIdInAMap",
     "<map><topicref id='.'/><x class='- topic/topic ' id='n'/></map>", ".", "topicref", "",
     "109 ."},
    {"MapHasNoFirstTopic", kMap, ".", "topicref", "", "109 ."},
    {"NoTopicHasAnId", "<dita><topic/><p id='p'/></dita>", ".", "topic", "", "109 ."},
};

class ConrefTargetsTest : public ConrefTest {
protected:
    /// An element of this name, as it refers.
    const DOMElement& referrer(std::u16string_view tagName) const {
        return *referrers_.document().createElement(std::u16string(tagName).c_str());
    }

private:
    const ParsedXml referrers_{"<topic/>"};
};

class ConrefTargetTest : public ConrefTargetsTest, public testing::WithParamInterface<TargetCase> {
protected:
    static std::string messageText(std::string_view tagName, const std::string& message) {
        if (message.empty()) {
            return {};
        }
        const std::string number = message.substr(0, 3);
        const std::string ids = message.substr(4);
        if (number == "109") {
            return notFound(tagName, ids, "d.dita");
        }
        const std::size_t blank = ids.find(' ');
        return notFoundInTopic(tagName, ids.substr(0, blank), ids.substr(blank + 1), "d.dita");
    }
};

TEST_P(ConrefTargetTest, FindsOrReports) {
    const ParsedXml document = parse(GetParam().xml);
    const std::u16string reference = u"#" + toUtf16(std::string_view(GetParam().reference));
    const HrefParts parts = splitHref(reference);
    const DOMElement* const target = ConrefTargets().find(
        document.document(), &parts, referrer(toUtf16(std::string_view(GetParam().tagName))));
    EXPECT_EQ(target ? attribute(*target, "mark") : "", GetParam().found);
    EXPECT_EQ(target == nullptr, std::string_view(GetParam().found).empty());
    EXPECT_EQ(console(), messageText(GetParam().tagName, GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(, ConrefTargetTest, testing::ValuesIn(kTargetCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(ConrefTargetsTest, FindsNothingAndReportsNothingWithoutParts) {
    const ParsedXml document = parse(kTopics);
    EXPECT_EQ(ConrefTargets().find(document.document(), nullptr, referrer(u"topic")), nullptr);
    EXPECT_EQ(console(), "");
}

/// The mark of what `targets` finds for "#t/ID".
std::string markOf(ConrefTargets& targets, const ParsedXml& document, const DOMElement& reference,
                   std::u16string_view id) {
    const HrefParts parts{{}, u"t", id};
    const DOMElement* const found = targets.find(document.document(), &parts, reference);
    return found ? attribute(*found, "mark") : "";
}

TEST_F(ConrefTargetsTest, FindsTheSameHoweverOftenItIsAsked) {
    const ParsedXml document = parse(topicOf(
        "<q id='a' mark='q'/><p id='a' mark='1'/><p id='a' mark='2'/><p id='b' mark='3'/>"));
    ConrefTargets targets;
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(markOf(targets, document, referrer(u"p"), u"a"), "1");
        EXPECT_EQ(markOf(targets, document, referrer(u"p"), u"b"), "3");
        EXPECT_EQ(markOf(targets, document, referrer(u"q"), u"a"), "q");
    }
    EXPECT_EQ(console(), "");
    EXPECT_EQ(markOf(targets, document, referrer(u"q"), u"b"), "");
    EXPECT_EQ(markOf(targets, document, referrer(u"q"), u"c"), "");
    EXPECT_EQ(console(),
              notFoundInTopic("q", "b", "t", "d.dita") + notFoundInTopic("q", "c", "t", "d.dita"));
}

TEST_F(ConrefTargetsTest, LooksAtATopicOnceOrTwiceHoweverOftenItIsAsked) {
    std::string many;
    for (int index = 0; index < 1000; ++index) {
        many += "<p id='p" + std::to_string(index) + "' mark='" + std::to_string(index) + "'/>";
    }
    const ParsedXml document = parse(topicOf(many));
    ConrefTargets targets;
    for (int time = 0; time < 100; ++time) {
        EXPECT_EQ(markOf(targets, document, referrer(u"p"), u"p999"), "999");
    }
    const std::size_t searched = targets.takeSearched();
    EXPECT_GT(searched, 2000U);
    EXPECT_LT(searched, 2010U);
    EXPECT_EQ(targets.takeSearched(), 0U);
}

TEST_F(ConrefTargetsTest, SeesWhatHasComeGoneOrChangedMeanwhile) {
    const ParsedXml document =
        parse(topicOf("<p id='here' mark='0'/><p id='a' mark='1'/><p id='b' mark='2'/>"));
    DOMElement& root = *document.root();
    ConrefTargets targets;
    const auto marks = [&] {
        return markOf(targets, document, referrer(u"p"), u"a") + " " +
               markOf(targets, document, referrer(u"p"), u"b");
    };
    EXPECT_EQ(marks() + marks(), "1 21 2");
    DOMElement& copy = *document.document().createElement(u"p");
    copy.setAttribute(u"id", u"a");
    copy.setAttribute(u"mark", u"new");
    document.byId("here")->appendChild(&copy);
    targets.noteChange(copy);
    EXPECT_EQ(marks(), "new 2");
    DOMElement& b = *document.byId("b");
    targets.noteChange(b);
    b.setAttribute(u"id", u"a");
    targets.noteChange(b);
    EXPECT_EQ(marks(), "new ");
    targets.noteChange(*document.byId("here"));
    document.byId("here")->removeChild(&copy);
    EXPECT_EQ(marks(), "1 ");
    EXPECT_EQ(attribute(root, "id"), "t");
}

TEST_F(ConrefTargetsTest, ReportsForADocumentWithoutElements) {
    const XercesPtr<xercesc::DOMDocument> empty(
        xercesc::DOMImplementation::getImplementation()->createDocument());
    empty->setDocumentURI((u"file://" + folder.file16("empty.dita")).c_str());
    for (const std::u16string_view topicId : {u".", u"t"}) {
        const HrefParts parts{{}, topicId, {}};
        EXPECT_EQ(ConrefTargets().find(*empty, &parts, referrer(u"p")), nullptr);
    }
    EXPECT_EQ(console(), notFound("p", ".", "empty.dita") + notFound("p", "t", "empty.dita"));
}

TEST_F(ConrefTargetsTest, ReportsNamesInUtf8AndAsTheyAre) {
    const ParsedXml document = parse(topicOf(""));
    const HrefParts missingTopic{{}, u"ü%s", {}};
    const HrefParts missingElement{{}, u"t", u"\U0001F600%d"};
    EXPECT_EQ(ConrefTargets().find(document.document(), &missingTopic, referrer(u"ä")), nullptr);
    EXPECT_EQ(ConrefTargets().find(document.document(), &missingElement, referrer(u"ä")), nullptr);
    EXPECT_EQ(console(),
              notFound("ä", "ü%s", "d.dita") + notFoundInTopic("ä", "😀%d", "t", "d.dita"));
}

TEST_F(ConrefTargetsTest, MissesATopicWhoseIdIsNotDeclaredAsOne) {
    const ParsedXml document("<topic id='t'/>", u"file://" + folder.file16("d.dita"));
    const HrefParts byId{{}, u"t", {}};
    const HrefParts first{{}, u".", {}};
    EXPECT_EQ(ConrefTargets().find(document.document(), &byId, referrer(u"topic")), nullptr);
    EXPECT_EQ(console(), notFound("topic", "t", "d.dita"));
    EXPECT_EQ(ConrefTargets().find(document.document(), &first, referrer(u"topic")),
              document.root());
}

struct ElementCase {
    const char* xml;
    const char* reference;  // what stands behind "#"
    const char* found;      // the value of "mark"; empty for none
};

TEST_F(ConrefTargetsTest, AnElementIsFoundWhateverItsNameAndNothingIsReported) {
    for (const auto& [xml, reference, found] :
         {ElementCase{kTopics, "t", "t"}, ElementCase{kTopics, "t/e", "p"},
          ElementCase{kTopics, "t/inner", "inner"}, ElementCase{kTopics, ".", "t"},
          ElementCase{kTopics, "./e", "p"}, ElementCase{kMap, "b", "b"},
          ElementCase{kMap, "c/e", "e"}, ElementCase{kTopics, "none", ""},
          ElementCase{kTopics, "t/none", ""}, ElementCase{kTopics, "t/only-u", ""},
          ElementCase{kTopics, "e", ""}, ElementCase{kMap, "none", ""},
          ElementCase{"<dita/>", ".", ""}}) {
        const ParsedXml document = parse(xml);
        const std::u16string href = u"#" + toUtf16(std::string_view(reference));
        const DOMElement* const element = elementOf(document.document(), splitHref(href));
        EXPECT_EQ(element ? attribute(*element, "mark") : "", found) << reference;
    }
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefTargetsTest, TheTopicAroundAnElementIsFoundByTheElementsId) {
    const ParsedXml document = parse(kTopics);
    EXPECT_EQ(topicIdAround(document.document(), u"e"), u"t");
    EXPECT_EQ(topicIdAround(document.document(), u"inner"), u"n");
    // A topic and an element within it have this id.
    EXPECT_EQ(topicIdAround(document.document(), u"t"), u"t");
    EXPECT_EQ(topicIdAround(document.document(), u"u"), u"");
    EXPECT_EQ(topicIdAround(document.document(), u"none"), u"");
    EXPECT_EQ(topicIdAround(parse(kMap).document(), u"c"), u"");
}

}  // namespace
}  // namespace marrowpress
