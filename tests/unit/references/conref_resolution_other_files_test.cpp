#include "tests/unit/references/conref_samples.h"

namespace marrowpress {
namespace {

/// References to other files, whose content is brought to the state of the document at once.
class ConrefOtherFilesTest : public ConrefTest {};

TEST_F(ConrefOtherFilesTest, ReferencesInTheCopyBecomeAbsolute) {
    write("sub/x.dita",
          "<p id='s' xtrf='z.dita'><xref href='y.dita#y'/><image href='../i.png'/>"
          "<object data='m.swf'/></p>");
    EXPECT_EQ(resolved("<p conref='sub/x.dita#t/s'/>"),
              "<p xtrf='$D/sub/z.dita'><xref href='$D/sub/y.dita#y'/><image href='$D/i.png'/>"
              "<object data='$D/sub/m.swf'/></p>");
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefOtherFilesTest, FurtherElementsOfARangeAreTreatedLikeTheFirst) {
    defineKeys(
        "<keydef keys='k' href='/k.dita'><topicmeta><navtitle>K</navtitle></topicmeta>"
        "</keydef>");
    write("sub/x.dita",
          "<p id='a' xtrf='a'/>1<p id='b' xtrf='b'><ph keyref='k'/><topic id='n'/></p>"
          "<p id='c' xtrf='#n'/>");
    EXPECT_EQ(resolved("<p conref='sub/x.dita#t/a' conrefend='sub/x.dita#t/c'/>"),
              "<p xtrf='$D/sub/a'/>1<p xtrf='$D/sub/b'><ph>K</ph><topic id='U1'/></p>"
              "<p xtrf='#U1'/>");
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefOtherFilesTest, TopicsInTheCopyGetNewIdsThatReferencesFollow) {
    write("x.dita", "<topic id='s'><xref href='#n/e'/><xref href='#s'/><topic id='n'/></topic>");
    EXPECT_EQ(resolved("<topic conref='x.dita#s'/>"),
              "<topic><xref href='#U1/e'/><xref href='$D/x.dita#s'/><topic id='U1'/></topic>");
    EXPECT_EQ(readable(toUtf8(topicIds.find(folder.file16("x.dita") + u"#n"))), "#U1");
    EXPECT_EQ(topicIds.byReference().size(), 1U);
}

TEST_F(ConrefOtherFilesTest, TheReferringTopicGetsANewIdToo) {
    write("x.dita", "<topic id='s'><topic id='n'/></topic>");
    EXPECT_EQ(resolved("<topic id='own' conref='x.dita#s'/><p id='own' conref='x.dita#t/none'/>"),
              "<topic id='U1'><topic id='U2'/></topic><p id='own'/>");
    EXPECT_EQ(readable(toUtf8(topicIds.find(folder.file16("x.dita") + u"#own"))), "#U1");
    EXPECT_EQ(console(), notFoundInTopic("p", "none", "t", "x.dita"));
}

TEST_F(ConrefOtherFilesTest, ReferencesToTopicsThatAreInThePublicationAreRewritten) {
    topicIds.add(folder.file16("y.dita") + u"#y", u"#there");
    write("x.dita", "<p id='s'><xref href='y.dita#y/e'/><xref href='y.dita'/></p>");
    EXPECT_EQ(resolved("<p conref='x.dita#t/s'/><xref href='y.dita#y'/>"),
              "<p><xref href='#there/e'/><xref href='#there'/></p><xref href='y.dita#y'/>");
}

TEST_F(ConrefOtherFilesTest, ReferencesThatKeysGiveAreRewrittenToo) {
    defineKeys("<keydef keys='k' href='" + folder.file("y.dita") + "#y'/><keydef keys='n'/>");
    topicIds.add(folder.file16("y.dita") + u"#y", u"#t");
    write("x.dita", "<p id='s'><image keyref='k/i'/><ph conkeyref='k/here'/></p>");
    EXPECT_EQ(resolved("<p conref='x.dita#t/s'/><ph id='here'>H</ph>"),
              "<p><image href='#t/i'/><ph>H</ph></p><ph id='here'>H</ph>");
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefOtherFilesTest, ReferencesThatKeysGiveAreNotTakenAgainstTheTarget) {
    defineKeys("<keydef keys='n'/>");
    write("x.dita", "<p id='s'><image keyref='n/e'/></p>");
    EXPECT_EQ(resolved("<p conref='x.dita#t/s'/>"), "<p><image href='#./e'/></p>");
    EXPECT_EQ(console(), cannotRead(""));
}

TEST_F(ConrefOtherFilesTest, FurtherElementsOfARangeComeBeforeTheFirst) {
    write("x.dita",
          "<p id='a' xtrf='#n2'><ph keyref='ua'/><topic id='n1'/></p>"
          "<p id='b'><ph keyref='ub'/><topic id='n2'/></p>");
    EXPECT_EQ(resolved("<x><p conref='x.dita#t/a' conrefend='x.dita#t/b'/></x>"),
              "<x><p xtrf='#U1'><ph/><topic id='U2'/></p><p><ph/><topic id='U1'/></p></x>");
    EXPECT_EQ(console(), keyNotFound("ub") + keyNotFound("ua"));
}

TEST_F(ConrefOtherFilesTest, WhatFurtherElementsTakeFromTheReferenceIsTakenAgainstTheTarget) {
    write("sub/x.dita", "<p id='a'/><p id='b'/>");
    EXPECT_EQ(resolved("<x><p xtrf='y.dita' conref='sub/x.dita#t/a' conrefend='#t/b'/></x>"),
              "<x><p xtrf='$D/sub/y.dita'/><p xtrf='$D/sub/y.dita'/></x>");
}

TEST_F(ConrefOtherFilesTest, NestedReferencesLeadOnFromTheirOwnFile) {
    write("sub/x.dita", "<p id='s'>X<ph conref='deep/y.dita#t/v'/></p>");
    write("sub/deep/y.dita", "<ph id='v'>Y<b conref='../../z.dita#./w'/></ph>");
    write("z.dita", "<b id='w'>Z<i conref='#t/i'/></b><i id='i'>I</i>");
    EXPECT_EQ(resolved("<p conref='sub/x.dita#t/s'/>"), "<p>X<ph>Y<b>Z<i>I</i></b></ph></p>");
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefOtherFilesTest, NestedReferencesToTopicsInThePublicationStayInTheDocument) {
    topicIds.add(folder.file16("y.dita") + u"#y", u"#t");
    write("x.dita", "<p id='s'><ph conref='y.dita#y/here'/></p>");
    EXPECT_EQ(resolved("<p conref='x.dita#t/s'/><ph id='here'>here</ph>"),
              "<p><ph>here</ph></p><ph id='here'>here</ph>");
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefOtherFilesTest, KeysInTheCopyAreResolved) {
    defineKeys(
        "<keydef keys='k' href='/k.dita#k'><topicmeta><navtitle>K</navtitle></topicmeta>"
        "</keydef>");
    write(
        "x.dita",
        "<p id='s' keyref='k'><ph keyref='k'/><ph keyref='none'>own</ph><image keyref='k/i'/></p>");
    EXPECT_EQ(resolved("<p conref='x.dita#t/s'/><ph keyref='k'/>"),
              "<p><ph>K</ph><ph>own</ph><image href='/k.dita#k/i'/></p><ph keyref='k'/>");
    EXPECT_EQ(console(), keyNotFound("none"));
}

TEST_F(ConrefOtherFilesTest, ConkeyrefsInTheCopyAreFollowed) {
    write("y.dita", "<ph id='e'>E</ph>-<ph id='f'>F</ph>");
    defineKeys("<keydef keys='k' href='" + folder.file("y.dita") + "'/>");
    write("x.dita", "<p id='s'><ph conkeyref='k/e' conrefend='any#thing/f'/></p>");
    EXPECT_EQ(resolved("<p conref='x.dita#t/s'/>"), "<p><ph>E</ph>-<ph>F</ph></p>");
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefOtherFilesTest, AConkeyrefThatComesAlongOnTheReferenceStaysAConref) {
    write("y.dita", "<p id='e'>E</p>");
    defineKeys("<keydef keys='k' href='" + folder.file("y.dita") + "#t'/>");
    write("x.dita", "<p id='s' conkeyref='k/e'>S</p><p conkeyref='k/e'>N</p><p id='n'/>");
    EXPECT_EQ(resolved("<p conref='x.dita#t/s' conrefend='#t/n'/>"),
              "<p conref='$D/y.dita#t/e'>S</p><p>E</p><p/>");
}

TEST_F(ConrefOtherFilesTest, AReferenceThatComesAlongOnTheReferenceStaysAndIsAbsolute) {
    write("x.dita", "<p id='s' conref='#t/u' conrefend='y.dita#t/u'>S</p><p id='u'>U</p>");
    EXPECT_EQ(resolved("<p conref='x.dita#t/s'/>"),
              "<p conref='$D/x.dita#t/u' conrefend='$D/y.dita#t/u'>S</p>");
}

TEST_F(ConrefOtherFilesTest, HrefOfTheTargetWinsOverAMarkerThatBecameAPath) {
    write("sub/x.dita", "<xref id='s' href='y.dita'/><p id='p' href='y.dita'/>");
    EXPECT_EQ(resolved("<xref href='/-dita-use-conref-target' conref='sub/x.dita#t/s'/>"
                       "<p href='/-dita-use-conref-target' conref='sub/x.dita#t/p'/>"),
              "<xref href='$D/sub/y.dita'/><p href='/-dita-use-conref-target'/>");
}

TEST_F(ConrefOtherFilesTest, OwnRelativeReferencesOfTheElementAreTakenAgainstTheTarget) {
    write("sub/x.dita", "<p id='s'/>");
    EXPECT_EQ(resolved("<p href='y.dita' conref='sub/x.dita#t/s'/>"), "<p href='$D/sub/y.dita'/>");
}

TEST_F(ConrefOtherFilesTest, OwnFileByPathIsReadAsItIsStored) {
    write("d.dita", "<p id='s'>stored<xref href='#t'/></p>");
    EXPECT_EQ(resolved("<p conref='d.dita#t/s'/><p conref='#t/s'/><p id='s'>walked</p>"),
              "<p>stored<xref href='$D/d.dita#t'/></p><p>walked</p><p id='s'>walked</p>");
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefOtherFilesTest, AnElementThatRefersToItselfByPathGetsWhatIsStored) {
    write("d.dita", "<p id='a' conref='d.dita#t/a'>own</p>");
    EXPECT_EQ(resolved("<p id='a' conref='d.dita#t/a'>own</p>"),
              "<p conref='$D/d.dita#t/a' id='a'>own</p>");
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefOtherFilesTest, WhileAFileCannotBeReadTheReferenceStays) {
    folder.write("broken.dita", "<topic>");
    EXPECT_EQ(
        resolved("<p id='e' conref='none.dita#t/s' conrefend='#t/e'>own<ph conref='#t/v'/></p>"
                 "<ph id='v'>V</ph><p conref='broken.dita#t/s'/>"),
        "<p conref='none.dita#t/s' conrefend='#t/e' id='e'>own<ph>V</ph></p>"
        "<ph id='v'>V</ph><p conref='broken.dita#t/s'/>");
    EXPECT_EQ(console(), cannotRead("$D/none.dita") + cannotRead("$D/broken.dita"));
}

TEST_F(ConrefOtherFilesTest, ExternalUrisCannotBeRead) {
    EXPECT_EQ(resolved("<p conref='http://host.invalid/x.dita#t/s'>own</p>"),
              "<p conref='http://host.invalid/x.dita#t/s'>own</p>");
    EXPECT_EQ(console(), cannotRead("http://host.invalid/x.dita"));
}

TEST_F(ConrefOtherFilesTest, FaultsNameTheFileOfTheTarget) {
    write("x.dita", "<p id='a'>A</p><x><p id='b'/></x>");
    EXPECT_EQ(
        resolved("<p conref='x.dita#u'>0</p><p conref='x.dita#t/v'>1</p><p conref='x.dita'>2</p>"
                 "<p conref='x.dita#t/a' conrefend='x.dita#t/v'/>"
                 "<p conref='x.dita#t/a' conrefend='x.dita#t/b'/>"
                 "<p conref='x.dita#t/v' conrefend='x.dita#u'/>"),
        "<p>0</p><p>1</p><p>2</p><p>A</p><p>A</p><p/>");
    EXPECT_EQ(console(), notFound("p", "u", "x.dita") + notFoundInTopic("p", "v", "t", "x.dita") +
                             notFound("p", "", "x.dita") +
                             notFoundInTopic("p", "v", "t", "x.dita") + invalidConrefEnd() +
                             invalidConrefEnd() + notFoundInTopic("p", "v", "t", "x.dita") +
                             notFound("p", "u", "x.dita"));
}

TEST_F(ConrefOtherFilesTest, TheEndsPathIsIgnored) {
    write("x.dita", "<p id='a'>A</p><p id='b'>B</p>");
    write("y.dita", "<p id='b'>other</p>");
    EXPECT_EQ(resolved("<p conref='x.dita#t/a' conrefend='y.dita#t/b'/>"
                       "<p conref='x.dita#t/a' conrefend='#t/b'/>"
                       "<p conref='x.dita#t/a' conrefend='none.dita#t/b'/>"),
              "<p>A</p><p>B</p><p>A</p><p>B</p><p>A</p><p>B</p>");
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefOtherFilesTest, PathsMayBeEscapedOrAbsolute) {
    write("a b/x.dita", "<p id='s'>S</p>");
    EXPECT_EQ(resolved("<p conref='a%20b/x.dita#t/s'/><p conref='" + folder.file("a b/x.dita") +
                       "#t/s'/><p conref='file://" + folder.file("a%20b/x.dita") + "#t/s'/>"),
              "<p>S</p><p>S</p><p>S</p>");
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefOtherFilesTest, MapsAreSearchedByValue) {
    folder.write("m.ditamap",
                 "<map><topicref id='a' href='a.dita'><ph id='e'>E</ph></topicref>"
                 "<topicref id='a' href='second.dita'/></map>");
    EXPECT_EQ(resolved("<topicref conref='m.ditamap#a'/><ph conref='m.ditamap#a/e'/>"
                       "<ph conref='m.ditamap#a'>own</ph>"),
              "<topicref href='$D/a.dita'><ph id='e'>E</ph></topicref><ph>E</ph><ph>own</ph>");
    EXPECT_EQ(console(), notFound("ph", "a", "m.ditamap"));
}

TEST_F(ConrefOtherFilesTest, DocumentsThatAreCopiedFromStayAsTheyAre) {
    defineKeys("<keydef keys='k' href='/k.dita'/>");
    write(
        "x.dita",
        "<p id='a'>A<xref keyref='k' href='y.dita'/></p><p id='b' conref='#t/a'><topic id='n'/></p>"
        "<p id='c'/>");
    xercesc::DOMDocument* const other =
        DocumentStore::instance().getOrLoad(folder.file16("x.dita"));
    ASSERT_NE(other, nullptr);
    const std::string before = printed(*other->getDocumentElement());
    const std::string range =
        "<p>A<xref href='$D/y.dita'/></p><p>A<xref href='$D/y.dita'/></p><p/>";
    const std::string reference = "<p conref='x.dita#t/a' conrefend='x.dita#t/c'/>";
    EXPECT_EQ(resolved(reference + reference), range + range);
    EXPECT_EQ(printed(*other->getDocumentElement()), before);
}

TEST_F(ConrefOtherFilesTest, TheRootMayRefer) {
    write("x.dita", "X<topic id='n'>N</topic>");
    const ParsedXml document = parse("<topic id='root' conref='x.dita#n' audience='a'>own</topic>");
    resolve(document);
    EXPECT_EQ(readable(printed(*document.root())), "<topic audience='a' id='U1'>N</topic>");
}

TEST_F(ConrefOtherFilesTest, BesideTheRootThereIsNoRoomForARange) {
    write("x.dita", "<topic id='a'>A</topic>text<topic id='b'>B</topic>");
    const ParsedXml document =
        parse("<topic id='root' conref='x.dita#a' conrefend='x.dita#b'>own</topic>");
    EXPECT_THROW(resolve(document), xercesc::DOMException);
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefOtherFilesTest, SiblingsOfTheRootAreNotWalked) {
    const ParsedXml document =
        parse(topicOf("<x id='x'><p conref='#t/s'/></x><y><p conref='#t/s'/></y><p id='s'>S</p>"));
    KeySpace keySpace(keys->document());
    ConrefProcessor().resolveConrefs(document.byId("x"), keySpace, topicIds);
    EXPECT_EQ(contentOf(document),
              "<x id='x'><p>S</p></x><y><p conref='#t/s'/></y><p id='s'>S</p>");
}

TEST_F(ConrefOtherFilesTest, NoRootIsNoWalk) {
    KeySpace keySpace(keys->document());
    ConrefProcessor().resolveConrefs(nullptr, keySpace, topicIds);
    EXPECT_EQ(console(), "");
    EXPECT_TRUE(topicIds.byReference().empty());
}

}  // namespace
}  // namespace marrowpress
