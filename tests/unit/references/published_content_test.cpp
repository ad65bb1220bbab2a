#include "references/published_content.h"

#include "references/exclusion_filter.h"
#include "tests/support/xml_text.h"
#include "tests/unit/profiling/profile_samples.h"

namespace marrowpress {
namespace {

class PublishedContentTest : public XmlTest {
protected:
    PublishedContentTest() { ExclusionFilterHolder::instance().reset(excludingX()); }

    /// Whether the element with the id "e" is published.
    static bool isPublishedIn(std::string_view xml) {
        const ParsedXml document(xml);
        return isPublished(*document.byId("e"));
    }
};

TEST_F(PublishedContentTest, WhatStandsInADocumentIs) {
    EXPECT_TRUE(isPublishedIn("<dita><topic><p id='e'/></topic></dita>"));
    EXPECT_TRUE(isPublishedIn("<map><topicref id='e' audience='y'/></map>"));
    EXPECT_TRUE(isPublishedIn("<topic id='e'/>"));
    EXPECT_TRUE(isPublishedIn("<dita><reltable><p id='e'/></reltable></dita>"));
}

TEST_F(PublishedContentTest, WhatTheProfileExcludesIsNot) {
    EXPECT_FALSE(isPublishedIn("<dita><topic><p id='e' audience='x'/></topic></dita>"));
    EXPECT_FALSE(isPublishedIn("<dita><topic platform='x'><p><ph id='e'/></p></topic></dita>"));
    EXPECT_FALSE(isPublishedIn("<map audience='x'><topicref id='e'/></map>"));
}

TEST_F(PublishedContentTest, WhatAMapDoesNotPublishIsNot) {
    EXPECT_FALSE(
        isPublishedIn("<map><reltable><relrow><topicref id='e'/></relrow></reltable></map>"));
    EXPECT_FALSE(isPublishedIn("<map><topicref/><topic><p id='e'/></topic></map>"));
    EXPECT_FALSE(isPublishedIn("<map><topic id='e'/></map>"));
}

TEST_F(PublishedContentTest, PrintLeavesOutReferencesThatDefineNoKey) {
    const auto isLeftOut = [](std::string_view xml) {
        const ParsedXml document(xml);
        return isLeftOutOfPrint(*document.byId("e"));
    };
    EXPECT_TRUE(isLeftOut("<map><topicref id='e' print='no'/></map>"));
    EXPECT_TRUE(isLeftOut("<map><topicref print='no'><topicref id='e'/></topicref></map>"));
    EXPECT_FALSE(isLeftOut("<map><topicref id='e' print='yes'/></map>"));
    EXPECT_FALSE(isLeftOut("<map><topicref id='e'/><topicref print='no'/></map>"));
    EXPECT_FALSE(isLeftOut("<map><topicref id='e' keys='k' print='no'/></map>"));
    EXPECT_FALSE(isLeftOut("<map><keydef keys='k' print='no'><x id='e'/></keydef></map>"));
    EXPECT_FALSE(isLeftOut("<topic><p id='e' print='no'/></topic>"));
}

TEST_F(PublishedContentTest, WhatWasTakenOutIsNot) {
    const ParsedXml document("<topic><p id='p'><ph id='e'/></p></topic>");
    const xercesc::DOMElement& element = *document.byId("e");
    document.root()->removeChild(document.byId("p"));
    EXPECT_FALSE(isPublished(element));
}

}  // namespace
}  // namespace marrowpress
