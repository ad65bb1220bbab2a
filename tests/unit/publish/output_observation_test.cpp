#include "publish/output_observation.h"

#include <filesystem>

#include "publish/publish_result.h"
#include "references/key_space.h"
#include "tests/support/file_conditions.h"
#include "tests/support/recording_observer.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

/// Finished documents that a test makes up; whole runs are looked at elsewhere.
class OutputObservationTest : public XmlTest {
protected:
    OutputObservationTest() { observed->noteTopicId(u"id1", u"/a.dita#a"); }

    std::string faultsOfAll(const std::vector<xercesc::DOMDocument*>& documents) {
        observed.host.observations.clear();
        const KeySpace keySpace(keys.document());
        observeOutput(*observed, FlatBookPublishResult(documents), keySpace, u"/root.ditamap");
        return observed.faults();
    }

    /// The faults of a component with this topic.
    std::string faultsOf(const std::string& content) {
        const ParsedXml component("<dita><topic id='id1'>" + content + "</topic></dita>",
                                  u"file:///out/a.qs");
        return faultsOfAll({&component.document()});
    }

    ObservedScope observed;
    const ParsedXml keys{"<map/>", u"file:///out/keys.ditamap"};
};

TEST_F(OutputObservationTest, AComponentOfTwoReferencesIsLookedAtOnce) {
    const ParsedXml component("<dita><topic id='id1'><xref href='/no'>x</xref></topic></dita>",
                              u"file:///out/a.qs");
    EXPECT_EQ(faultsOfAll({&component.document(), nullptr, &component.document()}),
              "203 ?:0:0 <xref> /no");
}

TEST_F(OutputObservationTest, LinksOfOneComponentLeadIntoAnother) {
    observed->noteTopicId(u"id2", u"/b.dita#b");
    const ParsedXml first(
        "<dita><topic id='id1'><xref href='/out/b.qs#id2/p'>x</xref>"
        "<xref href='/out/b.qs#id2/q'>x</xref><xref href='/out/b.qs'>x</xref></topic></dita>",
        u"file:///out/a.qs");
    const ParsedXml second("<dita><topic id='id2'><p id='p'/></topic></dita>", u"file:///out/b.qs");
    EXPECT_EQ(faultsOfAll({&first.document(), &second.document()}), "204 ?:0:0 <xref> /b.dita#b/q");
}

TEST_F(OutputObservationTest, AnElementBelongsToTheTopicThatItStandsIn) {
    EXPECT_EQ(faultsOf("<xref href='#id1/p'>x</xref><p id='p'/>"), "");
    EXPECT_EQ(faultsOf("<xref href='#id1/p'>x</xref><topic id='inner'><p id='p'/></topic>"),
              "204 ?:0:0 <xref> /a.dita#a/p");
}

TEST_F(OutputObservationTest, TheNearestScopeCounts) {
    EXPECT_EQ(faultsOf("<linklist scope='peer'><link href='/no1'>x</link>"
                       "<link href='/no2' scope='local'>x</link></linklist>"
                       "<linklist scope='external'><linkpool><link href='/no3'>x</link></linkpool>"
                       "</linklist>"),
              "203 ?:0:0 <link> /no2");
}

TEST_F(OutputObservationTest, ANameThatNoFileCanHaveIsMissing) {
    const std::string longName(5000, 'x');
    EXPECT_EQ(faultsOf("<xref href='" + longName + "'>x</xref>"), "203 ?:0:0 <xref> " + longName);
    EXPECT_EQ(faultsOf("<xref href='/'>x</xref>"), "");
}

TEST_F(OutputObservationTest, AFileThatTheSystemSaysNothingOfIsNotMissing) {
    std::filesystem::create_directories(folder.path() / "closed");
    std::filesystem::permissions(folder.path() / "closed", std::filesystem::perms::none);
    const std::string link = "<xref href='" + folder.file("closed/no") + "'>x</xref>";
    {
        const WithoutRights nobody;
        EXPECT_EQ(faultsOf(link), "");
    }
    std::filesystem::permissions(folder.path() / "closed", std::filesystem::perms::owner_all);
    EXPECT_EQ(faultsOf(link), "203 ?:0:0 <xref> " + folder.file("closed/no"));
}

TEST_F(OutputObservationTest, TextInCdataIsText) {
    EXPECT_EQ(faultsOf("<xref href='http://x'><![CDATA[x]]></xref>"), "");
    EXPECT_EQ(faultsOf("<xref href='http://x'><!-- x --><?x x?> </xref>"),
              "215 ?:0:0 <xref> link-text");
}

TEST_F(OutputObservationTest, CodeReferencesHaveNoEffect) {
    EXPECT_EQ(faultsOf("<codeblock><coderef href='/'/></codeblock>"),
              "215 ?:0:0 <coderef> coderef");
}

TEST_F(OutputObservationTest, ADeepDocumentCostsNoStack) {
    EXPECT_EQ(faultsOf(nestedElements(100000, "<xref href='/no'>x</xref>")),
              "203 ?:0:0 <xref> /no");
}

}  // namespace
}  // namespace marrowpress
