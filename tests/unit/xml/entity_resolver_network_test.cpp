#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "tests/support/file_conditions.h"
#include "tests/unit/xml/sample_documents.h"
#include "xml/document_store.h"
#include "xml/entity_resolver.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Documents that name what must never be opened. In the texts "%SERVER%" stands for a server,
/// "%FOLDER%" for the folder of the test.
class RefusedEntityTest : public XmlTest {
protected:
    std::string filled(std::string text) const {
        const auto fill = [&](std::string_view mark, const std::string& value) {
            for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark)) {
                text.replace(at, mark.size(), value);
            }
        };
        fill("%SERVER%", server.authority());
        fill("%FOLDER%", folder.path().string());
        return text;
    }

    /// How the document "a.dita" loads: its root element as text, or "null".
    std::string load() {
        const Watchdog watchdog(60);
        const auto start = std::chrono::steady_clock::now();
        const xercesc::DOMDocument* const document =
            DocumentStore::instance().getOrLoad(folder.file16("a.dita"));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
        return document ? printed(*document->getDocumentElement()) : "null";
    }

    int tryCount() const {
        return static_cast<int>(std::count(host.commands().begin(), host.commands().end(), kEnd));
    }

    SilentServer server;
};

struct NetworkCase {
    const char* name;
    const char* document;
    const char* loaded;
    int tries;
};

const NetworkCase kNetworkCases[] = {
    {"Doctype", "<!DOCTYPE a SYSTEM 'http://%SERVER%/a.dtd'><a/>", "<a/>", 3},
    {"DoctypeWithPublicIdentifier", "<!DOCTYPE a PUBLIC 'id' 'http://%SERVER%/a.dtd'><a/>", "<a/>",
     3},
    {"DoctypeInCapitals", "<!DOCTYPE a SYSTEM 'HTTP://%SERVER%/a.dtd'><a/>", "<a/>", 3},
    {"DoctypeOverHttps", "<!DOCTYPE a SYSTEM 'https://%SERVER%/a.dtd'><a/>", "<a/>", 3},
    {"DoctypeOverFtp", "<!DOCTYPE a SYSTEM 'ftp://%SERVER%/a.dtd'><a/>", "<a/>", 3},
    {"DoctypeBehindABlank", "<!DOCTYPE a SYSTEM ' http://%SERVER%/a.dtd'><a/>", "<a/>", 3},
    {"GeneralEntity", "<!DOCTYPE a [<!ENTITY e SYSTEM 'http://%SERVER%/e'>]><a>&e;</a>", "null", 3},
    {"UnusedGeneralEntity",
     "<!DOCTYPE a [<!ELEMENT a ANY><!ENTITY e SYSTEM 'http://%SERVER%/e'>]><a/>", "<a/>", 2},
    {"ParameterEntityInInternalSubset",
     "<!DOCTYPE a [<!ELEMENT a ANY><!ENTITY % p SYSTEM 'http://%SERVER%/p'>%p;]><a/>", "null", 3},
    {"ParameterEntityInDtd", "<!DOCTYPE a SYSTEM 'parameter.dtd'><a/>", "<a/>", 3},
    // The last try reads no DTD, and takes a reference that it might have declared for nothing.
    {"EntityOfADtd", "<!DOCTYPE a SYSTEM 'general.dtd'><a>&e;</a>", "<a/>", 3},
    {"EntityInAnEntityOfAFileUrl",
     "<!DOCTYPE a [<!ENTITY n SYSTEM 'http://%SERVER%/n'>"
     "<!ENTITY e SYSTEM 'file://%FOLDER%/nested.ent'>]><a>&e;</a>",
     "null", 3},
    {"ParameterEntityInADtdOfAFileUrl", "<!DOCTYPE a SYSTEM 'file://%FOLDER%/parameter.dtd'><a/>",
     "<a/>", 3},
    {"OtherHost", "<!DOCTYPE a SYSTEM 'file://%SERVER%/a.dtd'><a/>", "<a/>", 3},
    {"OtherHostWithAFileOfThatName", "<!DOCTYPE a SYSTEM 'file://127.0.0.1%FOLDER%/c.dtd'><a/>",
     "<a/>", 3},
    {"EntityOnAnotherHostWithAFileOfThatName",
     "<!DOCTYPE a [<!ENTITY e SYSTEM 'file://127.0.0.1%FOLDER%/text.ent'>]><a>&e;</a>", "null", 3},
    {"SchemaWithoutNamespace",
     "<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
     "xsi:noNamespaceSchemaLocation='http://%SERVER%/a.xsd'/>",
     "<a xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
     "xsi:noNamespaceSchemaLocation=\"http://%SERVER%/a.xsd\"/>",
     1},
    {"SchemaOfANamespace",
     "<a xmlns='urn:a' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
     "xsi:schemaLocation='urn:a http://%SERVER%/a.xsd'/>",
     "<a xmlns=\"urn:a\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
     "xsi:schemaLocation=\"urn:a http://%SERVER%/a.xsd\"/>",
     1},
    {"UrlFromTheCatalog", "<!DOCTYPE a PUBLIC 'URL' 'missing.dtd'><a/>", "<a/>", 2},
    {"EntityWithUrlFromTheCatalog",
     "<!DOCTYPE a [<!ENTITY e PUBLIC 'URL' 'missing.ent'>]><a>&e;</a>", "null", 3},
};

class NetworkTest : public RefusedEntityTest, public testing::WithParamInterface<NetworkCase> {};

TEST_P(NetworkTest, IsNeverAsked) {
    folder.write("parameter.dtd",
                 filled("<!ENTITY % p SYSTEM 'http://%SERVER%/p'>%p;<!ELEMENT a ANY>"));
    folder.write("general.dtd", filled("<!ENTITY e SYSTEM 'http://%SERVER%/e'><!ELEMENT a ANY>"));
    folder.write("nested.ent", "&n;");
    folder.write("c.dtd", "<!ELEMENT a ANY><!ATTLIST a class CDATA 'read'>");
    folder.write("text.ent", "read");
    host.pathsByPublicId["URL"] = filled("http://%SERVER%/catalog.dtd");
    const std::string path = folder.write("a.dita", filled(GetParam().document));

    EXPECT_EQ(load(), filled(GetParam().loaded));
    EXPECT_EQ(tryCount(), GetParam().tries);
    EXPECT_FALSE(server.wasAsked());
    const bool isLoaded = GetParam().loaded != std::string("null");
    EXPECT_EQ(host.console(), isLoaded ? Texts{} : Texts{cannotRead(path)});
}

INSTANTIATE_TEST_SUITE_P(, NetworkTest, testing::ValuesIn(kNetworkCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST_F(RefusedEntityTest, ADocumentWithTheNameOfAUrlIsAMissingFile) {
    const std::string url = filled("http://%SERVER%/a.dita");
    const Watchdog watchdog(60);
    EXPECT_EQ(DocumentStore::instance().getOrLoad(toUtf16(url)), nullptr);
    EXPECT_EQ(host.commands(), tries(3, url));
    EXPECT_EQ(host.console(), Texts{cannotRead(url)});
    EXPECT_FALSE(server.wasAsked());
}

/// What the irregular file is, and how it is named.
struct IrregularCase {
    const char* name;
    const char* systemId;
};

const IrregularCase kIrregularCases[] = {
    {"Pipe", "a pipe"},
    {"PipeByEscape", "a%20pipe"},
    {"PipeByAbsolutePath", "%FOLDER%/a pipe"},
    {"PipeByFileUrl", "file://%FOLDER%/a%20pipe"},
    {"PipeByFileUrlOfLocalhost", "file://localhost%FOLDER%/a%20pipe"},
    {"PipeByLink", "link"},
    {"PipeByLinkAndFileUrl", "file://%FOLDER%/l%69nk"},
    {"PipeByFileUrlWithEscapedSeparator", "file://%FOLDER%%2Fa%20pipe"},
    {"PipeByFileUrlWithQuery", "file://%FOLDER%/a%20pipe?query"},
    {"PipeByFileUrlWithFragment", "file://%FOLDER%/a%20pipe#fragment"},
    {"PipeByFileUrlThroughItsParent", "file://%FOLDER%/folder/../a%20pipe"},
    {"PipeByFileUrlInCapitals", "FILE://%FOLDER%/a%20pipe"},
    {"PipeByFileUrlWithOneSlash", "file:%FOLDER%/a%20pipe"},
    {"PipeByFileUrlWithRawBlank", "file://%FOLDER%/a pipe"},
    {"PipeByFileUrlBehindABlank", " file://%FOLDER%/a%20pipe"},
    {"PipeByRelativeFileUrl", "file:a%20pipe"},
    {"Device", "/dev/zero"},
    {"DeviceByFileUrl", "file:///dev/zero"},
    {"Folder", "folder"},
    {"FolderByFileUrl", "file://%FOLDER%/folder"},
    {"FolderItself", "."},
};

class IrregularFileTest : public RefusedEntityTest,
                          public testing::WithParamInterface<IrregularCase> {
protected:
    IrregularFileTest() {
        makePipe(folder.file("a pipe"));
        fs::create_symlink("a pipe", folder.path() / "link");
        fs::create_directory(folder.path() / "folder");
    }

    std::string systemId() const { return filled(GetParam().systemId); }
};

TEST_P(IrregularFileTest, IsNoDtd) {
    folder.write("a.dita", "<!DOCTYPE a SYSTEM '" + systemId() + "'><a/>");
    EXPECT_EQ(load(), "<a/>");
    EXPECT_EQ(tryCount(), 2) << "as a missing one";
    EXPECT_EQ(host.console(), Texts{});
}

TEST_P(IrregularFileTest, IsNoEntity) {
    const std::string path =
        folder.write("a.dita", "<!DOCTYPE a [<!ENTITY e SYSTEM '" + systemId() + "'>]><a>&e;</a>");
    EXPECT_EQ(load(), "null");
    EXPECT_EQ(host.console(), Texts{cannotRead(path)});
}

TEST_P(IrregularFileTest, IsNoModuleOfADtd) {
    folder.write("a.dtd",
                 "<!ELEMENT a ANY><!ATTLIST a class CDATA 'c'>"
                 "<!ENTITY % p SYSTEM '" +
                     systemId() + "'>%p;");
    folder.write("a.dita", "<!DOCTYPE a SYSTEM 'file://" + folder.file("a.dtd") + "'><a/>");
    EXPECT_EQ(load(), "<a/>");
    EXPECT_EQ(tryCount(), 3);
}

TEST_P(IrregularFileTest, IsNoAnswerOfTheCatalog) {
    host.pathsByPublicId["id"] = systemId();
    folder.write("a.dita", "<!DOCTYPE a PUBLIC 'id' 'missing.dtd'><a/>");
    EXPECT_EQ(load(), "<a/>");
    EXPECT_EQ(tryCount(), 2);
}

INSTANTIATE_TEST_SUITE_P(, IrregularFileTest, testing::ValuesIn(kIrregularCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST_F(RefusedEntityTest, AnIrregularFileIsNoDocument) {
    makePipe(folder.file("a pipe"));
    fs::create_symlink("a pipe", folder.path() / "link");
    const Watchdog watchdog(60);
    for (const std::string& path : {folder.file("a pipe"), folder.file("link"), folder.file(""),
                                    std::string("/dev/zero"), std::string("/dev/null")}) {
        host.forget();
        EXPECT_EQ(DocumentStore::instance().getOrLoad(toUtf16(path)), nullptr) << path;
        EXPECT_EQ(host.console(), Texts{cannotRead(path)});
        EXPECT_EQ(host.commands(), tries(3, path));
    }
}

}  // namespace
}  // namespace marrowpress
