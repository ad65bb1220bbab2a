#include "application/run_observer.h"

#include "tests/support/recording_observer.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

/// Keeps the lines of what it is told.
class KeptReferences final : public IHostReferenceObserver {
public:
    ComStatus queryInterface(const InterfaceId&, void**) override { return kComNoInterface; }
    std::uint32_t addRef() override { return 2; }
    std::uint32_t release() override { return 1; }
    ComStatus observeReference(const Observation* observation) override {
        lines.push_back(printed(ObservedCopy(*observation)));
        return kComOk;
    }

    std::vector<std::string> lines;
};

class RunObserverTest : public XmlTest {
protected:
    /// Says that `element` stands in "/name", in that line.
    void place(const DOMElement& element, const char16_t* path, std::uint32_t line) const {
        SourcePlaces& places = *SourcePlaces::existing();
        places.record(element, {places.fileNumber(path), line, 1});
    }

    const DOMElement& placed(std::string_view id, std::uint32_t line) const {
        const DOMElement& element = *document.byId(id);
        place(element, u"/a.dita", line);
        return element;
    }

    ObservedScope observed;
    const ParsedXml document{"<topic id='t'><p id='p'/><p id='q'><ph id='r'/></p></topic>"};
};

TEST_F(RunObserverTest, ReferencesAreForAHostThatWantsThem) {
    EXPECT_FALSE(RunObserver::existingForReferences());
    KeptReferences kept;
    const InterfaceReplacement<IHostReferenceObserver> replacement(
        QsApiInterfacesC::connected()->referenceObserver, &kept);
    RunObserver::end();
    RunObserver::begin();
    ASSERT_EQ(RunObserver::existingForReferences(), RunObserver::existing());
    RunObserver::existing()->entity(u"/t.dtd", u"/a.dita");
    RunObserver::existing()->entity(u"/t.dtd", u"/a.dita");
    RunObserver::existing()->entity(u"/t.dtd", u"/b.dita");
    RunObserver::existing()->keyReference(u"k", placed("q", 7), /*isLeftOut=*/true);
    EXPECT_EQ(kept.lines, (std::vector<std::string>{"?:0:0 /t.dtd detail=/a.dita",
                                                    "?:0:0 /t.dtd detail=/b.dita",
                                                    "artefact /a.dita:7:1 <p> k"}));
    EXPECT_TRUE(observed.host.observations.empty());
    RunObserver::end();
}

TEST_F(RunObserverTest, ThereIsOneOnlyWhereTheHostHasOne) {
    EXPECT_TRUE(RunObserver::existing());
    EXPECT_TRUE(SourcePlaces::existing());
    RunObserver::end();
    EXPECT_FALSE(RunObserver::existing());
    EXPECT_FALSE(SourcePlaces::existing());
    const InterfaceReplacement<IHostObserver> none(QsApiInterfacesC::connected()->observer,
                                                   nullptr);
    RunObserver::begin();
    EXPECT_FALSE(RunObserver::existing());
    EXPECT_FALSE(SourcePlaces::existing());
}

TEST_F(RunObserverTest, HoldsTheHostsObserverWhileItLives) {
    const std::uint32_t held = observed.host.references;
    RunObserver::end();
    EXPECT_EQ(observed.host.references, held - 1);
}

TEST_F(RunObserverTest, TellsAtOnceWhatIsNoFault) {
    const DOMElement& element = placed("p", 4);
    observed->phase("keys");
    observed->documentRead(u"/b", u"topic", DocumentGrammar::kNotFound, &element);
    observed->documentUnread(u"/c", u"gone", nullptr);
    observed->keyDefinition(u"k", u"/b#t", KeyState::kShadowed, element);
    observed->topic(u"/b", element);
    observed->component(u"/b.qs", u"/b", element);
    observed->excluded(element, u"/b", u"audience");
    observed->outputWritten(u"/out");
    observed->runFailed("why");
    std::string lines;
    for (const ObservedCopy& observation : observed.host.observations) {
        lines +=
            std::to_string(static_cast<int>(observation.kind)) + ": " + printed(observation) + "\n";
    }
    EXPECT_EQ(lines,
              "1: ?:0:0 keys\n"
              "2: 2 /a.dita:4:1 <topic> /b\n"
              "3: ?:0:0 /c reason=gone\n"
              "4: 1 /a.dita:4:1 <p> k detail=/b#t\n"
              "5: /a.dita:4:1 <p> /b\n"
              "6: /a.dita:4:1 <p> /b.qs detail=/b\n"
              "12: /a.dita:4:1 <p> /b detail=audience\n"
              "8: ?:0:0 /out\n"
              "11: ?:0:0 reason=why\n");
}

TEST_F(RunObserverTest, TellsEachConditionValueOnce) {
    const DOMElement& element = placed("p", 4);
    observed->conditionValue(u"audience", u"x", element);
    observed->conditionValue(u"audience", u"x", element);
    observed->conditionValue(u"product", u"x", element);
    observed->conditionValue(u"audience", u"y", element);
    EXPECT_EQ(observed.host.told(ObservationKind::kConditionValue),
              "/a.dita:4:1 <p> audience detail=x\n/a.dita:4:1 <p> product detail=x\n"
              "/a.dita:4:1 <p> audience detail=y");
}

TEST_F(RunObserverTest, FaultsWaitForTheEndAndKeepTheirOrder) {
    observed->fault({.code = FaultCode::kKeyScope, .element = &placed("p", 4), .target = u"s"});
    observed->fault({.code = FaultCode::kCannotWrite, .target = u"/out", .line = "line\r\n"});
    EXPECT_TRUE(observed.host.observations.empty());
    EXPECT_EQ(observed.faults(), "210 /a.dita:4:1 <p> s\n107 ?:0:0 /out");
    EXPECT_EQ(observed.host.observations.back().line, "line\r\n");
    observed.host.observations.clear();
    EXPECT_EQ(observed.faults(), "");
}

TEST_F(RunObserverTest, AFaultOfWhatIsNotPublishedIsAnArtefact) {
    const DOMElement& published = placed("p", 4);
    const DOMElement& gone = placed("q", 5);
    observed->fault({.code = FaultCode::kKeyScope, .element = &published});
    observed->fault({.code = FaultCode::kKeyScope, .element = &gone});
    observed->fault({.code = FaultCode::kKeyScope, .element = &gone, .outlivesElement = true});
    observed->fault({.code = FaultCode::kKeyScope, .element = &published, .isArtefact = true});
    observed->fault({.code = FaultCode::kCannotWrite});
    observed->finish([&](const DOMElement& element) { return &element == &published; });
    EXPECT_EQ(observed.host.faults(),
              "210 /a.dita:4:1 <p>\nartefact 210 /a.dita:5:1 <p>\n210 /a.dita:5:1 <p>\n"
              "artefact 210 /a.dita:4:1 <p>\n107 ?:0:0");
}

TEST_F(RunObserverTest, AFaultKeepsThePlaceThatItsElementHadWhenItWasMet) {
    const DOMElement& element = placed("r", 6);
    observed->fault({.code = FaultCode::kKeyScope, .element = &element});
    place(element, u"/b.dita", 1);
    EXPECT_EQ(observed.faults(), "210 /a.dita:6:1 <ph>");
}

TEST_F(RunObserverTest, ElementsOfOneSourceShareWhatIsKnownOfIt) {
    const DOMElement& first = placed("p", 4);
    const DOMElement& copy = placed("q", 4);
    const DOMElement& other = placed("r", 9);
    observed->fault({.code = FaultCode::kReferencedFileNotFound, .element = &first});
    const auto counts = [](const DOMElement&) { return true; };
    EXPECT_TRUE(observed->hasToldMissingFile(copy, counts));
    EXPECT_FALSE(observed->hasToldMissingFile(other, counts));
    EXPECT_FALSE(observed->hasToldMissingFile(
        copy, [&first](const DOMElement& element) { return &element != &first; }));
    observed->noteKeyLink(first, other);
    EXPECT_EQ(observed->keyLinkOf(copy), &other);
    EXPECT_EQ(observed->keyLinkOf(other), nullptr);
    observed->noteConrefTarget(first, other);
    observed->noteConrefTarget(copy, first);
    EXPECT_EQ(observed->conrefTargetAt(SourcePlaces::existing()->placeOf(copy)), &other);
}

TEST_F(RunObserverTest, AnAttributeIsWrittenWhereItWasTakenFrom) {
    const DOMElement& first = *document.byId("p");
    const DOMElement& second = *document.byId("q");
    const DOMElement& third = *document.byId("r");
    observed->noteTakenAttribute(first, u"href", second);
    observed->noteTakenAttribute(second, u"href", third);
    EXPECT_EQ(&observed->writerOf(first, u"href"), &third);
    EXPECT_EQ(&observed->writerOf(first, u"keyref"), &first);
    EXPECT_EQ(&observed->writerOf(third, u"href"), &third);
}

TEST_F(RunObserverTest, TargetsAreNamedAsAuthorsKnowThem) {
    observed->noteTopicId(u"id1", u"/b.dita#t");
    EXPECT_TRUE(observed->isTopicId(u"id1"));
    EXPECT_EQ(observed->sourceFileOf(u"id1"), u"/b.dita");
    EXPECT_FALSE(observed->isTopicId(u"id2"));
    EXPECT_EQ(observed->sourceFileOf(u"id2"), u"");
    for (const auto& [target, expected] :
         {std::pair(u"#id1", " /b.dita#t"), std::pair(u"#id1/p", " /b.dita#t/p"),
          std::pair(u"/out/b.qs#id1/p", " /b.dita#t/p"), std::pair(u"#id2/p", " #id2/p"),
          std::pair(u"/c.dita", " /c.dita"), std::pair(u"", "")}) {
        observed.host.observations.clear();
        observed->fault({.code = FaultCode::kFragmentNotFound, .target = target});
        EXPECT_EQ(observed.faults(), std::string("204 ?:0:0") + expected);
    }
}

TEST_F(RunObserverTest, ARingHasOneName) {
    const SourcePlace first{SourcePlaces::existing()->fileNumber(u"/a"), 1, 1};
    const SourcePlace second{first.file, 2, 1};
    observed->fault({.code = FaultCode::kConrefLoop, .target = u"one", .related = {first, second}});
    observed->fault({.code = FaultCode::kConrefLoop, .target = u"two", .related = {second, first}});
    observed->fault({.code = FaultCode::kConrefLoop, .target = u"three", .related = {first}});
    EXPECT_EQ(observed.faults(),
              "205 ?:0:0 one ring /a:1:1 /a:2:1\n"
              "205 ?:0:0 one ring /a:2:1 /a:1:1\n205 ?:0:0 three ring /a:1:1");
}

TEST_F(RunObserverTest, WhatBearsAnIdIsLookedForInItsContainer) {
    const ParsedXml topics(
        "<dita><topic id='t'><p id='p'/><note id='p'/><topic id='n'><ph "
        "id='inner'/></topic></topic>"
        "<topic id='u'><li id='only-u'/></topic></dita>",
        u"file:///b.dita");
    struct {
        const char16_t* id;
        const char16_t* container;
        std::u16string_view expected;
    } const cases[] = {
        {u"p", u"t", u"p"},       {u"inner", u"t", u"ph"},  {u"inner", u"n", u"ph"},
        {u"only-u", u"u", u"li"}, {u"only-u", u".", u"li"}, {u"only-u", u"", u"li"},
        {u"t", u"", u"topic"},    {u"only-u", u"t", u""},   {u"p", u"u", u""},
        {u"none", u"t", u""},     {u"none", u"", u""},      {u"t", u"t", u""},
    };
    for (const auto& [id, container, expected] : cases) {
        EXPECT_EQ(observed->bearerOf(topics.document(), id, container), expected)
            << toUtf8(std::u16string_view(container)) << "/" << toUtf8(std::u16string_view(id));
    }
}

TEST_F(RunObserverTest, InADocumentWithoutItsDtdNothingBearsAnId) {
    const ParsedXml topic("<topic id='t'><p id='p'/></topic>", u"file:///b.dita");
    observed->documentRead(u"/b.dita", u"topic", DocumentGrammar::kInvalid, nullptr);
    EXPECT_EQ(observed->bearerOf(topic.document(), u"t"), u"");
    EXPECT_EQ(observed->bearerOf(topic.document(), u"p", u"."), u"p");
}

TEST_F(RunObserverTest, TooManyFaultsAreCounted) {
    for (int fault = 0; fault < 100003; ++fault) {
        observed->fault({.code = FaultCode::kCannotWrite});
    }
    observed->finish([](const DOMElement&) { return true; });
    EXPECT_EQ(observed.host.observations.size(), 100001U);
    EXPECT_EQ(observed.host.told(ObservationKind::kFaultsDropped), "3 ?:0:0");
}

TEST_F(RunObserverTest, WhatTheHostAnswersIsNotLookedAt) {
    observed.host.outcome = kComNoInterface;
    observed->phase("keys");
    observed->fault({.code = FaultCode::kCannotWrite});
    EXPECT_EQ(observed.faults(), "107 ?:0:0");
}

}  // namespace
}  // namespace marrowpress
