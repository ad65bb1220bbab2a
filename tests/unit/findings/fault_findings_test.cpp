#include "findings/fault_findings.h"

#include <gtest/gtest.h>

#include "tests/support/chosen_language.h"
#include "tests/support/observations.h"
#include "tests/support/run_facts_of.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class FaultFindingsTest : public testing::Test {
protected:
    Finding findingOf(Observation fault) {
        fault.steps = steps;
        fault.stepCount = 1;
        return FaultFindings(facts, context).findingOf(fault).value_or(Finding());
    }

    ChosenLanguage english{Language::kEnglish};
    RunFacts facts;
    FindingContext context{"/w", {}, {"/w/catalog.xml"}};
    ObservedStep steps[3]{{{"/w/a.dita", 4, 7}, "", ""},
                          {{"/w/b.dita", 2, 1}, "conref", "a.dita#t/p"},
                          {{"/w/m.ditamap", 9, 2}, "href", "b.dita"}};
};

TEST_F(FaultFindingsTest, TheFirstStepIsThePlaceAndTheOthersTheWay) {
    Observation fault = faultOf(FaultCode::kKeyNotFound, "k");
    fault.element = "ph";
    fault.line = "line\r\n";
    fault.steps = steps;
    fault.stepCount = 3;
    const Finding finding = *FaultFindings(facts, context).findingOf(fault);
    EXPECT_EQ(finding.id, "MP105");
    EXPECT_EQ(finding.severity, Severity::kError);
    EXPECT_EQ(finding.place, (FindingPlace{"/w/a.dita", 4, 7}));
    EXPECT_EQ(finding.element, "ph");
    EXPECT_EQ(finding.target, "k");
    EXPECT_EQ(finding.hostText, "line\r\n");
    EXPECT_EQ(finding.via, (std::vector<FindingStep>{{{"/w/b.dita", 2, 1}, "conref a.dita#t/p"},
                                                     {{"/w/m.ditamap", 9, 2}, "href b.dita"}}));
}

TEST_F(FaultFindingsTest, RelatedPlacesStandOnceEach) {
    const ObservedPlace ring[]{{"/w/a.dita", 4, 7}, {"/w/b.dita", 1, 1}, {"/w/b.dita", 1, 1}};
    Observation fault = faultOf(FaultCode::kConrefLoop, "/w/a.dita#t/p");
    fault.related = ring;
    fault.relatedCount = 3;
    EXPECT_EQ(findingOf(fault).places, (std::vector<FindingPlace>{{"/w/b.dita", 1, 1}}));
}

TEST_F(FaultFindingsTest, AnArtefactIsMarked) {
    Observation fault = faultOf(FaultCode::kKeyNotFound, "");
    EXPECT_FALSE(findingOf(fault).isArtefact);
    fault.flags = kArtefact;
    EXPECT_TRUE(findingOf(fault).isArtefact);
}

TEST_F(FaultFindingsTest, AKeyIsHintedAtByWhatIsKnownOfIt) {
    const auto hint = [this](const char* key) {
        return findingOf(faultOf(FaultCode::kKeyNotFound, key)).hint;
    };
    EXPECT_EQ(hint("Prod-Name"), "no map of this publication defines any key");
    takeKey(facts, "prod-name", KeyState::kEffective);
    EXPECT_EQ(hint("Prod-Name"), "did you mean `prod-name`?");
    EXPECT_EQ(hint("nothing-like-it"),
              "define it by `keys` in a map of the publication, or take the reference out");
    takeKey(facts, "taken", KeyState::kExcluded);
    takeKey(facts, "lost", KeyState::kLost);
    context.profiles = {"/w/p.ditaval"};
    EXPECT_NE(hint("taken").find("`p.ditaval`"), std::string::npos) << hint("taken");
    EXPECT_NE(hint("taken").find("keys.ditamap:5:3"), std::string::npos) << hint("taken");
    EXPECT_NE(hint("lost").find("MP218"), std::string::npos) << hint("lost");
    EXPECT_NE(hint("prod-name").find("leads back to itself"), std::string::npos)
        << hint("prod-name");
}

TEST_F(FaultFindingsTest, AnElementThatBearsTheIdIsNamed) {
    Observation fault = faultOf(FaultCode::kElementInTopicNotFound, "/w/s.dita#s/hot");
    fault.detail = "note";
    fault.reason = "p";
    EXPECT_EQ(findingOf(fault).text, "`s.dita#s/hot` is a `p`, a `note` refers to it");
    fault.reason = "";
    EXPECT_EQ(findingOf(fault).text, "No element in the topic `s` of `s.dita` has the id `hot`");
    takeDocument(facts, "/w/s.dita", DocumentGrammar::kInvalid);
    EXPECT_NE(findingOf(fault).hint.find("MP202"), std::string::npos) << findingOf(fault).hint;
}

TEST_F(FaultFindingsTest, AFragmentNamesATopicUnlessItLeadsIntoAMap) {
    Observation fault = faultOf(FaultCode::kFragmentNotFound, "/w/s.dita#y");
    EXPECT_EQ(findingOf(fault).text, "No topic in `s.dita` has the id `y`");
    const std::string usual = findingOf(fault).hint;
    fault.detail = "s";
    EXPECT_EQ(findingOf(fault).hint, "an element in the topic `s` has this id: write `#s/y`");
    takeDocument(facts, "/w/s.dita", DocumentGrammar::kInvalid);
    EXPECT_NE(findingOf(fault).hint.find("MP202"), std::string::npos) << findingOf(fault).hint;
    fault = faultOf(FaultCode::kFragmentNotFound, "/w/m.ditamap#y");
    EXPECT_EQ(findingOf(fault).text, "No element in `m.ditamap` has the id `y`");
    EXPECT_EQ(findingOf(fault).hint, usual);
    takeDocument(facts, "/w/m.xml", DocumentGrammar::kOwn, "bookmap");
    fault = faultOf(FaultCode::kFragmentNotFound, "/w/m.xml#y");
    EXPECT_EQ(findingOf(fault).text, "No element in `m.xml` has the id `y`");
}

TEST_F(FaultFindingsTest, AMissingFileIsHintedAtByOneOfALikeName) {
    const TemporaryFolder folder;
    folder.write("installing.dita", "");
    context.currentFolder = folder.path().string();
    const std::string missing = folder.file("Installing.dita");
    for (const FaultCode code : {FaultCode::kReferencedFileNotFound, FaultCode::kLinkTargetMissing,
                                 FaultCode::kCannotRead}) {
        const Finding finding = findingOf(faultOf(code, missing.c_str()));
        EXPECT_NE(finding.hint.find("`installing.dita`"), std::string::npos) << finding.hint;
    }
    const std::string other = folder.file("zzzzzzzzzz.svg");
    const std::string hint = findingOf(faultOf(FaultCode::kLinkTargetMissing, other.c_str())).hint;
    EXPECT_TRUE(hint.starts_with("correct the path or create the file")) << hint;
    EXPECT_NE(hint.find("scope"), std::string::npos) << hint;
    const std::string site = folder.file("www.example.org");
    EXPECT_NE(findingOf(faultOf(FaultCode::kLinkTargetMissing, site.c_str())).hint.find("http"),
              std::string::npos);
}

TEST_F(FaultFindingsTest, ThePrivateMapOfARunIsNeverNamed) {
    for (const FaultCode code : {FaultCode::kCannotRead, FaultCode::kCannotWrite}) {
        Observation fault = faultOf(code, "/w/out/KeyspaceDoc.ditamap");
        fault.reason = "Permission denied";
        EXPECT_EQ(findingOf(fault).text, "`out` cannot be written: Permission denied");
    }
}

TEST_F(FaultFindingsTest, AProfileMayBeDoneWithout) {
    const TemporaryFolder folder;
    folder.write("q.ditaval", "");
    const std::string profile = folder.file("p.ditaval");
    context.profiles = {profile};
    const Observation fault = faultOf(FaultCode::kCannotRead, profile.c_str());
    EXPECT_EQ(findingOf(fault).severity, Severity::kError);
    context.isFilterOptional = true;
    EXPECT_EQ(findingOf(fault).severity, Severity::kWarning);
    EXPECT_EQ(findingOf(faultOf(FaultCode::kCannotRead, "/w/a.dita")).severity, Severity::kError);
}

TEST_F(FaultFindingsTest, ALostDtdIsWorseInAMapThanInATopic) {
    Observation fault = faultOf(FaultCode::kReadWithoutDtd, "/w/m.ditamap");
    fault.element = "map";
    fault.detail = "-//X//Map//EN";
    fault.reason = "map.dtd";
    EXPECT_EQ(findingOf(fault).severity, Severity::kError);
    EXPECT_NE(findingOf(fault).text.find("-//X//Map//EN"), std::string::npos);
    EXPECT_NE(findingOf(fault).text.find("map.dtd"), std::string::npos);
    EXPECT_NE(findingOf(fault).hint.find("catalog.xml"), std::string::npos);
    fault.target = "/w/a.dita";
    fault.element = "topic";
    EXPECT_EQ(findingOf(fault).severity, Severity::kWarning);
    fault.detail = "";
    fault.reason = "";
    EXPECT_NE(findingOf(fault).hint.find("-//OASIS//DTD DITA Topic//EN"), std::string::npos);
}

TEST_F(FaultFindingsTest, ACatalogThatCannotBeUsedIsTheReasonOfALostDtd) {
    context.catalogFault = "c.xml: not well-formed XML";
    Observation fault = faultOf(FaultCode::kReadWithoutDtd, "/w/a.dita");
    fault.element = "topic";
    fault.detail = "-//X//Topic//EN";
    EXPECT_NE(findingOf(fault).text.find("(c.xml: not well-formed XML)"), std::string::npos)
        << findingOf(fault).text;
    // No catalog is asked for a system identifier alone.
    fault.detail = "";
    fault.reason = "topic.dtd";
    EXPECT_EQ(findingOf(fault).text.find("c.xml"), std::string::npos) << findingOf(fault).text;
}

TEST_F(FaultFindingsTest, AFileWithoutADoctypeThatIsNotDitaIsNoFinding) {
    Observation fault = faultOf(FaultCode::kReadWithoutDtd, "/w/a.svg");
    fault.element = "svg";
    EXPECT_FALSE(FaultFindings(facts, context).findingOf(fault));
    fault.element = "topic";
    EXPECT_TRUE(FaultFindings(facts, context).findingOf(fault));
    // A profile needs no DTD, whatever its root is.
    context.profiles = {"/w/a.svg"};
    EXPECT_FALSE(FaultFindings(facts, context).findingOf(fault));
}

TEST_F(FaultFindingsTest, ABrokenDtdIsWorseInAMapThanInATopic) {
    Observation fault = faultOf(FaultCode::kBreaksDtd, "/w/m.ditamap");
    fault.element = "map";
    fault.reason = "attribute `colour` is not declared";
    EXPECT_EQ(findingOf(fault).severity, Severity::kError);
    EXPECT_NE(findingOf(fault).text.find("`colour`"), std::string::npos);
    fault.target = "/w/a.dita";
    fault.element = "topic";
    EXPECT_EQ(findingOf(fault).severity, Severity::kWarning);
}

TEST_F(FaultFindingsTest, ATopicOutsideTheOutputIsHintedAtByWhyItIs) {
    const Observation fault = faultOf(FaultCode::kTopicNotInOutput, "/w/b.dita#b");
    const std::string notInMap = findingOf(fault).hint;
    takeDocument(facts, "/w/m.ditamap", DocumentGrammar::kInvalid);
    const std::string lost = findingOf(fault).hint;
    EXPECT_NE(lost.find("`m.ditamap`"), std::string::npos) << lost;
    EXPECT_NE(lost.find("MP202"), std::string::npos) << lost;
    takeKey(facts, "b", KeyState::kEffective, "/w/b.dita");
    const std::string resource = findingOf(fault).hint;
    facts.take(observationOf(ObservationKind::kExcluded, "/w/b.dita"));
    context.profiles = {"/w/p.ditaval"};
    const std::string excluded = findingOf(fault).hint;
    EXPECT_NE(notInMap, resource);
    EXPECT_NE(resource, excluded);
    EXPECT_NE(excluded.find("p.ditaval"), std::string::npos) << excluded;
}

TEST_F(FaultFindingsTest, ALostDtdIsNamedByTheFindingThatTellsOfIt) {
    EXPECT_EQ(lostDtdId({"/w/m.ditamap", "map", DocumentGrammar::kInvalid, {}}), "MP202");
    EXPECT_EQ(lostDtdId({"/w/m.ditamap", "map", DocumentGrammar::kNotFound, {}}), "MP201");
    EXPECT_EQ(lostDtdId({"/w/m.ditamap", "map", DocumentGrammar::kNoDoctype, {}}), "MP201");
}

TEST_F(FaultFindingsTest, AnEmptyOutputIsHintedAtByWhyItIs) {
    const Observation fault = faultOf(FaultCode::kNoTopic, "/w/m.ditamap");
    const std::string noReference = findingOf(fault).hint;
    context.profiles = {"/w/p.ditaval"};
    const std::string excluded = findingOf(fault).hint;
    takeDocument(facts, "/w/m.ditamap", DocumentGrammar::kNotFound);
    const std::string withoutDtd = findingOf(fault).hint;
    EXPECT_NE(noReference, excluded);
    EXPECT_NE(excluded, withoutDtd);
    EXPECT_NE(noReference, withoutDtd);
}

TEST_F(FaultFindingsTest, EachFaultHasATextAndItsId) {
    for (const std::uint32_t code :
         {105U, 106U, 107U, 108U, 109U, 110U, 111U, 201U, 202U, 203U, 204U,
          205U, 206U, 208U, 209U, 210U, 212U, 213U, 215U, 216U, 217U, 218U}) {
        Observation fault = faultOf(static_cast<FaultCode>(code), "/w/x.dita#t/p");
        fault.element = "topic";
        fault.detail = "detail";
        const Finding finding = findingOf(fault);
        EXPECT_EQ(finding.id, "MP" + std::to_string(code));
        EXPECT_NE(finding.text, "") << code;
    }
}

}  // namespace
}  // namespace marrowpress
