#include "xml/grammar_parser_cache.h"

#include <gtest/gtest.h>

#include "tests/support/file_conditions.h"
#include "tests/unit/xml/sample_documents.h"

namespace marrowpress {
namespace {

/// A folder with a DTD "dtd/topic.dtd" that the catalog knows.
class GrammarParserCacheTest : public XmlTest {
protected:
    GrammarParserCacheTest() {
        folder.write("dtd/topic.dtd", kTopicDtd);
        host.pathsByPublicId[kTopicId] = folder.file("dtd/topic.dtd");
    }

    /// A document with the URI of "größe a.dita".
    ParsedXml documentOf(const std::string& text) const {
        return ParsedXml(text, u"file://" + folder.file16("größe a.dita"));
    }
    ParsedXml topicOf(const std::string& systemId) const {
        return ParsedXml(topicDoctype(systemId) + "<topic/>",
                         u"file://" + folder.file16("größe a.dita"));
    }

    std::string pathOf(const ParsedXml& document) {
        return toUtf8(cache->resolveDtdPath(document.document()));
    }

    const std::string start = startOf(folder.file("größe a.dita"));
    std::unique_ptr<GrammarParserCache> cache = std::make_unique<GrammarParserCache>();
};

/// A doctype whose system identifier the test's own parser doesn't load.
ParsedXml unloadedDocument(const std::string& publicId, const std::string& systemId,
                           const std::u16string& uri) {
    ParsedXml made("<topic/>", uri);
    auto* const implementation = made.document().getImplementation();
    xercesc::DOMDocumentType* const doctype = implementation->createDocumentType(
        u"topic", publicId.empty() ? nullptr : toUtf16(publicId).c_str(),
        toUtf16(systemId).c_str());
    made.document().insertBefore(doctype, made.root());
    return made;
}

TEST_F(GrammarParserCacheTest, FindsADtdAtItsAbsolutePath) {
    EXPECT_EQ(pathOf(topicOf(folder.file("dtd/topic.dtd"))), folder.file("dtd/topic.dtd"));
    EXPECT_EQ(host.commands(), (Texts{start, kEnd}));
}

TEST_F(GrammarParserCacheTest, AsksForADtdThatIsNotThere) {
    const ParsedXml document =
        unloadedDocument(kTopicId, "topic.dtd", u"file://" + folder.file16("größe a.dita"));
    EXPECT_EQ(pathOf(document), folder.file("dtd/topic.dtd"));
    EXPECT_EQ(host.commands(), (Texts{start, questionFor(kTopicId), kEnd}));
}

TEST_F(GrammarParserCacheTest, AsksForEachPublicIdentifierOnce) {
    const ParsedXml document =
        unloadedDocument(kTopicId, "topic.dtd", u"file://" + folder.file16("größe a.dita"));
    pathOf(document);
    host.forget();
    EXPECT_EQ(pathOf(document), folder.file("dtd/topic.dtd"));
    EXPECT_EQ(host.commands(), (Texts{start, kEnd}));
}

TEST_F(GrammarParserCacheTest, DoesNotLookBesideTheDocument) {
    // The document isn't named to the resolver as a base; only the client hears of it.
    folder.write("topic.dtd", kTopicDtd);
    const ParsedXml document =
        unloadedDocument(kTopicId, "topic.dtd", u"file://" + folder.file16("größe a.dita"));
    EXPECT_EQ(pathOf(document), folder.file("dtd/topic.dtd"));
    EXPECT_EQ(host.commands(), (Texts{start, questionFor(kTopicId), kEnd}));
}

TEST_F(GrammarParserCacheTest, FindsNoPathForADtdThatNobodyKnows) {
    const std::u16string uri = u"file://" + folder.file16("größe a.dita");
    EXPECT_EQ(pathOf(unloadedDocument("unknown", "topic.dtd", uri)), "");
    EXPECT_EQ(pathOf(unloadedDocument("", "topic.dtd", uri)), "");
    EXPECT_EQ(host.commands(), (Texts{start, questionFor("unknown"), kEnd, start, kEnd}));
}

TEST_F(GrammarParserCacheTest, FindsNoPathForADtdOnTheNetwork) {
    const SilentServer server;
    EXPECT_EQ(pathOf(unloadedDocument("", "http://" + server.authority() + "/topic.dtd",
                                      u"file://" + folder.file16("größe a.dita"))),
              "");
    EXPECT_FALSE(server.wasAsked());
}

TEST_F(GrammarParserCacheTest, AsksNothingForADocumentWithoutDoctype) {
    EXPECT_EQ(pathOf(documentOf("<topic/>")), "");
    EXPECT_EQ(host.commands(), Texts{});
}

TEST_F(GrammarParserCacheTest, FindsNoPathForADoctypeWithoutDtd) {
    EXPECT_EQ(pathOf(documentOf("<!DOCTYPE topic [<!ELEMENT topic ANY>]><topic/>")), "");
    EXPECT_EQ(host.commands(), (Texts{start, kEnd}));
}

TEST_F(GrammarParserCacheTest, TakesAUriThatIsAPathAsItIs) {
    pathOf(unloadedDocument(kTopicId, "topic.dtd", u"/d/a%20b.dita"));
    EXPECT_EQ(host.commands().front(), startOf("/d/a%20b.dita"));
}

TEST_F(GrammarParserCacheTest, HasOneBundleForEachDtd) {
    folder.write("other.dtd", "<!ELEMENT topic ANY><!ATTLIST topic href CDATA #IMPLIED>");
    ParserBundle& topic =
        cache->parserForDocument(topicOf(folder.file("dtd/topic.dtd")).document());
    EXPECT_EQ(host.commands(), (Texts{start, kEnd, kTerminate}));
    host.forget();
    EXPECT_EQ(&cache->parserForDocument(topicOf(folder.file("dtd/topic.dtd")).document()), &topic);
    EXPECT_EQ(host.commands(), (Texts{start, kEnd}));
    host.forget();
    ParserBundle& other = cache->parserForDocument(topicOf(folder.file("other.dtd")).document());
    EXPECT_NE(&other, &topic);
    EXPECT_EQ(host.commands(), (Texts{start, kEnd, kTerminate}));
    EXPECT_TRUE(topic.parser().declaresAttribute(u"topic", u"id"));
    EXPECT_FALSE(topic.parser().declaresAttribute(u"topic", u"href"));
    EXPECT_TRUE(other.parser().declaresAttribute(u"topic", u"href"));
    EXPECT_FALSE(other.parser().declaresAttribute(u"topic", u"id"));
}

TEST_F(GrammarParserCacheTest, SharesTheBundleOfAFileUnderTwoIdentifiers) {
    const std::u16string uri = u"file://" + folder.file16("größe a.dita");
    ParserBundle& byPath = cache->parserForDocument(
        unloadedDocument("", folder.file("dtd/topic.dtd"), uri).document());
    ParserBundle& byPublicId =
        cache->parserForDocument(unloadedDocument(kTopicId, "topic.dtd", uri).document());
    EXPECT_EQ(&byPath, &byPublicId);
}

TEST_F(GrammarParserCacheTest, EndsItsBundlesWithItself) {
    cache->parserForDocument(topicOf(folder.file("dtd/topic.dtd")).document());
    cache->parserForDocument(documentOf("<topic/>").document());
    host.forget();
    cache.reset();
    EXPECT_EQ(host.commands(), (Texts{kTerminate, kTerminate}));
}

TEST_F(GrammarParserCacheTest, SharesABundleWithoutGrammarAmongDocumentsWithoutDtd) {
    const std::u16string uri = u"file://" + folder.file16("größe a.dita");
    ParserBundle& none = cache->parserForDocument(documentOf("<topic/>").document());
    EXPECT_EQ(host.commands(), Texts{kTerminate});
    EXPECT_EQ(&cache->parserForDocument(unloadedDocument("", "missing.dtd", uri).document()),
              &none);
    EXPECT_FALSE(none.parser().declaresAttribute(u"topic", u"id"));
}

TEST_F(GrammarParserCacheTest, KnowsNothingOfInternalSubsets) {
    folder.write("dtd/own.dtd", "<!ELEMENT topic ANY><!ATTLIST topic id ID #IMPLIED>");
    const ParsedXml document = documentOf("<!DOCTYPE topic SYSTEM \"" + folder.file("dtd/own.dtd") +
                                          "\" [<!ATTLIST topic href CDATA #IMPLIED>]><topic/>");
    const QSXercesDOMParser& parser = cache->parserForDocument(document.document()).parser();
    EXPECT_TRUE(parser.declaresAttribute(u"topic", u"id"));
    EXPECT_FALSE(parser.declaresAttribute(u"topic", u"href"));

    const ParsedXml alone =
        documentOf("<!DOCTYPE topic [<!ATTLIST topic href CDATA #IMPLIED>]><topic/>");
    EXPECT_FALSE(
        cache->parserForDocument(alone.document()).parser().declaresAttribute(u"topic", u"href"));
}

TEST_F(GrammarParserCacheTest, LoadsTheModulesOfADtd) {
    folder.write("dtd/shell.dtd",
                 "<!ENTITY % there SYSTEM 'there.mod'>%there;"
                 "<!ENTITY % other PUBLIC 'OTHER' 'other.mod'>%other;");
    folder.write("dtd/there.mod", "<!ELEMENT p ANY><!ATTLIST p id ID #IMPLIED>");
    folder.write("elsewhere.mod", "<!ELEMENT q ANY><!ATTLIST q id ID #IMPLIED>");
    host.pathsByPublicId["OTHER"] = folder.file("elsewhere.mod");
    const ParsedXml document = unloadedDocument("", folder.file("dtd/shell.dtd"),
                                                u"file://" + folder.file16("größe a.dita"));
    const QSXercesDOMParser& parser = cache->parserForDocument(document.document()).parser();
    EXPECT_TRUE(parser.declaresAttribute(u"p", u"id"));
    EXPECT_TRUE(parser.declaresAttribute(u"q", u"id"));
    EXPECT_EQ(host.commands(), (Texts{start, kEnd, questionFor("OTHER"), kTerminate}));
}

TEST_F(GrammarParserCacheTest, LetsAFailureToLoadTheDtdPass) {
    folder.write("dtd/broken.dtd", "<!ELEMENT");
    const std::u16string uri = u"file://" + folder.file16("größe a.dita");
    host.pathsByPublicId["missing"] = folder.file("dtd/missing.dtd");
    const ParsedXml missing = unloadedDocument("missing", "m.dtd", uri);
    const ParsedXml broken = unloadedDocument("", folder.file("dtd/broken.dtd"), uri);
    for (const ParsedXml* document : {&missing, &broken, &missing, &broken}) {
        EXPECT_THROW(cache->parserForDocument(document->document()), xercesc::XMLException);
    }
    EXPECT_EQ(host.commands(),
              (Texts{start, questionFor("missing"), kEnd, kTerminate, start, kEnd, kTerminate,
                     start, kEnd, kTerminate, start, kEnd, kTerminate}));
}

TEST_F(GrammarParserCacheTest, NeverOpensWhatIsNoRegularFile) {
    const Watchdog watchdog(60);
    makePipe(folder.file("pipe"));
    const std::u16string uri = u"file://" + folder.file16("größe a.dita");
    for (const std::string& systemId :
         {folder.file("pipe"), folder.file("dtd"), std::string("/dev/zero")}) {
        const ParsedXml document = unloadedDocument("", systemId, uri);
        EXPECT_THROW(cache->parserForDocument(document.document()), xercesc::XMLException)
            << systemId;
    }
}

}  // namespace
}  // namespace marrowpress
