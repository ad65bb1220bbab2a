#include "tests/publish/sample_maps.h"
#include "tests/support/observed_run.h"

/// What is told of keys: references to those that are not defined (105), links that are dropped
/// (217), definitions that are lost (218), and all definitions.
namespace marrowpress {
namespace {

class ObservedKeysTest : public ObservedRunTest {
protected:
    void writeLibrary() const {
        writeTopic("lib.xml",
                   "<p id=\"p\"><ph keyref=\"no\"/><xref href=\"none.dita\">x</xref>"
                   "<p conref=\"#lib/none\"/></p>");
    }
};

TEST_F(ObservedKeysTest, EachKindOfReferenceToAnUndefinedKeyIsTold) {
    writeTopic("a.dita",
               "<p><ph keyref=\"no\"/>\n<xref keyref=\"no/p\"/>\n<image keyref=\"no\"/>\n"
               "<p conkeyref=\"no/p\"/>\n<object datakeyref=\"no\"/></p>");
    const std::string expected =
        "105 root.ditamap:4:1 <topicref> no"
        "\n105 a.dita:7:1 <object> no" +
        kViaMap + "\n105 a.dita:5:1 <image> no" + kViaMap + "\n105 a.dita:3:4 <ph> no" + kViaMap +
        "\n105 a.dita:4:1 <xref> no" + kViaMap + "\n105 a.dita:6:1 <p> no" + kViaMap;
    const std::string map = std::string(kMapOfA) + "\n<topicref keyref=\"no\"/>";
    EXPECT_EQ(compositeFaults(map), expected);
    EXPECT_EQ(flatBookFaults(map), expected);
}

TEST_F(ObservedKeysTest, AnUndefinedKeyOfANestedMapHasTheWholeWay) {
    writeTopic("a.dita", "<ph keyref=\"no\"/>");
    writeMap("sub/n.ditamap", "<topicref href=\"../a.dita\"/>\n<topicref keyref=\"no\"/>");
    EXPECT_EQ(compositeFaults(kMapOfNested),
              "105 sub/n.ditamap:4:1 <topicref> no via root.ditamap:3:1 href=sub/n.ditamap\n"
              "105 a.dita:3:1 <ph> no via sub/n.ditamap:3:1 href=../a.dita"
              " via root.ditamap:3:1 href=sub/n.ditamap");
}

TEST_F(ObservedKeysTest, AnUndefinedKeyInPulledContentIsToldThere) {
    writeTopic("a.dita", "<p conref=\"b.dita#b/p\"/>");
    writeTopic("b.dita", "<p id=\"p\"><ph keyref=\"no\"/></p>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "105 b.dita:3:11 <ph> no via a.dita:3:1 conref=/b.dita#b/p" + kViaMap);
    writeTopic("a.dita", "<ph conref=\"b.dita#b/p\"/>");
    writeTopic("b.dita", "<ph id=\"p\" keyref=\"no\"/>");
    EXPECT_EQ(compositeFaults(kMapOfA),
              "105 b.dita:3:1 <ph> no via a.dita:3:1 conref=/b.dita#b/p" + kViaMap);
}

TEST_F(ObservedKeysTest, AKeyWhoseDefinitionTheProfileTakesAwayIsUndefined) {
    writeTopic("a.dita", "<p audience=\"x\"><ph keyref=\"no\"/></p>\n<ph keyref=\"k\"/>");
    const std::string map =
        "<topicref href=\"a.dita\"/>\n"
        "<keydef keys=\"k\" href=\"a.dita\" audience=\"x\"/>";
    EXPECT_EQ(compositeFaults(map), "105 a.dita:3:17 <ph> no" + kViaMap);
    EXPECT_EQ(observed(ObservationKind::kKeyDefinition),
              "0 root.ditamap:4:1 <keydef> k detail=/a.dita");
    excludeX();
    EXPECT_EQ(compositeFaults(map),
              "artefact 105 a.dita:3:17 <ph> no" + kViaMap + "\n105 a.dita:4:1 <ph> k" + kViaMap);
    EXPECT_EQ(observed(ObservationKind::kKeyDefinition),
              "2 root.ditamap:4:1 <keydef> k detail=/a.dita");
}

TEST_F(ObservedKeysTest, ADefinedKeyIsNoFault) {
    writeTopic("a.dita", "<ph keyref=\"k\"/><p conkeyref=\"a/p\"/><p id=\"p\">x</p>");
    constexpr std::string_view kKeys =
        "<keydef "
        "keys=\"k\"><topicmeta><keywords><keyword>K</keyword></keywords></topicmeta></keydef>"
        "<keydef keys=\"a\" href=\"a.dita\"/>";
    EXPECT_EQ(compositeFaults(std::string(kKeys).append(kMapOfA)), "");
    EXPECT_EQ(flatBookFaults(std::string(kKeys).append(kMapOfA)), "");
}

TEST_F(ObservedKeysTest, AChainIsToldWhereItLeadsNowhere) {
    writeTopic("a.dita", "<ph keyref=\"a\"/>");
    const std::string chain = std::string(kMapOfA) +
                              "\n<keydef keys=\"a\" keyref=\"b\"/>\n"
                              "<keydef keys=\"b\" keyref=\"no\"/>";
    compositeFaults(chain);
    for (const ObservedCopy& observation : observations) {
        if (observation.kind == ObservationKind::kFault) {
            EXPECT_EQ(observation.target, "no");
            EXPECT_EQ(observation.steps.front().place.line, 5U);
        }
    }
    EXPECT_NE(faults(), "");
    EXPECT_EQ(compositeFaults(std::string(kMapOfA) + "\n<keydef keys=\"a\" keyref=\"a\"/>"),
              "105 root.ditamap:4:1 <keydef> a");
}

TEST_F(ObservedKeysTest, NobodysKeyIsAnArtefact) {
    writeTopic("a.dita", "<ph keyref=\"a\"/><ph keyref=\"b\"/>");
    const std::string told =
        compositeFaults(std::string(kMapOfA) +
                        "<keydef keys=\"a\" keyref=\"c\"/><keydef keys=\"b\" keyref=\"c\"/>"
                        "<keydef keys=\"c\" href=\"a.dita\"/>");
    EXPECT_EQ(told, "artefact 105 root.ditamap:3:84 <keydef>");
    EXPECT_NE(console, "");
}

TEST_F(ObservedKeysTest, EachDefinitionIsToldWithItsState) {
    writeTopic("a.dita", "");
    writeMap("sub/n.ditamap", "<keydef keys=\"k own\" href=\"../a.dita\"/>");
    compositeFaults(
        "<keydef keys=\"k\" href=\"a.dita#a\"/>\n<keydef keys=\"k\" href=\"https://x/\"/>"
        "<mapref href=\"sub/n.ditamap\" format=\"ditamap\"/>" +
        std::string(kMapOfA));
    EXPECT_EQ(
        observed(ObservationKind::kKeyDefinition),
        "0 root.ditamap:3:1 <keydef> k detail=/a.dita#a\n"
        "1 root.ditamap:4:1 <keydef> k detail=https://x/\n"
        "1 sub/n.ditamap:3:1 <keydef> k detail=/a.dita via root.ditamap:4:37 href=sub/n.ditamap\n"
        "0 sub/n.ditamap:3:1 <keydef> own detail=/a.dita"
        " via root.ditamap:4:37 href=sub/n.ditamap");
}

TEST_F(ObservedKeysTest, ALinkInADefinitionsOwnContentIsDropped) {
    writeTopic("a.dita", "");
    const auto keys = [](const std::string& ofLinked) {
        return "<keydef keys=\"k\" href=\"a.dita\"><topicmeta><linktext>See"
               " <keyword keyref=\"l\"/></linktext></topicmeta></keydef>\n<keydef keys=\"l\" " +
               ofLinked +
               "><topicmeta><keywords><keyword>L</keyword></keywords></topicmeta></keydef>\n";
    };
    const std::string map = keys("href=\"a.dita\"") + std::string(kMapOfA);
    EXPECT_EQ(compositeFaults(map), "217 root.ditamap:3:57 <keyword> l");
    EXPECT_EQ(flatBookFaults(map), "217 root.ditamap:3:57 <keyword> l");
    EXPECT_EQ(compositeFaults(keys("") + std::string(kMapOfA)), "");
    writeMap("n.ditamap", map);
    EXPECT_EQ(compositeFaults("<mapref href=\"n.ditamap\" format=\"ditamap\"/>"),
              "217 n.ditamap:3:57 <keyword> l via root.ditamap:3:1 href=n.ditamap");
}

TEST_F(ObservedKeysTest, ALinkOfADefinitionThatTheProfileTakesAwayIsNotDropped) {
    writeTopic("a.dita", "");
    excludeX();
    for (const char* const ofKey :
         {" audience=\"x\"><topicmeta><linktext>", "><topicmeta><linktext audience=\"x\">"}) {
        EXPECT_EQ(
            compositeFaults("<keydef keys=\"k\" href=\"a.dita\"" + std::string(ofKey) +
                            "<keyword keyref=\"l\"/></linktext></topicmeta></keydef>"
                            "<keydef keys=\"l\" href=\"a.dita\"><topicmeta><keywords><keyword>L"
                            "</keyword></keywords></topicmeta></keydef>" +
                            std::string(kMapOfA)),
            "");
    }
}

TEST_F(ObservedKeysTest, ADefinitionThatLeadsIntoAFileIsLost) {
    writeTopic("a.dita", "<ph keyref=\"k\"/>");
    writeTopic("lib.xml", "<p>x</p>");
    const std::string map = std::string(kMapOfA) + "\n<keydef keys=\"k l\" href=\"lib.xml#lib\"/>";
    const std::string expected =
        "218 root.ditamap:4:1 <keydef> k detail=/lib.xml#lib\n"
        "218 root.ditamap:4:1 <keydef> l detail=/lib.xml#lib\n"
        "105 a.dita:3:1 <ph> k" +
        kViaMap;
    EXPECT_EQ(compositeFaults(map), expected);
    EXPECT_EQ(flatBookFaults(map), expected);
    EXPECT_EQ(observed(ObservationKind::kKeyDefinition),
              "3 root.ditamap:4:1 <keydef> k detail=/lib.xml#lib\n"
              "3 root.ditamap:4:1 <keydef> l detail=/lib.xml#lib");
    writeMap("sub/n.ditamap", "<keydef keys=\"k\" href=\"../lib.xml#lib\"/>");
    compositeFaults(std::string(kMapOfNested).append(kMapOfA));
    EXPECT_EQ(faults(FaultCode::kKeyDefinitionLost),
              "218 sub/n.ditamap:3:1 <keydef> k detail=/lib.xml#lib"
              " via root.ditamap:3:1 href=sub/n.ditamap");
}

TEST_F(ObservedKeysTest, ADefinitionThatIsNotLostIsNotTold) {
    writeTopic("a.dita", "");
    writeTopic("lib.xml", "<p>x</p>");
    writeTopic("lib.dita", "<p>x</p>");
    excludeX();
    for (const char* const attributes :
         {"href=\"lib.xml#lib\" type=\"topic\"", "href=\"lib.xml\"", "href=\"lib.dita#lib\"",
          "href=\"lib.xml#lib\" audience=\"x\""}) {
        EXPECT_EQ(compositeFaults("<keydef keys=\"k\" " + std::string(attributes) + "/>" +
                                  std::string(kMapOfA)),
                  "")
            << attributes;
    }
}

TEST_F(ObservedKeysTest, ADefinitionThatLeadsToAMissingPartIsToldForBoth) {
    writeTopic("a.dita", "");
    writeTopic("lib.xml", "<p>x</p>");
    EXPECT_EQ(compositeFaults(std::string(kMapOfA) + "\n<keydef keys=\"k\" href=\"lib.xml#no\"/>"),
              "218 root.ditamap:4:1 <keydef> k detail=/lib.xml#no\n"
              "204 root.ditamap:4:1 <keydef> /lib.xml#no");
}

TEST_F(ObservedKeysTest, FaultsInWhatADefinitionPullsIntoTheMapAreArtefacts) {
    writeTopic("a.dita", "");
    writeLibrary();
    compositeFaults(std::string(kMapOfA) + "\n<keydef keys=\"k\" href=\"lib.xml#lib\"/>");
    EXPECT_EQ(faults(),
              "218 root.ditamap:4:1 <keydef> k detail=/lib.xml#lib\n"
              "artefact 111 lib.xml:3:28 <xref> /none.dita via root.ditamap:4:1 href=lib.xml#lib\n"
              "artefact 105 lib.xml:3:11 <ph> no via root.ditamap:4:1 href=lib.xml#lib\n"
              "artefact 108 lib.xml:3:59 <p> /root.ditamap#lib/none detail=p"
              " via root.ditamap:4:1 href=lib.xml#lib");
}

TEST_F(ObservedKeysTest, AReferenceInWhatIsPulledIntoAMapThatIsNoDefinitionIsNotLost) {
    writeTopic("a.dita", "");
    writeMap("p.ditamap",
             "<topicref id=\"s\" href=\"a.dita\"><topicref href=\"gone.dita\"/></topicref>");
    const std::string told = compositeFaults(
        "<topicref href=\"p.ditamap#s\" format=\"ditamap\"/>\n" + std::string(kMapOfA));
    EXPECT_EQ(faults(FaultCode::kKeyDefinitionLost), "");
    EXPECT_TRUE(
        told.starts_with("111 p.ditamap:3:32 <topicref> /gone.dita"
                         " via root.ditamap:3:1 href=p.ditamap#s"))
        << told;
}

TEST_F(ObservedKeysTest, ConditionValuesAreToldOnceForThoseWithARule) {
    writeTopic("a.dita",
               "<p audience=\"y z\"/><p audience=\"z x\" product=\"q\"/><p audience=\"x\"/>");
    compositeFaults(kMapOfA);
    EXPECT_EQ(observed(ObservationKind::kConditionValue), "");
    excludeX();
    compositeFaults("<topicref href=\"a.dita\" audience=\"y\"/>");
    EXPECT_EQ(observed(ObservationKind::kConditionValue),
              "root.ditamap:3:1 <topicref> audience detail=y\n"
              "a.dita:3:1 <p> audience detail=z" +
                  kViaMap + "\na.dita:3:20 <p> audience detail=x" + kViaMap);
    EXPECT_EQ(observed(ObservationKind::kExcluded), "a.dita:3:51 <p> detail=audience" + kViaMap);
}

}  // namespace
}  // namespace marrowpress
