#include "publish/composite_doc_node_filter.h"

#include "dom/element_walker.h"
#include "references/exclusion_filter.h"
#include "tests/support/whole_request.h"
#include "tests/unit/profiling/profile_samples.h"
#include "tests/unit/references/filter_answers.h"

namespace marrowpress {
namespace {

using CompositeDocNodeFilterTest = XmlTest;

TEST_F(CompositeDocNodeFilterTest, TheFirstRuleThatAppliesDecides) {
    excludeMarkedElements();
    const struct {
        std::string xml;
        xercesc::DOMNodeFilter::FilterAction onScreen;
        xercesc::DOMNodeFilter::FilterAction inPrint;
    } cases[] = {
        {topicref(""), kAccept, kAccept},
        {topichead(""), kAccept, kAccept},
        {"<keydef/>", kAccept, kAccept},
        {"<topicref/>", kSkip, kSkip},
        {map(""), kSkip, kSkip},
        {"<other/>", kSkip, kSkip},
        {topicref("processing-role='resource-only'"), kReject, kReject},
        {topicref("processing-role='normal'"), kAccept, kAccept},
        {topicref("processing-role='Resource-only'"), kAccept, kAccept},
        {map("", "processing-role='resource-only'"), kReject, kReject},
        {topicref("print='no'"), kAccept, kReject},
        {topicref("print='No'"), kAccept, kAccept},
        {topicref("print='printonly'"), kAccept, kAccept},
        {topicref("print='no '"), kAccept, kAccept},
        {"<other print='no'/>", kSkip, kReject},
        {"<reltable/>", kReject, kReject},
        {"<x class='- map/reltable '/>", kReject, kReject},
        {"<reltable class='- map/topicref '/>", kAccept, kAccept},
        {topicref("excluded='yes'"), kReject, kReject},
        {"<other excluded='yes'/>", kReject, kReject},
        {topicref("excluded='no'"), kAccept, kAccept},
    };
    CompositeDocNodeFilter screen;
    CompositeDocNodeFilter print;
    print.setUsePrint(true);
    for (const auto& expected : cases) {
        const ParsedXml parsed(expected.xml);
        EXPECT_EQ(screen.acceptNode(parsed.root()), expected.onScreen) << expected.xml;
        EXPECT_EQ(print.acceptNode(parsed.root()), expected.inPrint) << expected.xml;
    }
    const ParsedXml text("<p>text<?pi?><!--c--></p>");
    for (const xercesc::DOMNode* node = text.root()->getFirstChild(); node;
         node = node->getNextSibling()) {
        EXPECT_EQ(screen.acceptNode(node), kReject);
    }
    EXPECT_EQ(screen.acceptNode(&text.document()), kReject);
    EXPECT_EQ(screen.acceptNode(nullptr), kReject);
    print.setUsePrint(false);
    EXPECT_EQ(print.acceptNode(ParsedXml(topicref("print='no'")).root()), kAccept);
}

struct ReferenceCase {
    const char* name;
    const char* xml;
    const char* answer;
    const char* answerForPrint;
};

// The profile excludes audience "x".
constexpr ReferenceCase kReferenceCases[] = {
    {"Reference", "<topicref class='- map/topicref '/>", "accept", "accept"},
    {"ExcludedReference", "<topicref class='- map/topicref ' audience='x'/>", "reject", "reject"},
    {"PartlyExcluded", "<topicref class='- map/topicref ' audience='x a'/>", "accept", "accept"},
    {"ByName", "<mapref/>", "accept", "accept"},
    {"ExcludedByName", "<mapref audience='x'/>", "reject", "reject"},
    {"NameOfATopicref", "<topicref/>", "skip", "skip"},
    {"Container", "<map class='- map/map '/>", "skip", "skip"},
    {"ExcludedContainer", "<map class='- map/map ' audience='x'/>", "reject", "reject"},
    {"Title", "<title/>", "skip", "skip"},
    {"ExcludedTitle", "<title audience='x'/>", "reject", "reject"},
    {"Resource", "<mapref processing-role='resource-only'/>", "reject", "reject"},
    {"ResourceThatIsNoReference", "<x processing-role='resource-only'/>", "reject", "reject"},
    {"NormalRole", "<mapref processing-role='normal'/>", "accept", "accept"},
    {"RoleInOtherCase", "<mapref processing-role='Resource-only'/>", "accept", "accept"},
    {"Reltable", "<reltable/>", "reject", "reject"},
    {"ReltableByClass", "<x class='- map/reltable '/>", "reject", "reject"},
    {"NotForPrint", "<mapref print='no'/>", "accept", "reject"},
    {"ContainerNotForPrint", "<x print='no'/>", "skip", "reject"},
    {"PrintOnly", "<mapref print='printonly'/>", "accept", "accept"},
    {"ForPrint", "<mapref print='yes'/>", "accept", "accept"},
    {"PrintInOtherCase", "<mapref print='No'/>", "accept", "accept"},
    {"ExcludedForPrint", "<mapref print='yes' audience='x'/>", "reject", "reject"},
    {"ExcludedResource", "<mapref processing-role='resource-only' audience='x'/>", "reject",
     "reject"},
};

class ProfiledCompositeDocNodeFilterTest : public XmlTest,
                                           public testing::WithParamInterface<ReferenceCase> {
protected:
    ProfiledCompositeDocNodeFilterTest() { forPrint_.setUsePrint(true); }

    CompositeDocNodeFilter forScreen_;
    CompositeDocNodeFilter forPrint_;
};

TEST_P(ProfiledCompositeDocNodeFilterTest, Answers) {
    ExclusionFilterHolder::instance().reset(excludingX());
    EXPECT_EQ(answerAbout(forScreen_, GetParam().xml), GetParam().answer);
    EXPECT_EQ(answerAbout(forPrint_, GetParam().xml), GetParam().answerForPrint);
}

TEST_P(ProfiledCompositeDocNodeFilterTest, ExcludesNothingWithoutAProfile) {
    std::string without = GetParam().xml;
    const std::size_t audience = without.find("audience='x'");
    if (audience == std::string::npos) {
        EXPECT_EQ(answerAbout(forScreen_, without), GetParam().answer);
        EXPECT_EQ(answerAbout(forPrint_, without), GetParam().answerForPrint);
        return;
    }
    const std::string with = without;
    without.erase(audience, std::string_view("audience='x'").size());
    EXPECT_EQ(answerAbout(forScreen_, with), answerAbout(forScreen_, without));
    EXPECT_EQ(answerAbout(forPrint_, with), answerAbout(forPrint_, without));
}

INSTANTIATE_TEST_SUITE_P(, ProfiledCompositeDocNodeFilterTest, testing::ValuesIn(kReferenceCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

using ProfiledCompositeDocNodeFilterWalkTest = XmlTest;

TEST_F(ProfiledCompositeDocNodeFilterWalkTest, WhatIsBelowAnExcludedElementIsLeftOut) {
    ExclusionFilterHolder::instance().reset(excludingX());
    const ParsedXml parsed(
        "<map><mapref id='a' audience='x'><mapref id='b'/></mapref><x platform='x'>"
        "<mapref id='c'/></x><x><mapref id='d'/></x></map>");
    EXPECT_EQ(idsOf(collectElements(parsed.root(), CompositeDocNodeFilter())), "d");
}

TEST_F(ProfiledCompositeDocNodeFilterWalkTest, WithoutRulesNothingIsLeftOut) {
    ExclusionFilterHolder::instance().reset(excludingNothing());
    EXPECT_EQ(answerAbout(CompositeDocNodeFilter(), "<mapref audience='x'/>"), "accept");
}

}  // namespace
}  // namespace marrowpress
