#include "references/key_chains.h"

#include <pthread.h>

#include <functional>

#include "references/copied_references.h"
#include "support/publish_exception.h"
#include "tests/unit/references/key_samples.h"
#include "xml/grammar_parser_cache.h"

namespace marrowpress {
namespace {

/// The definition at the end of the chains.
constexpr std::string_view kZ = "<keydef keys='z' href='/z'><topicmeta>Z</topicmeta></keydef>";
/// What served it becomes: the definition named `keyName`.
std::string servedByZ(std::string_view keyName) {
    return R"(<keydef href="/z" keys=")" + std::string(keyName) +
           R"("><topicmeta>Z</topicmeta></keydef>)";
}

class KeyChainPassTest : public KeySampleTest {
protected:
    std::size_t run(const KeySpace& keySpace) {
        const ParserBundle& dtd =
            GrammarParserCache::instance().parserForDocument(keySpace.document());
        return KeyChainPass(keySpace, dtd).run();
    }

    /// The key space behind the pass.
    KeySpace resolved(std::string_view definitions) {
        KeySpace keySpace = keySpaceOf(definitions);
        host.forget();
        followed = run(keySpace);
        return keySpace;
    }

    std::string content(const KeySpace& keySpace) const {
        return shown(*keySpace.document().getDocumentElement());
    }

    std::size_t followed = 0;
};

TEST_F(KeyChainPassTest, FindsNothingToDoInDirectDefinitions) {
    KeySpace keySpace = resolved(kZ);
    EXPECT_EQ(definition(keySpace, "z"), servedByZ("z"));
    EXPECT_EQ(followed, 0U);
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeyChainPassTest, ServesAWholeChainFromItsEnd) {
    KeySpace keySpace = resolved(
        "<keydef keys='a' keyref='b'/><keydef keys='b' keyref='c'/>"
        "<keydef keys='c' keyref='z'/>" +
        std::string(kZ));
    for (const char* const key : {"a", "b", "c", "z"}) {
        EXPECT_EQ(definition(keySpace, key), servedByZ(key));
    }
    EXPECT_EQ(followed, 1U);
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeyChainPassTest, EachLinkKeepsWhatIsItsOwn) {
    // Content and other attributes of the link stay, and go on to the next one.
    KeySpace keySpace = resolved(
        "<keydef keys='a' keyref='b' type='task'/>"
        "<keydef keys='b' keyref='z' format='pdf' href='/b'><topicmeta>B</topicmeta></keydef>" +
        std::string(kZ));
    EXPECT_EQ(definition(keySpace, "b"),
              R"(<keydef format="pdf" href="/z" keys="b"><topicmeta>B</topicmeta></keydef>)");
    EXPECT_EQ(definition(keySpace, "a"),
              R"(<keydef href="/z" keys="a" type="task"><topicmeta>B</topicmeta></keydef>)");
}

TEST_F(KeyChainPassTest, AFinishedDefinitionServesButIsReportedWithoutAName) {
    // z is finished since a's chain ended in it, and so is b, which points back; what comes to
    // either of them later, or to what did so, gets one line each.
    KeySpace keySpace = resolved(std::string(kZ) +
                                 "<keydef keys='a' keyref='z'/><keydef keys='b' keyref='z'/>"
                                 "<keydef keys='c' keyref='a'/><keydef keys='d' keyref='c'/>"
                                 "<keydef keys='e' keyref='f'/><keydef keys='f' keyref='z'/>");
    for (const char* const key : {"a", "b", "c", "d", "e", "f", "z"}) {
        EXPECT_EQ(definition(keySpace, key), servedByZ(key));
    }
    EXPECT_EQ(followed, 5U);
    EXPECT_EQ(told(), Lines(4, keyNotFound("")));
}

TEST_F(KeyChainPassTest, AnUndefinedKeyEndsTheChainWithItsName) {
    KeySpace keySpace = resolved(
        "<keydef keys='a' keyref='b'/>"
        "<keydef keys='b' keyref='u' href='/b'><topicmeta>B</topicmeta></keydef>"
        "<keydef keys='c' keyref='b'/><keydef keys='d' keyref='v'/>");
    EXPECT_EQ(
        content(keySpace),
        R"(<map><keydef href="/b" keys="a"><topicmeta>B</topicmeta></keydef>)"
        R"(<keydef href="/b" keys="b"><topicmeta>B</topicmeta></keydef>)"
        R"(<keydef href="/b" keys="c"><topicmeta>B</topicmeta></keydef><keydef keys="d"/></map>)");
    EXPECT_EQ(told(), Lines({keyNotFound("u"), keyNotFound(""), keyNotFound("v")}));
}

TEST_F(KeyChainPassTest, AReferenceWithAnElementPartLeadsNowhere) {
    KeySpace keySpace = resolved("<keydef keys='a' keyref='z/e' href='/a'/>" + std::string(kZ));
    EXPECT_EQ(definition(keySpace, "a"), R"(<keydef href="/a" keys="a"/>)");
    EXPECT_EQ(told(), Lines({keyNotFound("z")}));
}

TEST_F(KeyChainPassTest, KeyNamesAreExact) {
    KeySpace keySpace = resolved("<keydef keys='a' keyref='Z'/>" + std::string(kZ));
    EXPECT_EQ(definition(keySpace, "a"), R"(<keydef keys="a"/>)");
    EXPECT_EQ(told(), Lines({keyNotFound("Z")}));
}

struct CycleCase {
    const char* name;
    const char* definitions;
    std::vector<std::string> told;
    const char* resolved;
};

class KeyChainCycleTest : public KeyChainPassTest, public testing::WithParamInterface<CycleCase> {};

TEST_P(KeyChainCycleTest, EndsAndLosesItsReferences) {
    KeySpace keySpace = resolved(GetParam().definitions);
    EXPECT_EQ(content(keySpace), GetParam().resolved);
    EXPECT_EQ(told(), GetParam().told);
}

INSTANTIATE_TEST_SUITE_P(
    , KeyChainCycleTest,
    testing::Values(CycleCase{"OfOne",
                              "<keydef keys='a' keyref='a' href='/a'/>",
                              {keyNotFound("a")},
                              R"(<map><keydef href="/a" keys="a"/></map>)"},
                    CycleCase{"OfOneWithContentOfItsOwn",
                              "<keydef keys='a' keyref='a'><topicmeta>A</topicmeta></keydef>",
                              {keyNotFound("a")},
                              R"(<map><keydef keys="a"><topicmeta>A</topicmeta></keydef></map>)"},
                    CycleCase{
                        "OfTwo",
                        "<keydef keys='a' keyref='b' href='/a'/>"
                        "<keydef keys='b' keyref='a'><topicmeta>B</topicmeta></keydef>",
                        {keyNotFound("b")},
                        R"(<map><keydef href="/a" keys="a"><topicmeta>B</topicmeta></keydef>)"
                        R"(<keydef href="/a" keys="b"><topicmeta>B</topicmeta></keydef></map>)"},
                    CycleCase{"OfThree",
                              "<keydef keys='a' keyref='b'/><keydef keys='b' keyref='c'/>"
                              "<keydef keys='c' keyref='a' href='/c'/>",
                              {keyNotFound("b")},
                              R"(<map><keydef href="/c" keys="a"/><keydef href="/c" keys="b"/>)"
                              R"(<keydef href="/c" keys="c"/></map>)"},
                    CycleCase{"EnteredFromOutside",
                              "<keydef keys='x' keyref='b'/><keydef keys='a' keyref='b' href='/a'/>"
                              "<keydef keys='b' keyref='a'/>",
                              {keyNotFound("a")},
                              R"(<map><keydef href="/a" keys="x"/><keydef href="/a" keys="a"/>)"
                              R"(<keydef href="/a" keys="b"/></map>)"},
                    CycleCase{"EnteredLater",
                              "<keydef keys='a' keyref='b' href='/a'/><keydef keys='b' keyref='a'/>"
                              "<keydef keys='x' keyref='a'/>",
                              {keyNotFound("b"), keyNotFound("")},
                              R"(<map><keydef href="/a" keys="a"/><keydef href="/a" keys="b"/>)"
                              R"(<keydef href="/a" keys="x"/></map>)"}),
    [](const auto& example) { return example.param.name; });

TEST_F(KeyChainPassTest, TheIgnoreMarkerEndsAChain) {
    KeySpace keySpace = resolved(
        "<keydef keys='a' keyref='b'/>"
        "<keydef keys='b' keyref='--qs-mwpp-ignore-keyref' href='/b'/>"
        "<keydef keys='--qs-mwpp-ignore-keyref' href='/m'/>");
    EXPECT_EQ(content(keySpace), R"(<map><keydef href="/b" keys="a"/>)"
                                 R"(<keydef href="/b" keyref="--qs-mwpp-ignore-keyref" keys="b"/>)"
                                 R"(<keydef href="/m" keys="--qs-mwpp-ignore-keyref"/></map>)");
    EXPECT_EQ(told(), Lines());
}

// The marker is all that a finished definition can still refer to.
TEST_F(KeyChainPassTest, AFinishedDefinitionWithTheIgnoreMarkerIsLookedUpAnew) {
    constexpr std::string_view kChains =
        "<keydef keys='a' keyref='b'/>"
        "<keydef keys='b' keyref='--qs-mwpp-ignore-keyref' href='/b'/>"
        "<keydef keys='c' keyref='b'/>";
    EXPECT_EQ(content(resolved(kChains)),
              R"(<map><keydef href="/b" keys="a"/><keydef href="/b" keys="b"/>)"
              R"(<keydef href="/b" keys="c"/></map>)");
    EXPECT_EQ(told(), Lines({keyNotFound("--qs-mwpp-ignore-keyref")}));
}

TEST_F(KeyChainPassTest, AFinishedDefinitionGetsWhatTheIgnoreMarkerMeansAsAKey) {
    EXPECT_EQ(content(resolved("<keydef keys='a' keyref='b'/>"
                               "<keydef keys='b' keyref='--qs-mwpp-ignore-keyref' href='/b'/>"
                               "<keydef keys='c' keyref='b'/>"
                               "<keydef keys='--qs-mwpp-ignore-keyref' href='/m'/>")),
              R"(<map><keydef href="/b" keys="a"/><keydef href="/m" keys="b"/>)"
              R"(<keydef href="/m" keys="c"/><keydef href="/m" keys="--qs-mwpp-ignore-keyref"/>)"
              R"(</map>)");
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeyChainPassTest, OnlyTopicReferencesBeginAChain) {
    KeySpace keySpace = resolved(
        "<ph keys='p' keyref='z'/><topicref keys='t' keyref='y'/>"
        "<mapref keys='m' keyref='y'/><reltable keys='r' keyref='z'/>"
        "<keydef keys='y' href='/y'><topicmeta><ph keyref='z'/></topicmeta></keydef>" +
        std::string(kZ));
    EXPECT_EQ(definition(keySpace, "p"), R"(<ph keyref="z" keys="p"/>)");
    EXPECT_EQ(definition(keySpace, "r"), R"(<reltable keyref="z" keys="r"/>)");
    EXPECT_EQ(definition(keySpace, "t"), R"(<topicref href="/y" keys="t">)"
                                         R"(<topicmeta><ph keyref="z"/></topicmeta></topicref>)");
    EXPECT_EQ(definition(keySpace, "m"), R"(<mapref href="/y" keys="m">)"
                                         R"(<topicmeta><ph keyref="z"/></topicmeta></mapref>)");
}

TEST_F(KeyChainPassTest, AChainGoesOnThroughAnyElement) {
    KeySpace keySpace = resolved(
        "<keydef keys='a' keyref='p'/><ph keys='p' keyref='n'/>"
        "<keydef keys='n' href='/n'><topicmeta><navtitle>N</navtitle></topicmeta></keydef>");
    EXPECT_EQ(definition(keySpace, "p"), R"(<ph keys="p">N</ph>)");
    EXPECT_EQ(definition(keySpace, "a"), R"(<keydef keys="a"/>)");
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeyChainPassTest, ReferencesInsideDefinitionsAreFollowedToo) {
    KeySpace keySpace = resolved(
        "<keydef keys='a'><topicmeta/><topicref keys='n' keyref='z'/></keydef>" + std::string(kZ));
    EXPECT_EQ(definition(keySpace, "a"), R"(<keydef keys="a"><topicmeta/>)"
                                         R"(<topicref href="/z" keys="n"><topicmeta>Z</topicmeta>)"
                                         R"(</topicref></keydef>)");
}

TEST_F(KeyChainPassTest, ReferencesInWhatWasPulledAreFollowedInTheSamePass) {
    KeySpace keySpace = resolved(
        "<keydef keys='a' keyref='b'/><keydef keys='y' href='/y'/>"
        "<keydef keys='b'><topicmeta/><topicref keyref='y'/></keydef>");
    EXPECT_EQ(definition(keySpace, "a"),
              R"(<keydef keys="a"><topicmeta/><topicref href="/y"/></keydef>)");
    EXPECT_EQ(definition(keySpace, "b"),
              R"(<keydef keys="b"><topicmeta/><topicref href="/y"/></keydef>)");
    EXPECT_EQ(told(), Lines({keyNotFound("")}));
}

TEST_F(KeyChainPassTest, AReferenceInsideContentPulledFromElsewhereGetsItsContent) {
    KeySpace keySpace = resolved(
        "<keydef keys='x' keyref='a'/>"
        "<keydef keys='a'><topicmeta/><topicref keyref='y'/></keydef>"
        "<keydef keys='y' href='/y'><topicmeta>Y</topicmeta></keydef>");
    EXPECT_EQ(definition(keySpace, "x"),
              R"(<keydef keys="x"><topicmeta/><topicref href="/y"><topicmeta>Y</topicmeta>)"
              R"(</topicref></keydef>)");
}

TEST_F(KeyChainPassTest, AReferenceInPulledContentIsOneInACopy) {
    constexpr std::size_t kMostFollowed = 1'000'000;
    CopiedReferences& copies = CopiedReferences::instance();
    for (std::size_t count = 1; count < kMostFollowed; ++count) {
        copies.follow();
    }
    EXPECT_NO_THROW(
        resolved("<keydef keys='x' keyref='a'/>"
                 "<keydef keys='a'><topicmeta/><topicref keyref='y'/></keydef>"
                 "<keydef keys='y' href='/y'><topicmeta>Y</topicmeta></keydef>"));
    EXPECT_THROW(copies.follow(), PublishException);
}

TEST_F(KeyChainPassTest, AReferenceInsideItsOwnDefinitionGetsNoContent) {
    KeySpace keySpace = resolved(
        "<keydef keys='a' href='/a'><topicmeta>A</topicmeta>"
        "<topicref><topicref keyref='a'/></topicref></keydef>");
    EXPECT_EQ(definition(keySpace, "a"), R"(<keydef href="/a" keys="a"><topicmeta>A</topicmeta>)"
                                         R"(<topicref><topicref href="/a"/></topicref></keydef>)");
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeyChainPassTest, DefinitionsThatHoldReferencesToEachOtherEnd) {
    KeySpace keySpace = resolved(
        "<keydef keys='a'><topicmeta/><topicref id='1' keyref='b'/></keydef>"
        "<keydef keys='b'><topicmeta/><topicref id='2' keyref='a'/></keydef>");
    EXPECT_EQ(definition(keySpace, "a"),
              R"(<keydef keys="a"><topicmeta/><topicref id="1"><topicmeta/><topicref id="2"/>)"
              R"(</topicref></keydef>)");
    EXPECT_EQ(definition(keySpace, "b"),
              R"(<keydef keys="b"><topicmeta/><topicref id="2"><topicmeta/><topicref id="1">)"
              R"(<topicmeta/><topicref id="2"/></topicref></topicref></keydef>)");
    EXPECT_EQ(told(), Lines({keyNotFound("")}));
}

TEST_F(KeyChainPassTest, AReferenceInsideContentPulledFromItsDefinitionGetsNoContent) {
    KeySpace keySpace = resolved(
        "<keydef keys='x' keyref='a'/>"
        "<keydef keys='a' href='/a'><topicmeta/><topicref keyref='a'/></keydef>");
    EXPECT_EQ(content(keySpace),
              R"(<map><keydef href="/a" keys="x"><topicmeta/><topicref href="/a"/></keydef>)"
              R"(<keydef href="/a" keys="a"><topicmeta/><topicref href="/a"/></keydef></map>)");
    EXPECT_EQ(told(), Lines(2, keyNotFound("")));
}

TEST_F(KeyChainPassTest, CopiesOfPulledContentAreContentOfItsDefinitionToo) {
    // "1" gets the content of a, and before the walk comes to "3" in it, "2" makes q a copy of p,
    // and with it of "1": its "3" still stands in content of a.
    KeySpace keySpace = resolved(
        "<keydef keys='p'><topicmeta/><topicref id='1' keyref='a'/></keydef>"
        "<keydef keys='q' keyref='p'/>"
        "<keydef keys='a'><topicmeta/><topicref id='2' keyref='q'/><topicref id='3' keyref='a'/>"
        "</keydef>");
    EXPECT_EQ(definition(keySpace, "q"),
              R"(<keydef keys="q"><topicmeta/><topicref id="1"><topicmeta/><topicref id="2"/>)"
              R"(<topicref id="3"/></topicref></keydef>)");
}

TEST_F(KeyChainPassTest, StatesAreForgottenBetweenTwoPasses) {
    KeySpace keySpace = resolved("<keydef keys='a' keyref='z'/>" + std::string(kZ));
    EXPECT_EQ(run(keySpace), 0U);
    definitionOf(keySpace, u"a")->setAttribute(u"keyref", u"z");
    host.forget();
    EXPECT_EQ(run(keySpace), 1U);
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeyChainPassTest, WithoutDtdNamesDecideAndNothingHasAnHref) {
    KeySpace keySpace = plainKeySpaceOf(
        "<keydef keys='a' keyref='z'/><mapref keys='b' keyref='y'/>"
        "<topicref keys='c' keyref='z'/><chapter keys='d' keyref='z'/>"
        "<keydef keys='y' href='/y'/>"
        "<keydef keys='z' href='/z'><topicmeta><linktext>L</linktext></topicmeta></keydef>");
    EXPECT_EQ(run(keySpace), 2U);
    EXPECT_EQ(definition(keySpace, "a"), R"(<keydef keys="a">L</keydef>)");
    EXPECT_EQ(definition(keySpace, "b"), R"(<mapref keys="b"/>)");
    EXPECT_EQ(definition(keySpace, "c"), R"(<topicref keyref="z" keys="c"/>)");
    EXPECT_EQ(definition(keySpace, "d"), R"(<chapter keyref="z" keys="d"/>)");
    EXPECT_EQ(told(), Lines());
}

/// Runs `work` on a thread with a small stack, to its end.
void runOnSmallStack(std::function<void()> work) {
    constexpr std::size_t kStackBytes = std::size_t{1} << 20;
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStackBytes), 0);
    pthread_t thread{};
    const auto call = [](void* argument) -> void* {
        (*static_cast<std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, call, &work), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

TEST_F(KeyChainPassTest, ALongChainNeedsNoStack) {
    constexpr int kLinks = 100'000;
    std::string definitions;
    for (int link = 0; link < kLinks; ++link) {
        definitions += "<keydef keys='k" + std::to_string(link) + "' keyref='k" +
                       std::to_string(link + 1) + "'/>";
    }
    definitions += "<keydef keys='k" + std::to_string(kLinks) + "' href='/z'/>";
    KeySpace keySpace = keySpaceOf(definitions);
    runOnSmallStack([&] { followed = run(keySpace); });
    EXPECT_EQ(followed, 1U);
    EXPECT_EQ(definition(keySpace, "k0"), R"(<keydef href="/z" keys="k0"/>)");
    EXPECT_EQ(definition(keySpace, "k99999"), R"(<keydef href="/z" keys="k99999"/>)");
    EXPECT_EQ(told(), Lines());
}

}  // namespace
}  // namespace marrowpress
