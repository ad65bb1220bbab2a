#include "tests/publish/sample_maps.h"
#include "tests/support/observed_run.h"

/// What is told of links and images: files that are not there (203), fragments that no element has
/// (204), topics that are not in the output (208), and links that stay without text.
namespace marrowpress {
namespace {

constexpr std::string_view kMapOfAAndBInALine =
    "<topicref href=\"a.dita\"/><topicref href=\"b.dita\"/>";

class ObservedLinksTest : public ObservedRunTest {
protected:
    ObservedLinksTest() { writeTopic("b.dita", "<p id=\"here\">x</p>"); }

    /// A link with a text, to that place.
    static std::string xref(const std::string& href, const std::string& attributes = {}) {
        return "<xref href=\"" + href + "\" " + attributes + ">x</xref>";
    }

    void writeNestedMapOfA() const { writeMap("sub/n.ditamap", "<topicref href=\"../a.dita\"/>"); }
};

TEST_F(ObservedLinksTest, EachKindOfReferenceToAMissingFileIsTold) {
    writeTopic("a.dita", "<p>" + xref("no.dita") +
                             "\n<image href=\"no.png\"/></p>\n"
                             "<link href=\"no.html\" format=\"html\">x</link>\n"
                             "<object data=\"no.swf\"/>");
    const std::string expected =
        "203 a.dita:3:4 <xref> /no.dita via root.ditamap:3:1 href=a.dita\n"
        "203 a.dita:4:1 <image> /no.png via root.ditamap:3:1 href=a.dita\n"
        "203 a.dita:5:1 <link> /no.html via root.ditamap:3:1 href=a.dita\n"
        "203 a.dita:6:1 <object> /no.swf via root.ditamap:3:1 href=a.dita";
    EXPECT_EQ(compositeFaults(kMapOfA), expected);
    EXPECT_EQ(flatBookFaults(kMapOfA), expected);
}

TEST_F(ObservedLinksTest, AMissingFileOfANestedMapHasTheWholeWay) {
    writeTopic("a.dita", xref("no.dita"));
    writeNestedMapOfA();
    EXPECT_EQ(compositeFaults(kMapOfNested),
              "203 a.dita:3:1 <xref> /no.dita via sub/n.ditamap:3:1 href=../a.dita"
              " via root.ditamap:3:1 href=sub/n.ditamap");
}

TEST_F(ObservedLinksTest, ALinkInPulledContentIsToldAtItsSource) {
    writeTopic("a.dita", "<p conref=\"lib.dita#lib/p\"/>");
    writeTopic("lib.dita", "<p id=\"p\">" + xref("no.dita") + "</p>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "203 lib.dita:3:11 <xref> /no.dita via a.dita:3:1 conref=/lib.dita#lib/p"
              " via root.ditamap:3:1 href=a.dita");
}

TEST_F(ObservedLinksTest, ALinkThatAContentReferenceGaveIsToldWhereItIsWritten) {
    writeTopic("a.dita", "<p><xref conref=\"lib.dita#lib/x\"/></p>");
    writeTopic("lib.dita", "<p><xref id=\"x\" href=\"no.dita\">x</xref></p>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "203 lib.dita:3:4 <xref> /no.dita via a.dita:3:4 conref=/lib.dita#lib/x"
              " via root.ditamap:3:1 href=a.dita");
}

TEST_F(ObservedLinksTest, OfContentThatTheProfileLeavesOutNothingIsTold) {
    writeTopic("a.dita", "<p audience=\"x\">" + xref("no.dita") + xref("b.dita#b/gone") +
                             xref("b.dita") + "</p>\n" + xref("no2.dita"));
    excludeX();
    const std::string expected = "203 a.dita:4:1 <xref> /no2.dita via root.ditamap:3:1 href=a.dita";
    EXPECT_EQ(compositeFaults(kMapOfA), expected);
    EXPECT_EQ(flatBookFaults(kMapOfA), expected);
}

TEST_F(ObservedLinksTest, ContentThatBecomesExcludedByAContentReferenceIsNotToldOf) {
    writeTopic("a.dita", "<p conref=\"lib.dita#lib/p\">" + xref("no.dita") + "</p>");
    writeTopic("lib.dita", "<p id=\"p\" audience=\"x\">" + xref("none.dita") + "</p>");
    excludeX();
    EXPECT_EQ(compositeFaults(kMapOfA), "");
}

TEST_F(ObservedLinksTest, WhatIsThereOrLeadsElsewhereIsNoFault) {
    folder.write("here.png", "x");
    folder.write("here.html", "x");
    for (const std::string& content :
         {xref("here.html"), xref("here.html#part", "format=\"html\""),
          std::string("<image href=\"here.png\"/>"), xref("no.dita", "scope=\"peer\""),
          xref("no.dita", "scope=\"external\""), xref("http://example.org/no.dita"),
          xref("https://example.org/"), xref("mailto:somebody@example.org"), xref("b.dita"),
          xref("b.dita#b"), xref("b.dita#b/here"), xref("#a"), xref("#./p"), xref("#a/p"),
          xref("a.dita#a/p"), xref("sub/../here.html")}) {
        writeTopic("a.dita", "<p id=\"p\">" + content + "</p>");
        EXPECT_EQ(compositeFaults(kMapOfAAndBInALine), "") << content;
        EXPECT_EQ(flatBookFaults(kMapOfAAndBInALine), "") << content;
    }
}

TEST_F(ObservedLinksTest, AMissingFileThatWasToldAtItsKeyIsNotToldAtEachUse) {
    writeTopic("a.dita",
               "<xref keyref=\"k\">x</xref><image keyref=\"k\"/><object datakeyref=\"k\"/>");
    EXPECT_EQ(compositeFaults("<keydef keys=\"k\" href=\"no.png\" format=\"png\"/>\n"
                              "<topicref href=\"a.dita\"/>"),
              "111 root.ditamap:3:1 <keydef> /no.png");
    writeNestedMapOfA();
    writeMap("keys.ditamap", "<keydef keys=\"k\" href=\"no.png\" format=\"png\"/>");
    EXPECT_EQ(compositeFaults("<mapref href=\"keys.ditamap\" format=\"ditamap\"/>\n"
                              "<mapref href=\"sub/n.ditamap\" format=\"ditamap\"/>"),
              "111 keys.ditamap:3:1 <keydef> /no.png via root.ditamap:3:1 href=keys.ditamap");
}

TEST_F(ObservedLinksTest, ALinkThroughAKeyThatLeadsElsewhereIsNoFault) {
    writeTopic("a.dita", "<xref keyref=\"k\">x</xref>");
    compositeFaults(
        "<keydef keys=\"k\" href=\"no.dita\" scope=\"peer\"/><topicref href=\"a.dita\"/>");
    EXPECT_EQ(faults(FaultCode::kLinkTargetMissing), "");
    EXPECT_EQ(faults(), "artefact 111 root.ditamap:3:1 <keydef> /no.dita");
}

TEST_F(ObservedLinksTest, AnElementWithoutTheFragmentIsToldInSourceTerms) {
    writeTopic("a.dita", xref("b.dita#b/gone") + "\n" + xref("b.dita#nope") + "\n" +
                             xref("#a/gone") + "\n" + xref("#nope") + "\n" + xref("#./gone") +
                             "\n" + xref("b.dita#here"));
    const std::string expected =
        "204 a.dita:3:1 <xref> /b.dita#b/gone via root.ditamap:3:1 href=a.dita\n"
        "204 a.dita:4:1 <xref> /b.dita#nope via root.ditamap:3:1 href=a.dita\n"
        "204 a.dita:5:1 <xref> /a.dita#a/gone via root.ditamap:3:1 href=a.dita\n"
        "204 a.dita:6:1 <xref> /a.dita#nope via root.ditamap:3:1 href=a.dita\n"
        "204 a.dita:7:1 <xref> /a.dita#a/gone via root.ditamap:3:1 href=a.dita\n"
        "204 a.dita:8:1 <xref> /b.dita#here detail=b via root.ditamap:3:1 href=a.dita";
    EXPECT_EQ(compositeFaults(kMapOfAAndBInALine), expected);
    EXPECT_EQ(flatBookFaults(kMapOfAAndBInALine), expected);
}

TEST_F(ObservedLinksTest, AMapReferenceToAMissingTopicIsTold) {
    EXPECT_EQ(compositeFaults("<topicref href=\"b.dita\"/>\n<topicref href=\"b.dita#nope\"/>"),
              "204 root.ditamap:4:1 <topicref> /b.dita#nope");
    EXPECT_EQ(flatBookFaults("<topicref href=\"b.dita\"/>\n<topicref href=\"b.dita#nope\"/>"),
              "204 root.ditamap:4:1 <topicref> /b.dita#nope");
    writeMap("sub/n.ditamap",
             "<topicref href=\"../b.dita\"/>\n<topicref href=\"../b.dita#nope\"/>");
    EXPECT_EQ(compositeFaults(kMapOfNested),
              "204 sub/n.ditamap:4:1 <topicref> /b.dita#nope"
              " via root.ditamap:3:1 href=sub/n.ditamap");
    excludeX();
    EXPECT_EQ(compositeFaults("<topicref href=\"b.dita\"/>\n"
                              "<topicref href=\"b.dita#nope\" audience=\"x\"/>"),
              "");
}

TEST_F(ObservedLinksTest, AnElementsIdInThePlaceOfATopicsIsToldWithTheTopicAroundIt) {
    EXPECT_EQ(compositeFaults("<keydef keys=\"k\" href=\"b.dita#here\" type=\"topic\"/>\n"
                              "<topicref href=\"b.dita\"/><topicref href=\"b.dita#here\"/>"),
              "204 root.ditamap:4:26 <topicref> /b.dita#here detail=b\n"
              "204 root.ditamap:3:1 <keydef> /b.dita#here detail=b");
}

TEST_F(ObservedLinksTest, AFragmentOfAKeyIsToldAtItsDefinitionUsedOrNot) {
    constexpr std::string_view kKeys =
        "<keydef keys=\"t\" href=\"b.dita#nope\"/>\n"
        "<keydef keys=\"e\" href=\"b.dita#b/nope\"/>\n"
        "<keydef keys=\"leads-on\" keyref=\"t\"/>\n";
    const std::string expected =
        "204 root.ditamap:3:1 <keydef> /b.dita#nope\n"
        "204 root.ditamap:4:1 <keydef> /b.dita#b/nope";
    writeTopic("a.dita", "<p>x</p>");
    EXPECT_EQ(compositeFaults(std::string(kKeys).append(kMapOfAAndBInALine)), expected);
    writeTopic("a.dita",
               "<xref keyref=\"t\">x</xref><xref keyref=\"e\">x</xref>"
               "<xref keyref=\"leads-on\">x</xref>");
    EXPECT_EQ(compositeFaults(std::string(kKeys).append(kMapOfAAndBInALine)), expected);
    EXPECT_EQ(flatBookFaults(std::string(kKeys).append(kMapOfAAndBInALine)), expected);
    EXPECT_EQ(compositeFaults("<keydef keys=\"t\" href=\"b.dita#b\"/>"
                              "<keydef keys=\"e\" href=\"b.dita#b/here\"/>"
                              "<keydef keys=\"leads-on\" href=\"no.html#x\" scope=\"external\"/>" +
                              std::string(kMapOfAAndBInALine)),
              "artefact 111 root.ditamap:3:74 <keydef> /no.html");
}

TEST_F(ObservedLinksTest, AnElementPartBehindAKeyIsToldAtItsUse) {
    writeTopic("a.dita", "<xref keyref=\"k/gone\">x</xref><xref keyref=\"k/here\">x</xref>");
    EXPECT_EQ(
        compositeFaults("<keydef keys=\"k\" href=\"b.dita\"/>\n" + std::string(kMapOfAAndBInALine)),
        "204 a.dita:3:1 <xref> /b.dita#b/gone via root.ditamap:4:1 href=a.dita");
}

TEST_F(ObservedLinksTest, ATopicOutsideTheMapIsNotInTheOutput) {
    writeTopic("a.dita", xref("b.dita") + "\n" + xref("b.dita#b/here") + "\n" + xref("b.dita#b"));
    const std::string expected =
        "208 a.dita:3:1 <xref> /b.dita via root.ditamap:3:1 href=a.dita\n"
        "208 a.dita:4:1 <xref> /b.dita#b/here via root.ditamap:3:1 href=a.dita\n"
        "208 a.dita:5:1 <xref> /b.dita#b via root.ditamap:3:1 href=a.dita";
    EXPECT_EQ(compositeFaults(kMapOfA), expected);
    EXPECT_EQ(flatBookFaults(kMapOfA), expected);
}

TEST_F(ObservedLinksTest, ATopicThatIsLeftOutIsNotInTheOutput) {
    writeTopic("a.dita", xref("b.dita"));
    const std::string expected = "208 a.dita:3:1 <xref> /b.dita via root.ditamap:3:1 href=a.dita";
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/>"
                              "<topicref href=\"b.dita\" processing-role=\"resource-only\"/>"),
              expected);
    EXPECT_EQ(
        compositeFaults("<topicref href=\"a.dita\"/><topicref href=\"b.dita\" print=\"no\"/>"), "");
    usePrint = true;
    EXPECT_EQ(
        compositeFaults("<topicref href=\"a.dita\"/><topicref href=\"b.dita\" print=\"no\"/>"),
        expected);
    excludeX();
    EXPECT_EQ(
        compositeFaults("<topicref href=\"a.dita\"/><topicref href=\"b.dita\" audience=\"x\"/>"),
        expected);
    writeNestedMapOfA();
    EXPECT_EQ(compositeFaults(kMapOfNested),
              "208 a.dita:3:1 <xref> /b.dita via sub/n.ditamap:3:1 href=../a.dita"
              " via root.ditamap:3:1 href=sub/n.ditamap");
}

TEST_F(ObservedLinksTest, ATopicThatTheProfileTakesOutAgainIsNotInTheOutput) {
    writeTopic("a.dita", xref("c.dita") + "\n" + xref("c.dita#c"));
    folder.write("c.dita",
                 "<!DOCTYPE topic PUBLIC \"-//OASIS//DTD DITA Topic//EN\" \"t.dtd\">\n"
                 "<topic id=\"c\" audience=\"x\"><title>c</title></topic>");
    constexpr std::string_view kMap = "<topicref href=\"a.dita\"/><topicref href=\"c.dita\"/>";
    EXPECT_EQ(compositeFaults(kMap), "");
    excludeX();
    const std::string expected =
        "208 a.dita:3:1 <xref> /c.dita#c via root.ditamap:3:1 href=a.dita\n"
        "208 a.dita:4:1 <xref> /c.dita#c via root.ditamap:3:1 href=a.dita";
    EXPECT_EQ(compositeFaults(kMap), expected);
    EXPECT_EQ(observed(ObservationKind::kExcluded),
              "c.dita:2:1 <topic> /c.dita detail=audience"
              " via root.ditamap:3:26 href=c.dita");
    EXPECT_EQ(flatBookFaults(kMap), expected);
}

TEST_F(ObservedLinksTest, WhatIsNoTopicNeedNotBeInTheOutput) {
    writeTopic("x.xml", "");
    writeMap("m.ditamap", "");
    for (const auto& [content, isTold] :
         {std::pair(xref("x.xml"), true), std::pair(xref("x.xml", "format=\"dita\""), true),
          std::pair(xref("x.xml", "format=\"xml\""), false),
          std::pair(xref("m.ditamap", "format=\"ditamap\""), false)}) {
        writeTopic("a.dita", content);
        EXPECT_EQ(compositeFaults(kMapOfA) != "", isTold) << content;
    }
}

TEST_F(ObservedLinksTest, IncludedCodeIsNoTopicAndHasNoFragments) {
    folder.write("plugin.xml", "<plugin/>");
    writeTopic("a.dita",
               "<coderef href=\"plugin.xml#line-range(4,4)\"/>\n"
               "<coderef href=\"gone.xml#line-range(4,4)\"/>");
    const std::string via = " via root.ditamap:3:1 href=a.dita";
    EXPECT_EQ(compositeFaults(kMapOfA), "215 a.dita:3:1 <coderef> coderef" + via +
                                            "\n215 a.dita:4:1 <coderef> coderef" + via +
                                            "\n203 a.dita:4:1 <coderef> /gone.xml" + via);
}

TEST_F(ObservedLinksTest, AMissingFileIsToldThoughALostCopyOfTheLinkWasTold) {
    writeTopic("sub/b.xml",
               "<topic id=\"t\"><body>\n<xref href=\"gone.dita\">x</xref>\n</body></topic>");
    const std::string faults = compositeFaults(
        "<keydef keys=\"k\" href=\"sub/b.xml#t\"/>\n<topicref href=\"sub/b.xml\"/>");
    EXPECT_NE(faults.find("artefact 111 sub/b.xml:4:1 <xref> /gone.dita"), std::string::npos)
        << faults;
    EXPECT_NE(faults.find("\n203 sub/b.xml:4:1 <xref> /sub/gone.dita"), std::string::npos)
        << faults;
}

TEST_F(ObservedLinksTest, ANameWithASignThatCutsReferencesIsToldInsteadOfTheMissingFile) {
    folder.write("x#1.png", "x");
    folder.write("c#d/e.png", "x");
    writeTopic("a.dita",
               "<image href=\"x#1.png\"/>\n<image href=\"c%23d/e.png\"/>\n"
               "<image href=\"gone#1.png\"/>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "213 a.dita:3:1 <image> /x#1.png detail=# via root.ditamap:3:1 href=a.dita\n"
              "213 a.dita:4:1 <image> /c#d detail=# via root.ditamap:3:1 href=a.dita\n"
              "203 a.dita:5:1 <image> /gone via root.ditamap:3:1 href=a.dita");
}

TEST_F(ObservedLinksTest, ANameWithABackslashIsToldInsteadOfTheMissingFile) {
    folder.write("x\\1.png", "x");
    folder.write("c\\d/e.png", "x");
    folder.write("s/p\\q\\r.dita", "x");
    folder.write("b\\#.png", "x");
    folder.write("there/1.png", "x");
    writeTopic("a.dita", "<image href=\"x\\1.png\"/>\n<image href=\"c\\d/e.png\"/>\n" +
                             xref("s/p\\q\\r.dita#r") +
                             "\n<image href=\"b\\#.png\"/>\n<image href=\"gone\\1.png\"/>\n"
                             "<image href=\"there\\1.png\"/>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "213 a.dita:3:1 <image> /x\\1.png detail=\\ via root.ditamap:3:1 href=a.dita\n"
              "213 a.dita:4:1 <image> /c\\d detail=\\ via root.ditamap:3:1 href=a.dita\n"
              "213 a.dita:5:1 <xref> /s/p\\q\\r.dita detail=\\ via root.ditamap:3:1 href=a.dita\n"
              "213 a.dita:6:1 <image> /b\\#.png detail=\\ via root.ditamap:3:1 href=a.dita\n"
              "203 a.dita:7:1 <image> /gone/1.png via root.ditamap:3:1 href=a.dita");
}

TEST_F(ObservedLinksTest, ALinkWithoutTextStaysSo) {
    writeTopic("a.dita",
               "<xref href=\"b.dita\"/>\n<link href=\"b.dita\"> </link>\n"
               "<xref href=\"b.dita\">x</xref><link href=\"b.dita\"><ph/></link>"
               "<image href=\"here.png\"/>");
    folder.write("here.png", "x");
    EXPECT_EQ(compositeFaults(kMapOfAAndBInALine),
              "215 a.dita:3:1 <xref> link-text via root.ditamap:3:1 href=a.dita\n"
              "215 a.dita:4:1 <link> link-text via root.ditamap:3:1 href=a.dita");
}

TEST_F(ObservedLinksTest, AWebLinkByKeyGetsNoScope) {
    writeTopic("a.dita",
               "<xref keyref=\"w\">x</xref>\n<xref keyref=\"w\" scope=\"external\">x</xref>"
               "<ph keyref=\"w\">x</ph>");
    EXPECT_EQ(
        compositeFaults("<keydef keys=\"w\" href=\"https://example.org/\" scope=\"external\"/>"
                        "<topicref href=\"a.dita\"/>"),
        "215 a.dita:3:1 <xref> key-scope-format via root.ditamap:3:64 href=a.dita");
}

}  // namespace
}  // namespace marrowpress
