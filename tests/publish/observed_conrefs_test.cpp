#include "tests/publish/sample_maps.h"
#include "tests/support/observed_run.h"

/// What is told of content references: loops (205), those that stay (216), and those whose target
/// is not there (106, 108, 109, 110).
namespace marrowpress {
namespace {

constexpr std::string_view kMapOfAAndB = "<topicref href=\"a.dita\"/>\n<topicref href=\"b.dita\"/>";

class ObservedConrefsTest : public ObservedRunTest {
protected:
    void writeNestedMapOfA() const { writeMap("sub/n.ditamap", "<topicref href=\"../a.dita\"/>"); }
    /// Three libraries whose elements hold references to one another, in a ring.
    void writeRingOfLibraries() const {
        writeTopic("l1.dita", "<p id=\"p\"><ph conref=\"l2.dita#l2/p\"/></p>");
        writeTopic("l2.dita", "<ph id=\"p\"><term conref=\"l3.dita#l3/p\"/></ph>");
        writeTopic("l3.dita", "<term id=\"p\"><p conref=\"l1.dita#l1/p\"/></term>");
    }
};

TEST_F(ObservedConrefsTest, AnEndThatNamesNoElementIsToldOnce) {
    writeTopic("b.dita", "<ul><li id=\"1\"/><li id=\"2\"/></ul>");
    writeTopic("a.dita", "<ul><li conref=\"b.dita#b/1\" conrefend=\"b.dita\"/></ul>");
    compositeFaults(kMapOfA);
    EXPECT_EQ(faults(FaultCode::kInvalidConrefEnd),
              "110 a.dita:3:5 <li> /b.dita detail=/b.dita#b/1" + kViaMap);
    EXPECT_EQ(faults(FaultCode::kElementNotFound),
              "artefact 109 a.dita:3:5 <li> /b.dita detail=li" + kViaMap);
    writeTopic("a.dita", "<ul><li conref=\"b.dita#b/9\" conrefend=\"b.dita\"/></ul>");
    compositeFaults(kMapOfA);
    EXPECT_EQ(faults(FaultCode::kElementInTopicNotFound),
              "108 a.dita:3:5 <li> /b.dita#b/9 detail=li" + kViaMap);
    EXPECT_EQ(faults(FaultCode::kElementNotFound),
              "artefact 109 a.dita:3:5 <li> /b.dita detail=li" + kViaMap);
    // Here the empty id is that of the start as well.
    writeTopic("a.dita", "<ul><li conref=\"b.dita\" conrefend=\"b.dita\"/></ul>");
    compositeFaults(kMapOfA);
    EXPECT_EQ(faults().substr(0, 4), "109 ");
}

TEST_F(ObservedConrefsTest, AnElementThatRefersToItselfIsALoop) {
    writeTopic("a.dita", "<p id=\"p\" conref=\"#a/p\">lost</p>");
    const std::string expected = "205 a.dita:3:1 <p> /a.dita#a/p ring a.dita:3:1" + kViaMap;
    EXPECT_EQ(compositeFaults(kMapOfA), expected);
    EXPECT_EQ(flatBookFaults(kMapOfA), expected);
    writeTopic("a.dita", "<p id=\"p\">x<p conref=\"#a/p\"/></p>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "205 a.dita:3:12 <p> /a.dita#a/p ring a.dita:3:12" + kViaMap);
}

TEST_F(ObservedConrefsTest, ALoopIsTheSameByEachOfItsElements) {
    writeTopic("a.dita", "<p id=\"p\" conref=\"#a/q\"/>\n<p id=\"q\" conref=\"#a/p\"/>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "205 a.dita:3:1 <p> /a.dita#a/q ring a.dita:3:1 a.dita:4:1" + kViaMap +
                  "\n205 a.dita:4:1 <p> /a.dita#a/q ring a.dita:4:1 a.dita:3:1" + kViaMap);
    writeTopic("a.dita",
               "<p id=\"p\" conref=\"#a/q\"/>\n<p id=\"q\" conref=\"#a/r\"/>\n"
               "<p id=\"r\" conref=\"#a/p\"/>");
    const std::string expected =
        "205 a.dita:3:1 <p> /a.dita#a/q ring a.dita:3:1 a.dita:4:1 a.dita:5:1" + kViaMap +
        "\n205 a.dita:4:1 <p> /a.dita#a/q ring a.dita:4:1 a.dita:5:1 a.dita:3:1" + kViaMap +
        "\n205 a.dita:5:1 <p> /a.dita#a/q ring a.dita:5:1 a.dita:3:1 a.dita:4:1" + kViaMap;
    EXPECT_EQ(compositeFaults(kMapOfA), expected);
    EXPECT_EQ(flatBookFaults(kMapOfA), expected);
}

TEST_F(ObservedConrefsTest, ALoopOverTwoFilesIsWholeWhicheverOfThemIsPublished) {
    writeTopic("a.dita", "<p id=\"p\" conref=\"b.dita#b/q\"/>");
    writeTopic("b.dita", "<p id=\"q\" conref=\"a.dita#a/p\"/>");
    const std::string ofA = "205 a.dita:3:1 <p> /b.dita#b/q ring a.dita:3:1 b.dita:3:1" + kViaMap;
    EXPECT_EQ(compositeFaults(kMapOfA), ofA);
    EXPECT_EQ(flatBookFaults(kMapOfA), ofA);
    const std::string ofBoth = ofA +
                               "\n205 b.dita:3:1 <p> /b.dita#b/q ring b.dita:3:1 a.dita:3:1"
                               " via root.ditamap:4:1 href=b.dita";
    EXPECT_EQ(compositeFaults(kMapOfAAndB), ofBoth);
    EXPECT_EQ(flatBookFaults(kMapOfAAndB), ofBoth);
}

TEST_F(ObservedConrefsTest, ALoopOverThreeFilesIsWholeThoughOneIsPublished) {
    writeTopic("a.dita", "<p id=\"p\" conref=\"b.dita#b/p\"/>");
    writeTopic("b.dita", "<p id=\"p\" conref=\"c.dita#c/p\"/>");
    writeTopic("c.dita", "<p id=\"p\" conref=\"a.dita#a/p\"/>");
    // The file of the last reference is never asked for, and must not be for the observer's sake.
    EXPECT_EQ(compositeFaults(kMapOfA),
              "216 a.dita:3:1 <p> /b.dita#b/p detail=/c.dita#c/p" + kViaMap);
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/><topicref href=\"b.dita\"/>"
                              "<topicref href=\"c.dita\"/>"),
              "205 a.dita:3:1 <p> /b.dita#b/p ring a.dita:3:1 b.dita:3:1 c.dita:3:1" + kViaMap +
                  "\n205 b.dita:3:1 <p> /b.dita#b/p ring b.dita:3:1 c.dita:3:1 a.dita:3:1"
                  " via root.ditamap:3:26 href=b.dita"
                  "\n205 c.dita:3:1 <p> /b.dita#b/p ring c.dita:3:1 a.dita:3:1 b.dita:3:1"
                  " via root.ditamap:3:51 href=c.dita");
}

TEST_F(ObservedConrefsTest, ALoopThroughKeysIsALoop) {
    writeTopic("a.dita", "<p id=\"p\" conkeyref=\"k/q\"/>");
    writeTopic("b.dita", "<p id=\"q\" conkeyref=\"l/p\"/>");
    constexpr std::string_view kKeys =
        "<keydef keys=\"k\" href=\"b.dita\"/><keydef keys=\"l\" href=\"a.dita\"/>\n";
    const std::string expected =
        "205 a.dita:3:1 <p> /a.dita#a/p ring a.dita:3:1 b.dita:3:1"
        " via root.ditamap:4:1 href=a.dita";
    EXPECT_EQ(compositeFaults(std::string(kKeys).append(kMapOfA)), expected);
    EXPECT_EQ(flatBookFaults(std::string(kKeys).append(kMapOfA)), expected);
}

TEST_F(ObservedConrefsTest, ALoopOverContentNamesAllReferences) {
    writeTopic("a.dita",
               "<p id=\"p\"><note conref=\"#a/n\"/></p>\n"
               "<note id=\"n\"><p conref=\"#a/p\"/></note>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "205 a.dita:4:14 <p> /a.dita#a/p ring a.dita:4:14"
              " a.dita:3:11 via a.dita:3:11 conref=/a.dita#a/n" +
                  kViaMap);
    writeTopic("a.dita", "<ul id=\"u\"><li><p conref=\"b.dita#b/q\"/></li></ul>");
    writeTopic("b.dita", "<p id=\"q\"><ul conref=\"a.dita#a/u\"/></p>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "205 b.dita:3:11 <ul> /a.dita#a/u ring b.dita:3:11"
              " a.dita:3:16 via a.dita:3:16 conref=/b.dita#b/q" +
                  kViaMap);
}

TEST_F(ObservedConrefsTest, ALoopThatIsCutComesWithTheLineAndWithNoFaultBeside) {
    writeRingOfLibraries();
    writeTopic("a.dita", "<p conref=\"l1.dita#l1/p\"/>");
    const std::string loop =
        "205 l3.dita:3:14 <p> /l1.dita#l1/p ring l3.dita:3:14 l2.dita:3:12 l1.dita:3:11"
        " via l2.dita:3:12 conref=/l3.dita#l3/p via l1.dita:3:11 conref=/l2.dita#l2/p"
        " via a.dita:3:1 conref=/l1.dita#l1/p";
    EXPECT_EQ(compositeFaults(kMapOfA), loop + kViaMap);
    EXPECT_EQ(neutral(observations.back().line), console);
    EXPECT_NE(console, "");
    writeNestedMapOfA();
    EXPECT_EQ(compositeFaults(kMapOfNested), loop +
                                                 " via sub/n.ditamap:3:1 href=../a.dita"
                                                 " via root.ditamap:3:1 href=sub/n.ditamap");
}

TEST_F(ObservedConrefsTest, AReferenceIntoALoopIsToldAtTheLoop) {
    writeTopic("a.dita", "<p conref=\"b.dita#b/p\"/>");
    writeTopic("b.dita", "<p id=\"p\" conref=\"#b/q\"/>\n<p id=\"q\" conref=\"#b/p\"/>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "205 b.dita:3:1 <p> /b.dita#b/p ring b.dita:3:1 b.dita:4:1"
              " via a.dita:3:1 conref=/b.dita#b/q" +
                  kViaMap);
}

TEST_F(ObservedConrefsTest, ALoopThatTheProfileTakesOutIsNone) {
    excludeX();
    writeTopic("a.dita",
               "<p audience=\"x\" id=\"p\"><note conref=\"#a/n\"/></p>"
               "<note audience=\"x\" id=\"n\"><p conref=\"#a/p\"/></note>");
    EXPECT_EQ(compositeFaults(kMapOfA).substr(0, 13), "artefact 205 ");
    EXPECT_EQ(faults().find('\n'), std::string::npos);
    writeTopic("a.dita",
               "<p audience=\"x\" id=\"p\" conref=\"#a/q\"/>"
               "<p audience=\"x\" id=\"q\" conref=\"#a/p\"/>");
    EXPECT_EQ(compositeFaults(kMapOfA), "");
}

TEST_F(ObservedConrefsTest, AChainWithAnEndIsNoLoop) {
    writeTopic("a.dita", "<p conref=\"b.dita#b/p\"/><p conref=\"b.dita#b/p\"/>");
    writeTopic("b.dita", "<p id=\"p\"><ph conref=\"c.dita#c/p\"/></p>");
    writeTopic("c.dita", "<ph id=\"p\">x</ph>");
    EXPECT_EQ(compositeFaults(kMapOfA), "");
    EXPECT_EQ(flatBookFaults(kMapOfAAndB), "");
}

TEST_F(ObservedConrefsTest, AReferenceToOneThatWasNotFollowedStays) {
    writeTopic("a.dita", "<p conref=\"#a/q\"/>\n<p id=\"q\" conref=\"#a/r\"/><p id=\"r\">x</p>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "216 a.dita:3:1 <p> /a.dita#a/q detail=/a.dita#a/r" + kViaMap);
    writeTopic("a.dita", "<p conref=\"b.dita#b/q\"/>");
    writeTopic("b.dita", "<p id=\"q\" conref=\"#b/r\"/>\n<p id=\"r\">x</p>");
    const std::string expected = "216 a.dita:3:1 <p> /b.dita#b/q detail=/b.dita#b/r" + kViaMap;
    EXPECT_EQ(compositeFaults(kMapOfA), expected);
    EXPECT_EQ(compositeFaults(kMapOfAAndB), expected);
    EXPECT_EQ(flatBookFaults(kMapOfAAndB), expected);
    writeNestedMapOfA();
    EXPECT_EQ(compositeFaults(kMapOfNested),
              "216 a.dita:3:1 <p> /b.dita#b/q detail=/b.dita#b/r"
              " via sub/n.ditamap:3:1 href=../a.dita via root.ditamap:3:1 href=sub/n.ditamap");
}

TEST_F(ObservedConrefsTest, AReferenceToOneThatWasFollowedDoesNotStay) {
    writeTopic("a.dita", "<p id=\"q\" conref=\"#a/r\"/><p conref=\"#a/q\"/><p id=\"r\">x</p>");
    EXPECT_EQ(compositeFaults(kMapOfA), "");
    writeTopic("a.dita", "<p conref=\"b.dita#b/q\"/>");
    writeTopic("b.dita", "<p id=\"q\" conref=\"#b/r\"/><p id=\"r\">x</p>");
    EXPECT_EQ(compositeFaults("<topicref href=\"b.dita\"/><topicref href=\"a.dita\"/>"), "");
    excludeX();
    writeTopic("a.dita", "<p audience=\"x\" conref=\"b.dita#b/q\"/>");
    EXPECT_EQ(compositeFaults(kMapOfA), "");
}

TEST_F(ObservedConrefsTest, ATargetThatIsNotThereIsToldWithWhatBearsItsId) {
    writeTopic("b.dita", "<p id=\"p\"/><note id=\"n\"/>");
    writeTopic("a.dita",
               "<p conref=\"b.dita#b/gone\"/>\n<p conref=\"b.dita#b/n\"/>\n"
               "<p conref=\"b.dita#nope/p\"/>\n<p conref=\"b.dita#b\"/>\n<p conref=\"b.dita#n\"/>\n"
               "<p conref=\"b.dita#./n\"/>");
    const auto expected = [](const std::string& last) {
        return "108 a.dita:3:1 <p> /b.dita#b/gone detail=p" + kViaMap +
               "\n108 a.dita:4:1 <p> /b.dita#b/n detail=p reason=note" + kViaMap +
               "\n109 a.dita:5:1 <p> /b.dita#nope detail=p" + kViaMap +
               "\n109 a.dita:6:1 <p> /b.dita#b detail=p reason=topic" + kViaMap +
               "\n109 a.dita:7:1 <p> /b.dita#n detail=p reason=note" + kViaMap +
               "\n108 a.dita:8:1 <p> /b.dita#" + last + "/n detail=p reason=note" + kViaMap;
    };
    EXPECT_EQ(compositeFaults(kMapOfA), expected("."));
    EXPECT_EQ(flatBookFaults(kMapOfA), expected("."));
    // References between topics of the output lead from one place in it to another by then.
    EXPECT_EQ(compositeFaults(kMapOfAAndB), expected("b"));
}

TEST_F(ObservedConrefsTest, AnIdOfAnotherTopicIsNoHint) {
    writeTopic("b.dita", "<p id=\"p\"/>");
    writeTopic("a.dita", "<p conref=\"b.dita#b/n\"/><note id=\"n\"/>");
    EXPECT_EQ(compositeFaults(kMapOfAAndB), "108 a.dita:3:1 <p> /b.dita#b/n detail=p" + kViaMap);
}

TEST_F(ObservedConrefsTest, AReferenceWithoutIdsNamesTheFile) {
    writeTopic("b.dita", "<p/>");
    writeTopic("a.dita", "<p conref=\"b.dita\"/>");
    EXPECT_EQ(compositeFaults(kMapOfA), "109 a.dita:3:1 <p> /b.dita detail=p" + kViaMap);
}

TEST_F(ObservedConrefsTest, AFaultInPulledContentIsToldThere) {
    writeTopic("a.dita", "<p conref=\"b.dita#b/p\"/>");
    writeTopic("b.dita", "<p id=\"p\"><ph conref=\"#b/gone\"/>\n<ph conref=\"#nope\"/></p>");
    const std::string way = " via a.dita:3:1 conref=/b.dita#b/p" + kViaMap;
    EXPECT_EQ(compositeFaults(kMapOfA), "108 b.dita:3:11 <ph> /b.dita#b/gone detail=ph" + way +
                                            "\n109 b.dita:4:1 <ph> /b.dita#nope detail=ph" + way);
}

TEST_F(ObservedConrefsTest, AFaultInARangeIsToldAtItsMember) {
    writeTopic("a.dita", "<ul><li conref=\"b.dita#b/1\" conrefend=\"b.dita#b/3\"/></ul>");
    writeTopic("b.dita",
               "<ul><li id=\"1\"/>\n<li conref=\"#b/gone\"/>\n"
               "<li id=\"3\"><ph conref=\"#b/gone\"/></li></ul>");
    const std::string way = " via a.dita:3:5 conref=/b.dita#b/1" + kViaMap;
    EXPECT_EQ(compositeFaults(kMapOfA), "108 b.dita:4:1 <li> /b.dita#b/gone detail=li" + way +
                                            "\n108 b.dita:5:12 <ph> /b.dita#b/gone detail=ph" +
                                            way);
}

TEST_F(ObservedConrefsTest, ReferencesOfMapsAreToldToo) {
    writeMap("lib.ditamap", "<topicref id=\"r\" href=\"a.dita\"/>");
    writeTopic("a.dita", "x");
    constexpr std::string_view kReferences =
        "<topicref conref=\"lib.ditamap#gone\"/>\n"
        "<topicref conref=\"lib.ditamap#r\"/>\n"
        "<topicref conref=\"gone.ditamap#r\"/>";
    const auto expected = [](const std::string& map, const std::string& way) {
        return "109 " + map + ":3:1 <topicref> /lib.ditamap#gone detail=topicref" + way + "\n106 " +
               map + ":5:1 <topicref> /gone.ditamap reason=No such file or directory" + way;
    };
    EXPECT_EQ(compositeFaults(kReferences), expected("root.ditamap", ""));
    writeMap("n.ditamap", kReferences);
    EXPECT_EQ(compositeFaults("<mapref href=\"n.ditamap\" format=\"ditamap\"/>"),
              expected("n.ditamap", " via root.ditamap:3:1 href=n.ditamap"));
}

TEST_F(ObservedConrefsTest, WhatTheProfileTakesOutIsAnArtefact) {
    excludeX();
    writeTopic("b.dita", "<p id=\"p\" audience=\"x\"><ph conref=\"#b/gone\"/></p>");
    for (const char* const content : {"<p audience=\"x\" conref=\"b.dita#b/gone\"/>",
                                      "<note audience=\"x\"><p conref=\"b.dita#b/gone\"/></note>",
                                      "<p conref=\"b.dita#b/p\"/>",  // excluded by what it gets
                                      "<p conref=\"b.dita#b/p\" audience=\"x\"/>"}) {
        writeTopic("a.dita", content);
        const std::string told = compositeFaults(kMapOfA);
        EXPECT_TRUE(told.starts_with("artefact 108 ")) << content << "\n" << told;
        EXPECT_EQ(told.find('\n'), std::string::npos) << told;
    }
    writeTopic("a.dita", "<p audience=\"y\" conref=\"b.dita#b/gone\"/>");
    EXPECT_EQ(compositeFaults(kMapOfA), "108 a.dita:3:1 <p> /b.dita#b/gone detail=p" + kViaMap);
}

TEST_F(ObservedConrefsTest, ContentThatAReferenceReplacesIsAnArtefact) {
    writeTopic("b.dita", "<p id=\"p\">x</p>");
    writeTopic("a.dita", "<p conref=\"b.dita#b/p\"><ph keyref=\"no\"/></p>");
    EXPECT_EQ(compositeFaults(kMapOfA), "artefact 105 a.dita:3:24 <ph> no" + kViaMap);
}

TEST_F(ObservedConrefsTest, AFileThatCannotBeReadIsToldAtTheReference) {
    writeTopic("a.dita", "<p conref=\"gone.dita#g/p\"/>");
    const std::string reason = " /gone.dita reason=No such file or directory";
    EXPECT_EQ(compositeFaults(kMapOfA), "106 a.dita:3:1 <p>" + reason + kViaMap);
    EXPECT_EQ(flatBookFaults(kMapOfA), "106 a.dita:3:1 <p>" + reason + kViaMap);
    writeTopic("a.dita", "<p conref=\"b.dita#b/p\"/>");
    writeTopic("b.dita", "<p id=\"p\"><ph conref=\"gone.dita#g/p\"/></p>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "106 b.dita:3:11 <ph>" + reason + " via a.dita:3:1 conref=/b.dita#b/p" + kViaMap);
    excludeX();
    writeTopic("a.dita", "<p audience=\"x\" conref=\"gone.dita#g/p\"/>");
    EXPECT_EQ(compositeFaults(kMapOfA), "artefact 106 a.dita:3:1 <p>" + reason + kViaMap);
}

TEST_F(ObservedConrefsTest, AnEndBesideTheStartIsWanted) {
    writeTopic("b.dita", "<ul><li id=\"1\"/><li id=\"2\"/></ul><ul><li id=\"3\"/></ul>");
    const std::string item = "<li conref=\"b.dita#b/1\" conrefend=\"b.dita#b/";
    const auto publish = [&](const std::string& end, std::string_view map) {
        writeTopic("a.dita", "<ul>" + item + end + "\"/></ul>");
        return compositeFaults(map);
    };
    const std::string expected = "110 a.dita:3:5 <li> /b.dita#b/3 detail=/b.dita#b/1";
    EXPECT_EQ(publish("3", kMapOfA), expected + kViaMap);
    EXPECT_EQ(publish("3", kMapOfAAndB), expected + kViaMap);
    writeNestedMapOfA();
    EXPECT_EQ(publish("3", kMapOfNested), expected +
                                              " via sub/n.ditamap:3:1 href=../a.dita"
                                              " via root.ditamap:3:1 href=sub/n.ditamap");
    EXPECT_EQ(publish("2", kMapOfA), "");
    EXPECT_EQ(publish("gone", kMapOfA),
              "108 a.dita:3:5 <li> /b.dita#b/gone detail=li" + kViaMap +
                  "\n110 a.dita:3:5 <li> /b.dita#b/gone detail=/b.dita#b/1" + kViaMap);
}

TEST_F(ObservedConrefsTest, PushedContentHasNoEffect) {
    writeTopic("a.dita", "<p conaction=\"mark\" conref=\"b.dita#b/p\"/>");
    writeTopic("b.dita", "<p id=\"p\">x</p>");
    EXPECT_EQ(compositeFaults(kMapOfA), "215 a.dita:3:1 <p> conaction" + kViaMap);
}

}  // namespace
}  // namespace marrowpress
