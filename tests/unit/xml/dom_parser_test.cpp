#include "xml/dom_parser.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include "tests/support/file_conditions.h"
#include "tests/support/scripted_interfaces.h"
#include "tests/support/texts.h"
#include "tests/unit/xml/sample_documents.h"
#include "xml/request_memory.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

using xercesc::XercesDOMParser;

constexpr int kNothingThrown = -1;

/// A folder with a DTD "topic.dtd" and documents of it.
class ParserBundleTest : public XmlTest {
protected:
    ParserBundleTest() {
        folder.write("topic.dtd", kTopicDtd);
        host.forget();
    }

    /// Writes a document and parses it.
    xercesc::DOMDocument& parse(const char* name, const std::string& text) {
        folder.write(name, text);
        xercesc::DOMDocument* const document =
            bundle().parseFile(folder.file16(name), ParserBundle::kAllRetries);
        EXPECT_TRUE(document) << name;
        return *document;
    }

    /// The code of the exception that parsing the file ends with.
    int failureOf(const char* name, unsigned retryMask = ParserBundle::kAllRetries) {
        try {
            bundle().parseFile(folder.file16(name), retryMask);
            return kNothingThrown;
        } catch (const xercesc::XMLException& failure) {
            return failure.getCode();
        }
    }

    ParserBundle& bundle() {
        if (!bundle_) {
            bundle_ = std::make_unique<ParserBundle>();
        }
        return *bundle_;
    }
    QSXercesDOMParser& parser() { return bundle().parser(); }

    void expectUsualSettings() {
        EXPECT_EQ(parser().getValidationScheme(), XercesDOMParser::Val_Auto);
        EXPECT_TRUE(parser().getLoadExternalDTD());
        EXPECT_TRUE(parser().isCachingGrammarFromParse());
        EXPECT_TRUE(parser().isUsingCachedGrammarInParse());
    }

private:
    std::unique_ptr<ParserBundle> bundle_;
};

TEST_F(ParserBundleTest, SetsItsParserUp) {
    expectUsualSettings();
    EXPECT_TRUE(dynamic_cast<xercesc::HandlerBase*>(parser().getErrorHandler()));
    EXPECT_TRUE(dynamic_cast<QSXMLEntityResolver*>(parser().getXMLEntityResolver()));
    EXPECT_FALSE(parser().getDoNamespaces());
    EXPECT_TRUE(parser().getDoSchema());
    EXPECT_TRUE(parser().getValidationSchemaFullChecking());
    EXPECT_FALSE(parser().getCreateEntityReferenceNodes());
    EXPECT_TRUE(parser().getIgnoreCachedDTD());
    EXPECT_EQ(parser().getPSVIHandler(), nullptr);
    ASSERT_TRUE(parser().getSecurityManager());
    EXPECT_EQ(parser().getSecurityManager()->getEntityExpansionLimit(), 250000U);
}

TEST_F(ParserBundleTest, HasHandlersOfItsOwn) {
    ParserBundle other;
    EXPECT_NE(parser().getErrorHandler(), other.parser().getErrorHandler());
    EXPECT_NE(parser().getXMLEntityResolver(), other.parser().getXMLEntityResolver());
}

TEST_F(ParserBundleTest, SaysGoodbyeOnceWhenItEnds) {
    {
        const ParserBundle ended;
        EXPECT_EQ(host.commands(), Texts{});
    }
    EXPECT_EQ(host.commands(), Texts{kTerminate});
}

TEST_F(ParserBundleTest, SaysGoodbyeForAMovedFromBundleToo) {
    {
        ParserBundle first;
        QSXercesDOMParser* const parser = &first.parser();
        const auto second = std::make_unique<ParserBundle>(std::move(first));
        EXPECT_EQ(&second->parser(), parser);
        EXPECT_EQ(host.commands(), Texts{});
    }
    EXPECT_EQ(host.commands(), (Texts{kTerminate, kTerminate}));
}

TEST_F(ParserBundleTest, ParsesAnEmptyPathToNothing) {
    EXPECT_EQ(bundle().parseFile(u"", ParserBundle::kAllRetries), nullptr);
    EXPECT_EQ(host.commands(), Texts{});
}

TEST_F(ParserBundleTest, LoadsAValidDocumentAtTheFirstTry) {
    const xercesc::DOMDocument& document = parse("größe a.dita", topicText("topic.dtd"));
    EXPECT_EQ(parsedClass(document), "- topic/p ");
    EXPECT_EQ(host.commands(), tries(1, folder.file("größe a.dita")));
}

TEST_F(ParserBundleTest, NamesTheDocumentByItsPathWithoutEscapes) {
    EXPECT_EQ(std::u16string(parse("größe a%20.dita", topicText("topic.dtd")).getDocumentURI()),
              u"file://" + folder.file16("größe a%20.dita"));
}

TEST_F(ParserBundleTest, LoadsADocumentWithoutDoctypeAsItStands) {
    const xercesc::DOMDocument& document = parse("a.dita", "<topic><p/></topic>");
    EXPECT_EQ(document.getDoctype(), nullptr);
    EXPECT_EQ(parsedClass(document), "none");
    EXPECT_EQ(host.commands(), tries(1, folder.file("a.dita")));
}

TEST_F(ParserBundleTest, MakesPlainTreesWithEntitiesInPlace) {
    const xercesc::DOMDocument& document =
        parse("a.dita",
              "<!DOCTYPE a [<!ELEMENT a ANY><!ENTITY e 'in <a/> place'>]>"
              "<a><!--c--><?pi d?>&e;<![CDATA[<raw>]]></a>");
    EXPECT_EQ(printed(*document.getDocumentElement()),
              "<a><!--c--><?pi d?>in <a/> place<![CDATA[<raw>]]></a>");
}

TEST_F(ParserBundleTest, KeepsPrefixesAsPartsOfNames) {
    const xercesc::DOMDocument& document =
        parse("a.dita", "<x:a y:b=\"1\"><x:c xmlns:x=\"urn:x\"/></x:a>");
    EXPECT_EQ(document.getDocumentElement()->getNamespaceURI(), nullptr);
    EXPECT_EQ(printed(*document.getDocumentElement()),
              "<x:a y:b=\"1\"><x:c xmlns:x=\"urn:x\"/></x:a>");
}

TEST_F(ParserBundleTest, KeepsEarlierDocumentsAlive) {
    const xercesc::DOMDocument& first = parse("a.dita", topicText("topic.dtd"));
    const xercesc::DOMDocument& second = parse("b.dita", invalidTopicText("topic.dtd"));
    const xercesc::DOMDocument& third = parse("a.dita", topicText("topic.dtd"));
    EXPECT_NE(&first, &third);
    EXPECT_NE(&first, &second);
    EXPECT_EQ(attribute(*first.getDocumentElement(), "id"), "t");
}

TEST_F(ParserBundleTest, LoadsAnInvalidDocumentAtTheThirdTryWithoutDefaults) {
    const xercesc::DOMDocument& document = parse("a.dita", invalidTopicText("topic.dtd"));
    EXPECT_EQ(host.commands(), tries(3, folder.file("a.dita")));
    EXPECT_EQ(parsedClass(document), "none");
    EXPECT_EQ(printed(*document.getDocumentElement()), "<topic id=\"t\"><p id=\"p\">x</p></topic>");
    ASSERT_TRUE(document.getDoctype());
    EXPECT_EQ(std::u16string(document.getDoctype()->getPublicId()), toUtf16(kTopicId));
}

TEST_F(ParserBundleTest, LoadsACompositesShellAtTheThirdTry) {
    folder.write("ditabase.dtd",
                 "<!ELEMENT dita (topic)+><!ELEMENT topic EMPTY>"
                 "<!ATTLIST dita class CDATA '- dita '>");
    const xercesc::DOMDocument& document =
        parse("out.dita", "<!DOCTYPE dita SYSTEM \"ditabase.dtd\"><dita/>");
    EXPECT_EQ(classOf(*document.getDocumentElement()), "none");
    EXPECT_EQ(host.commands(), tries(3, folder.file("out.dita")));
}

TEST_F(ParserBundleTest, GivesUpAMalformedDocumentAfterThreeTries) {
    folder.write("a.dita", brokenTopicText("topic.dtd"));
    EXPECT_NE(failureOf("a.dita"), kNothingThrown);
    EXPECT_EQ(host.commands(), tries(3, folder.file("a.dita")));
}

TEST_F(ParserBundleTest, GivesUpAMissingDocumentAfterThreeTries) {
    EXPECT_EQ(failureOf("missing.dita"), 66);
    EXPECT_EQ(host.commands(), tries(3, folder.file("missing.dita")));
}

TEST_F(ParserBundleTest, GivesUpAMissingExternalEntityAfterThreeTries) {
    folder.write("a.dita", "<!DOCTYPE a [<!ENTITY e SYSTEM 'missing.ent'>]><a>&e;</a>");
    EXPECT_EQ(failureOf("a.dita"), 42);
    EXPECT_EQ(host.commands(), tries(3, folder.file("a.dita")));
}

TEST_F(ParserBundleTest, LoadsADocumentWithAMissingDtdAtTheSecondTry) {
    const xercesc::DOMDocument& document = parse("a.dita", topicText("missing.dtd"));
    EXPECT_EQ(parsedClass(document), "none");
    EXPECT_EQ(host.commands(), (Texts{startOf(folder.file("a.dita")), questionFor(kTopicId), kEnd,
                                      startOf(folder.file("a.dita")), kEnd}));
}

TEST_F(ParserBundleTest, LoadsADocumentWithABrokenDtdAtTheThirdTry) {
    folder.write("broken.dtd", std::string(kTopicDtd) + "<!ATTLIST");
    const xercesc::DOMDocument& document = parse("a.dita", topicText("broken.dtd"));
    EXPECT_EQ(parsedClass(document), "none");
    EXPECT_EQ(host.commands(), tries(3, folder.file("a.dita")));
}

struct WarningCase {
    const char* name;
    std::string text;
    int tries;
    bool loads;
};

// Warnings of the engine: attributes declared twice, elements that are named and not declared.
TEST_F(ParserBundleTest, TakesAWarningForAFailure) {
    folder.write("twice.dtd", std::string(kTopicDtd) + "<!ATTLIST p z CDATA 'x' z CDATA 'y'>");
    folder.write("unknown.dtd", std::string(kTopicDtd) + "<!ATTLIST none z CDATA 'x'>");
    for (const WarningCase& warning :
         {WarningCase{"dtd", topicText("twice.dtd"), 3, true},
          {"unknown", topicText("unknown.dtd"), 3, true},
          {"subset", "<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a b CDATA 'x' b CDATA 'y'>]><a/>", 3,
           false},
          {"model", "<!DOCTYPE a [<!ELEMENT a (q?)>]><a/>", 3, true}}) {
        host.forget();
        folder.write(warning.name, warning.text);
        EXPECT_EQ(failureOf(warning.name) == kNothingThrown, warning.loads) << warning.name;
        EXPECT_EQ(host.commands(), tries(warning.tries, folder.file(warning.name))) << warning.name;
        expectUsualSettings();
    }
}

/// The settings of the parser whenever a command goes out, in a word for each.
class SettingsAtCommands {
public:
    explicit SettingsAtCommands(QSXercesDOMParser& parser) {
        clients_.onCall = [this, &parser](const std::string& call) {
            std::string seen =
                parser.getValidationScheme() == XercesDOMParser::Val_Never ? "never" : "auto";
            seen += parser.getLoadExternalDTD() ? " dtd" : "";
            seen += parser.isCachingGrammarFromParse() ? " caching" : "";
            seen += parser.isUsingCachedGrammarInParse() ? " using" : "";
            if (call.find(" start ") != std::string::npos) {
                atStarts.push_back(seen);
            }
        };
    }

    Texts atStarts;

private:
    ScriptedClients clients_;
};

TEST_F(ParserBundleTest, FirstGivesUpTheGrammarCacheThenTheValidation) {
    folder.write("a.dita", invalidTopicText("topic.dtd"));
    const SettingsAtCommands settings(parser());
    EXPECT_EQ(failureOf("a.dita"), kNothingThrown);
    EXPECT_EQ(settings.atStarts, (Texts{"auto dtd caching using", "auto dtd", "never"}));
}

TEST_F(ParserBundleTest, GivesUpTheValidationFirstWhenTheDtdIsMissing) {
    folder.write("a.dita", brokenTopicText("missing.dtd"));
    const SettingsAtCommands settings(parser());
    EXPECT_NE(failureOf("a.dita"), kNothingThrown);
    EXPECT_EQ(settings.atStarts, (Texts{"auto dtd caching using", "never caching using", "never"}));
}

struct MaskCase {
    const char* document;
    unsigned mask;
    int tries;
    bool loads;
};

TEST_F(ParserBundleTest, RetriesOnlyAsFarAsTheMaskAllows) {
    folder.write("invalid", invalidTopicText("topic.dtd"));
    folder.write("broken", brokenTopicText("topic.dtd"));
    folder.write("no-dtd", "<!DOCTYPE topic SYSTEM \"missing.dtd\"><topic/>");
    folder.write("no-dtd-broken", "<!DOCTYPE topic SYSTEM \"missing.dtd\"><topic>");
    folder.write("subset", "<!DOCTYPE a [<!ELEMENT a EMPTY>]><a/>");
    constexpr unsigned kNone = ParserBundle::kNoRetries;
    constexpr unsigned kValidation = ParserBundle::kWithoutValidation;
    constexpr unsigned kCache = ParserBundle::kWithoutGrammarCache;
    constexpr unsigned kAll = ParserBundle::kAllRetries;
    for (const auto& [name, mask, expectedTries, loads] :
         {MaskCase{"invalid", kNone, 1, false},
          MaskCase{"invalid", kValidation, 2, true},
          MaskCase{"invalid", kCache, 2, false},
          MaskCase{"invalid", kAll, 3, true},
          MaskCase{"broken", kNone, 1, false},
          MaskCase{"broken", kValidation, 2, false},
          MaskCase{"broken", kCache, 2, false},
          MaskCase{"broken", kAll, 3, false},
          MaskCase{"no-dtd", kNone, 1, false},
          MaskCase{"no-dtd", kValidation, 2, true},
          MaskCase{"no-dtd", kCache, 1, false},
          MaskCase{"no-dtd", kAll, 2, true},
          MaskCase{"no-dtd-broken", kNone, 1, false},
          MaskCase{"no-dtd-broken", kValidation, 2, false},
          MaskCase{"no-dtd-broken", kCache, 1, false},
          MaskCase{"no-dtd-broken", kAll, 3, false},
          MaskCase{"subset", kNone, 1, false},
          MaskCase{"subset", kValidation, 2, false},
          MaskCase{"subset", kCache, 2, true},
          MaskCase{"subset", kAll, 2, true},
          MaskCase{"missing", kNone, 1, false},
          MaskCase{"missing", kAll, 3, false}}) {
        host.forget();
        EXPECT_EQ(failureOf(name, mask) == kNothingThrown, loads) << name << " " << mask;
        EXPECT_EQ(host.commands(), tries(expectedTries, folder.file(name))) << name << " " << mask;
        expectUsualSettings();
    }
}

TEST_F(ParserBundleTest, FailsAnInternalSubsetAtTheFirstTryOnly) {
    folder.write("a.dita", "<!DOCTYPE a [<!ELEMENT a EMPTY><!ATTLIST a class CDATA 'c'>]><a/>");
    EXPECT_EQ(failureOf("a.dita", ParserBundle::kNoRetries), 96);
    host.forget();
    const xercesc::DOMDocument* const document =
        bundle().parseFile(folder.file16("a.dita"), ParserBundle::kAllRetries);
    ASSERT_TRUE(document);
    EXPECT_EQ(classOf(*document->getDocumentElement()), "c");
    EXPECT_EQ(host.commands(), tries(2, folder.file("a.dita")));
}

TEST_F(ParserBundleTest, FailsAMissingDtdWithTheNumberThatItsRetryLooksFor) {
    folder.write("a.dita", topicText("missing.dtd"));
    EXPECT_EQ(failureOf("a.dita", ParserBundle::kNoRetries), 41);
    EXPECT_EQ(failureOf("a.dita", ParserBundle::kWithoutGrammarCache), 41);
}

TEST_F(ParserBundleTest, ValidatesTheNextDocumentAgain) {
    parse("a.dita", invalidTopicText("topic.dtd"));
    parse("b.dita", topicText("missing.dtd"));
    folder.write("c.dita", brokenTopicText("topic.dtd"));
    EXPECT_NE(failureOf("c.dita"), kNothingThrown);
    expectUsualSettings();
    host.forget();
    parse("d.dita", invalidTopicText("topic.dtd"));
    EXPECT_EQ(host.commands(), tries(3, folder.file("d.dita")));
    host.forget();
    EXPECT_EQ(parsedClass(parse("e.dita", topicText("topic.dtd"))), "- topic/p ");
    EXPECT_EQ(host.commands(), tries(1, folder.file("e.dita")));
}

TEST_F(ParserBundleTest, RestoresTheSettingsOfTheGrammarCacheCrosswise) {
    // Only with two different values does it show which setting each is handed to.
    parser().cacheGrammarFromParse(false);
    parser().useCachedGrammarInParse(true);
    folder.write("a.dita", invalidTopicText("topic.dtd"));
    EXPECT_NE(failureOf("a.dita", ParserBundle::kWithoutGrammarCache), kNothingThrown);
    EXPECT_TRUE(parser().isCachingGrammarFromParse());
}

TEST_F(ParserBundleTest, RestoresWhatTheValidationWas) {
    parser().setValidationScheme(XercesDOMParser::Val_Always);
    parser().setLoadExternalDTD(true);
    folder.write("a.dita", invalidTopicText("topic.dtd"));
    EXPECT_EQ(failureOf("a.dita"), kNothingThrown);
    EXPECT_EQ(parser().getValidationScheme(), XercesDOMParser::Val_Always);
    parser().setLoadExternalDTD(false);
    EXPECT_EQ(failureOf("a.dita"), kNothingThrown);
    EXPECT_FALSE(parser().getLoadExternalDTD());
}

/// Throws where the parser asks for an entity.
template <class Failure>
class ThrowingResolver final : public xercesc::XMLEntityResolver {
public:
    explicit ThrowingResolver(Failure failure) : failure_(failure) {}
    xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier*) override {
        throw failure_;
    }

private:
    Failure failure_;
};

template <class Failure>
void expectOneTry(const std::string& path, const RecordingHost& host, Failure failure) {
    ParserBundle bundle;
    ThrowingResolver resolver(failure);
    bundle.parser().setXMLEntityResolver(&resolver);
    EXPECT_THROW(bundle.parseFile(toUtf16(path), ParserBundle::kAllRetries), Failure);
    EXPECT_EQ(host.commands(), tries(1, path));
}

/// Throws a diagnostic of that code each time, and counts.
class DiagnosticResolver final : public xercesc::XMLEntityResolver {
public:
    explicit DiagnosticResolver(unsigned code) : code_(code) {}
    xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier*) override {
        ++asked;
        if (asked == lastOne) {
            throw std::runtime_error("broken");
        }
        throw QSXercesParseException(code_, u"text", "", 1, 1);
    }

    int asked = 0;
    int lastOne = 0;  ///< at which it throws what is no diagnostic; 0 for never

private:
    unsigned code_;
};

// The resolver is asked as long as grammars of the cache may be used.
TEST_F(ParserBundleTest, ComparesTheNumberOfAFailureWhateverItIsOf) {
    folder.write("a.dita", "<!DOCTYPE a SYSTEM 'x.dtd'><a/>");
    xercesc::XMLEntityResolver* const own = parser().getXMLEntityResolver();
    for (const auto& [code, expectedTries, outcome] :
         {std::tuple(40U, 3, kNothingThrown), std::tuple(41U, 2, 41)}) {
        host.forget();
        DiagnosticResolver resolver(code);
        parser().setXMLEntityResolver(&resolver);
        EXPECT_EQ(failureOf("a.dita"), outcome) << code;
        parser().setXMLEntityResolver(own);
        EXPECT_EQ(host.commands(), tries(expectedTries, folder.file("a.dita"))) << code;
        EXPECT_EQ(resolver.asked, 2) << code;
        expectUsualSettings();
    }
}

TEST_F(ParserBundleTest, RestoresItsSettingsWhateverIsThrown) {
    folder.write("a.dita", topicText("topic.dtd"));
    DiagnosticResolver resolver(40);
    resolver.lastOne = 2;
    xercesc::XMLEntityResolver* const own = parser().getXMLEntityResolver();
    parser().setXMLEntityResolver(&resolver);
    EXPECT_THROW(failureOf("a.dita"), std::runtime_error);
    parser().setXMLEntityResolver(own);
    EXPECT_EQ(host.commands(), tries(2, folder.file("a.dita")));
    expectUsualSettings();
    host.forget();
    EXPECT_EQ(parsedClass(parse("b.dita", topicText("topic.dtd"))), "- topic/p ");
    EXPECT_EQ(host.commands(), tries(1, folder.file("b.dita")));
}

TEST_F(ParserBundleTest, LetsGoOfItsFilesHoweverAParseEnds) {
    const std::string dtd = folder.file("topic.dtd");
    const auto expectLetGo = [&](const char* name) {
        for (const std::string& path : {folder.file(name), dtd}) {
            EXPECT_FALSE(isMappedByProcess(path)) << path;
            EXPECT_FALSE(isOpenInProcess(path)) << path;
        }
    };
    parse("valid", topicText("topic.dtd"));
    expectLetGo("valid");
    parse("invalid", invalidTopicText("topic.dtd"));
    expectLetGo("invalid");
    folder.write("malformed", brokenTopicText("topic.dtd"));
    EXPECT_NE(failureOf("malformed"), kNothingThrown);
    expectLetGo("malformed");
    folder.write("throwing", topicText("topic.dtd"));
    DiagnosticResolver resolver(40);
    resolver.lastOne = 1;
    parser().setXMLEntityResolver(&resolver);
    EXPECT_THROW(failureOf("throwing"), std::runtime_error);
    expectLetGo("throwing");
}

TEST_F(ParserBundleTest, LetsWhatIsNoXmlExceptionPassAtOnce) {
    const std::string path = folder.write("a.dita", topicText("topic.dtd"));
    expectOneTry(path, host, std::runtime_error("broken"));
    host.forget();
    expectOneTry(path, host, xercesc::OutOfMemoryException());
    host.forget();
    expectOneTry(path, host, xercesc::DOMException(xercesc::DOMException::SYNTAX_ERR));
}

/// An internal subset in which `&e30;` stands for the text "lol" 10^30 times.
std::string laughingSubset() {
    std::string subset = "<!ENTITY e0 'lol'>";
    for (int level = 1; level <= 30; ++level) {
        subset += "<!ENTITY e" + std::to_string(level) + " '";
        for (int copy = 0; copy < 10; ++copy) {
            subset += "&e" + std::to_string(level - 1) + ";";
        }
        subset += "'>";
    }
    return subset;
}

TEST_F(ParserBundleTest, EndsAnEntityBomb) {
    const Watchdog watchdog(300);
    std::vector<const char*> names{"content.dita"};
// The sanitizer maps and unmaps memory for each of the entities.
#ifndef __SANITIZE_ADDRESS__
    names.push_back("attribute.dita");
#endif
    folder.write("content.dita", "<!DOCTYPE a [" + laughingSubset() + "]><a>&e30;</a>");
    folder.write("attribute.dita", "<!DOCTYPE a [" + laughingSubset() + "]><a b='&e30;'/>");
    for (const char* const name : names) {
        host.forget();
        EXPECT_NE(failureOf(name), kNothingThrown);
        EXPECT_EQ(host.commands(), tries(3, folder.file(name)));
    }
}

/// A parameter entity that stands for a comment 10^9 times, in a DTD.
std::string commentBomb() {
    std::string dtd = "<!ENTITY % p0 '<!-- -->'>";
    for (int level = 1; level <= 9; ++level) {
        dtd += "<!ENTITY % p" + std::to_string(level) + " '";
        for (int copy = 0; copy < 10; ++copy) {
            dtd += "&#37;p" + std::to_string(level - 1) + ";";
        }
        dtd += "'>";
    }
    return dtd + "%p9;";
}

/// A content model with so many states that they take gigabytes.
std::string ambiguousModel() {
    std::string model = "<!ELEMENT a ANY><!ELEMENT b EMPTY><!ELEMENT c EMPTY><!ELEMENT d ((b|c)*,b";
    for (int particle = 0; particle < 24; ++particle) {
        model += ",(b|c)";
    }
    return model + ")>";
}

/// The first one ends at any internal subset.
constexpr int kTriesOfASubset = 2;

/// The engine's own limit sees none of them.
class MemoryBombTest : public ParserBundleTest {
protected:
    /// The try that meets the bomb is the last one.
    void expectGivenUp(const char* name, int tries) {
        const Watchdog watchdog(300);
        parse("before.dita", "<before/>");
        host.forget();
        EXPECT_THROW(failureOf(name), xercesc::OutOfMemoryException) << name;
        EXPECT_EQ(std::count(host.commands().begin(), host.commands().end(), kEnd), tries) << name;
        // What was read before lives on, and what is read then is whole.
        const xercesc::DOMDocument& after = parse("after.dita", topicText("topic.dtd"));
        EXPECT_EQ(parsedClass(after), "- topic/p ") << name;
        EXPECT_FALSE(RequestMemory::current()->isExhausted()) << name;
    }
};

TEST_F(MemoryBombTest, OfParameterEntitiesIsGivenUp) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer maps and unmaps memory for each of the entities";
#endif
    folder.write("bomb.dtd", commentBomb());
    folder.write("bomb.dita", "<!DOCTYPE a SYSTEM 'bomb.dtd'><a/>");
    expectGivenUp("bomb.dita", 1);
}

TEST_F(MemoryBombTest, OfAnEntityThatIsLongIsGivenUp) {
    folder.write("bomb.dita", "<!DOCTYPE a [<!ELEMENT a ANY><!ENTITY e '" +
                                  std::string(100000, 'x') + "'>]><a>" + repeated("&e;", 10000) +
                                  "</a>");
    expectGivenUp("bomb.dita", kTriesOfASubset);
}

TEST_F(MemoryBombTest, OfAnAmbiguousContentModelIsGivenUp) {
    folder.write("bomb.dita", "<!DOCTYPE a [" + ambiguousModel() + "]><a><d><b/>" +
                                  repeated("<c/>", 24) + "</d></a>");
    expectGivenUp("bomb.dita", kTriesOfASubset);
}

/// A document whose root may hold so many other elements, in this order.
std::string documentWithModel(int members) {
    std::string model;
    for (int member = 0; member < members; ++member) {
        model += (member == 0 ? "e" : "?,e") + std::to_string(member);
    }
    return "<!DOCTYPE a [<!ELEMENT a (" + model + ")><!ELEMENT e0 EMPTY>]><a><e0/></a>";
}

TEST_F(MemoryBombTest, OfALargeContentModelIsGivenUp) {
    folder.write("bomb.dita", documentWithModel(2200));
    expectGivenUp("bomb.dita", kTriesOfASubset);
}

TEST_F(MemoryBombTest, OfManyContentModelsIsGivenUp) {
    std::string models;
    for (int element = 0; element < 100; ++element) {
        models += "<!ELEMENT a" + std::to_string(element) + " (e" + repeated(",e", 499) + ")>";
    }
    folder.write("bomb.dita", "<!DOCTYPE a [" + models + "]><a/>");
    expectGivenUp("bomb.dita", kTriesOfASubset);
}

std::string elementWithAttributes(int count) {
    std::string text = "<a";
    for (int attribute = 0; attribute < count; ++attribute) {
        text += " a" + std::to_string(attribute) + "=''";
    }
    return text + "/>";
}

TEST_F(MemoryBombTest, OfAttributesIsGivenUp) {
    folder.write("bomb.dita", elementWithAttributes(10001));
    expectGivenUp("bomb.dita", 1);
}

TEST_F(ParserBundleTest, LoadsWhatIsLargerThanAnyHonestDocument) {
    const Watchdog watchdog(300);
    EXPECT_EQ(parse("attributes.dita", elementWithAttributes(10000))
                  .getDocumentElement()
                  ->getAttributes()
                  ->getLength(),
              10000U);
    for (const char* const name : {"model.dita", "again.dita"}) {
        EXPECT_TRUE(parse(name, documentWithModel(700)).getDocumentElement()->hasChildNodes());
    }
}

TEST_F(ParserBundleTest, DocumentsOfAParserThatIsReplacedLiveOn) {
    const xercesc::DOMDocument& earlier = parse("earlier.dita", topicText("topic.dtd"));
    const std::string text = printed(*earlier.getDocumentElement());
    QSXercesDOMParser* const broken = &parser();
    folder.write("bomb.dita", elementWithAttributes(10001));
    EXPECT_THROW(failureOf("bomb.dita"), xercesc::OutOfMemoryException);
    EXPECT_NE(&parser(), broken);
    expectUsualSettings();
    EXPECT_EQ(printed(*earlier.getDocumentElement()), text);
}

TEST_F(ParserBundleTest, EndsAnEntityThatHoldsItself) {
    const Watchdog watchdog(60);
    folder.write("a.dita", "<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a>&e;</a>");
    EXPECT_NE(failureOf("a.dita"), kNothingThrown);
}

TEST_F(ParserBundleTest, CountsTheEntitiesOfEachDocumentByItself) {
    const Watchdog watchdog(300);
    std::string text = "<!DOCTYPE a [<!ELEMENT a ANY><!ENTITY e 'x'>]><a>";
    constexpr std::size_t kCount = 130000;
    for (std::size_t reference = 0; reference < kCount; ++reference) {
        text += "&e;";
    }
    text += "</a>";
    for (const char* name : {"a.dita", "b.dita"}) {
        host.forget();
        const xercesc::DOMDocument& document = parse(name, text);
        EXPECT_EQ(std::u16string(document.getDocumentElement()->getTextContent()),
                  std::u16string(kCount, u'x'));
        EXPECT_EQ(host.commands(), tries(2, folder.file(name)));
    }
}

/// What the engine does with default attributes, on which the output depends.
class DefaultAttributesTest : public ParserBundleTest {};

TEST_F(DefaultAttributesTest, AreThereAndInTheDoctypeOfTheDocumentThatScannedTheDtd) {
    xercesc::DOMDocument& document = parse("a.dita", topicText("topic.dtd"));
    EXPECT_EQ(parsedClass(document), "- topic/p ");
    EXPECT_EQ(createdClass(document), "- topic/p ");
}

TEST_F(DefaultAttributesTest, AreThereOnlyAsParsedWithAGrammarFromTheCache) {
    parse("a.dita", topicText("topic.dtd"));
    xercesc::DOMDocument& document = parse("b.dita", topicText("topic.dtd"));
    EXPECT_EQ(parsedClass(document), "- topic/p ");
    EXPECT_EQ(createdClass(document), "none");
}

TEST_F(DefaultAttributesTest, AreNotThereAfterTheThirdTry) {
    xercesc::DOMDocument& document = parse("a.dita", invalidTopicText("topic.dtd"));
    EXPECT_EQ(parsedClass(document), "none");
    EXPECT_EQ(createdClass(document), "none");
}

TEST_F(DefaultAttributesTest, AreNotThereWithoutDoctype) {
    xercesc::DOMDocument& document = parse("a.dita", "<topic><p/></topic>");
    EXPECT_EQ(parsedClass(document), "none");
    EXPECT_EQ(createdClass(document), "none");
}

TEST_F(DefaultAttributesTest, ComeFromTheCacheForOneSpellingOfTheDtd) {
    fs::create_symlink("topic.dtd", folder.path() / "alias.dtd");
    fs::create_directory(folder.path() / "sub");
    parse("a.dita", topicText("topic.dtd"));
    EXPECT_EQ(createdClass(parse("sub/b.dita", topicText("../topic.dtd"))), "none");
    EXPECT_EQ(createdClass(parse("c.dita", topicText(folder.file("topic.dtd")))), "none");
    EXPECT_EQ(createdClass(parse("d.dita", topicText("alias.dtd"))), "- topic/p ");
    EXPECT_EQ(createdClass(parse("e.dita", topicText(folder.file("sub/../topic.dtd")))),
              "- topic/p ");
}

TEST_F(DefaultAttributesTest, BecomeSpecifiedWhenSetAndComeBackWhenRemoved) {
    const xercesc::DOMDocument& document = parse("a.dita", topicText("topic.dtd"));
    xercesc::DOMElement& p = firstOf(document, u"p");
    p.setAttribute(u"class", u"- topic/p ");
    EXPECT_EQ(classOf(p), "- topic/p !");
    p.setAttribute(u"class", u"own");
    EXPECT_EQ(classOf(p), "own!");
    p.removeAttribute(u"class");
    EXPECT_EQ(classOf(p), "- topic/p ");
}

TEST_F(DefaultAttributesTest, AreNotImported) {
    const xercesc::DOMDocument& scanned = parse("a.dita", topicText("topic.dtd"));
    xercesc::DOMDocument& cached = parse("b.dita", topicText("topic.dtd"));
    const auto* const copy =
        dynamic_cast<const xercesc::DOMElement*>(cached.importNode(&firstOf(scanned, u"p"), true));
    EXPECT_EQ(classOf(*copy), "none");
    EXPECT_EQ(attribute(*copy, "id"), "p");
    firstOf(scanned, u"p").setAttribute(u"class", u"own");
    const auto* const specified =
        dynamic_cast<const xercesc::DOMElement*>(cached.importNode(&firstOf(scanned, u"p"), true));
    EXPECT_EQ(classOf(*specified), "own!");
}

TEST_F(DefaultAttributesTest, OfTheTargetsDoctypeAreGivenToImportedElements) {
    xercesc::DOMDocument& scanned = parse("a.dita", topicText("topic.dtd"));
    const xercesc::DOMDocument& plain = parse("b.dita", "<topic><p id='x'/></topic>");
    const auto* const copy =
        dynamic_cast<const xercesc::DOMElement*>(scanned.importNode(&firstOf(plain, u"p"), true));
    EXPECT_EQ(classOf(*copy), "- topic/p ");
}

TEST_F(DefaultAttributesTest, IdsAreFoundInTheTableOfTheDocument) {
    const xercesc::DOMDocument& source = parse("a.dita", topicText("topic.dtd"));
    xercesc::DOMElement& p = firstOf(source, u"p");
    EXPECT_EQ(source.getElementById(u"p"), &p);
    p.setAttribute(u"id", u"moved");
    EXPECT_EQ(source.getElementById(u"p"), nullptr);
    EXPECT_EQ(source.getElementById(u"moved"), &p);

    xercesc::DOMDocument& target = parse("b.dita", topicText("topic.dtd"));
    const xercesc::DOMNode* const copy = target.importNode(&p, true);
    EXPECT_EQ(target.getElementById(u"moved"), copy);

    p.getParentNode()->removeChild(&p);
    EXPECT_EQ(source.getElementById(u"moved"), &p);
}

}  // namespace
}  // namespace marrowpress
