#include "client/xml_session.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "application/messengers.h"
#include "profiling/condition_merge.h"
#include "references/direct_references.h"
#include "references/exclusion_filter.h"
#include "references/node_filters.h"
#include "support/request_singleton.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "tests/support/scripted_host.h"
#include "tests/support/texts.h"
#include "tests/unit/client/xml_platform.h"
#include "xml/document_store.h"
#include "xml/grammar_parser_cache.h"

namespace marrowpress {
namespace {

using Lines = std::vector<std::string>;

void createAllSingletons() {
    ConditionRenamer::instance();
    ExclusionFilterHolder::instance();
    ReportMessenger::instance();
    ProgressMessenger::instance();
    OpenDocumentTable::instance();
    TopicIdGenerator::instance();
    GrammarParserCache::instance();
    DocumentStore::instance();
}

/// Which objects of a request there are, in the order in which they are to end.
std::string existingSingletons() {
    std::string names;
    const auto add = [&](const void* object, const char* name) {
        if (object) {
            names += names.empty() ? "" : " ";
            names += name;
        }
    };
    add(RequestSingleton<DocumentStore>::existing(), "store");
    add(RequestSingleton<GrammarParserCache>::existing(), "grammars");
    add(RequestSingleton<TopicIdGenerator>::existing(), "ids");
    add(RequestSingleton<OpenDocumentTable>::existing(), "open");
    add(RequestSingleton<ProgressMessenger>::existing(), "progress");
    add(RequestSingleton<ReportMessenger>::existing(), "report");
    add(RequestSingleton<ExclusionFilterHolder>::existing(), "exclusion");
    add(RequestSingleton<ConditionRenamer>::existing(), "renamer");
    return names;
}

/// Excludes nothing, and notes what there still is when it ends.
class LastFilter final : public xercesc::DOMNodeFilter {
public:
    LastFilter(std::string& existingAtEnd, bool& isPlatformUpAtEnd)
        : existingAtEnd_(existingAtEnd), isPlatformUpAtEnd_(isPlatformUpAtEnd) {}
    ~LastFilter() override {
        existingAtEnd_ = existingSingletons();
        isPlatformUpAtEnd_ = isXmlPlatformUp();
    }
    FilterAction acceptNode(const xercesc::DOMNode*) const override { return FILTER_SKIP; }

private:
    std::string& existingAtEnd_;
    bool& isPlatformUpAtEnd_;
};

TEST(XmlSessionTest, ThePlatformIsUpWhileItLives) {
    EXPECT_FALSE(isXmlPlatformUp());
    {
        const XmlSession session;
        EXPECT_TRUE(isXmlPlatformUp());
    }
    EXPECT_FALSE(isXmlPlatformUp());
}

TEST(XmlSessionTest, CreatesNothingOfARequest) {
    const XmlSession session;
    EXPECT_EQ(existingSingletons(), "");
}

TEST(XmlSessionTest, EndsWithoutSingletons) {
    ScriptedHost host;
    QsApiInterfacesC interfaces(host.provider());
    interfaces.connect();
    { const XmlSession session; }
    EXPECT_EQ(host.calls, Lines{});
}

TEST(XmlSessionTest, EndsAllThatBelongsToTheRequest) {
    {
        const XmlSession session;
        createAllSingletons();
        ASSERT_EQ(existingSingletons(),
                  "store grammars ids open progress report exclusion renamer");
    }
    EXPECT_EQ(existingSingletons(), "");
}

TEST(XmlSessionTest, EndsTheStoreFirstAndTheGrammarsNext) {
    ScriptedHost host;
    QsApiInterfacesC interfaces(host.provider());
    interfaces.connect();
    Lines existingAtTerminate;
    {
        const XmlSession session;
        createAllSingletons();
        xercesc::DOMImplementation* const implementation =
            xercesc::DOMImplementationRegistry::getDOMImplementation(u"");
        const XercesPtr<xercesc::DOMDocument> document(
            implementation->createDocument(nullptr, u"topic", nullptr));
        GrammarParserCache::instance().parserForDocument(*document);
        host.calls.clear();
        host.onCall = [&](const std::string& call) {
            EXPECT_EQ(call, "callClient XmlUtilities: EntityResolver terminate");
            EXPECT_TRUE(isXmlPlatformUp());
            existingAtTerminate.push_back(existingSingletons());
        };
    }
    EXPECT_EQ(existingAtTerminate, Lines({"grammars ids open progress report exclusion renamer",
                                          "ids open progress report exclusion renamer"}));
}

TEST(XmlSessionTest, EndsTheExclusionFilterBehindTheMessengersWithThePlatformStillUp) {
    std::string existingAtEnd = "never ended";
    bool isPlatformUpAtEnd = false;
    {
        const XmlSession session;
        createAllSingletons();
        ExclusionFilterHolder::instance().reset(
            std::make_unique<LastFilter>(existingAtEnd, isPlatformUpAtEnd));
    }
    EXPECT_EQ(existingAtEnd, "renamer");
    EXPECT_TRUE(isPlatformUpAtEnd);
    EXPECT_FALSE(isXmlPlatformUp());
}

TEST(XmlSessionTest, TopicIdsStartAnewWithEachSession) {
    std::vector<std::u16string> first;
    std::vector<std::u16string> second;
    for (auto* ids : {&first, &second}) {
        const XmlSession session;
        ids->push_back(TopicIdGenerator::instance().nextTopicId());
        ids->push_back(TopicIdGenerator::instance().nextTopicId());
    }
    EXPECT_EQ(first, second);
    EXPECT_NE(first[0], first[1]);
    EXPECT_EQ(toUtf8(first[0]), kGeneratedIds[0]);
}

TEST(XmlSessionTest, OpenDocumentsAreReadAnewInEachSession) {
    ScriptedHost host;
    QsApiInterfacesC interfaces(host.provider());
    interfaces.connect();
    {
        const XmlSession session;
        EXPECT_EQ(OpenDocumentTable::instance().size(), 0U);
    }
    host.ids[{0, 53}] = 7;
    host.texts[{7, 20}] = "/a.dita";
    const XmlSession session;
    EXPECT_EQ(OpenDocumentTable::instance().size(), 1U);
    EXPECT_NE(OpenDocumentTable::instance().find(u"/a.dita"), nullptr);
}

TEST(XmlSessionTest, WithoutAHostNoDocumentIsOpen) {
    ASSERT_EQ(QsApiInterfacesC::connected(), nullptr);
    const XmlSession session;
    EXPECT_EQ(OpenDocumentTable::instance().size(), 0U);
}

TEST(XmlSessionTest, APanicOfTheEngineIsAnException) {
    const XmlSession session;
    EXPECT_THROW(xercesc::XMLPlatformUtils::panic(xercesc::PanicHandler::Panic_CantFindLib),
                 std::runtime_error);
}

}  // namespace
}  // namespace marrowpress
