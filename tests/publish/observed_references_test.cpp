#include "tests/publish/sample_maps.h"
#include "tests/support/observed_run.h"

/// What is told of references that may well be in order: to keys, and to files; what keys stand
/// for, and the entities that were opened.
namespace marrowpress {
namespace {

class ObservedReferencesTest : public ObservedRunTest {
protected:
    /// What of a kind is told of a composite of the map.
    std::string told(ObservationKind kind, std::string_view mapContent) {
        compositeFaults(mapContent);
        return observed(kind);
    }
};

TEST_F(ObservedReferencesTest, EachKindOfReferenceToAKeyIsTold) {
    writeTopic("a.dita",
               "<p><ph keyref=\"k\"/>\n<xref keyref=\"k/p\"/>\n<image keyref=\"k\"/>\n"
               "<p conkeyref=\"k/p\"/>\n<object datakeyref=\"k\"/>\n<ph keyref=\"none\"/></p>");
    EXPECT_EQ(told(ObservationKind::kKeyReference,
                   std::string("<keydef keys=\"k\" keyref=\"l\"/>\n") + std::string(kMapOfA)),
              "root.ditamap:3:1 <keydef> l\n"
              "root.ditamap:3:1 <keydef> l\n"
              "a.dita:7:1 <object> k\n"
              "a.dita:5:1 <image> k\n"
              "a.dita:3:4 <ph> k\n"
              "a.dita:4:1 <xref> k\n"
              "a.dita:8:1 <ph> none\n"
              "a.dita:6:1 <p> k");
}

TEST_F(ObservedReferencesTest, WhatTheProfileLeavesOutRefersAsAnArtefact) {
    writeTopic("a.dita", "<p audience=\"x\"><ph keyref=\"k\"/></p>\n<ph keyref=\"k\"/>");
    excludeX();
    EXPECT_EQ(told(ObservationKind::kKeyReference, kMapOfA),
              "artefact a.dita:3:17 <ph> k\n"
              "a.dita:4:1 <ph> k");
}

TEST_F(ObservedReferencesTest, AReferenceInPulledContentIsToldWhereItIsWritten) {
    writeTopic("a.dita", "<p conref=\"b.dita#b/p\"/>\n<ph conref=\"b.dita#b/k\"/>");
    writeTopic("b.dita", "<p id=\"p\"><ph keyref=\"k\"/></p>\n<ph id=\"k\" keyref=\"l\"/>");
    EXPECT_EQ(told(ObservationKind::kKeyReference, kMapOfA),
              "b.dita:3:11 <ph> k\n"
              "b.dita:4:1 <ph> l");
}

TEST_F(ObservedReferencesTest, ADefinitionThatCountsMeansWhatItHasBecome) {
    writeTopic("a.dita", "");
    EXPECT_EQ(told(ObservationKind::kKeyMeaning,
                   "<keydef keys=\"k\" keyref=\"l\"/>\n"
                   "<keydef keys=\"l\" href=\"a.dita#a\"><topicmeta><keywords><keyword>The <b>L</b>"
                   "</keyword></keywords></topicmeta></keydef>\n"
                   "<keydef keys=\"k\" href=\"b.dita\"><topicmeta><linktext>Old</linktext>"
                   "</topicmeta></keydef>\n" +
                       std::string(kMapOfA)),
              "root.ditamap:5:1 k detail=/b.dita reason=Old\n"
              "root.ditamap:3:1 k detail=/a.dita#a reason=The L\n"
              "root.ditamap:4:1 l detail=/a.dita#a reason=The L");
}

TEST_F(ObservedReferencesTest, ADefinitionTellsTheKeyThatItLeadsOnTo) {
    writeTopic("a.dita", "");
    EXPECT_EQ(told(ObservationKind::kKeyDefinition,
                   "<keydef keys=\"k\" keyref=\"l\"/>\n" + std::string(kMapOfA)),
              "0 root.ditamap:3:1 <keydef> k reason=l");
}

TEST_F(ObservedReferencesTest, EachKindOfReferenceToAFileIsTold) {
    writeTopic("a.dita",
               "<p conref=\"lib.dita#lib/p\"/>\n<xref href=\"b.dita\"/>\n"
               "<image href=\"i.png\"/>\n<object data=\"o.mp4\"/>\n<xref href=\"#a\"/>\n"
               "<xref href=\"https://x/\"/>\n<xref scope=\"peer\" href=\"p.dita\"/>");
    writeTopic("b.dita", "<xref href=\"a.dita\"/>");
    writeTopic("lib.dita", "<p id=\"p\"/>");
    writeMap("n.ditamap", "<topicref href=\"b.dita\"/>");
    EXPECT_EQ(told(ObservationKind::kFileReference,
                   "<keydef keys=\"k\" href=\"k.png\" processing-role=\"resource-only\"/>\n"
                   "<keydef keys=\"k\" href=\"l.png\" processing-role=\"resource-only\"/>\n"
                   "<topicref keys=\"m\" href=\"a.dita\"/>\n"
                   "<mapref href=\"n.ditamap\" format=\"ditamap\"/>\n"
                   "<topicref href=\"none.dita\"/>\n<topicref href=\"x.pdf\" format=\"pdf\"/>"),
              "0 root.ditamap:6:1 <mapref> /n.ditamap\n"
              "2 root.ditamap:3:1 <keydef> /k.png\n"
              "1 root.ditamap:5:1 <topicref> /a.dita\n"
              "0 root.ditamap:6:1 <mapref> /n.ditamap\n"
              "1 n.ditamap:3:1 <topicref> /b.dita\n"
              "1 root.ditamap:7:1 <topicref> /none.dita\n"
              "1 root.ditamap:8:1 <topicref> /x.pdf\n"
              "3 a.dita:3:1 <p> /lib.dita\n"
              "4 a.dita:4:1 <xref> /b.dita\n"
              "5 a.dita:5:1 <image> /i.png\n"
              "5 a.dita:6:1 <object> /o.mp4\n"
              "4 a.dita:7:1 <xref> /a.dita\n"
              "4 b.dita:3:1 <xref> /a.dita");
}

TEST_F(ObservedReferencesTest, ALinkByAKeyIsToldWithTheFileOfItsDefinition) {
    writeTopic("a.dita", "<image keyref=\"k\"/>");
    EXPECT_EQ(told(ObservationKind::kFileReference,
                   "<keydef keys=\"k\" href=\"i.png\"/>\n" + std::string(kMapOfA)),
              "2 root.ditamap:3:1 <keydef> /i.png\n"
              "1 root.ditamap:4:1 <topicref> /a.dita\n"
              "5 a.dita:3:1 <image> /i.png");
}

TEST_F(ObservedReferencesTest, EachEntityIsToldOnceForEachFileThatNamesIt) {
    folder.write("a.dita",
                 "<!DOCTYPE topic PUBLIC \"-//T//DTD Topic//EN\" \"none.dtd\" [<!ENTITY e SYSTEM "
                 "\"e.ent\"><!ENTITY web SYSTEM \"http://x/e.ent\">]>\n"
                 "<topic id=\"a\"><title>&e;&e;</title></topic>");
    folder.write("e.ent", "E");
    EXPECT_EQ(told(ObservationKind::kEntity, kMapOfA),
              "?:0:0 /dtd/map.dtd\n"
              "?:0:0 /dtd/map.dtd detail=/root.ditamap\n"
              "?:0:0 /dtd/topic.dtd\n"
              "?:0:0 /none.dtd detail=/a.dita\n"
              "?:0:0 /e.ent detail=/a.dita");
}

}  // namespace
}  // namespace marrowpress
