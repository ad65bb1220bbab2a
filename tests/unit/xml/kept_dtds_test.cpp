#include "xml/kept_dtds.h"

#include <gtest/gtest.h>

#include <optional>

#include "support/request_singleton.h"
#include "support/work_counts.h"
#include "tests/support/without_short_cuts.h"
#include "tests/unit/xml/sample_documents.h"
#include "xml/document_store.h"
#include "xml/grammar_parser_cache.h"

namespace marrowpress {
namespace {

/// A folder with DTDs of all kinds of soundness, and documents of them.
class KeptDtdsTest : public XmlTest {
protected:
    KeptDtdsTest() {
        folder.write("topic.dtd", kTopicDtd);
        folder.write("cut.dtd", std::string(kTopicDtd) + "<!ATTLIST");
        folder.write("twice.dtd",
                     std::string(kTopicDtd) + "<!ATTLIST title a ID #IMPLIED b ID #IMPLIED>");
        folder.write("parts.dtd",
                     "<!ENTITY % one PUBLIC 'one' 'one.mod'>%one;"
                     "<!ENTITY % two PUBLIC 'two' 'two.mod'>%two;%one;"
                     "<!ENTITY % own SYSTEM 'own.mod'>%own;" +
                         std::string(kTopicDtd));
        folder.write("own.mod", "");
        folder.write("entity.dtd", "<!ENTITY e SYSTEM 'missing.ent'>" + std::string(kTopicDtd));
        host.pathsByPublicId["one"] = folder.write("modules/1.mod", "<!ELEMENT a EMPTY>");
        host.pathsByPublicId["two"] = folder.write("modules/2.mod", "");
    }

    /// Reads a document of that text; gives its tree, or what the parser said first.
    std::string read(ParserBundle& bundle, const std::string& name, const std::string& text) {
        folder.write(name, text);
        try {
            const xercesc::DOMDocument* const document =
                bundle.parseFile(toUtf16(folder.file(name)), ParserBundle::kAllRetries);
            return printed(*document->getDocumentElement()) + failureOf(bundle);
        } catch (const xercesc::XMLException&) {
            return "unread" + failureOf(bundle);
        }
    }

    static std::string failureOf(const ParserBundle& bundle) {
        const std::optional<ParseFailure>& failure = bundle.history().failureWithDtd;
        return failure ? "; " + toUtf8(failure->reason) + " " + std::to_string(failure->line) +
                             ":" + std::to_string(failure->column)
                       : std::string();
    }

    const KeptDtd* soundDtd(const ParserBundle& bundle, const char* name) {
        return bundle.parser().dtds().findSound(folder.file16(name));
    }

    /// Ends what a request has, as its end does.
    static void forgetAll() {
        RequestSingleton<GrammarParserCache>::destroy();
        RequestSingleton<DocumentStore>::destroy();
    }

    static std::size_t scans() { return WorkCounts::total().dtdScans; }
};

/// Documents that one parser reads, one after the other.
struct Series {
    const char* name;
    std::vector<std::string> texts;
    std::size_t scans;         ///< of DTDs, with the short cut
    std::size_t scansWithout;  ///< and without it
};

std::vector<Series> allSeries() {
    const std::string shell = topicDoctype("topic.dtd") + "<topic/>";
    return {
        {"valid", {topicText("topic.dtd"), topicText("topic.dtd")}, 1, 1},
        {"invalid", {invalidTopicText("topic.dtd"), invalidTopicText("topic.dtd")}, 1, 3},
        {"ill-formed", {topicText("topic.dtd"), brokenTopicText("topic.dtd")}, 1, 2},
        {"empty root", {shell, shell, shell}, 1, 4},
        {"missing entity", {topicDoctype("topic.dtd") + "<topic id='t'>&none;</topic>"}, 1, 2},
        // It could be there the next time.
        {"missing file of an entity",
         {topicDoctype("entity.dtd") + "<topic id='t'><title>&e;</title></topic>"},
         2,
         2},
        {"internal subset",
         {"<!DOCTYPE topic SYSTEM 'topic.dtd' [<!ENTITY e ''>]><topic>&e;</topic>"},
         1,
         1},
        {"no doctype", {"<topic>"}, 0, 0},
        {"junk behind the doctype", {topicDoctype("topic.dtd") + "junk<topic/>"}, 1, 2},
        {"missing DTD", {topicText("none.dtd"), invalidTopicText("none.dtd")}, 0, 0},
        {"cut DTD",
         {topicText("cut.dtd"), topicText("cut.dtd"), invalidTopicText("cut.dtd")},
         3,
         3},
        {"invalid DTD",
         {topicText("twice.dtd"), topicText("twice.dtd"), invalidTopicText("twice.dtd"),
          invalidTopicText("twice.dtd")},
         3,
         4},
        {"several",
         {invalidTopicText("parts.dtd"), invalidTopicText("topic.dtd"), topicText("parts.dtd"),
          invalidTopicText("parts.dtd")},
         2,
         5},
    };
}

TEST_F(KeptDtdsTest, WhatWouldFailAgainIsNotTriedAgain) {
    for (const Series& series : allSeries()) {
        std::vector<std::vector<std::string>> outcomes;
        for (const bool takesShortCuts : {true, false}) {
            std::optional<WithoutShortCuts> without;
            if (!takesShortCuts) {
                without.emplace();
            }
            ParserBundle bundle;
            host.forget();
            const std::size_t scansBefore = scans();
            std::vector<std::string>& outcome = outcomes.emplace_back();
            for (const std::string& text : series.texts) {
                outcome.push_back(read(bundle, "a.dita", text));
            }
            EXPECT_EQ(scans() - scansBefore, takesShortCuts ? series.scans : series.scansWithout)
                << series.name;
            outcome.insert(outcome.end(), host.commands().begin(), host.commands().end());
        }
        EXPECT_EQ(outcomes[0], outcomes[1]) << series.name;
    }
}

TEST_F(KeptDtdsTest, ADtdIsSoundWhenADocumentGotBehindIt) {
    for (const auto& [text, name, isSound] :
         {std::tuple(topicText("topic.dtd"), "topic.dtd", true),
          {invalidTopicText("topic.dtd"), "topic.dtd", true},
          {topicDoctype("topic.dtd") + "<topic/>", "topic.dtd", true},
          {topicDoctype("topic.dtd") + "junk<topic/>", "topic.dtd", false},
          {topicText("cut.dtd"), "cut.dtd", false},
          {topicText("twice.dtd"), "twice.dtd", false},
          {topicText("none.dtd"), "none.dtd", false}}) {
        ParserBundle bundle;
        read(bundle, "a.dita", text);
        EXPECT_EQ(soundDtd(bundle, name) != nullptr, isSound) << text;
    }
}

TEST_F(KeptDtdsTest, ABrokenDtdIsNotSoundForTheNextDocumentEither) {
    for (const char* const name : {"cut.dtd", "twice.dtd"}) {
        ParserBundle bundle;
        read(bundle, "a.dita", topicText(name));
        read(bundle, "b.dita", topicText(name));
        read(bundle, "c.dita", invalidTopicText(name));
        EXPECT_FALSE(soundDtd(bundle, name)) << name;
    }
}

TEST_F(KeptDtdsTest, ADtdIsKnownByThePathThatItsFileWasOpenedUnder) {
    ParserBundle bundle;
    read(bundle, "a.dita", topicText("topic.dtd"));
    EXPECT_TRUE(soundDtd(bundle, "topic.dtd"));
    EXPECT_FALSE(soundDtd(bundle, "sub/../topic.dtd"));
}

TEST_F(KeptDtdsTest, PublicIdentifiersAreThoseThatTheDtdWasReadBy) {
    ParserBundle bundle;
    host.pathsByPublicId["entity"] = folder.write("e.ent", "x");
    read(bundle, "a.dita", topicText("parts.dtd"));
    read(bundle, "b.dita", topicText("none.dtd"));
    ASSERT_TRUE(soundDtd(bundle, "parts.dtd"));
    EXPECT_EQ(soundDtd(bundle, "parts.dtd")->publicIds, (Texts{"one", "two", "one"}));
}

TEST_F(KeptDtdsTest, WhatADtdDeclaresIsAskedOfTheOneThatDocumentsWereReadWith) {
    for (const char* const name : {"parts.dtd", "cut.dtd", "twice.dtd"}) {
        std::vector<Texts> commands;
        for (const bool takesShortCuts : {true, false}) {
            std::optional<WithoutShortCuts> without;
            if (!takesShortCuts) {
                without.emplace();
            }
            forgetAll();
            host.forget();
            folder.write("a.dita", topicText(folder.file(name)));
            const xercesc::DOMDocument& document =
                DocumentStore::instance().mustLoad(folder.file16("a.dita"));
            const std::size_t scansBefore = scans();
            try {
                const ParserBundle& bundle =
                    GrammarParserCache::instance().parserForDocument(document);
                EXPECT_TRUE(bundle.parser().declaresAttribute(u"p", u"id")) << name;
                EXPECT_FALSE(bundle.parser().declaresAttribute(u"p", u"href")) << name;
                EXPECT_FALSE(bundle.parser().declaresAttribute(u"none", u"id")) << name;
                EXPECT_STRNE(name, "cut.dtd");
            } catch (const xercesc::XMLException&) {
                EXPECT_STREQ(name, "cut.dtd");
            }
            const bool isShared = takesShortCuts && std::string_view(name) == "parts.dtd";
            EXPECT_EQ(scans() - scansBefore, isShared ? 0U : 1U) << name;
            forgetAll();
            commands.push_back(host.commands());
        }
        EXPECT_EQ(commands[0], commands[1]) << name;
    }
}

}  // namespace
}  // namespace marrowpress
