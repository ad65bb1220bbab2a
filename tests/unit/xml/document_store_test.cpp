#include "xml/document_store.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <xercesc/dom/DOMException.hpp>

#include "application/connection.h"
#include "application/host_operations.h"
#include "dom/nesting_depth.h"
#include "support/publish_exception.h"
#include "support/request_singleton.h"
#include "support/scope_exit.h"
#include "tests/support/file_conditions.h"
#include "tests/support/scripted_host.h"
#include "tests/support/scripted_interfaces.h"
#include "tests/unit/xml/sample_documents.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Records as text, "path state id" each, in the order of their paths.
Texts listed(const OpenDocumentRecords& records) {
    Texts texts;
    for (const auto& [path, record] : records) {
        texts.push_back(toUtf8(path) + " " + std::to_string(static_cast<int>(record.state)) + " " +
                        std::to_string(record.documentId));
    }
    std::sort(texts.begin(), texts.end());
    return texts;
}

class DocumentStoreTest : public XmlTest {
protected:
    static xercesc::DOMDocument* load(const std::string& path) {
        return DocumentStore::instance().getOrLoad(toUtf16(path));
    }
};

TEST_F(DocumentStoreTest, GivesOneTreeForOnePath) {
    const std::string path = folder.write("a.dita", "<a/>");
    xercesc::DOMDocument* const first = load(path);
    ASSERT_TRUE(first);
    first->getDocumentElement()->setAttribute(u"changed", u"yes");
    EXPECT_EQ(load(path), first);
    EXPECT_EQ(printed(*load(path)->getDocumentElement()), "<a changed=\"yes\"/>");
    EXPECT_EQ(host.commands(), tries(1, path));
    EXPECT_EQ(host.console(), Texts{});
}

TEST_F(DocumentStoreTest, KeepsWhatTheParserSaidOfAFileThatItCouldNotRead) {
    const std::string path = folder.write("a.dita", "<a>\n  <b>\n</a>");
    const std::u16string key = toUtf16(path);
    EXPECT_EQ(DocumentStore::instance().failureOf(key), nullptr);
    EXPECT_EQ(load(path), nullptr);
    const ParseFailure* const failure = DocumentStore::instance().failureOf(key);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->reason, u"expected end of tag 'b'");
    EXPECT_EQ(failure->systemId, key);
    EXPECT_EQ(failure->line, 3U);
    EXPECT_EQ(failure->column, 3U);
    folder.write("a.dita", "<a/>");
    EXPECT_TRUE(load(path));
    EXPECT_EQ(DocumentStore::instance().failureOf(key), nullptr);
}

TEST_F(DocumentStoreTest, KeepsThatAFileTakesTooMuch) {
    std::string bomb = "<a";
    for (int attribute = 0; attribute <= 10000; ++attribute) {
        bomb += " a" + std::to_string(attribute) + "=''";
    }
    const std::string path = folder.write("bomb.dita", bomb + "/>");
    EXPECT_EQ(load(path), nullptr);
    const ParseFailure* const failure = DocumentStore::instance().failureOf(toUtf16(path));
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->reason, u"it takes too much memory or time");
    EXPECT_EQ(host.console(), Texts{cannotRead(path)});
    EXPECT_TRUE(load(folder.write("a.dita", "<a/>")));
}

TEST_F(DocumentStoreTest, WhatIsSaidOfAFileThatIsNotThereIsOfNoPlace) {
    const std::string path = folder.file("none.dita");
    EXPECT_EQ(load(path), nullptr);
    const ParseFailure* const failure = DocumentStore::instance().failureOf(toUtf16(path));
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->line, 0U);
    EXPECT_NE(failure->reason.find(toUtf16(path)), std::u16string::npos);
}

TEST_F(DocumentStoreTest, GivesATreeOfItsOwnForEachSpelling) {
    folder.write("a.dita", "<a/>");
    const std::string root = folder.path().string();
    std::vector<xercesc::DOMDocument*> documents;
    for (const char* spelling : {"/a.dita", "//a.dita", "/./a.dita"}) {
        documents.push_back(load(root + spelling));
        ASSERT_TRUE(documents.back()) << spelling;
    }
    EXPECT_NE(documents[0], documents[1]);
    EXPECT_NE(documents[0], documents[2]);
    EXPECT_NE(documents[1], documents[2]);
    EXPECT_EQ(load("file://" + root + "/a.dita"), nullptr);
    EXPECT_EQ(load(root + "/A.dita"), nullptr);
}

TEST_F(DocumentStoreTest, ReadsAFileOnceOnly) {
    const std::string path = folder.write("a.dita", "<a/>");
    load(path);
    folder.write("a.dita", "<changed/>");
    EXPECT_EQ(printed(*load(path)->getDocumentElement()), "<a/>");
}

TEST_F(DocumentStoreTest, KeepsTreesWhenTheirFilesGo) {
    const std::string path = folder.write("a.dita", "<a>text</a>");
    const xercesc::DOMDocument* const document = load(path);
    fs::remove(path);
    EXPECT_EQ(printed(*document->getDocumentElement()), "<a>text</a>");
}

TEST_F(DocumentStoreTest, ReportsAFileThatCannotBeReadEachTime) {
    const std::string missing = folder.file("größe 100%s.dita");
    EXPECT_EQ(load(missing), nullptr);
    EXPECT_EQ(load(missing), nullptr);
    EXPECT_EQ(host.console(), (Texts{cannotRead(missing), cannotRead(missing)}));
    EXPECT_EQ(host.commands(), tries(6, missing));
}

TEST_F(DocumentStoreTest, ReportsAMalformedDocumentOnceForItsThreeTries) {
    const std::string path = folder.write("a.dita", "<a>");
    EXPECT_EQ(load(path), nullptr);
    EXPECT_EQ(host.console(), Texts{cannotRead(path)});
    EXPECT_EQ(host.commands(), tries(3, path));
}

TEST_F(DocumentStoreTest, ReportsAFileWithoutContent) {
    const std::string path = folder.write("a.dita", "");
    EXPECT_EQ(load(path), nullptr);
    EXPECT_EQ(host.console(), Texts{cannotRead(path)});
}

TEST_F(DocumentStoreTest, ReportsAFileOutOfReach) {
    const std::string path = folder.write("a.dita", "<a/>");
    ASSERT_EQ(::chmod(path.c_str(), 0), 0);
    const WithoutRights nobody;
    EXPECT_EQ(load(path), nullptr);
    EXPECT_EQ(host.console(), Texts{cannotRead(path)});
}

TEST_F(DocumentStoreTest, LoadsAFileThatHasBecomeReadable) {
    const std::string path = folder.file("a.dita");
    EXPECT_EQ(load(path), nullptr);
    folder.write("a.dita", "<a/>");
    EXPECT_TRUE(load(path));
    EXPECT_EQ(host.console(), Texts{cannotRead(path)});
}

TEST_F(DocumentStoreTest, ReportsTheEmptyPathOnce) {
    EXPECT_EQ(load(""), nullptr);
    EXPECT_EQ(load(""), nullptr);
    EXPECT_EQ(host.console(), Texts{cannotRead("")});
    EXPECT_EQ(host.commands(), Texts{});
}

TEST_F(DocumentStoreTest, SharesOneParserAmongItsDocuments) {
    folder.write("dtd/topic.dtd", kTopicDtd);
    host.pathsByPublicId[kTopicId] = folder.file("dtd/topic.dtd");
    const std::string first = folder.write("a.dita", topicText("topic.dtd"));
    const std::string second = folder.write("b.dita", topicText("topic.dtd"));
    load(first);
    load(second);
    EXPECT_EQ(host.commands(),
              (Texts{startOf(first), questionFor(kTopicId), kEnd, startOf(second), kEnd}));
    EXPECT_EQ(createdClass(*load(first)), "- topic/p ");
    EXPECT_EQ(createdClass(*load(second)), "none");
}

TEST_F(DocumentStoreTest, ThrowsForADocumentThatMustLoad) {
    const std::string path = folder.write("a.dita", "<a/>");
    EXPECT_EQ(&DocumentStore::instance().mustLoad(toUtf16(path)), load(path));
    EXPECT_EQ(host.console(), Texts{});
    EXPECT_THROW(DocumentStore::instance().mustLoad(folder.file16("missing.dita")),
                 PublishException);
    EXPECT_EQ(host.console(), Texts{cannotRead(folder.file("missing.dita"))});
    EXPECT_THROW(DocumentStore::instance().mustLoad(u""), PublishException);
}

TEST_F(DocumentStoreTest, HasAnEmptyTableWhenNothingIsOpen) {
    load(folder.write("a.dita", "<a/>"));
    ASSERT_TRUE(RequestSingleton<OpenDocumentTable>::existing());
    EXPECT_EQ(OpenDocumentTable::instance().size(), 0U);
    EXPECT_EQ(listed(DocumentStore::instance().touchedOpenDocuments()), Texts{});
}

TEST_F(DocumentStoreTest, BuildsTheTableAtTheFirstMiss) {
    DocumentStore::instance();
    EXPECT_FALSE(RequestSingleton<OpenDocumentTable>::existing());
    load("");
    EXPECT_TRUE(RequestSingleton<OpenDocumentTable>::existing());
}

TEST_F(DocumentStoreTest, BuildsTheTableBeforeItReads) {
    const std::string path = folder.write("a.dita", "<a/>");
    std::vector<bool> exists;
    ScriptedClients clients;
    clients.onCall = [&](const std::string&) {
        exists.push_back(RequestSingleton<OpenDocumentTable>::existing() != nullptr);
    };
    load(path);
    EXPECT_EQ(exists, (std::vector<bool>{true, true}));
}

TEST_F(DocumentStoreTest, ReadsThroughTheLoadersFallbackToo) {
    // The name of the process, as a file that has no size and can't be mapped.
    std::array<char, 16> earlierName{};
    ASSERT_EQ(::prctl(PR_GET_NAME, earlierName.data()), 0);
    const ScopeExit restore([&] { ::prctl(PR_SET_NAME, earlierName.data()); });
    ASSERT_EQ(::prctl(PR_SET_NAME, "<a>fallback</a>"), 0);
    const xercesc::DOMDocument* const document = load("/proc/self/comm");
    ASSERT_TRUE(document);
    EXPECT_EQ(printed(*document->getDocumentElement()), "<a>fallback</a>");
    EXPECT_EQ(host.commands(), tries(1, "/proc/self/comm"));
    EXPECT_EQ(host.console(), Texts{});
}

TEST_F(DocumentStoreTest, EndsTheRunOfAHostThatThrowsWhileItReads) {
    const std::string path = folder.write("a.dita", topicText("missing.dtd"));
    const std::vector<std::function<void()>> throwers{
        [] { throw std::runtime_error("unexpected"); },
        [] { throw xercesc::DOMException(xercesc::DOMException::SYNTAX_ERR); },
        [] { throw 42; },
    };
    for (const std::function<void()>& thrower : throwers) {
        host.forget();
        ScriptedClients clients;
        clients.onCall = [&](const std::string& call) {
            if (call.find("resolveentity") != std::string::npos) {
                thrower();
            }
        };
        EXPECT_THROW(load(path), PublishException);
        EXPECT_THROW(load(path), PublishException) << "asked for after it";
        EXPECT_EQ(host.console(), Texts{}) << "no fault of the file";
        forgetHostExceptions();
        RequestSingleton<DocumentStore>::destroy();
    }
}

TEST_F(DocumentStoreTest, ReportsADocumentThatNestsTooDeeplyToBeWorkedOn) {
    const std::string path = folder.write("deep.dita", nestedElements(kDeepestNesting + 1));
    EXPECT_EQ(load(path), nullptr);
    EXPECT_FALSE(DocumentStore::instance().holds(toUtf16(path)));
    EXPECT_EQ(load(path), nullptr);
    EXPECT_EQ(host.console(), (Texts{cannotRead(path), cannotRead(path)}));
    EXPECT_TRUE(load(folder.write("less-deep.dita", nestedElements(kDeepestNesting))));
}

/// A host with documents open in it.
class StoreOpenDocumentsTest : public testing::Test {
protected:
    xercesc::DOMDocument* load(const std::string& name) {
        return DocumentStore::instance().getOrLoad(folder.file16(name));
    }
    Texts touched() { return listed(DocumentStore::instance().touchedOpenDocuments()); }

    TemporaryFolder folder;
    RecordingHost host{{{7, folder.file("größe.dita"), 0},
                        {9, folder.file("flagged.dita"), 5},
                        {11, folder.file("broken.dita"), -1},
                        {13, folder.file("twice.dita"), 1},
                        {15, folder.file("twice.dita"), 0},
                        {17, folder.file("unused.dita"), 1}}};
    XmlSession session;
};

TEST_F(StoreOpenDocumentsTest, AreInTheTableByName) {
    const OpenDocumentTable table;
    EXPECT_EQ(table.size(), 5U);
    const OpenDocumentRecord* const plain = table.find(folder.file16("größe.dita"));
    ASSERT_TRUE(plain);
    EXPECT_EQ(static_cast<int>(plain->state), 1);
    EXPECT_EQ(plain->documentId, 7U);
    const OpenDocumentRecord* const flagged = table.find(folder.file16("flagged.dita"));
    ASSERT_TRUE(flagged);
    EXPECT_EQ(static_cast<int>(flagged->state), 2);
    EXPECT_EQ(table.find(folder.file16("other.dita")), nullptr);
    EXPECT_EQ(table.find(u""), nullptr);
}

TEST_F(StoreOpenDocumentsTest, AreTouchedWhenTheyAreAskedFor) {
    for (const char* name : {"größe.dita", "flagged.dita", "other.dita"}) {
        folder.write(name, "<a/>");
        load(name);
        load(name);
    }
    EXPECT_EQ(touched(),
              (Texts{folder.file("flagged.dita") + " 2 9", folder.file("größe.dita") + " 1 7"}));
}

TEST_F(StoreOpenDocumentsTest, AreTouchedWhenTheyCannotBeRead) {
    folder.write("broken.dita", "<a>");
    EXPECT_EQ(load("broken.dita"), nullptr);
    EXPECT_EQ(touched(), Texts{folder.file("broken.dita") + " 2 11"});
}

TEST_F(StoreOpenDocumentsTest, AreTouchedBeforeTheyAreRead) {
    folder.write("größe.dita", "<a/>");
    std::vector<std::size_t> touchedCounts;
    ScriptedClients clients;
    clients.onCall = [&](const std::string&) { touchedCounts.push_back(touched().size()); };
    load("größe.dita");
    EXPECT_EQ(touchedCounts, (std::vector<std::size_t>{1, 1}));
}

TEST_F(StoreOpenDocumentsTest, CountByTheLastOfOneName) {
    folder.write("twice.dita", "<a/>");
    load("twice.dita");
    EXPECT_EQ(touched(), Texts{folder.file("twice.dita") + " 1 15"});
}

TEST_F(StoreOpenDocumentsTest, AreFoundUnderTheirExactNameOnly) {
    folder.write("größe.dita", "<a/>");
    EXPECT_TRUE(load("./größe.dita"));
    EXPECT_TRUE(DocumentStore::instance().getOrLoad(folder.file16("") + u"/größe.dita"));
    EXPECT_EQ(load("GRÖßE.dita"), nullptr);
    std::string backslashes = folder.file("größe.dita");
    std::replace(backslashes.begin(), backslashes.end(), '/', '\\');
    DocumentStore::instance().getOrLoad(toUtf16(backslashes));
    EXPECT_EQ(touched(), Texts{});
}

TEST(MalformedNameTest, IsNoPathOfAnyDocument) {
    const TemporaryFolder folder;
    const RecordingHost host{{{7, folder.path().string() + "/\xFF.dita", 0}}};
    const XmlSession session;
    const OpenDocumentTable table;
    EXPECT_EQ(table.size(), 1U);
    ASSERT_TRUE(table.find(u"???"));
    EXPECT_EQ(table.find(u"???")->documentId, 7U);
    folder.write("\xFF.dita", "<a/>");
    folder.write("a.dita", "<a/>");
    EXPECT_TRUE(DocumentStore::instance().getOrLoad(folder.file16("a.dita")));
    EXPECT_TRUE(DocumentStore::instance().touchedOpenDocuments().empty());
    EXPECT_EQ(host.console(), Texts{});
}

TEST_F(StoreOpenDocumentsTest, AreReadFromTheDisk) {
    folder.write("größe.dita", "<on-disk/>");
    EXPECT_EQ(printed(*load("größe.dita")->getDocumentElement()), "<on-disk/>");
}

TEST_F(StoreOpenDocumentsTest, AreReadInTheOrderOfTheHost) {
    ScriptedProperties properties;
    properties.ids = {{{0, 53}, 1}, {{1, 111}, 2}};
    const OpenDocumentTable table;
    EXPECT_EQ(properties.calls,
              (Texts{"getIdProp 0 0 53", "getStringProp 0 1 20", "getIntProp 0 1 131",
                     "getIdProp 0 1 111", "getStringProp 0 2 20", "getIntProp 0 2 131",
                     "getIdProp 0 2 111"}));
}

TEST_F(StoreOpenDocumentsTest, ArePassedOverWithoutAName) {
    ScriptedProperties properties;
    properties.ids = {{{0, 53}, 1}};
    const OpenDocumentTable table;
    EXPECT_EQ(table.size(), 0U);
}

TEST_F(StoreOpenDocumentsTest, AreNoneWithoutTheHostsProperties) {
    const InterfaceReplacement<IHostProperties> missing(QsApiInterfacesC::connected()->properties,
                                                        nullptr);
    EXPECT_EQ(OpenDocumentTable().size(), 0U);
}

TEST_F(StoreOpenDocumentsTest, AreReadOnceInARequest) {
    folder.write("größe.dita", "<a/>");
    folder.write("flagged.dita", "<a/>");
    ScriptedProperties properties;
    load("größe.dita");
    load("flagged.dita");
    load("missing.dita");
    EXPECT_EQ(std::count(properties.calls.begin(), properties.calls.end(), "getIdProp 0 0 53"), 1);
}

/// Sessions that follow each other.
class RequestEndTest : public testing::Test {
protected:
    TemporaryFolder folder;
    RecordingHost host;
};

/// The bytes that this process holds in memory.
std::size_t residentBytes() {
    std::ifstream status("/proc/self/statm");
    std::size_t total = 0;
    std::size_t resident = 0;
    status >> total >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

TEST_F(RequestEndTest, ABrokenFileThatManyReferencesNameTakesItsMemoryOnce) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "AddressSanitizer holds back what was freed";
#endif
    std::string content;
    while (content.size() < 300000) {
        content += "<p>some text</p>";
    }
    const std::u16string path = toUtf16(folder.write("broken.dita", "<topic>" + content));
    const std::u16string deep =
        toUtf16(folder.write("deep.dita", nestedElements(kDeepestNesting + 20000)));
    const XmlSession session;
    const auto ask = [&] {
        EXPECT_FALSE(DocumentStore::instance().getOrLoad(path));
        EXPECT_FALSE(DocumentStore::instance().getOrLoad(deep));
    };
    ask();
    const std::size_t before = residentBytes();
    for (int count = 0; count < 20; ++count) {
        ask();
    }
    // A try of either takes more than a tenth of this.
    EXPECT_LT(residentBytes(), before + 30'000'000);
}

TEST(OpenDocumentTableTest, AListThatLeadsBackIntoItselfEnds) {
    ScriptedHost host;
    QsApiInterfacesC interfaces(host.provider());
    interfaces.connect();
    host.ids[{0, 53}] = 7;
    host.ids[{7, 111}] = 8;
    host.ids[{8, 111}] = 7;
    host.texts[{7, 20}] = "/a.dita";
    host.texts[{8, 20}] = "/b.dita";
    EXPECT_EQ(OpenDocumentTable().size(), 2U);
}

/// A host in which each open document is followed by another one.
class EndlessHost final : public ScriptedHost {
public:
    ComStatus getIdProp(std::uint32_t, std::uint32_t object, std::uint32_t, std::uint32_t* value,
                        std::int32_t* status) override {
        *value = object + 1;
        *status = 0;
        return kComOk;
    }
    ComStatus getStringProp(std::uint32_t context, std::uint32_t object, std::uint32_t property,
                            char** value, std::int32_t* status) override {
        calls.clear();
        texts[{object, property}] = "/" + std::to_string(object) + ".dita";
        return ScriptedHost::getStringProp(context, object, property, value, status);
    }
};

TEST(OpenDocumentTableTest, AListWithoutAnEndIsCut) {
    const Watchdog watchdog(300);
    EndlessHost host;
    QsApiInterfacesC interfaces(host.provider());
    interfaces.connect();
    const OpenDocumentTable table;
    EXPECT_EQ(table.size(), kMostOpenDocuments);
    EXPECT_NE(table.find(u"/1.dita"), nullptr);
}

TEST_F(RequestEndTest, LeavesNothingForTheNextRequest) {
    folder.write("dtd/topic.dtd", kTopicDtd);
    host.pathsByPublicId[kTopicId] = folder.file("dtd/topic.dtd");
    const std::string path = folder.write("a.dita", topicText("topic.dtd"));
    for (const char* const expected : {"- topic/p ", "changed"}) {
        host.forget();
        {
            const XmlSession session;
            xercesc::DOMDocument* const document =
                DocumentStore::instance().getOrLoad(toUtf16(path));
            ASSERT_TRUE(document);
            EXPECT_EQ(createdClass(*document), expected);
        }
        EXPECT_EQ(host.commands(), (Texts{startOf(path), questionFor(kTopicId), kEnd, kTerminate}));
        std::string changed(kTopicDtd);
        changed.replace(changed.find("- topic/p "), 10, "changed");
        folder.write("dtd/topic.dtd", changed);
    }
}

}  // namespace
}  // namespace marrowpress
