#include "publish/topicref_walk.h"

#include "support/text.h"
#include "tests/support/message_texts.h"
#include "tests/support/texts.h"
#include "tests/support/xml_text.h"
#include "tests/unit/publish/composite_request.h"

namespace marrowpress {
namespace {

class TopicrefWalkTest : public XmlTest {
protected:
    TopicrefWalkTest() {
        for (const char* name : {"a", "b", "c"}) {
            folder.write(std::string(name) + ".dita", topic(name));
        }
    }

    ParsedXml parse(const std::string& text) const {
        return ParsedXml(text, u"file://" + folder.file16("root.ditamap"));
    }

    /// What a walk from `start` appends to a root; ids as "id-1", "id-2".
    std::string walked(xercesc::DOMElement* start) {
        const ParsedXml output("<dita/>", u"file://" + folder.file16("book.dita"));
        KeySpace keySpace(keys_.document());
        TopicrefWalk(filter, keySpace, topicIds, conditions).run(*output.root(), start);
        const std::string text = IdNames().named(printed(*output.root()));
        return text == "<dita/>" ? "" : text.substr(6, text.rfind("</dita>") - 6);
    }

    std::string walkedMap(const std::string& content) { return walked(parse(map(content)).root()); }

    CompositeDocNodeFilter filter;
    TopicIdMap topicIds;
    ConditionMergeState conditions;

private:
    ParsedXml keys_{"<map/>"};
};

TEST_F(TopicrefWalkTest, WithoutAStartNothingIsAppended) {
    EXPECT_EQ(walked(nullptr), "");
    EXPECT_EQ(walkedMap(""), "");
}

TEST_F(TopicrefWalkTest, TopicsNestAsTheirReferencesDo) {
    EXPECT_EQ(
        walkedMap(topicref("href='a.dita'", topicref("href='b.dita'")) + topicref("href='c.dita'")),
        taken(1, "a", taken(2, "b")) + taken(3, "c"));
    EXPECT_EQ(host.progress(),
              (std::vector{appending("a.dita"), appending("b.dita"), appending("c.dita")}));
    EXPECT_TRUE(host.console().empty());
}

TEST_F(TopicrefWalkTest, AWalkMayStartAtAReference) {
    const ParsedXml parsed = parse(map(
        topicref("href='a.dita'") + topicref("id='s' href='b.dita'", topicref("href='c.dita'"))));
    EXPECT_EQ(walked(parsed.byId("s")), taken(1, "b", taken(2, "c")));
}

TEST_F(TopicrefWalkTest, WhatTheFilterRejectsIsLeftOutWithAllBelowIt) {
    const std::string content =
        topicref("href='a.dita' print='no'", topicref("href='b.dita'")) + topicref("href='c.dita'");
    EXPECT_EQ(walkedMap(content), taken(1, "a", taken(2, "b")) + taken(3, "c"));
    filter.setUsePrint(true);
    EXPECT_EQ(walkedMap(content), taken(1, "c"));
}

TEST_F(TopicrefWalkTest, AHeadIsATopicOfItsTitle) {
    EXPECT_EQ(walkedMap(topichead("navtitle='H &lt;'", topicref("href='a.dita'"))),
              taken(1, "H &lt;", taken(2, "a")));
}

TEST_F(TopicrefWalkTest, AHeadWithoutATitleIsNoLevel) {
    EXPECT_EQ(walkedMap(topicref("href='a.dita'",
                                 topichead("", topicref("href='b.dita'")) +
                                     topichead("navtitle=''", topicref("href='c.dita'")))),
              taken(1, "a", taken(2, "b") + taken(3, "c")));
}

TEST_F(TopicrefWalkTest, WhatCannotBeReadIsNoLevel) {
    folder.write("broken.dita", "<topic");
    EXPECT_EQ(walkedMap(topicref("href='a.dita'",
                                 topicref("href='broken.dita'", topicref("href='b.dita'")))),
              taken(1, "a", taken(2, "b")));
    EXPECT_EQ(host.console(), std::vector{cannotRead(folder.file("broken.dita"))});
}

TEST_F(TopicrefWalkTest, ANestedMapStandsInThePlaceOfItsReference) {
    folder.write("inner.ditamap", map(topicref("href='b.dita'", topicref("href='c.dita'"))));
    EXPECT_EQ(walkedMap(topicref("href='a.dita'", mapref("href='inner.ditamap'")) +
                        mapref("href='inner.ditamap'")),
              taken(1, "a", taken(2, "b", taken(3, "c"))) + taken(4, "b", taken(5, "c")));
}

TEST_F(TopicrefWalkTest, TheFirstPlaceOfATopicIsKnown) {
    walkedMap(topicref("href='a.dita'") + topicref("href='a.dita'"));
    EXPECT_EQ(toUtf8(topicIds.find(folder.file16("a.dita") + u"#a")),
              "#" + std::string(kGeneratedIds[0]));
    EXPECT_EQ(topicIds.byReference().size(), 1U);
}

TEST_F(TopicrefWalkTest, ConditionsAreGatheredWhereTheyAreMerged) {
    folder.write("a.dita", "<?Qs Condition X x y show z?>" + topic("a"));
    walkedMap(topicref("href='a.dita'"));
    EXPECT_TRUE(conditions.conditions.records().empty());
    conditions.mergeEnabled = true;
    walkedMap(topicref("href='a.dita'"));
    EXPECT_EQ(conditions.conditions.records().size(), 1U);
}

TEST_F(TopicrefWalkTest, DepthCostsNoStack) {
    EXPECT_EQ(walkedMap(nestedElements(4000, topicref("href='a.dita'"))), taken(1, "a"));
}

using TopicShellTest = XmlTest;

TEST_F(TopicShellTest, IsAnEmptyTopicBehindWhatIsThere) {
    const ParsedXml parsed("<dita><first/></dita>");
    const xercesc::DOMElement& shell = createTopicShell(*parsed.root());
    EXPECT_EQ(printed(*parsed.root()),
              replacedAll("<dita><first/><topic id=\"ID\"><title/></topic></dita>", "ID",
                          kGeneratedIds[0]));
    EXPECT_EQ(parsed.root()->getLastElementChild(), &shell);
}

/// Walks as a request for a composite makes them.
using TopicrefWalkRequestTest = CompositeRequestTest;

TEST_F(TopicrefWalkRequestTest, ANestedMapThatIsOnlyAResourceIsLeftOut) {
    folder.write("inner.ditamap",
                 map(topicref("href='a.dita'"), "processing-role='resource-only'"));
    EXPECT_EQ(publish(map(mapref("href='inner.ditamap'") + topicref("href='b.dita'"))),
              taken(2, "b") + kEndOfDita);
}

TEST_F(TopicrefWalkRequestTest, AMapByNameThatIsATopicIsTakenInAsOne) {
    folder.write("m.xml", "<map class='- topic/topic ' id='m'><title>M</title></map>");
    EXPECT_EQ(publish(map(topicref("href='m.xml'", topicref("href='a.dita'")))),
              "<map class=\"- topic/topic \" id=\"id-2\"><title>M</title>" + taken(3, "a") +
                  "</map>" + kEndOfDita);
}

TEST_F(TopicrefWalkRequestTest, AContainerWithoutElementsNestsNothing) {
    folder.write("empty.dita", "<dita><!-- kept --><?kept?>text</dita>");
    folder.write("nothing.dita", "<dita/>");
    EXPECT_EQ(
        publish(map(
            topicref("href='a.dita'", topicref("href='empty.dita'", topicref("href='b.dita'"))) +
            topicref("href='nothing.dita'", topicref("href='c.dita'")))),
        taken(2, "a", "<!-- kept --><?kept?>text" + taken(3, "b")) + taken(4, "c") + kEndOfDita);
}

TEST_F(TopicrefWalkRequestTest, WithoutADtdNoElementHasAFragment) {
    EXPECT_EQ(publish(map(topicref("href='a.dita#a'", topicref("href='b.dita'")))),
              taken(2, "b") + kEndOfDita);
    EXPECT_EQ(console, "");
    EXPECT_EQ(progress.find("a.dita"), std::string::npos);
}

TEST_F(TopicrefWalkRequestTest, AFragmentIsAnIdOfTheDocument) {
    folder.write("a.dita",
                 "<!DOCTYPE topic [<!ATTLIST p id ID #IMPLIED><!ATTLIST topic id ID #IMPLIED>]>"
                 "<topic id='a'><title>a</title><body><p id='p'>P</p></body></topic>");
    EXPECT_EQ(publish(map(topicref("href='a.dita#p'", topicref("href='b.dita'")) +
                          topicref("href='a.dita#p/x'"))),
              "<p id=\"p\">P" + taken(2, "b") + "</p><p id=\"p\">P</p>" + kEndOfDita);
}

TEST_F(TopicrefWalkRequestTest, TheOutputMayBeATargetToo) {
    EXPECT_EQ(publish(map(topicref("href='a.dita'") +
                          topicref("href='out/book.dita'", topicref("href='b.dita'")))),
              taken(2, "a") + taken(3, "") + taken(4, "a", taken(5, "b")) + kEndOfDita);
}

TEST_F(TopicrefWalkRequestTest, AMapThatLeadsToItselfIsPassedOver) {
    for (const char* href :
         {"#", "root.ditamap", "./root.ditamap", "out/../root.ditamap", "root.ditamap#none"}) {
        EXPECT_EQ(
            publish(map(topicref("href='a.dita'") + mapref("href='" + std::string(href) + "'") +
                        topicref("href='b.dita'"))),
            taken(2, "a") + taken(3, "b") + kEndOfDita)
            << href;
    }
}

TEST_F(TopicrefWalkRequestTest, AMapUnderAnotherSpellingIsAnotherDocument) {
    const std::string path = folder.path().string() + "/./root.ditamap";
    for (const std::string& href : {path, "file://" + path}) {
        EXPECT_EQ(publish(map(topicref("href='a.dita'") + mapref("href='" + href + "'") +
                              topicref("href='b.dita'"))),
                  taken(2, "a") + taken(3, "a") + taken(4, "b") + taken(5, "b") + kEndOfDita)
            << href;
        EXPECT_EQ(console, "") << href;
    }
}

TEST_F(TopicrefWalkRequestTest, ANestedMapThatIsAReferenceToAPartEndsTheRun) {
    folder.write("parts.ditamap", map(topicref("id='x' href='a.dita'")));
    folder.write("empty.ditamap", map(topicref("href='b.dita'"), "href='parts.ditamap#x'"));
    folder.write("root.ditamap", map(mapref("href='empty.ditamap'") + topicref("href='c.dita'")));
    EXPECT_EQ(status(publishComposite(composite())), -42);
    EXPECT_EQ(console, "");
}

TEST_F(TopicrefWalkRequestTest, APartOfTheMapItselfIsTakenInItsPlace) {
    EXPECT_EQ(
        publish(map(topicref("id='x' href='a.dita'", topicref("href='b.dita'")) +
                    mapref("href='root.ditamap#x'") + topicref("href='c.dita'"))),
        taken(2, "a", taken(3, "b")) + taken(4, "a", taken(5, "b")) + taken(6, "c") + kEndOfDita);
}

}  // namespace
}  // namespace marrowpress
