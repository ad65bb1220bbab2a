#include "keys/key_space_loader.h"

#include <algorithm>

#include "dom/nodes.h"
#include "references/exclusion_filter.h"
#include "support/publish_exception.h"
#include "support/request_singleton.h"
#include "support/xerces_ptr.h"
#include "tests/unit/references/key_samples.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

constexpr std::string_view kKeySpaceDoctype =
    R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "keys.dtd">)";

/// The root map is "root.ditamap", the key space document "out/Keys.ditamap".
class KeySpaceLoaderTest : public KeySampleTest {
protected:
    KeySpaceLoaderTest() { writePlain("out/beside.txt", "Stays."); }

    KeySpace keySpaceOfRoot() {
        return KeySpaceLoader().load(folder.file16("root.ditamap"), keysPath(), topicIds,
                                     u"keys.dtd");
    }
    KeySpace keySpaceOfMap(std::string_view content) {
        write("root.ditamap", mapOf(content));
        return keySpaceOfRoot();
    }
    /// The definitions, one after the other.
    std::string definitions(const KeySpace& keySpace) const {
        std::string text;
        for (const DOMElement* const child :
             childElementsOf(*keySpace.document().getDocumentElement())) {
            text += shown(*child);
        }
        return text;
    }
    std::string definitionsOf(std::string_view rootMap) {
        return definitions(keySpaceOfMap(rootMap));
    }
    std::string contentOf(std::string_view map) const {
        return shown(*load(map).getDocumentElement());
    }
    std::u16string keysPath() const { return folder.file16("out/Keys.ditamap"); }

    /// The status that the failure of a run for this root map has.
    int failureOf(std::string_view rootMap) {
        try {
            keySpaceOfMap(rootMap);
        } catch (const PublishException& failure) {
            return failure.code();
        }
        return 0;
    }

    /// How often the parser has begun to read the file.
    std::ptrdiff_t timesRead(std::string_view name) const {
        const std::string command = startOf(folder.file(name));
        return std::count(host.commands().begin(), host.commands().end(), command);
    }

    TopicIdMap topicIds;
};

TEST_F(KeySpaceLoaderTest, ADefinitionThatNestsTooDeeplyInTheKeySpaceEndsTheRun) {
    for (const auto& [levels, code] : {std::pair{4998U, 0}, {4999U, -42}}) {
        writePlain("root.ditamap", "<topicref keys='k' class='- map/topicref '>" +
                                       nestedElements(levels) + "</topicref>");
        int failure = 0;
        try {
            keySpaceOfRoot();
        } catch (const PublishException& thrown) {
            failure = thrown.code();
        }
        EXPECT_EQ(failure, code) << levels;
        RequestSingleton<DocumentStore>::destroy();
    }
}

TEST_F(KeySpaceLoaderTest, TheKeySpaceIsADocumentWithOneDefinitionForEachKey) {
    KeySpace keySpace =
        keySpaceOfMap("<title/><keydef keys='a b' href='t.dita'/><topicref keys='c'/>");
    EXPECT_EQ(shown(keySpace.document()),
              std::string(kKeySpaceDoctype) +
                  R"(<map><keydef href="$F/t.dita" keys="a"/>)"
                  R"(<keydef href="$F/t.dita" keys="b"/><topicref keys="c"/></map>)");
    EXPECT_EQ(toUtf8(domText(keySpace.document().getDocumentURI())),
              "file://" + folder.file("out/Keys.ditamap"));
    EXPECT_EQ(&keySpace.document(), &DocumentStore::instance().mustLoad(keysPath()));
    for (const char* const key : {"a", "b", "c"}) {
        const DOMElement* const found =
            keySpace.document().getElementById(toUtf16(std::string_view(key)).c_str());
        ASSERT_NE(found, nullptr) << key;
        EXPECT_EQ(attribute(*found, "keys"), key);
        EXPECT_EQ(found->getParentNode(), keySpace.document().getDocumentElement());
    }
    EXPECT_EQ(keySpace.document().getElementById(u"a b"), nullptr);
}

TEST_F(KeySpaceLoaderTest, TheFileHoldsTheEmptyDocument) {
    keySpaceOfMap("<keydef keys='a'/>");
    EXPECT_EQ(folder.read("out/Keys.ditamap"),
              R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)" +
                  std::string(kKeySpaceDoctype) + "<map/>");
}

TEST_F(KeySpaceLoaderTest, TheDtdIsWrittenInUtf8) {
    write("root.ditamap", "<map/>");
    KeySpaceLoader().load(folder.file16("root.ditamap"), keysPath(), topicIds,
                          u"gr\u00F6\u00DFe.dtd");
    EXPECT_NE(folder.read("out/Keys.ditamap")
                  .find("\"gr\xC3\xB6\xC3\x9F"
                        "e.dtd\""),
              std::string::npos);
}

TEST_F(KeySpaceLoaderTest, AMapWithoutKeysGivesAnEmptyKeySpace) {
    EXPECT_EQ(shown(*keySpaceOfMap("<topicref href='none.dita'/>").document().getDocumentElement()),
              "<map/>");
}

TEST_F(KeySpaceLoaderTest, ADefinitionIsADeepCopy) {
    KeySpace keySpace = keySpaceOfMap(
        "<keydef keys='k' href='t.dita#t/e' format='dita' scope='local' audience='a' id='i'>"
        "text<topicmeta><navtitle>N<!--c--><?i d?></navtitle></topicmeta></keydef>");
    EXPECT_EQ(definition(keySpace, "k"),
              R"(<keydef audience="a" format="dita" href="$F/t.dita#t/e" id="i" keys="k" )"
              R"(scope="local">text<topicmeta><navtitle>N<!--c--><?i d?></navtitle></topicmeta>)"
              R"(</keydef>)");
    EXPECT_EQ(contentOf("root.ditamap"),
              R"(<map><keydef audience="a" format="dita" href="t.dita#t/e" id="i" keys="k" )"
              R"(scope="local">text<topicmeta><navtitle>N<!--c--><?i d?></navtitle></topicmeta>)"
              R"(</keydef></map>)");
}

TEST_F(KeySpaceLoaderTest, CopiesHaveTheClassValuesOfTheKeySpaceDtd) {
    KeySpace keySpace = keySpaceOfMap("<keydef keys='k'><topicmeta/></keydef>");
    const DOMElement& definition = *definitionOf(keySpace, u"k");
    EXPECT_EQ(attribute(definition, "class"), "+ map/topicref mapgroup-d/keydef ");
    EXPECT_EQ(attribute(*definition.getFirstElementChild(), "class"), "- map/topicmeta ");
}

struct NamesCase {
    const char* name;
    const char* map;
    const char* definitions;
};

class KeyNamesTest : public KeySpaceLoaderTest, public testing::WithParamInterface<NamesCase> {};

TEST_P(KeyNamesTest, DecideWhatIsDefined) {
    EXPECT_EQ(definitionsOf(GetParam().map), GetParam().definitions);
    EXPECT_EQ(told(), Lines());
}

constexpr NamesCase kNamesCases[] = {
    {"TheFirstDefinitionCounts", "<keydef keys='a' id='1'/><keydef keys='a' id='2'/>",
     R"(<keydef id="1" keys="a"/>)"},
    {"NewNamesOfALaterOneCount", "<keydef keys='a b' id='1'/><keydef keys='b c' id='2'/>",
     R"(<keydef id="1" keys="a"/><keydef id="1" keys="b"/><keydef id="2" keys="c"/>)"},
    {"ARepeatedNameCountsOnce", "<keydef keys='a  a'/>", R"(<keydef keys="a"/>)"},
    {"BlanksAroundNames", "<keydef keys='  a   b '/>", R"(<keydef keys="a"/><keydef keys="b"/>)"},
    {"OnlyBlanksSeparate", "<keydef keys='a&#9;b&#10;c'/>", "<keydef keys=\"a&#x9;b&#xA;c\"/>"},
    {"CaseCounts", "<keydef keys='A'/><keydef keys='a'/>",
     R"(<keydef keys="A"/><keydef keys="a"/>)"},
    {"BlanksAlone", "<keydef keys='  '/>", ""},
    {"Empty", "<keydef keys=''/>", ""},
    {"Missing", "<keydef/>", ""},
    {"AnyElementDefines",
     "<reltable><relcell><topicref keys='r'/></relcell></reltable><ph keys='p'/>",
     R"(<topicref keys="r"/><ph keys="p"/>)"},
    {"InsideATopicrefAndBehindEmptyKeys",
     "<topicref><keydef keys=''><keydef keys='n'/></keydef></topicref>", R"(<keydef keys="n"/>)"},
    {"NestedOnesAreCopiedTwice",
     "<keydef keys='o p'><topicref keys='i j'/></keydef><keydef keys='i' id='late'/>",
     R"(<keydef keys="o"><topicref keys="i j"/></keydef>)"
     R"(<keydef keys="p"><topicref keys="i j"/></keydef>)"
     R"(<topicref keys="i"/><topicref keys="j"/>)"},
};

INSTANTIATE_TEST_SUITE_P(, KeyNamesTest, testing::ValuesIn(kNamesCases),
                         [](const auto& example) { return example.param.name; });

TEST_F(KeySpaceLoaderTest, ANestedKeyIsFoundAtItsOwnDefinition) {
    KeySpace keySpace = keySpaceOfMap("<keydef keys='o'><keydef keys='i'/></keydef>");
    const DOMElement* const inner = definitionOf(keySpace, u"i");
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(inner->getParentNode(), keySpace.document().getDocumentElement());
}

TEST_F(KeySpaceLoaderTest, TheDocumentElementCanDefineAKey) {
    write("root.ditamap", "<map keys='m' id='i'><keydef keys='k'/></map>");
    EXPECT_EQ(definitions(keySpaceOfRoot()),
              R"(<map id="i" keys="m"><keydef keys="k"/></map><keydef keys="k"/>)");
}

TEST_F(KeySpaceLoaderTest, EachCopyIsNormalisedAgainstItsOwnMap) {
    write("sub/deep.ditamap",
          mapOf("<keydef keys='d' href='t.dita'><topicmeta><ph xtrf='x#y'/><ph xtrf='#z'/>"
                "<object data='o.mp4'/></topicmeta></keydef>"
                "<keydef keys='e' href='http://host/t.dita'/>"));
    KeySpace keySpace =
        keySpaceOfMap("<keydef keys='r' href='t.dita'/><mapref href='sub/deep.ditamap'/>");
    EXPECT_EQ(definitions(keySpace), R"(<keydef href="$F/t.dita" keys="r"/>)"
                                     R"(<keydef href="$F/sub/t.dita" keys="d"><topicmeta>)"
                                     R"(<ph xtrf="$F/sub/x#y"/><ph xtrf="$F/sub/deep.ditamap#z"/>)"
                                     R"(<object data="$F/sub/o.mp4"/></topicmeta></keydef>)"
                                     R"(<keydef href="http://host/t.dita" keys="e"/>)");
}

TEST_F(KeySpaceLoaderTest, TopicsInCopiesGetIdsOfTheirOwn) {
    KeySpace keySpace = keySpaceOfMap("<keydef keys='a b' id='i'><topic id='t'/></keydef>");
    const auto topicId = [&](std::u16string_view key) {
        return attribute(*definitionOf(keySpace, key)->getFirstElementChild(), "id");
    };
    EXPECT_EQ(topicId(u"a"), kGeneratedIds[0]);
    EXPECT_EQ(topicId(u"b"), kGeneratedIds[1]);
    EXPECT_EQ(attribute(*definitionOf(keySpace, u"b"), "id"), "i");
    EXPECT_EQ(topicIds.find(folder.file16("root.ditamap") + u"#t"),
              u"#" + toUtf16(kGeneratedIds[0]));
    EXPECT_EQ(topicIds.byReference().size(), 1U);
}

TEST_F(KeySpaceLoaderTest, MapsAreReadBreadthFirstAndTheFirstDefinitionCounts) {
    write("a.ditamap", mapOf("<mapref href='aa.ditamap'/>"
                             "<keydef keys='root a b aa' id='a'/>"));
    write("aa.ditamap", mapOf("<keydef keys='root a b aa ba deep' id='aa'/>"));
    write("b.ditamap", mapOf("<keydef keys='root a b ba' id='b'/><mapref href='ba.ditamap'/>"));
    write("ba.ditamap", mapOf("<keydef keys='root a b aa ba deep last' id='ba'/>"));
    EXPECT_EQ(definitionsOf("<topicref><mapref href='a.ditamap'/></topicref>"
                            "<mapref href='b.ditamap'/><keydef keys='root' id='r'/>"),
              R"(<keydef id="r" keys="root"/>)"
              R"(<keydef id="a" keys="a"/><keydef id="a" keys="b"/><keydef id="a" keys="aa"/>)"
              R"(<keydef id="b" keys="ba"/><keydef id="aa" keys="deep"/>)"
              R"(<keydef id="ba" keys="last"/>)");
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeySpaceLoaderTest, AReferenceCanDefineAKeyForItsMap) {
    write("sub.ditamap", mapOf("<keydef keys='s'/>"));
    EXPECT_EQ(definitionsOf("<mapref keys='m' href='sub.ditamap'/>"),
              R"(<mapref href="$F/sub.ditamap" keys="m"/><keydef keys="s"/>)");
}

TEST_F(KeySpaceLoaderTest, MapsThatReferToEachOtherAreReadOnce) {
    write("a.ditamap", mapOf("<keydef keys='a'/><mapref href='root.ditamap'/>"
                             "<mapref href='a.ditamap'/>"));
    EXPECT_EQ(definitionsOf("<mapref href='root.ditamap'/><mapref href='a.ditamap'/>"
                            "<keydef keys='r'/><mapref href='a.ditamap'/>"),
              R"(<keydef keys="r"/><keydef keys="a"/>)");
    EXPECT_EQ(contentOf("root.ditamap"),
              R"(<map><mapref href="root.ditamap"/><mapref href="a.ditamap"/><keydef keys="r"/>)"
              R"(<mapref href="a.ditamap"/></map>)");
}

TEST_F(KeySpaceLoaderTest, AMapThatRefersToItselfIsWalkedOnce) {
    EXPECT_EQ(definitionsOf("<mapref href='root.ditamap'/><keydef keys='k' href='none.dita'/>"),
              R"(<keydef href="$F/none.dita" keys="k"/>)");
    EXPECT_EQ(told(), Lines({referencedFileNotFound("$F/none.dita")}));
}

TEST_F(KeySpaceLoaderTest, AReferenceWithADefinedKeyIsLookedForBesideTheKeySpace) {
    // That it is found there makes it a map reference, which then leads to where it stands.
    write("out/m.ditamap", mapOf("<keydef keys='beside'/>"));
    write("sub/sub.ditamap", mapOf("<mapref keyref='k' href='m.ditamap'/>"));
    EXPECT_EQ(failureOf("<keydef keys='k'/><mapref href='sub/sub.ditamap'/>"), -42);
    EXPECT_EQ(told(), Lines({cannotRead("$F/sub/m.ditamap")}));
}

TEST_F(KeySpaceLoaderTest, AnXmlFileIsReadForKeysIfItIsAMap) {
    write("m.xml", mapOf("<keydef keys='m'/>"));
    write("t.xml", "<topic id='t'><ph keys='t'/></topic>");
    write("o.xml", "<ph keys='o'/>");
    write("typed.xml", mapOf("<keydef keys='typed'/>"));
    EXPECT_EQ(definitionsOf("<topicref href='t.xml'/><topicref href='o.xml'/>"
                            "<topicref href='m.xml'/><topicref href='t.xml'/>"
                            "<topicref href='typed.xml' type='topic'/>"),
              R"(<keydef keys="m"/>)");
    // What only a look into it can tell has been read, what its type tells hasn't.
    EXPECT_EQ(timesRead("t.xml"), 1);
    EXPECT_EQ(timesRead("o.xml"), 1);
    EXPECT_EQ(timesRead("typed.xml"), 0);
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeySpaceLoaderTest, TopicsAreNotRead) {
    write("t.dita", "<topic id='t'><ph keys='t'/></topic>");
    EXPECT_EQ(definitionsOf("<topicref href='t.dita' format='ditamap'/>"
                            "<topicref href='t.dita#t'/><mapref href='t.dita'/>"),
              "");
    EXPECT_EQ(timesRead("t.dita"), 0);
}

TEST_F(KeySpaceLoaderTest, AFragmentTakesThePlaceOfItsReference) {
    write("part.ditamap", mapOf("<topicref id='f'><keydef keys='k' id='inPart'/></topicref>"
                                "<keydef keys='rest k2' id='inPart2'/>"));
    KeySpace keySpace = keySpaceOfMap(
        "<mapref href='part.ditamap'/><keydef keys='before'/><mapref href='part.ditamap#f'/>"
        "<keydef keys='k' id='late'/><keydef keys='k2' id='early'/>");
    EXPECT_EQ(definitions(keySpace),
              R"(<keydef keys="before"/><keydef id="inPart" keys="k"/>)"
              R"(<keydef id="early" keys="k2"/><keydef id="inPart2" keys="rest"/>)");
    EXPECT_EQ(contentOf("root.ditamap"),
              R"(<map><mapref href="part.ditamap"/><keydef keys="before"/>)"
              R"(<topicref id="f"><keydef id="inPart" keys="k"/></topicref>)"
              R"(<keydef id="late" keys="k"/><keydef id="early" keys="k2"/></map>)");
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeySpaceLoaderTest, TheElementPartOfAFragmentPlaysNoPart) {
    write("part.ditamap", mapOf("<topicref id='f'><keydef id='e' keys='k'/></topicref>"));
    keySpaceOfMap("<mapref href='part.ditamap#f/e'/>");
    EXPECT_EQ(contentOf("root.ditamap"),
              R"(<map><topicref id="f"><keydef id="e" keys="k"/></topicref></map>)");
}

TEST_F(KeySpaceLoaderTest, AWholeMapCanBeAFragment) {
    write("part.ditamap", "<map id='m'><keydef keys='k'/></map>");
    EXPECT_EQ(definitionsOf("<mapref href='part.ditamap#m'/>"), R"(<keydef keys="k"/>)");
    EXPECT_EQ(contentOf("root.ditamap"), R"(<map><map id="m"><keydef keys="k"/></map></map>)");
}

TEST_F(KeySpaceLoaderTest, AFragmentThatIsMissingLeavesNothingBehind) {
    write("part.ditamap", mapOf("<keydef id='f' keys='k'/>"));
    EXPECT_EQ(definitionsOf("<mapref href='part.ditamap#g'/><keydef keys='r'/>"),
              R"(<keydef keys="r"/>)");
    EXPECT_EQ(contentOf("root.ditamap"), R"(<map><keydef keys="r"/></map>)");
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeySpaceLoaderTest, WithTheReferenceToAFragmentGoItsKeysAndAllInIt) {
    write("part.ditamap", mapOf("<keydef id='f' keys='f'/><keydef id='g' keys='g'/>"));
    EXPECT_EQ(definitionsOf("<mapref href='part.ditamap#f' keys='gone'>"
                            "<keydef keys='inside'/><mapref href='part.ditamap#g'/></mapref>"),
              R"(<keydef id="f" keys="f"/>)");
    EXPECT_EQ(contentOf("root.ditamap"), R"(<map><keydef id="f" keys="f"/></map>)");
}

TEST_F(KeySpaceLoaderTest, AReferenceInsideTheOneToAFragmentIsFollowed) {
    write("part.ditamap", mapOf("<keydef id='f' keys='f'/>"));
    write("whole.ditamap", mapOf("<keydef keys='w'/>"));
    EXPECT_EQ(
        definitionsOf("<mapref href='part.ditamap#f'><mapref href='whole.ditamap'/></mapref>"),
        R"(<keydef id="f" keys="f"/><keydef keys="w"/>)");
}

TEST_F(KeySpaceLoaderTest, AFragmentDoesNotMakeItsMapARead) {
    write("part.ditamap", mapOf("<keydef id='f' keys='f'/><keydef keys='rest'/>"));
    EXPECT_EQ(definitionsOf("<mapref href='part.ditamap#f'/>"), R"(<keydef id="f" keys="f"/>)");
}

TEST_F(KeySpaceLoaderTest, AFragmentLeavesItsMapToBeReadAsAWhole) {
    write("part.ditamap", mapOf("<keydef id='f' keys='f'/><keydef keys='rest'/>"));
    EXPECT_EQ(definitionsOf("<mapref href='part.ditamap#f'/><mapref href='part.ditamap'/>"),
              R"(<keydef id="f" keys="f"/><keydef keys="rest"/>)");
    EXPECT_EQ(contentOf("root.ditamap"),
              R"(<map><keydef id="f" keys="f"/><mapref href="part.ditamap"/></map>)");
}

TEST_F(KeySpaceLoaderTest, AHashWithoutATopicIdMeansTheWholeMap) {
    write("part.ditamap", mapOf("<keydef id='e' keys='k'/>"));
    write("other.ditamap", mapOf("<keydef id='e' keys='l'/>"));
    EXPECT_EQ(definitionsOf("<mapref href='part.ditamap#'/><mapref href='other.ditamap#/e'/>"),
              R"(<keydef id="e" keys="k"/><keydef id="e" keys="l"/>)");
    EXPECT_EQ(contentOf("root.ditamap"),
              R"(<map><mapref href="part.ditamap#"/><mapref href="other.ditamap#/e"/></map>)");
}

TEST_F(KeySpaceLoaderTest, AFragmentIsNormalisedAgainstTheMapThatItWasPulledInto) {
    write("sub/part.ditamap",
          mapOf("<keydef id='f' keys='k' href='t.dita'><topic id='t'/></keydef>"));
    KeySpace keySpace = keySpaceOfMap("<mapref href='sub/part.ditamap#f'/>");
    EXPECT_NE(definition(keySpace, "k").find(R"(href="$F/t.dita")"), std::string::npos);
    EXPECT_EQ(topicIds.byReference().size(), 1U);
    EXPECT_NE(topicIds.find(folder.file16("root.ditamap") + u"#t"), u"");
}

TEST_F(KeySpaceLoaderTest, AMapBelowTheRootPullsFragmentsToo) {
    write("sub/m.ditamap", mapOf("<mapref href='p.ditamap#f'/>"));
    write("sub/p.ditamap", mapOf("<keydef id='f' keys='k' href='t.dita'/>"));
    EXPECT_EQ(definitionsOf("<mapref href='sub/m.ditamap'/>"),
              R"(<keydef href="$F/sub/t.dita" id="f" keys="k"/>)");
    EXPECT_EQ(contentOf("sub/m.ditamap"), R"(<map><keydef href="t.dita" id="f" keys="k"/></map>)");
}

TEST_F(KeySpaceLoaderTest, WhatIsNoMapInSpiteOfItsNameIsNotReadForKeys) {
    writePlain("topic.ditamap", "<topic id='t'><ph keys='t'/></topic>");
    writePlain("book.ditamap", "<bookmap><keydef keys='b'/></bookmap>");
    EXPECT_EQ(definitionsOf("<mapref href='topic.ditamap'/><mapref href='book.ditamap'/>"),
              R"(<keydef keys="b"/>)");
    EXPECT_EQ(timesRead("topic.ditamap"), 1);
    EXPECT_EQ(timesRead("book.ditamap"), 1);
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeySpaceLoaderTest, ReferencesInAFragmentAreFollowedFromWhereItStandsNow) {
    write("sub/part.ditamap",
          mapOf("<topicref id='f'><mapref href='next.ditamap'/><mapref href='part.ditamap#g'/>"
                "</topicref><keydef id='g' keys='gInSub'/>"));
    write("sub/next.ditamap", mapOf("<keydef keys='nextInSub'/>"));
    write("next.ditamap", mapOf("<keydef keys='next'/>"));
    write("part.ditamap", mapOf("<keydef id='g' keys='g' href='t.dita'/>"));
    EXPECT_EQ(definitionsOf("<mapref href='sub/part.ditamap#f'/>"),
              R"(<keydef href="$F/t.dita" id="g" keys="g"/><keydef keys="next"/>)");
    EXPECT_EQ(contentOf("root.ditamap"),
              R"(<map><topicref id="f"><mapref href="next.ditamap"/>)"
              R"(<keydef href="t.dita" id="g" keys="g"/></topicref></map>)");
}

TEST_F(KeySpaceLoaderTest, AFragmentOfTheMapItself) {
    EXPECT_EQ(definitionsOf("<keydef id='f' keys='k'/><mapref href='#f'/>"
                            "<mapref href='root.ditamap#f'/>"),
              R"(<keydef id="f" keys="k"/>)");
    EXPECT_EQ(contentOf("root.ditamap"),
              R"(<map><keydef id="f" keys="k"/><keydef id="f" keys="k"/>)"
              R"(<keydef id="f" keys="k"/></map>)");
}

TEST_F(KeySpaceLoaderTest, AFragmentThatHoldsAReferenceToItselfIsPulledOnce) {
    write("part.ditamap",
          mapOf("<topicref id='f'><keydef keys='k'/><mapref href='part.ditamap#f'/></topicref>"));
    EXPECT_EQ(definitionsOf("<mapref href='part.ditamap#f'/>"), R"(<keydef keys="k"/>)");
    EXPECT_EQ(contentOf("root.ditamap"),
              R"(<map><topicref id="f"><keydef keys="k"/></topicref></map>)");
}

TEST_F(KeySpaceLoaderTest, FragmentsThatHoldReferencesToEachOtherArePulledOnce) {
    write("a.ditamap", mapOf("<topicref id='f'><keydef keys='a'/><mapref href='b.ditamap#g'/>"
                             "</topicref>"));
    write("b.ditamap", mapOf("<topicref id='g'><keydef keys='b'/><mapref href='a.ditamap#f'/>"
                             "</topicref>"));
    EXPECT_EQ(definitionsOf("<mapref href='a.ditamap#f'/>"),
              R"(<keydef keys="a"/><keydef keys="b"/>)");
    EXPECT_EQ(contentOf("root.ditamap"),
              R"(<map><topicref id="f"><keydef keys="a"/><topicref id="g"><keydef keys="b"/>)"
              R"(</topicref></topicref></map>)");
}

TEST_F(KeySpaceLoaderTest, AReferenceToPartOfAnXmlTopicIsReplacedToo) {
    write("t.xml", "<topic id='t'><ph id='p' keys='k'>P</ph></topic>");
    EXPECT_EQ(definitionsOf("<topicref href='t.xml#p'/>"), R"(<ph id="p" keys="k">P</ph>)");
}

TEST_F(KeySpaceLoaderTest, WhatIsExcludedDefinesNothingAndLeadsNowhere) {
    write("sub.ditamap", mapOf("<keydef keys='s'/>"));
    write("part.ditamap", mapOf("<keydef id='f' keys='f'/>"));
    ExclusionFilterHolder::instance().reset(
        std::make_unique<AttrBasedElementNodeFilter>(u"audience", u"x"));
    EXPECT_EQ(definitionsOf("<keydef keys='gone k' audience='x'><keydef keys='inside'/></keydef>"
                            "<keydef keys='k' id='second'/>"
                            "<topicref audience='x'><mapref href='sub.ditamap'/></topicref>"
                            "<mapref href='sub.ditamap' audience='x'/>"
                            "<mapref href='part.ditamap#f' audience='x'/>"
                            "<keydef keys='y' audience='y'/>"),
              R"(<keydef id="second" keys="k"/><keydef audience="y" keys="y"/>)");
}

TEST_F(KeySpaceLoaderTest, WhatIsExcludedInsideADefinitionGoesBeforeItIsUsed) {
    constexpr std::string_view kMap =
        "<keydef keys='k'><topicmeta><linktext audience='x'>no</linktext><draft-comment/>"
        "<navtitle>N</navtitle></topicmeta></keydef>"
        "<keydef keys='l'><topicmeta><ph keyref='k'/></topicmeta></keydef>";
    ExclusionFilterHolder::instance().reset(
        std::make_unique<AttrBasedElementNodeFilter>(u"audience", u"x"));
    EXPECT_EQ(definitionsOf(kMap),
              R"(<keydef keys="k"><topicmeta><draft-comment translate="no"/>)"
              R"(<navtitle>N</navtitle></topicmeta></keydef>)"
              R"(<keydef keys="l"><topicmeta><ph>N</ph></topicmeta></keydef>)");
}

TEST_F(KeySpaceLoaderTest, ReferencesOfWhatIsExcludedAreNotFollowed) {
    ExclusionFilterHolder::instance().reset(
        std::make_unique<AttrBasedElementNodeFilter>(u"audience", u"x"));
    EXPECT_EQ(definitionsOf("<keydef keys='k'><topicmeta><ph audience='x' keyref='no'/>"
                            "<ph audience='x' conref='no.dita#t/p'/><ph conref='seen.dita#t/p'/>"
                            "<ph audience='x' conkeyref='no/p'/><ph keyref='seen'/></topicmeta>"
                            "</keydef>"),
              R"(<keydef keys="k"><topicmeta><ph conref="$F/seen.dita#t/p"/><ph/></topicmeta>)"
              R"(</keydef>)");
    EXPECT_EQ(told(), Lines({keyNotFound("seen"), cannotRead("$F/seen.dita")}));
}

TEST_F(KeySpaceLoaderTest, WithoutAProfileDefinitionsStayAsTheyAre) {
    EXPECT_EQ(definitionsOf("<keydef keys='k'><topicmeta audience='x'><draft-comment/></topicmeta>"
                            "</keydef>"),
              R"(<keydef keys="k"><topicmeta audience="x"><draft-comment/></topicmeta></keydef>)");
}

TEST_F(KeySpaceLoaderTest, ReferencesBetweenDefinitionsAreResolved) {
    write("sub/t.dita", "<topic id='t'/>");
    write("sub/sub.ditamap", mapOf("<keydef keys='b' href='t.dita'><topicmeta><linktext>L"
                                   "</linktext></topicmeta></keydef>"));
    EXPECT_EQ(definitionsOf("<keydef keys='a' keyref='b'/><mapref href='sub/sub.ditamap'/>"
                            "<keydef keys='c'><topicmeta><keyword keyref='b'/>"
                            "<xref keyref='b/e'/><image keyref='b'/></topicmeta></keydef>"),
              R"(<keydef href="$F/sub/t.dita" keys="a"><topicmeta><linktext>L</linktext>)"
              R"(</topicmeta></keydef><keydef keys="c"><topicmeta><keyword>L</keyword>)"
              R"(<xref href="$F/sub/t.dita#./e">L</xref><image href="$F/sub/t.dita"/></topicmeta>)"
              R"(</keydef><keydef href="$F/sub/t.dita" keys="b"><topicmeta><linktext>L</linktext>)"
              R"(</topicmeta></keydef>)");
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeySpaceLoaderTest, ContentReferencesOfDefinitionsAreResolved) {
    write("sub/t.dita", "<topic id='t'/>");
    write("sub/src.ditamap", mapOf("<keydef id='s' keys='x' href='t.dita'><topicmeta>S</topicmeta>"
                                   "</keydef>"));
    EXPECT_EQ(definitionsOf("<keydef keys='m' href='sub/src.ditamap' type='topic'/>"
                            "<keydef keys='a' conref='sub/src.ditamap#s'/>"
                            "<keydef keys='b' conkeyref='m/s'/>"),
              R"(<keydef href="$F/sub/src.ditamap" keys="m" type="topic"/>)"
              R"(<keydef href="$F/sub/t.dita" keys="a"><topicmeta>S</topicmeta></keydef>)"
              R"(<keydef href="$F/sub/t.dita" keys="b"><topicmeta>S</topicmeta></keydef>)"
              R"(<keydef href="$F/sub/t.dita" id="s" keys="x"><topicmeta>S</topicmeta></keydef>)");
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeySpaceLoaderTest, ARootMapThatCannotBeReadEndsTheRun) {
    try {
        keySpaceOfRoot();
        FAIL() << "a run without a root map";
    } catch (const PublishException& failure) {
        EXPECT_EQ(failure.code(), -42);
    }
    EXPECT_EQ(told(), Lines({cannotRead("$F/root.ditamap")}));
    EXPECT_EQ(failureOf("<keydef>"), -42);
    EXPECT_EQ(told(), Lines({cannotRead("$F/root.ditamap")}));
}

TEST_F(KeySpaceLoaderTest, AKeySpaceDocumentThatCannotBeWrittenEndsTheRun) {
    write("root.ditamap", "<map/>");
    try {
        KeySpaceLoader().load(folder.file16("root.ditamap"), folder.file16("no/Keys.ditamap"),
                              topicIds, u"keys.dtd");
        FAIL() << "a run without a key space";
    } catch (const PublishException& failure) {
        EXPECT_EQ(failure.code(), -42);
    }
    EXPECT_EQ(told(), Lines({cannotWrite("$F/no/Keys.ditamap"), cannotRead("$F/no/Keys.ditamap")}));
}

struct UnreadableCase {
    const char* name;
    const char* reference;
    const char* path;  // in message 106
};

class UnreadableMapTest : public KeySpaceLoaderTest,
                          public testing::WithParamInterface<UnreadableCase> {};

TEST_P(UnreadableMapTest, EndsTheRun) {
    writePlain("broken.ditamap", "<map>");
    writePlain("broken.xml", "<map>");
    EXPECT_EQ(failureOf(GetParam().reference), -42);
    EXPECT_EQ(told(), Lines({cannotRead(GetParam().path)}));
}

INSTANTIATE_TEST_SUITE_P(
    , UnreadableMapTest,
    testing::Values(UnreadableCase{"Map", "<mapref href='broken.ditamap'/>", "$F/broken.ditamap"},
                    UnreadableCase{"Fragment", "<mapref href='broken.ditamap#f'/>",
                                   "$F/broken.ditamap"},
                    UnreadableCase{"XmlFile", "<topicref href='broken.xml'/>", "$F/broken.xml"},
                    UnreadableCase{"RemoteMap", "<mapref href='http://localhost/m.ditamap'/>",
                                   "http://localhost/m.ditamap"}),
    [](const auto& example) { return example.param.name; });

TEST_F(KeySpaceLoaderTest, AMapThatIsMissingIsReportedAndPassedOver) {
    EXPECT_EQ(definitionsOf("<mapref href='none.ditamap'/><keydef keys='k'/>"),
              R"(<keydef keys="k"/>)");
    EXPECT_EQ(told(), Lines({referencedFileNotFound("$F/none.ditamap")}));
}

TEST_F(KeySpaceLoaderTest, WithoutDtdsThereAreKeysAllTheSame) {
    host.pathsByPublicId.clear();
    writePlain("sub.ditamap", mapOf("<keydef keys='s' href='t.dita'/>"));
    writePlain("root.ditamap", mapOf("<x href='sub.ditamap'/><keydef keys='k' keyref='s'/>"));
    KeySpace keySpace = keySpaceOfRoot();
    EXPECT_EQ(definitions(keySpace), R"(<keydef keys="k"/><keydef href="$F/t.dita" keys="s"/>)");
    EXPECT_EQ(attribute(*definitionOf(keySpace, u"k"), "class"), "");
}

}  // namespace
}  // namespace marrowpress
