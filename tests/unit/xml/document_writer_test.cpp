#include "xml/document_writer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "application/host_operations.h"
#include "support/publish_exception.h"
#include "tests/support/file_conditions.h"
#include "tests/support/scripted_interfaces.h"
#include "tests/unit/xml/sample_documents.h"
#include "tests/unit/xml/separate_volumes.h"
#include "xml/document_store.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

const std::string kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>";

class DocumentWriterTest : public XmlTest {
protected:
    /// Writes a file and loads it as a run does.
    xercesc::DOMDocument& load(const char* name, const std::string& text) {
        folder.write(name, text);
        xercesc::DOMDocument* const document =
            DocumentStore::instance().getOrLoad(folder.file16(name));
        EXPECT_TRUE(document) << name;
        return *document;
    }

    WriteStatus write(const char* name, const std::string& text) {
        return writeDocument(&ParsedXml(text).document(), folder.file16(name));
    }

    /// The names in the folder, in order.
    Texts names() const {
        Texts found;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder.path())) {
            found.push_back(entry.path().filename().string());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    /// The operation and the paths of the error that saving ends with; empty if there is none.
    static std::string failureOf(const xercesc::DOMDocument& document) {
        try {
            static_cast<void>(saveDocumentInPlace(&document));
            return {};
        } catch (const fs::filesystem_error& failure) {
            std::string text = failure.what();
            const std::string operation = text.find("rename") != std::string::npos   ? "rename"
                                          : text.find("remove") != std::string::npos ? "remove"
                                                                                     : text;
            return operation + " " + failure.path1().string() +
                   (failure.path2().empty() ? "" : " " + failure.path2().string());
        }
    }

    std::string renameFailure(const char* name) const {
        return "rename " + folder.file(name) + " " + folder.file(name) + "_tmp";
    }
};

TEST_F(DocumentWriterTest, WritesTheTreeAsItStands) {
    const std::string text = "<a>\n  <b/>text<c>\t</c>\n\n<!-- c --><?pi d?><![CDATA[<raw>]]></a>";
    EXPECT_EQ(write("out.xml", text), WriteStatus::kWritten);
    EXPECT_EQ(folder.read("out.xml"), kHead + text);
    EXPECT_EQ(host.console(), Texts{});
}

TEST_F(DocumentWriterTest, WritesTheDoctype) {
    const std::string text = topicDoctype("größe.dtd") + "<topic/>";
    load("a.dita", text);
    EXPECT_EQ(writeDocument(DocumentStore::instance().getOrLoad(folder.file16("a.dita")),
                            folder.file16("out.xml")),
              WriteStatus::kWritten);
    EXPECT_EQ(folder.read("out.xml"), kHead + text);
}

TEST_F(DocumentWriterTest, LeavesDefaultAttributesOut) {
    folder.write("topic.dtd", kTopicDtd);
    const xercesc::DOMDocument& document = load("a.dita", topicText("topic.dtd"));
    ASSERT_EQ(parsedClass(document), "- topic/p ");
    firstOf(document, u"title").setAttribute(u"class", u"- topic/title ");
    EXPECT_EQ(writeDocument(&document, folder.file16("out.xml")), WriteStatus::kWritten);
    EXPECT_EQ(folder.read("out.xml"),
              kHead + topicDoctype("topic.dtd") +
                  "<topic id=\"t\"><title class=\"- topic/title \">T</title>"
                  "<p id=\"p\">x</p></topic>");
}

TEST_F(DocumentWriterTest, WritesUtf8WhateverTheSourceWas) {
    const xercesc::DOMDocument& document =
        load("a.dita",
             "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a b=\"\xe4\">gr\xf6\xdf"
             "e &#x1F600;</a>");
    EXPECT_EQ(saveDocumentInPlace(&document), WriteStatus::kWritten);
    EXPECT_EQ(folder.read("a.dita"), kHead + "<a b=\"ä\">größe \xf0\x9f\x98\x80</a>");
}

TEST_F(DocumentWriterTest, ReplacesALongerFile) {
    folder.write("größe out.xml", std::string(10000, 'x'));
    EXPECT_EQ(write("größe out.xml", "<a/>"), WriteStatus::kWritten);
    EXPECT_EQ(folder.read("größe out.xml"), kHead + "<a/>");
}

TEST_F(DocumentWriterTest, WritesLargeDocumentsWhole) {
    const std::string text = "<a>" + std::string(300000, 'x') + "</a>";
    EXPECT_EQ(write("out.xml", text), WriteStatus::kWritten);
    EXPECT_EQ(folder.read("out.xml"), kHead + text);
}

TEST_F(DocumentWriterTest, FailsQuietlyForNoDocument) {
    folder.write("out.xml", "old");
    EXPECT_EQ(writeDocument(nullptr, folder.file16("out.xml")), WriteStatus::kFailed);
    EXPECT_EQ(saveDocumentInPlace(nullptr), WriteStatus::kFailed);
    EXPECT_EQ(folder.read("out.xml"), "old");
    EXPECT_EQ(names(), Texts{"out.xml"});
    EXPECT_EQ(host.console(), Texts{});
}

TEST_F(DocumentWriterTest, HasTheStatusesOfItsCallers) {
    EXPECT_EQ(static_cast<int>(WriteStatus::kWritten), 0);
    EXPECT_EQ(static_cast<int>(WriteStatus::kFailed), 1);
}

TEST_F(DocumentWriterTest, ReportsWhereItCannotWrite) {
    const Watchdog watchdog(60);
    makePipe(folder.file("pipe"));
    for (const std::string& path :
         {folder.file("missing/größe.xml"), folder.file(""), folder.file("pipe"), std::string(),
          std::string("/dev/null"), std::string("/dev/full")}) {
        host.forget();
        EXPECT_EQ(writeDocument(&ParsedXml("<a/>").document(), toUtf16(path)), WriteStatus::kFailed)
            << path;
        EXPECT_EQ(host.console(), Texts{cannotWrite(path)});
    }
}

TEST_F(DocumentWriterTest, PutsNothingIntoAPipeThatSomebodyReads) {
    const Watchdog watchdog(60);
    makePipe(folder.file("pipe"));
    const int reader = ::open(folder.file("pipe").c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(write("pipe", "<a/>"), WriteStatus::kFailed);
    char byte = 0;
    EXPECT_EQ(::read(reader, &byte, 1), 0);
    ::close(reader);
}

TEST_F(DocumentWriterTest, ReportsTextThatXmlCannotHold) {
    for (const char16_t unit : {char16_t{0xD800}, char16_t{1}, char16_t{0xFFFE}}) {
        host.forget();
        const ParsedXml document("<a/>");
        document.root()->setTextContent(std::u16string(1, unit).c_str());
        EXPECT_EQ(writeDocument(&document.document(), folder.file16("out.xml")),
                  WriteStatus::kFailed)
            << static_cast<int>(unit);
        EXPECT_EQ(host.console(), Texts{cannotWrite(folder.file("out.xml"))});
    }
}

TEST_F(DocumentWriterTest, LeavesWhatItHadWritten) {
    const ParsedXml document("<a>" + std::string(100000, 'x') + "</a>");
    const FileSizeLimit limit(70000);
    EXPECT_EQ(writeDocument(&document.document(), folder.file16("out.xml")), WriteStatus::kFailed);
    EXPECT_EQ(folder.read("out.xml").size(), 70000U);
    EXPECT_EQ(host.console(), Texts{cannotWrite(folder.file("out.xml"))});
}

TEST_F(DocumentWriterTest, ReportsAFullDiskForTheLastBytesToo) {
    // What remains behind the last full block is the part that is easily lost.
    const ParsedXml document("<a>" + std::string(65840, 'x') + "</a>");
    {
        const FileSizeLimit limit(65536);
        EXPECT_EQ(writeDocument(&document.document(), folder.file16("out.xml")),
                  WriteStatus::kFailed);
    }
    const ParsedXml small("<a/>");
    const FileSizeLimit limit(10);
    EXPECT_EQ(writeDocument(&small.document(), folder.file16("small.xml")), WriteStatus::kFailed);
    EXPECT_EQ(host.console(),
              (Texts{cannotWrite(folder.file("out.xml")), cannotWrite(folder.file("small.xml"))}));
}

TEST_F(DocumentWriterTest, TakesThePlaceOfALinkAndLeavesWhatItLeadsTo) {
    folder.write("real.xml", "old");
    fs::create_symlink("real.xml", folder.path() / "link.xml");
    EXPECT_EQ(write("link.xml", "<a/>"), WriteStatus::kWritten);
    EXPECT_EQ(folder.read("real.xml"), "old");
    EXPECT_FALSE(fs::is_symlink(folder.path() / "link.xml"));
    EXPECT_EQ(folder.read("link.xml"), kHead + "<a/>");
}

TEST_F(DocumentWriterTest, KeepsTheRightsOfTheOldFile) {
    const auto rights = [&] { return fs::status(folder.path() / "a.dita").permissions(); };
    const xercesc::DOMDocument& document = load("a.dita", "<a>old</a>");
    for (const fs::perms wanted : {fs::perms{0600}, fs::perms{0666}}) {
        fs::permissions(folder.path() / "a.dita", wanted);
        EXPECT_EQ(saveDocumentInPlace(&document), WriteStatus::kWritten);
        EXPECT_EQ(rights(), wanted);
        EXPECT_EQ(write("a.dita", "<a/>"), WriteStatus::kWritten);
        EXPECT_EQ(rights(), wanted);
    }
}

TEST_F(DocumentWriterTest, NeverMovesOverADocumentThatWasRead) {
    load("a.dita_tmp", "<source/>");
    const xercesc::DOMDocument& document = load("a.dita", "<a>old</a>");
    EXPECT_EQ(saveDocumentInPlace(&document), WriteStatus::kFailed);
    EXPECT_EQ(host.console(), Texts{cannotWrite(folder.file("a.dita"))});
    EXPECT_EQ(folder.read("a.dita_tmp"), "<source/>");
    EXPECT_EQ(folder.read("a.dita"), "<a>old</a>");
}

TEST_F(DocumentWriterTest, WritesNothingForAHostThatHasThrown) {
    const xercesc::DOMDocument& document = load("a.dita", "<a>old</a>");
    rememberHostException();
    EXPECT_THROW(goOnAfter(saveDocumentInPlace(&document)), PublishException);
    EXPECT_THROW(goOnAfter(writeEmptyDocument("a", "", "", folder.file16("b.dita"))),
                 PublishException);
    forgetHostExceptions();
    EXPECT_EQ(folder.read("a.dita"), "<a>old</a>");
    EXPECT_FALSE(folder.exists("b.dita"));
}

TEST_F(DocumentWriterTest, SavesOverTheFileOfTheDocument) {
    const xercesc::DOMDocument& document = load("größe a%20.dita", "<a>old</a>");
    document.getDocumentElement()->setTextContent(u"new");
    EXPECT_EQ(saveDocumentInPlace(&document), WriteStatus::kWritten);
    EXPECT_EQ(folder.read("größe a%20.dita"), kHead + "<a>new</a>");
    EXPECT_EQ(names(), Texts{"größe a%20.dita"});
    EXPECT_EQ(host.console(), Texts{});
}

TEST_F(DocumentWriterTest, SavesToTheSamePlaceWithAndWithoutScheme) {
    for (const std::u16string& scheme : {std::u16string(), std::u16string(u"file://")}) {
        folder.write("a.dita", "old");
        const ParsedXml document("<a/>", scheme + folder.file16("a.dita"));
        EXPECT_EQ(saveDocumentInPlace(&document.document()), WriteStatus::kWritten);
        EXPECT_EQ(folder.read("a.dita"), kHead + "<a/>");
        EXPECT_EQ(names(), Texts{"a.dita"});
    }
}

TEST_F(DocumentWriterTest, KeepsTheOldFileAsideWhileItWrites) {
    const xercesc::DOMDocument& document = load("a.dita", "<a>old</a>");
    document.getDocumentElement()->setTextContent(u"\x1");
    ScriptedConsole console;
    Texts during;
    console.onCall = [&](const std::string&) { during = names(); };
    EXPECT_EQ(saveDocumentInPlace(&document), WriteStatus::kFailed);
    EXPECT_EQ(during, (Texts{"a.dita", "a.dita_tmp"}));
}

TEST_F(DocumentWriterTest, PutsTheOldFileBackWhenTheWriteFails) {
    for (const char16_t unit : {char16_t{0xD800}, char16_t{1}, char16_t{0xFFFE}}) {
        host.forget();
        const ParsedXml document("<a/>", u"file://" + folder.file16("a.dita"));
        folder.write("a.dita", "old");
        document.root()->setTextContent(std::u16string(1, unit).c_str());
        EXPECT_EQ(saveDocumentInPlace(&document.document()), WriteStatus::kFailed);
        EXPECT_EQ(folder.read("a.dita"), "old");
        EXPECT_EQ(names(), Texts{"a.dita"});
        EXPECT_EQ(host.console(), Texts{cannotWrite(folder.file("a.dita"))});
    }
}

TEST_F(DocumentWriterTest, PutsTheOldFileBackWhenTheDiskIsFull) {
    for (const std::size_t length : {100UL, 65840UL, 300000UL}) {
        host.forget();
        folder.write("a.dita", "old");
        const ParsedXml document("<a>" + std::string(length, 'x') + "</a>",
                                 u"file://" + folder.file16("a.dita"));
        const FileSizeLimit limit(length < 1000 ? 64 : 65536);
        EXPECT_EQ(saveDocumentInPlace(&document.document()), WriteStatus::kFailed) << length;
        EXPECT_EQ(folder.read("a.dita"), "old");
        EXPECT_EQ(names(), Texts{"a.dita"});
        EXPECT_EQ(host.console(), Texts{cannotWrite(folder.file("a.dita"))});
    }
}

TEST_F(DocumentWriterTest, PutsTheOldFileBackWhenItCannotBeCreatedAnew) {
    folder.write("a.dita", "old");
    const ParsedXml document("<a/>", u"file://" + folder.file16("a.dita"));
    // The sanitizer looks at objects of a type that it doesn't know through a pipe, and takes them
    // for broken when there is no handle for one: it gets to know all types on the way before.
    EXPECT_EQ(saveDocumentInPlace(&document.document()), WriteStatus::kWritten);
    EXPECT_EQ(writeDocument(&document.document(), folder.file16("none/a.dita")),
              WriteStatus::kFailed);
    folder.write("a.dita", "old");
    host.forget();
    {
        const NoFileHandles none;
        EXPECT_EQ(saveDocumentInPlace(&document.document()), WriteStatus::kFailed);
    }
    EXPECT_EQ(folder.read("a.dita"), "old");
    EXPECT_EQ(names(), Texts{"a.dita"});
    EXPECT_EQ(host.console(), Texts{cannotWrite(folder.file("a.dita"))});
}

TEST_F(DocumentWriterTest, LeavesTheOldFileAsideWhenItCannotBePutBack) {
    folder.write("a.dita", "old");
    const ParsedXml document("<a>" + std::string(70000, 'x') + "</a>",
                             u"file://" + folder.file16("a.dita"));
    document.root()->appendChild(document.document().createTextNode(u"\x1"));
    {
        // From the report on, the folder is out of reach.
        std::unique_ptr<WithoutRights> nobody;
        ScriptedConsole console;
        console.onCall = [&](const std::string&) {
            fs::permissions(folder.path(), fs::perms::owner_read | fs::perms::owner_exec);
            nobody = std::make_unique<WithoutRights>();
        };
        EXPECT_EQ(failureOf(document.document()),
                  "rename " + folder.file("a.dita_tmp") + " " + folder.file("a.dita"));
        EXPECT_EQ(console.calls, Texts{"write " + cannotWrite(folder.file("a.dita"))});
    }
    fs::permissions(folder.path(), fs::perms::owner_all);
    EXPECT_EQ(folder.read("a.dita_tmp"), "old");
    EXPECT_EQ(folder.read("a.dita").substr(0, kHead.size() + 3), kHead + "<a>");
    EXPECT_EQ(names(), (Texts{"a.dita", "a.dita_tmp"}));
}

TEST_F(DocumentWriterTest, CopiesWhatItCannotRename) {
    const SeparateVolumes volumes;
    const xercesc::DOMDocument& document = load("a.dita", "<a>old</a>");
    folder.write("a.dita_tmp", "left by an earlier save");
    document.getDocumentElement()->setTextContent(u"new");
    EXPECT_EQ(saveDocumentInPlace(&document), WriteStatus::kWritten);
    EXPECT_EQ(folder.read("a.dita"), kHead + "<a>new</a>");
    EXPECT_EQ(names(), Texts{"a.dita"});

    document.getDocumentElement()->setTextContent(u"\x1");
    EXPECT_EQ(saveDocumentInPlace(&document), WriteStatus::kFailed);
    EXPECT_EQ(folder.read("a.dita"), kHead + "<a>new</a>");
    EXPECT_EQ(names(), Texts{"a.dita"});
    EXPECT_EQ(host.console(), Texts{cannotWrite(folder.file("a.dita"))});
}

TEST_F(DocumentWriterTest, LeavesAFileThatItCanNeitherRenameNorCopy) {
    const SeparateVolumes volumes;
    const xercesc::DOMDocument& document = load("a.dita", "<a>old</a>");
    fs::permissions(folder.path(), fs::perms::all);
    fs::permissions(folder.path() / "a.dita", fs::perms::none);
    {
        const WithoutRights nobody;
        EXPECT_EQ(failureOf(document), renameFailure("a.dita"));
    }
    fs::permissions(folder.path() / "a.dita", fs::perms::owner_all);
    EXPECT_EQ(folder.read("a.dita"), "<a>old</a>");
    EXPECT_EQ(names(), Texts{"a.dita"});
    EXPECT_EQ(host.console(), Texts{});
}

TEST_F(DocumentWriterTest, ThrowsWhenTheFileIsGone) {
    const xercesc::DOMDocument& document = load("a.dita", "<a/>");
    fs::remove(folder.path() / "a.dita");
    EXPECT_EQ(failureOf(document), renameFailure("a.dita"));
    EXPECT_EQ(names(), Texts{});
    EXPECT_EQ(host.console(), Texts{});
}

TEST_F(DocumentWriterTest, ThrowsWhenTheFolderCannotBeWritten) {
    const xercesc::DOMDocument& document = load("a.dita", "<a/>");
    fs::permissions(folder.path(), fs::perms(0555));
    {
        const WithoutRights nobody;
        EXPECT_EQ(failureOf(document), renameFailure("a.dita"));
    }
    fs::permissions(folder.path(), fs::perms::owner_all);
    EXPECT_EQ(folder.read("a.dita"), "<a/>");
    EXPECT_EQ(names(), Texts{"a.dita"});
    EXPECT_EQ(host.console(), Texts{});
}

TEST_F(DocumentWriterTest, ThrowsForADocumentWithoutUri) {
    const ParsedXml document("<a/>");
    document.document().setDocumentURI(nullptr);
    EXPECT_EQ(failureOf(document.document()), "rename  _tmp");
}

TEST_F(DocumentWriterTest, ReplacesWhatAnEarlierSaveLeftAside) {
    const xercesc::DOMDocument& document = load("a.dita", "<a>new</a>");
    folder.write("a.dita_tmp", "stale");
    EXPECT_EQ(saveDocumentInPlace(&document), WriteStatus::kWritten);
    EXPECT_EQ(names(), Texts{"a.dita"});
    EXPECT_EQ(host.console(), Texts{});

    folder.write("a.dita_tmp", "stale");
    document.getDocumentElement()->setTextContent(u"\x1");
    EXPECT_EQ(saveDocumentInPlace(&document), WriteStatus::kFailed);
    EXPECT_EQ(folder.read("a.dita"), kHead + "<a>new</a>");
    EXPECT_EQ(names(), Texts{"a.dita"});
}

TEST_F(DocumentWriterTest, ThrowsWhenAFolderStandsInThePlaceAside) {
    const xercesc::DOMDocument& document = load("a.dita", "<a/>");
    fs::create_directory(folder.path() / "a.dita_tmp");
    EXPECT_EQ(failureOf(document), renameFailure("a.dita"));
    EXPECT_EQ(folder.read("a.dita"), "<a/>");
    EXPECT_EQ(names(), (Texts{"a.dita", "a.dita_tmp"}));
}

TEST_F(DocumentWriterTest, ThrowsWhenWhatWasPutAsideCannotBeRemoved) {
    const xercesc::DOMDocument& document = load("a.dita", "<a/>");
    // A folder with a file in it can be moved, but not removed like a file.
    fs::remove(folder.path() / "a.dita");
    folder.write("a.dita/inner", "x");
    EXPECT_EQ(failureOf(document), "remove " + folder.file("a.dita_tmp"));
    EXPECT_EQ(folder.read("a.dita"), kHead + "<a/>");
    EXPECT_EQ(folder.read("a.dita_tmp/inner"), "x");
    EXPECT_EQ(host.console(), Texts{});
}

TEST_F(DocumentWriterTest, SavesAFileInPlaceOfALink) {
    folder.write("real.dita", "<a/>");
    fs::create_symlink("real.dita", folder.path() / "a.dita");
    const ParsedXml document("<a>new</a>", u"file://" + folder.file16("a.dita"));
    EXPECT_EQ(saveDocumentInPlace(&document.document()), WriteStatus::kWritten);
    EXPECT_FALSE(fs::is_symlink(folder.path() / "a.dita"));
    EXPECT_EQ(folder.read("a.dita"), kHead + "<a>new</a>");
    EXPECT_EQ(folder.read("real.dita"), "<a/>");
    EXPECT_EQ(names(), (Texts{"a.dita", "real.dita"}));
}

TEST_F(DocumentWriterTest, PutsALinkBackWhenTheWriteFails) {
    folder.write("real.dita", "<a/>");
    fs::create_symlink("real.dita", folder.path() / "a.dita");
    const ParsedXml document("<a/>", u"file://" + folder.file16("a.dita"));
    document.root()->setTextContent(u"\x1");
    EXPECT_EQ(saveDocumentInPlace(&document.document()), WriteStatus::kFailed);
    EXPECT_TRUE(fs::is_symlink(folder.path() / "a.dita"));
    EXPECT_EQ(folder.read("real.dita"), "<a/>");
}

TEST_F(DocumentWriterTest, SavesAFileInPlaceOfAPipe) {
    const Watchdog watchdog(60);
    makePipe(folder.file("a.dita"));
    const ParsedXml document("<a/>", u"file://" + folder.file16("a.dita"));
    EXPECT_EQ(saveDocumentInPlace(&document.document()), WriteStatus::kWritten);
    EXPECT_TRUE(fs::is_regular_file(folder.path() / "a.dita"));
    EXPECT_EQ(names(), Texts{"a.dita"});
}

TEST_F(DocumentWriterTest, WritesAnEmptyDocumentWithItsDoctype) {
    EXPECT_EQ(writeEmptyDocument("größe", "-//Größe//EN", "größe.dtd", folder.file16("größe.dita")),
              WriteStatus::kWritten);
    EXPECT_EQ(folder.read("größe.dita"),
              kHead + "<!DOCTYPE größe PUBLIC \"-//Größe//EN\" \"größe.dtd\"><größe/>");
    EXPECT_EQ(host.console(), Texts{});
}

TEST_F(DocumentWriterTest, WritesEmptyDocumentsThatLoadAndSave) {
    EXPECT_EQ(writeEmptyDocument("dita", "-//OASIS//DTD DITA Composite//EN", "ditabase.dtd",
                                 folder.file16("out.dita")),
              WriteStatus::kWritten);
    xercesc::DOMDocument* const document =
        DocumentStore::instance().getOrLoad(folder.file16("out.dita"));
    ASSERT_TRUE(document);
    EXPECT_EQ(std::u16string(document->getDocumentURI()), u"file://" + folder.file16("out.dita"));
    document->getDocumentElement()->appendChild(document->createElement(u"topic"));
    EXPECT_EQ(saveDocumentInPlace(document), WriteStatus::kWritten);
    EXPECT_EQ(folder.read("out.dita"),
              kHead +
                  "<!DOCTYPE dita PUBLIC \"-//OASIS//DTD DITA Composite//EN\" \"ditabase.dtd\">"
                  "<dita><topic/></dita>");
}

TEST_F(DocumentWriterTest, ReportsAnEmptyDocumentThatCannotBeWritten) {
    EXPECT_EQ(writeEmptyDocument("dita", "id", "a.dtd", folder.file16("missing/out.dita")),
              WriteStatus::kFailed);
    EXPECT_EQ(host.console(), Texts{cannotWrite(folder.file("missing/out.dita"))});
    EXPECT_EQ(names(), Texts{});
}

}  // namespace
}  // namespace marrowpress
