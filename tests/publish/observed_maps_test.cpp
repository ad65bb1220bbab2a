#include <filesystem>

#include "tests/support/observed_run.h"

/// What is told of maps, of their files and of what is made of them: missing and unreadable files
/// (106, 111), outputs that cannot be written (107, 212), DTDs (201, 202), no topics (206), and
/// what maps say in vain (209, 210, 213, 215).
namespace marrowpress {
namespace {

constexpr std::string_view kMapOfNestedBeside = "<mapref href=\"n.ditamap\" format=\"ditamap\"/>";
const std::string kViaNestedMap = " via root.ditamap:3:1 href=n.ditamap";
constexpr std::string_view kTopicDoctype =
    "<!DOCTYPE topic PUBLIC \"-//OASIS//DTD DITA Topic//EN\" \"topic.dtd\">\n";

class ObservedMapsTest : public ObservedRunTest {
protected:
    ObservedMapsTest() {
        writeTopic("a.dita", "");
        writeTopic("b.dita", "");
    }
};

TEST_F(ObservedMapsTest, FaultsComeWithTheirLinesInTheOrderOfTheConsole) {
    writeTopic("a.dita", "<ph keyref=\"no\"/><p conref=\"b.dita#b/p\"/><p conref=\"b.dita#c\"/>");
    compositeFaults(
        "<topicref href=\"gone.dita\"/><topicref href=\"a.dita\"/>"
        "<topicref keyref=\"no\"/><topicref href=\"bad.dita\"/>");
    std::string lines;
    for (const ObservedCopy& observation : observations) {
        lines += observation.line;
    }
    EXPECT_NE(console, "");
    EXPECT_EQ(neutral(lines), console);
}

TEST_F(ObservedMapsTest, PhasesAndWhatIsMadeAreToldInTheirOrder) {
    writeMap("n.ditamap", "<topicref href=\"b.dita\"/>");
    compositeFaults("<topicref href=\"a.dita\"/>\n<mapref href=\"n.ditamap\" format=\"ditamap\"/>");
    EXPECT_EQ(observed(ObservationKind::kPhase),
              "?:0:0 keys\n?:0:0 map\n?:0:0 assembly\n?:0:0 output");
    EXPECT_EQ(observed(ObservationKind::kDocumentRead),
              "0 ?:0:0 <map> /root.ditamap\n0 root.ditamap:4:1 <map> /n.ditamap\n"
              "0 root.ditamap:3:1 <topic> /a.dita\n"
              "0 n.ditamap:3:1 <topic> /b.dita via root.ditamap:4:1 href=n.ditamap");
    EXPECT_EQ(observed(ObservationKind::kTopic),
              "root.ditamap:3:1 <topicref> /a.dita\n"
              "n.ditamap:3:1 <topicref> /b.dita via root.ditamap:4:1 href=n.ditamap");
    EXPECT_EQ(observed(ObservationKind::kOutputWritten), "?:0:0 /out/book.dita");
    EXPECT_EQ(observed(ObservationKind::kComponent), "");
    flatBookFaults("<topicref href=\"a.dita\"/><topichead navtitle=\"H\"/>");
    EXPECT_EQ(observed(ObservationKind::kComponent),
              "root.ditamap:3:1 <topicref> /out/a.qs detail=/a.dita\n"
              "root.ditamap:3:26 <topichead> /out/H.qs");
    EXPECT_EQ(observed(ObservationKind::kOutputWritten), "?:0:0 /out/a.qs\n?:0:0 /out/H.qs");
}

TEST_F(ObservedMapsTest, AMissingFileIsToldAtItsReference) {
    EXPECT_EQ(flatBookFaults("<topicref href=\"a.dita\"/>\n<topicref href=\"gone.dita\"/>"),
              "111 root.ditamap:4:1 <topicref> /gone.dita\n"
              "111 root.ditamap:4:1 <topicref> /gone.dita");
    writeMap("n.ditamap", "<topicref href=\"a.dita\"/><keydef keys=\"k\" href=\"gone.pdf\"/>");
    const std::string inNested = "111 n.ditamap:3:26 <keydef> /gone.pdf" + kViaNestedMap;
    EXPECT_EQ(compositeFaults(kMapOfNestedBeside), inNested);
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/>\n"
                              "<mapref href=\"gone.ditamap\" format=\"ditamap\"/>")
                  .substr(0, 42),
              "111 root.ditamap:4:1 <mapref> /gone.ditama");
}

TEST_F(ObservedMapsTest, AMissingFileThatIsNotPublishedIsNoFault) {
    for (const char* const attributes : {"scope=\"peer\"", "scope=\"external\""}) {
        compositeFaults("<topicref href=\"a.dita\"/><topicref href=\"gone.dita\" " +
                        std::string(attributes) + "/>");
        for (const ObservedCopy& observation : observations) {
            const bool isFault = observation.kind == ObservationKind::kFault;
            EXPECT_TRUE(!isFault || observation.isArtefact()) << printed(observation);
        }
        EXPECT_NE(faults(FaultCode::kReferencedFileNotFound), "");
    }
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/>\n<reltable><relrow><relcell>"
                              "<topicref href=\"gone.dita\"/><topicref keyref=\"no\"/>"
                              "</relcell></relrow></reltable>"),
              "artefact 111 root.ditamap:4:28 <topicref> /gone.dita\n"
              "215 root.ditamap:4:1 <reltable> reltable\n"
              "artefact 105 root.ditamap:4:56 <topicref> no");
    excludeX();
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/>"
                              "<topicref href=\"gone.dita\" audience=\"x\"/>"),
              "");
    EXPECT_EQ(observed(ObservationKind::kExcluded),
              "root.ditamap:3:26 <topicref> /gone.dita detail=audience");
}

TEST_F(ObservedMapsTest, AMissingFileThatIsNotPrintedIsNoFaultOfARunForPrint) {
    constexpr std::string_view kMap =
        "<topicref href=\"a.dita\"/>\n<topicref href=\"gone.dita\" print=\"no\"/>\n"
        "<topicref print=\"no\"><topicref href=\"lost.dita\"/></topicref>\n"
        "<keydef keys=\"k\" href=\"none.png\" format=\"png\" print=\"no\"/>";
    compositeFaults(kMap);
    EXPECT_EQ(faults().find("artefact"), std::string::npos) << faults();
    usePrint = true;
    const std::string expected =
        "artefact 111 root.ditamap:4:1 <topicref> /gone.dita\n"
        "artefact 111 root.ditamap:5:22 <topicref> /lost.dita\n"
        "111 root.ditamap:6:1 <keydef> /none.png";
    EXPECT_EQ(compositeFaults(kMap), expected);
    EXPECT_EQ(flatBookFaults(kMap), expected);
}

TEST_F(ObservedMapsTest, AFileThatIsNotWellFormedIsToldWhereTheParserStopped) {
    folder.write("bad.dita", "<topic id=\"x\">\n<p></topic>");
    const std::string stop =
        "106 bad.dita:2:6 <topicref> /bad.dita reason=expected end of tag 'p'"
        " via ";
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/>\n<topicref href=\"bad.dita\"/>"),
              stop + "root.ditamap:4:1 href=bad.dita");
    EXPECT_EQ(flatBookFaults("<topicref href=\"a.dita\"/>\n<topicref href=\"bad.dita\"/>"),
              stop + "root.ditamap:4:1 href=bad.dita");
    EXPECT_EQ(observed(ObservationKind::kDocumentUnread),
              "root.ditamap:4:1 <topicref> /bad.dita reason=expected end of tag 'p'");
    writeMap("n.ditamap", "<topicref href=\"a.dita\"/><topicref href=\"bad.dita\"/>");
    EXPECT_EQ(compositeFaults(kMapOfNestedBeside),
              stop + "n.ditamap:3:26 href=bad.dita" + kViaNestedMap);
    excludeX();
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/>"
                              "<topicref href=\"bad.dita\" audience=\"x\"/>"),
              "");
}

TEST_F(ObservedMapsTest, ATopicThatCannotBeOpenedHasTheSystemsReason) {
    std::filesystem::create_directories(folder.path() / "folder.dita");
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/>\n<topicref href=\"folder.dita\"/>"),
              "106 root.ditamap:4:1 <topicref> /folder.dita reason=not a regular file");
}

TEST_F(ObservedMapsTest, AMapThatIsNotWellFormedEndsTheRun) {
    folder.write("n.ditamap", "<map>\n<p></map>");
    EXPECT_EQ(
        compositeFaults(kMapOfNestedBeside),
        "106 n.ditamap:2:6 <mapref> /n.ditamap reason=expected end of tag 'p'" + kViaNestedMap);
    EXPECT_EQ(lastStatus, -42);
    EXPECT_EQ(observed(ObservationKind::kRunFailed), "?:0:0");
    compositeFaults("<topicref href=\"a.dita\"/>");
    EXPECT_EQ(observed(ObservationKind::kRunFailed), "");
}

TEST_F(ObservedMapsTest, AnOutputThatCannotBeWrittenHasTheSystemsReason) {
    std::filesystem::create_directories(folder.path() / "out/a.qs");
    flatBookFaults("<topicref href=\"a.dita\"/><topicref href=\"b.dita\"/>");
    EXPECT_EQ(faults(FaultCode::kCannotWrite), "107 ?:0:0 /out/a.qs reason=Is a directory");
    EXPECT_EQ(observed(ObservationKind::kOutputWritten), "?:0:0 /out/b.qs");
    std::filesystem::remove_all(folder.path() / "out");
    compositeFaults("<topicref href=\"a.dita\"/>");
    EXPECT_EQ(faults(FaultCode::kCannotWrite),
              "107 ?:0:0 /out/KeyspaceDoc.ditamap reason=No such file or directory");
    EXPECT_EQ(observed(ObservationKind::kOutputWritten), "");
}

TEST_F(ObservedMapsTest, ANavtitleThatIsNoFileNameIsToldOfAFlatBookOnly) {
    const std::string longTitle(300, 'x');
    const std::string headings =
        "<topichead navtitle=\"../b\"><topicref href=\"a.dita\"/></topichead>\n<topichead "
        "navtitle=\"" +
        longTitle + "\"/>\n<topichead navtitle=\"fine\"><topicref href=\"a.dita\"/></topichead>";
    const std::string expected =
        "212 root.ditamap:3:1 <topichead> ../b detail=/b.qs\n"
        "212 root.ditamap:4:1 <topichead> " +
        longTitle + " detail=/out/" + longTitle + ".qs";
    EXPECT_EQ(flatBookFaults(headings), expected);
    EXPECT_EQ(compositeFaults(headings), "");
    excludeX();
    EXPECT_EQ(
        flatBookFaults("<topicref href=\"a.dita\"/><topichead navtitle=\"../b\" audience=\"x\"/>"),
        "");
}

TEST_F(ObservedMapsTest, ANavtitleWithASeparatorIsToldBeforeWhatFollowsFromIt) {
    const std::string expected =
        "212 root.ditamap:4:1 <topichead> a/b detail=/out/a/b.qs\n"
        "107 ?:0:0 /out/a/b.qs reason=No such file or directory\n"
        "106 ?:0:0 /out/a/b.qs reason=No such file or directory\n"
        "106 ?:0:0 /out/a/b.qs reason=No such file or directory";
    constexpr std::string_view kMap = "<topicref href=\"a.dita\"/>\n<topichead navtitle=\"a/b\"/>";
    EXPECT_EQ(flatBookFaults(kMap), expected);
    std::filesystem::create_directories(folder.path() / "out/a");
    EXPECT_EQ(flatBookFaults(kMap), "212 root.ditamap:4:1 <topichead> a/b detail=/out/a/b.qs");
}

TEST_F(ObservedMapsTest, AFileWithoutDoctypeIsToldAtItsRoot) {
    folder.write("c.dita", "<!-- c -->\n <topic id=\"c\"><title/></topic>");
    EXPECT_EQ(compositeFaults("<topicref href=\"c.dita\"/>"),
              "201 c.dita:2:2 <topic> /c.dita via root.ditamap:3:1 href=c.dita");
    EXPECT_EQ(flatBookFaults("<topicref href=\"c.dita\"/>"),
              "201 c.dita:2:2 <topic> /c.dita via root.ditamap:3:1 href=c.dita");
    folder.write("n.ditamap",
                 "<map class=\"- map/map \">\n"
                 "<topicref class=\"- map/topicref \" href=\"a.dita\"/></map>");
    EXPECT_EQ(compositeFaults(kMapOfNestedBeside),
              "201 n.ditamap:1:1 <map> /n.ditamap" + kViaNestedMap);
    writeTopic("d.dita", "<p conref=\"c.dita#c/p\"/>");
    EXPECT_EQ(compositeFaults("<topicref href=\"d.dita\"/>"),
              "201 c.dita:2:2 <topic> /c.dita via d.dita:3:1 conref=/c.dita#c/p"
              " via root.ditamap:3:1 href=d.dita\n"
              // It has no ids without its DTD, whatever bears them.
              "109 d.dita:3:1 <p> /c.dita#c detail=p via root.ditamap:3:1 href=d.dita");
}

TEST_F(ObservedMapsTest, ADtdThatIsNotFoundIsToldAtTheDoctype) {
    folder.write("c.dita",
                 "<?xml version=\"1.0\"?>\n"
                 "<!DOCTYPE topic PUBLIC \"-//X//Y\" \"no.dtd\">\n"
                 "<topic id=\"c\"><title/></topic>");
    folder.write("d.dita", "<!DOCTYPE topic SYSTEM \"no.dtd\"><topic id=\"d\"><title/></topic>");
    EXPECT_EQ(compositeFaults("<topicref href=\"c.dita\"/>\n<topicref href=\"d.dita\"/>"),
              "201 c.dita:2:1 <topic> /c.dita detail=-//X//Y reason=no.dtd"
              " via root.ditamap:3:1 href=c.dita\n"
              "201 d.dita:1:1 <topic> /d.dita reason=no.dtd via root.ditamap:4:1 href=d.dita");
    EXPECT_EQ(observed(ObservationKind::kDocumentRead),
              "0 ?:0:0 <map> /root.ditamap\n2 root.ditamap:3:1 <topic> /c.dita\n"
              "2 root.ditamap:4:1 <topic> /d.dita");
}

TEST_F(ObservedMapsTest, ADoctypeThatNamesNoDtdIsNone) {
    folder.write("c.dita",
                 "\n<!DOCTYPE topic [<!ENTITY e \"x\">]>\n"
                 "<topic id=\"c\"><title>&e;</title></topic>");
    EXPECT_EQ(compositeFaults("<topicref href=\"c.dita\"/>"),
              "201 c.dita:2:1 <topic> /c.dita via root.ditamap:3:1 href=c.dita");
    EXPECT_EQ(observed(ObservationKind::kDocumentRead),
              "0 ?:0:0 <map> /root.ditamap\n1 root.ditamap:3:1 <topic> /c.dita");
    folder.write("c.dita",
                 "<!DOCTYPE topic [<!ELEMENT topic ANY><!ATTLIST topic id ID #REQUIRED>"
                 "<!ELEMENT title ANY>]>\n<topic id=\"c\"><title/></topic>");
    EXPECT_EQ(compositeFaults("<topicref href=\"c.dita\"/>"), "");
}

TEST_F(ObservedMapsTest, AFileThatBreaksItsDtdIsToldWhereTheParserSaysSo) {
    writeTopic("c.dita", "<p bogus=\"1\"/>");
    EXPECT_EQ(compositeFaults("<topicref href=\"c.dita\"/>"),
              "202 c.dita:3:10 <topic> /c.dita reason=attribute 'bogus' is not declared for element"
              " 'p' via root.ditamap:3:1 href=c.dita");
    EXPECT_EQ(observed(ObservationKind::kDocumentRead),
              "0 ?:0:0 <map> /root.ditamap\n3 root.ditamap:3:1 <topic> /c.dita");
    writeMap("n.ditamap", "<bogus/>");
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/>" + std::string(kMapOfNestedBeside)),
              "202 n.ditamap:3:7 <map> /n.ditamap reason=no declaration found for element 'bogus'"
              " via root.ditamap:3:26 href=n.ditamap");
    excludeX();
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/>"
                              "<topicref href=\"c.dita\" audience=\"x\"/>"),
              "");
}

TEST_F(ObservedMapsTest, AnOutputWithoutTopicIsToldOfTheRootMap) {
    const std::string expected = "206 root.ditamap:2:1 <map> /root.ditamap";
    for (const char* const content :
         {"", "<keydef keys=\"k\" href=\"a.dita\"/>", "<topichead navtitle=\"H\"/>",
          "<topicref href=\"a.dita\" processing-role=\"resource-only\"/>",
          "<topicref href=\"a.dita\" audience=\"x\"/>"}) {
        excludeX();
        EXPECT_EQ(compositeFaults(content), expected) << content;
        EXPECT_EQ(flatBookFaults(content), expected) << content;
    }
    writeMap("n.ditamap", "");
    EXPECT_EQ(compositeFaults(kMapOfNestedBeside), expected);
}

TEST_F(ObservedMapsTest, ATopicThatTheProfileTakesOutIsNoneInTheOutput) {
    folder.write("c.dita", std::string(kTopicDoctype) +
                               "<topic id=\"c\" audience=\"x\"><title>c</title></topic>");
    EXPECT_EQ(compositeFaults("<topicref href=\"c.dita\"/>"), "");
    excludeX();
    const std::string expected = "206 root.ditamap:2:1 <map> /root.ditamap";
    EXPECT_EQ(compositeFaults("<topicref href=\"c.dita\"/>"), expected);
    EXPECT_EQ(flatBookFaults("<topicref href=\"c.dita\"/>"), expected);
    EXPECT_EQ(compositeFaults("<topicref href=\"c.dita\"/><topicref href=\"a.dita\"/>"), "");
}

TEST_F(ObservedMapsTest, ChildrenOfAMapReferenceAreDropped) {
    writeMap("n.ditamap", "<topicref href=\"a.dita\"/>");
    const std::string withChildren =
        "<mapref href=\"n.ditamap\" format=\"ditamap\">\n"
        "<topicref href=\"b.dita\"/><topichead navtitle=\"H\"/></mapref>";
    const std::string expected = "209 root.ditamap:4:1 <topicref> /n.ditamap detail=2";
    EXPECT_EQ(compositeFaults(withChildren), expected);
    EXPECT_EQ(flatBookFaults(withChildren), expected);
    writeMap("m.ditamap", withChildren);
    EXPECT_EQ(compositeFaults("<mapref href=\"m.ditamap\" format=\"ditamap\"/>"),
              "209 m.ditamap:4:1 <topicref> /n.ditamap detail=2"
              " via root.ditamap:3:1 href=m.ditamap");
}

TEST_F(ObservedMapsTest, ChildrenThatWouldNotBePublishedAreNotDropped) {
    excludeX();
    writeMap("n.ditamap", "<topicref href=\"a.dita\"/>");
    for (const char* const content :
         {"<keydef keys=\"k\" href=\"b.dita\"/>", "<topicref href=\"b.dita\" audience=\"x\"/>",
          "<topicmeta><linktext>x</linktext></topicmeta>",
          "<topicref href=\"b.dita\" processing-role=\"resource-only\"/>"}) {
        EXPECT_EQ(compositeFaults("<mapref href=\"n.ditamap\" format=\"ditamap\">" +
                                  std::string(content) + "</mapref>"),
                  "")
            << content;
    }
    EXPECT_EQ(
        compositeFaults("<topicref href=\"a.dita\"/><mapref href=\"n.ditamap\""
                        " format=\"ditamap\" audience=\"x\"><topicref href=\"b.dita\"/></mapref>"),
        "");
}

TEST_F(ObservedMapsTest, KeyScopesAreNone) {
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\" keyscope=\"s1\"/>\n"
                              "<topicref href=\"b.dita\" keyscope=\"s2 s3\"/>"),
              "210 root.ditamap:3:1 <topicref> s1\n210 root.ditamap:4:1 <topicref> s2 s3");
    writeMap("n.ditamap", "<topicref href=\"a.dita\" keyscope=\"s\"/>");
    EXPECT_EQ(flatBookFaults(kMapOfNestedBeside), "210 n.ditamap:3:1 <topicref> s" + kViaNestedMap);
    excludeX();
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/>"
                              "<topicref href=\"b.dita\" keyscope=\"s\" audience=\"x\"/>"),
              "");
}

TEST_F(ObservedMapsTest, ANameWithANumberSignIsToldAtEachReference) {
    writeTopic("c#d/e.dita", "");
    const std::string told = " <topicref> /c#d detail=#";
    EXPECT_EQ(compositeFaults("<topicref href=\"c%23d/e.dita\"/>"), "213 root.ditamap:3:1" + told);
    writeMap("n.ditamap", "<topicref href=\"c%23d/e.dita\"/>");
    EXPECT_EQ(compositeFaults(kMapOfNestedBeside), "213 n.ditamap:3:1" + told + kViaNestedMap);
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/>\n<topicref href=\"c#d/e.dita\"/>"),
              "213 root.ditamap:4:1" + told + "\n213 root.ditamap:4:1" + told);
    EXPECT_NE(console, "");
}

TEST_F(ObservedMapsTest, ANameWithABackslashIsToldInsteadOfTheMissingFile) {
    writeTopic("x\\y.dita", "");
    EXPECT_EQ(flatBookFaults("<topicref href=\"a.dita\"/>\n<topicref href=\"x\\y.dita\"/>"),
              "213 root.ditamap:4:1 <topicref> /x\\y.dita detail=\\\n"
              "213 root.ditamap:4:1 <topicref> /x\\y.dita detail=\\");
    EXPECT_EQ(flatBookFaults("<topicref href=\"a.dita\"/>\n<topicref href=\"x\\gone.dita\"/>"),
              "111 root.ditamap:4:1 <topicref> /x/gone.dita\n"
              "111 root.ditamap:4:1 <topicref> /x/gone.dita");
    writeTopic("sub/c.dita", "");
    EXPECT_EQ(flatBookFaults("<topicref href=\"sub\\c.dita\"/>"), "");
}

TEST_F(ObservedMapsTest, WhatHasNoEffectInAMapIsTold) {
    folder.write("x.ditaval", "<val/>");
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\" copy-to=\"c.dita\" chunk=\"to-content\">\n"
                              "<ditavalref href=\"x.ditaval\" format=\"ditaval\"/></topicref>"),
              "215 root.ditamap:3:1 <topicref> copy-to\n215 root.ditamap:3:1 <topicref> chunk\n"
              "215 root.ditamap:4:1 <ditavalref> ditavalref");
    writeMap("n.ditamap", "<topicref href=\"a.dita\"/>\n<reltable/>");
    EXPECT_EQ(compositeFaults(kMapOfNestedBeside),
              "215 n.ditamap:4:1 <reltable> reltable" + kViaNestedMap);
    EXPECT_EQ(compositeFaults("<topicref href=\"a.dita\"/>"), "");
}

}  // namespace
}  // namespace marrowpress
