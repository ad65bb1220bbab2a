#include "findings/wording.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "tests/support/chosen_language.h"

namespace marrowpress {
namespace {

struct Sentence {
    const char* name;
    std::function<std::string()> make;
    std::vector<const char*> arguments;
};

const Sentence kSentences[] = {
    {"hintWord", [] { return hintWord(); }, {}},
    {"viaWord", [] { return viaWord(); }, {}},
    {"alsoWord", [] { return alsoWord(); }, {}},
    {"errorCountText", [] { return errorCountText(42); }, {"42"}},
    {"warningCountText", [] { return warningCountText(42); }, {"42"}},
    {"noteCountText", [] { return noteCountText(42); }, {"42"}},
    {"topicCountText", [] { return topicCountText(42); }, {"42"}},
    {"keyDefinitionCountText", [] { return keyDefinitionCountText(42); }, {"42"}},
    {"keyUseCountText", [] { return keyUseCountText(42); }, {"42"}},
    {"keyOrderText", [] { return keyOrderText(); }, {}},
    {"onlyDefinitionText", [] { return onlyDefinitionText(); }, {}},
    {"firstDefinitionText", [] { return firstDefinitionText(); }, {}},
    {"laterInMapText", [] { return laterInMapText("argument-1"); }, {"argument-1"}},
    {"laterMapText", [] { return laterMapText("argument-1"); }, {"argument-1"}},
    {"excludedDefinitionText", [] { return excludedDefinitionText(); }, {}},
    {"lostDefinitionText", [] { return lostDefinitionText(); }, {}},
    {"keyTargetText", [] { return keyTargetText("argument-1"); }, {"argument-1"}},
    {"keyContentText", [] { return keyContentText("argument-1"); }, {"argument-1"}},
    {"keyLeadsOnText", [] { return keyLeadsOnText("argument-1"); }, {"argument-1"}},
    {"didYouMeanHint", [] { return didYouMeanHint("argument-1"); }, {"argument-1"}},
    {"keyNotFoundText", [] { return keyNotFoundText("argument-1"); }, {"argument-1"}},
    {"keyNotNamedText", [] { return keyNotNamedText(); }, {}},
    {"keyTakenAwayHint",
     [] { return keyTakenAwayHint("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"keyDefinitionLostHint", [] { return keyDefinitionLostHint("argument-1"); }, {"argument-1"}},
    {"keyLeadsToItselfHint", [] { return keyLeadsToItselfHint("argument-1"); }, {"argument-1"}},
    {"noKeyDefinedHint", [] { return noKeyDefinedHint(); }, {}},
    {"defineKeyHint", [] { return defineKeyHint(); }, {}},
    {"fragmentHint", [] { return fragmentHint(); }, {}},
    {"elementIdHint",
     [] { return elementIdHint("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"topicNotFoundText",
     [] { return topicNotFoundText("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"notWellFormedHint", [] { return notWellFormedHint(); }, {}},
    {"missingCatalogText", [] { return missingCatalogText("argument-1"); }, {"argument-1"}},
    {"elementInTopicNotFoundText",
     [] { return elementInTopicNotFoundText("argument-1", "argument-2", "argument-3"); },
     {"argument-1", "argument-2", "argument-3"}},
    {"elementNotFoundText",
     [] { return elementNotFoundText("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"wrongElementText",
     [] { return wrongElementText("argument-1", "argument-2", "argument-3"); },
     {"argument-1", "argument-2", "argument-3"}},
    {"wrongElementHint",
     [] { return wrongElementHint("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"idsNeedDtdHint", [] { return idsNeedDtdHint("argument-1"); }, {"argument-1"}},
    {"cannotReadText",
     [] { return cannotReadText("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"keyWithoutFileText", [] { return keyWithoutFileText("argument-1"); }, {"argument-1"}},
    {"runFailsHint", [] { return runFailsHint(); }, {}},
    {"withoutFilterHint", [] { return withoutFilterHint(); }, {}},
    {"cannotWriteText",
     [] { return cannotWriteText("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"cannotWriteStandardOutputText", [] { return cannotWriteStandardOutputText(); }, {}},
    {"notTheResultHint", [] { return notTheResultHint(); }, {}},
    {"fileNotFoundText", [] { return fileNotFoundText("argument-1"); }, {"argument-1"}},
    {"otherCaseHint", [] { return otherCaseHint("argument-1"); }, {"argument-1"}},
    {"webAddressHint", [] { return webAddressHint("argument-1"); }, {"argument-1"}},
    {"missingFileHint", [] { return missingFileHint(); }, {}},
    {"conrefEndNotBesideText",
     [] { return conrefEndNotBesideText("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"conrefEndHint", [] { return conrefEndHint(); }, {}},
    {"noDoctypeText", [] { return noDoctypeText("argument-1"); }, {"argument-1"}},
    {"dtdNotFoundText",
     [] { return dtdNotFoundText("argument-1", "argument-2", "argument-3"); },
     {"argument-1", "argument-2", "argument-3"}},
    {"doctypeHint",
     [] { return doctypeHint("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"unusableCatalogText",
     [] { return unusableCatalogText("argument-1", "argument-2", "argument-3"); },
     {"argument-1", "argument-2", "argument-3"}},
    {"catalogsHint", [] { return catalogsHint("argument-1"); }, {"argument-1"}},
    {"breaksDtdText",
     [] { return breaksDtdText("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"mapWithoutDtdHint", [] { return mapWithoutDtdHint(); }, {}},
    {"topicWithoutDtdHint", [] { return topicWithoutDtdHint(); }, {}},
    {"conrefLoopText", [] { return conrefLoopText("argument-1", 42); }, {"argument-1", "42"}},
    {"keptConrefHint", [] { return keptConrefHint(); }, {}},
    {"lostContentHint", [] { return lostContentHint(); }, {}},
    {"cutLoopHint", [] { return cutLoopHint(); }, {}},
    {"conrefOfConrefText", [] { return conrefOfConrefText("argument-1"); }, {"argument-1"}},
    {"referDirectlyHint", [] { return referDirectlyHint("argument-1"); }, {"argument-1"}},
    {"noTopicText", [] { return noTopicText(); }, {}},
    {"noTopicWithoutDtdHint", [] { return noTopicWithoutDtdHint(); }, {}},
    {"allExcludedHint", [] { return allExcludedHint(); }, {}},
    {"noReferenceHint", [] { return noReferenceHint(); }, {}},
    {"unknownProfileElementText",
     [] { return unknownProfileElementText("argument-1"); },
     {"argument-1"}},
    {"unknownProfileAttributeText",
     [] { return unknownProfileAttributeText("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"unknownProfileActionText",
     [] { return unknownProfileActionText("argument-1"); },
     {"argument-1"}},
    {"profileElementsHint", [] { return profileElementsHint(); }, {}},
    {"profileAttributesHint", [] { return profileAttributesHint(); }, {}},
    {"profileActionsHint", [] { return profileActionsHint(); }, {}},
    {"profileRootHint", [] { return profileRootHint(); }, {}},
    {"unmatchedRuleHint", [] { return unmatchedRuleHint(); }, {}},
    {"ruleNeedsDtdHint",
     [] { return ruleNeedsDtdHint("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"profileRootText",
     [] { return profileRootText("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"unmatchedRuleText",
     [] { return unmatchedRuleText("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"unmatchedAttributeText", [] { return unmatchedAttributeText("argument-1"); }, {"argument-1"}},
    {"topicNotInOutputText", [] { return topicNotInOutputText("argument-1"); }, {"argument-1"}},
    {"notInMapHint", [] { return notInMapHint(); }, {}},
    {"mapLostReferencesHint",
     [] { return mapLostReferencesHint("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"topicExcludedHint", [] { return topicExcludedHint("argument-1"); }, {"argument-1"}},
    {"resourceOnlyHint", [] { return resourceOnlyHint(); }, {}},
    {"droppedChildrenText",
     [] { return droppedChildrenText("argument-1", 42); },
     {"argument-1", "42"}},
    {"droppedChildrenHint", [] { return droppedChildrenHint(); }, {}},
    {"keyScopeText", [] { return keyScopeText("argument-1"); }, {"argument-1"}},
    {"keyScopeHint", [] { return keyScopeHint("argument-1"); }, {"argument-1"}},
    {"sameComponentText",
     [] { return sameComponentText("argument-1", "argument-2", "argument-3"); },
     {"argument-1", "argument-2", "argument-3"}},
    {"sameComponentHint", [] { return sameComponentHint(); }, {}},
    {"foreignFileText", [] { return foreignFileText("argument-1"); }, {"argument-1"}},
    {"foreignFileKeptHint", [] { return foreignFileKeptHint("argument-1"); }, {"argument-1"}},
    {"navtitleText", [] { return navtitleText("argument-1"); }, {"argument-1"}},
    {"navtitleHint", [] { return navtitleHint(); }, {}},
    {"pathIsCutText",
     [] { return pathIsCutText("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"pathIsCutHint", [] { return pathIsCutHint(); }, {}},
    {"twoSpellingsText",
     [] { return twoSpellingsText("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"twoSpellingsHint", [] { return twoSpellingsHint("argument-1"); }, {"argument-1"}},
    {"keyLinkDroppedText", [] { return keyLinkDroppedText("argument-1"); }, {"argument-1"}},
    {"keyLinkDroppedHint", [] { return keyLinkDroppedHint(); }, {}},
    {"keyDefinitionLostText",
     [] { return keyDefinitionLostText("argument-1", "argument-2"); },
     {"argument-1", "argument-2"}},
    {"keyDefinitionTypeHint", [] { return keyDefinitionTypeHint(); }, {}},
    {"noEffectText", [] { return noEffectText("argument-1", 42); }, {"argument-1", "42"}},
    {"severityWord", [] { return severityWord(Severity::kNote); }, {}},
};

TEST(WordingTest, EachSentenceHasItsArgumentsInBothLanguages) {
    for (const Sentence& sentence : kSentences) {
        for (const Language language : {Language::kGerman, Language::kEnglish}) {
            const ChosenLanguage chosen(language);
            const std::string text = sentence.make();
            for (const char* const argument : sentence.arguments) {
                EXPECT_NE(text.find(argument), std::string::npos) << sentence.name << ": " << text;
            }
            EXPECT_EQ(text.find_first_of("{}"), std::string::npos) << text;
        }
    }
}

TEST(WordingTest, EachSentenceIsTranslated) {
    for (const Sentence& sentence : kSentences) {
        const std::string german = sentence.make();
        const ChosenLanguage english(Language::kEnglish);
        EXPECT_NE(sentence.make(), german) << sentence.name;
    }
}

TEST(WordingTest, NoSentenceEndsWithAFullStop) {
    for (const Sentence& sentence : kSentences) {
        for (const Language language : {Language::kGerman, Language::kEnglish}) {
            const ChosenLanguage chosen(language);
            const std::string text = sentence.make();
            EXPECT_FALSE(text.empty() || text.ends_with('.')) << sentence.name << ": " << text;
        }
    }
}

TEST(WordingTest, AnArgumentIsNoPattern) {
    EXPECT_EQ(wrongElementText("{1}", "{2}", "{0}%s"),
              "`{1}` ist ein `{2}`, ein `{0}%s` verweist darauf");
}

TEST(SeverityWordTest, IsThatOfTheLanguage) {
    EXPECT_EQ(severityWord(Severity::kError), "Fehler");
    EXPECT_EQ(severityWord(Severity::kWarning), "Warnung");
    EXPECT_EQ(severityWord(Severity::kNote), "Hinweis");
    const ChosenLanguage english(Language::kEnglish);
    EXPECT_EQ(severityWord(Severity::kError), "error");
    EXPECT_EQ(severityWord(Severity::kWarning), "warning");
    EXPECT_EQ(severityWord(Severity::kNote), "note");
}

TEST(WordingTest, ACountDecidesBetweenOneAndMany) {
    EXPECT_EQ(fileCountText(1), "1 Datei");
    EXPECT_EQ(fileCountText(2), "2 Dateien");
    EXPECT_EQ(conrefLoopText("#t/a", 1), "`#t/a` verweist auf sich selbst");
    const ChosenLanguage english(Language::kEnglish);
    EXPECT_EQ(errorCountText(1), "1 error");
    EXPECT_EQ(errorCountText(2), "2 errors");
    EXPECT_EQ(topicCountText(0), "0 topics");
    EXPECT_EQ(conrefLoopText("#t/a", 1), "`#t/a` refers to itself");
    EXPECT_EQ(conrefLoopText("#t/a", 3), "`#t/a` leads back to itself by 3 references");
    EXPECT_EQ(droppedChildrenText("b.ditamap", 1),
              "1 reference below the reference to the map `b.ditamap` is dropped");
}

TEST(CannotReadTextTest, DoesWithoutAReason) {
    const ChosenLanguage english(Language::kEnglish);
    EXPECT_EQ(cannotReadText("b.dita", "Permission denied"),
              "`b.dita` cannot be read: Permission denied");
    EXPECT_EQ(cannotReadText("b.dita", ""), "`b.dita` cannot be read");
    EXPECT_EQ(cannotWriteText("b.dita", ""), "`b.dita` cannot be written");
}

TEST(DtdNotFoundTextTest, NamesTheIdentifiersThatAreThere) {
    const ChosenLanguage english(Language::kEnglish);
    const std::string start = "`m.ditamap` is read without its DTD: ";
    EXPECT_EQ(dtdNotFoundText("m.ditamap", "-//X//EN", "x.dtd"),
              start + "no catalog knows \"-//X//EN\", and there is no \"x.dtd\"");
    EXPECT_EQ(dtdNotFoundText("m.ditamap", "-//X//EN", ""),
              start + "no catalog knows \"-//X//EN\"");
    EXPECT_EQ(dtdNotFoundText("m.ditamap", "", "x.dtd"), start + "there is no \"x.dtd\"");
}

TEST(CatalogsHintTest, NamesTheCatalogsAndWhatHelps) {
    const ChosenLanguage english(Language::kEnglish);
    const std::string help =
        "; Debian's package dita-ot brings DITA's DTDs, other catalogs are named by --catalog or "
        "XML_CATALOG_FILES";
    EXPECT_EQ(catalogsHint("a.xml, b.xml"), "catalogs asked: a.xml, b.xml" + help);
    EXPECT_EQ(catalogsHint(""), "there was no catalog to ask" + help);
}

TEST(NoEffectTextTest, SaysWhatIsKnownOfAKind) {
    const ChosenLanguage english(Language::kEnglish);
    EXPECT_EQ(noEffectText("reltable", 1), "`reltable` has no effect here: 1 place");
    EXPECT_EQ(noEffectText("chunk", 2), "`chunk` has no effect here: 2 places");
    EXPECT_EQ(noEffectText("link-text", 1), "1 link stays without text");
    EXPECT_EQ(noEffectText("key-scope-format", 2),
              "2 web links by key have neither `scope` nor `format`");
    EXPECT_EQ(noEffectText("something", 2), "`something` has no effect here: 2 places");
}

TEST(NoEffectHintTest, SaysWhatToDoInstead) {
    for (const char* const kind :
         {"reltable", "conaction", "ditavalref", "copy-to", "chunk", "coderef", "subjectScheme",
          "link-text", "key-scope-format", "flag", "passthrough", "revprop", "style-conflict",
          "startflag", "endflag"}) {
        const std::string german = noEffectHint(kind);
        EXPECT_FALSE(german.empty()) << kind;
        const ChosenLanguage english(Language::kEnglish);
        EXPECT_NE(noEffectHint(kind), german) << kind;
    }
    EXPECT_EQ(noEffectHint("something"), "");
}

}  // namespace
}  // namespace marrowpress
