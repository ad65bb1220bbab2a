#include "host/catalog_resolver.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/xmlmemory.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "host/local_xml_input.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

constexpr const char* kMapId = "-//OASIS//DTD DITA Map//EN";

std::string catalogOf(const std::string& entries) {
    return "<?xml version='1.0'?>\n<catalog xmlns='urn:oasis:names:tc:entity:xmlns:xml:catalog'>" +
           entries + "</catalog>\n";
}

std::string publicEntry(const std::string& id, const std::string& uri) {
    return "<public publicId='" + id + "' uri='" + uri + "'/>";
}

class CatalogResolverTest : public testing::Test {
protected:
    std::string writeCatalog(const std::string& name, const std::string& entries) {
        return folder_.write(name, catalogOf(entries));
    }

    TemporaryFolder folder_;
};

TEST_F(CatalogResolverTest, FindsAFileRelativeToTheCatalog) {
    CatalogResolver resolver({writeCatalog("c.xml", publicEntry(kMapId, "dtd/map.dtd"))});
    EXPECT_EQ(resolver.resolvePublic(kMapId), folder_.file("dtd/map.dtd"));
}

TEST_F(CatalogResolverTest, TellsEachCatalogThatItLooksFor) {
    const std::string next = writeCatalog("next.xml", publicEntry(kMapId, "map.dtd"));
    const std::string later =
        writeCatalog("later.xml",
                     "<delegatePublic publicIdStartString='-//D' catalog='d.xml'/>"
                     "<nextCatalog catalog='next.xml'/>");
    std::vector<std::string> told;
    CatalogResolver resolver({folder_.file("none.xml"), later},
                             [&told](const std::string& path) { told.push_back(path); });
    EXPECT_THAT(told, testing::ElementsAre(folder_.file("none.xml"), later, next));
    EXPECT_EQ(resolver.resolvePublic(kMapId), folder_.file("map.dtd"));
    EXPECT_EQ(told.size(), 3U);
    EXPECT_EQ(resolver.resolvePublic("-//D//E"), std::nullopt);
    EXPECT_THAT(told,
                testing::ElementsAre(folder_.file("none.xml"), later, next, folder_.file("d.xml")));
}

TEST_F(CatalogResolverTest, NormalizesWhiteSpaceOfTheIdentifier) {
    CatalogResolver resolver({writeCatalog("c.xml", publicEntry(kMapId, "map.dtd"))});
    EXPECT_EQ(resolver.resolvePublic("  -//OASIS//DTD\n DITA Map//EN "), folder_.file("map.dtd"));
}

TEST_F(CatalogResolverTest, UndoesPercentEscapes) {
    CatalogResolver resolver({writeCatalog(
        "c.xml", publicEntry("a", "my%20dtd/%C3%A4.dtd") + publicEntry("b", "/abs%2520.dtd"))});
    EXPECT_EQ(resolver.resolvePublic("a"), folder_.file("my dtd/ä.dtd"));
    EXPECT_EQ(resolver.resolvePublic("b"), "/abs%20.dtd");
}

TEST_F(CatalogResolverTest, TakesACatalogWhoseOwnPathNeedsEscapes) {
    const std::string catalog = writeCatalog("50% of #1/ä b/c.xml", publicEntry(kMapId, "map.dtd"));
    CatalogResolver resolver({catalog});
    EXPECT_EQ(resolver.resolvePublic(kMapId), folder_.file("50% of #1/ä b/map.dtd"));
}

TEST_F(CatalogResolverTest, AsksCatalogsInOrder) {
    const std::string first = writeCatalog("1.xml", publicEntry("a", "1.dtd"));
    const std::string second =
        writeCatalog("2.xml", publicEntry("a", "2.dtd") + publicEntry("b", "2b.dtd"));
    CatalogResolver resolver({first, second});
    EXPECT_EQ(resolver.resolvePublic("a"), folder_.file("1.dtd"));
    EXPECT_EQ(resolver.resolvePublic("b"), folder_.file("2b.dtd"));
    EXPECT_EQ(resolver.resolvePublic("c"), std::nullopt);
}

TEST_F(CatalogResolverTest, DelegatesToNothingAndAsksTheNextCatalog) {
    writeCatalog("empty.xml", "");
    const std::string first = writeCatalog(
        "1.xml", "<delegatePublic publicIdStartString='-//OASIS' catalog='empty.xml'/>");
    const std::string second = writeCatalog("2.xml", publicEntry(kMapId, "map.dtd"));
    CatalogResolver resolver({first, second});
    EXPECT_EQ(resolver.resolvePublic(kMapId), folder_.file("map.dtd"));
}

TEST_F(CatalogResolverTest, FollowsLocalNextCatalog) {
    writeCatalog("sub/next.xml", publicEntry(kMapId, "map.dtd"));
    CatalogResolver resolver({writeCatalog("c.xml", "<nextCatalog catalog='sub/next.xml'/>")});
    EXPECT_EQ(resolver.resolvePublic(kMapId), folder_.file("sub/map.dtd"));
}

TEST_F(CatalogResolverTest, KeepsItsAnswer) {
    const std::string catalog = writeCatalog("c.xml", publicEntry(kMapId, "map.dtd"));
    CatalogResolver resolver({catalog});
    EXPECT_EQ(resolver.resolvePublic(kMapId), folder_.file("map.dtd"));
    std::filesystem::remove(catalog);
    EXPECT_EQ(resolver.resolvePublic(kMapId), folder_.file("map.dtd"));
}

constexpr const char* kShortage = "cannot read the catalogs: Too many open files";

/// What is said about a question that fails; the answer of one that does not.
std::string catalogFaultOf(CatalogResolver& resolver, const std::string& publicId) {
    try {
        return resolver.resolvePublic(publicId).value_or("(unknown)");
    } catch (const std::system_error& fault) {
        return fault.what();
    }
}

TEST_F(CatalogResolverTest, ReadsItsCatalogsAtTheStart) {
    writeCatalog("next.xml", publicEntry("b", "b.dtd"));
    CatalogResolver resolver({writeCatalog("1.xml", publicEntry("a", "a.dtd")),
                              writeCatalog("2.xml", "<nextCatalog catalog='next.xml'/>")});
    const NoFileHandles none;
    EXPECT_EQ(catalogFaultOf(resolver, "a"), folder_.file("a.dtd"));
    EXPECT_EQ(catalogFaultOf(resolver, "b"), folder_.file("b.dtd"));
    EXPECT_EQ(catalogFaultOf(resolver, "c"), "(unknown)");
}

TEST_F(CatalogResolverTest, TakesACatalogItHasNoHandleForForNoMiss) {
    const std::string catalog = writeCatalog("c.xml", publicEntry("a", "a.dtd"));
    {
        const NoFileHandles none;
        EXPECT_THROW(CatalogResolver{{catalog}}, std::system_error);
    }
    CatalogResolver resolver({catalog});
    EXPECT_EQ(catalogFaultOf(resolver, "a"), folder_.file("a.dtd"));
}

TEST_F(CatalogResolverTest, TakesACatalogThatMayNotBeReadForNoMiss) {
    const std::string next = writeCatalog("next.xml", publicEntry("a", "a.dtd"));
    const std::string catalog = writeCatalog("c.xml", "<nextCatalog catalog='next.xml'/>");
    std::filesystem::permissions(next, std::filesystem::perms::none);
    const WithoutRights nobody;
    for (const std::string& file : {catalog, next}) {
        EXPECT_THAT([&file] { CatalogResolver{{file}}; },
                    testing::ThrowsMessage<std::system_error>(
                        "cannot read the catalogs: Permission denied"));
    }
}

TEST_F(CatalogResolverTest, KeepsNothingOfAFailedQuestionBeyondItsLife) {
    writeCatalog("delegate.xml", "<nextCatalog catalog='next.xml'/>");
    writeCatalog("next.xml", publicEntry(kMapId, "map.dtd"));
    const std::string catalog = writeCatalog(
        "c.xml", "<delegatePublic publicIdStartString='-//OASIS' catalog='delegate.xml'/>" +
                     publicEntry("known", "known.dtd"));
    {
        CatalogResolver resolver({catalog});
        EXPECT_EQ(catalogFaultOf(resolver, "known"), folder_.file("known.dtd"));
        {
            const NoFileHandles none;
            EXPECT_EQ(catalogFaultOf(resolver, kMapId), kShortage);
            EXPECT_EQ(catalogFaultOf(resolver, "known"), folder_.file("known.dtd"));
        }
        EXPECT_EQ(catalogFaultOf(resolver, kMapId), kShortage);
        // What libxml2 kept of the failure is the same for all.
        EXPECT_THROW(CatalogResolver{{catalog}}, std::system_error);
    }
    CatalogResolver resolver({catalog});
    EXPECT_EQ(catalogFaultOf(resolver, kMapId), folder_.file("map.dtd"));
}

/// Memory ends for libxml2 at one of its allocations.
long allocationsLeft = 0;

void* takeMemory(std::size_t size) {
    return allocationsLeft-- > 0 ? std::malloc(size) : nullptr;
}

void* retakeMemory(void* block, std::size_t size) {
    return allocationsLeft-- > 0 ? std::realloc(block, size) : nullptr;
}

char* takeText(const char* text) {
    return allocationsLeft-- > 0 ? strdup(text) : nullptr;
}

/// What comes of a question in a process of its own, where only so many allocations succeed: 0 for
/// the right answer, 1 for a failure, 2 for another answer.
int outcomeWithin(long allocations, const std::string& catalog, const std::string& answer) {
    const pid_t child = fork();
    if (child == 0) {
        xmlMemSetup(std::free, takeMemory, retakeMemory, takeText);
        allocationsLeft = allocations;
        try {
            CatalogResolver resolver({catalog});
            _exit(resolver.resolvePublic(kMapId) == answer ? 0 : 2);
        } catch (const std::exception&) {
            _exit(1);
        }
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

TEST_F(CatalogResolverTest, TakesWantOfMemoryForNoMiss) {
    restrictLibxmlToLocalFiles();
    writeCatalog("next.xml", publicEntry(kMapId, "map.dtd"));
    const std::string catalog =
        writeCatalog("c.xml", publicEntry("a", "a.dtd") + "<nextCatalog catalog='next.xml'/>");
    int failures = 0;
    int outcome = 1;
    for (long allocations = 0; outcome != 0 && allocations < 10000; ++allocations) {
        outcome = outcomeWithin(allocations, catalog, folder_.file("map.dtd"));
        EXPECT_LE(outcome, 1) << allocations;
        failures += outcome == 1 ? 1 : 0;
    }
    EXPECT_EQ(outcome, 0);
    EXPECT_GT(failures, 50);
}

TEST_F(CatalogResolverTest, KnowsNothingOfAnEmptyIdentifier) {
    CatalogResolver resolver({writeCatalog("c.xml", publicEntry("", "map.dtd"))});
    EXPECT_EQ(resolver.resolvePublic(""), std::nullopt);
}

TEST_F(CatalogResolverTest, TakesOtherSchemesForNotFound) {
    CatalogResolver resolver({writeCatalog("c.xml", publicEntry("a", "http://127.0.0.1/a.dtd") +
                                                        publicEntry("b", "urn:x:b") +
                                                        publicEntry("c", "file://server/c.dtd"))});
    EXPECT_EQ(resolver.resolvePublic("a"), std::nullopt);
    EXPECT_EQ(resolver.resolvePublic("b"), std::nullopt);
    EXPECT_EQ(resolver.resolvePublic("c"), std::nullopt);
}

TEST_F(CatalogResolverTest, PassesOverCatalogsThatCannotBeRead) {
    const std::string good = writeCatalog("good.xml", publicEntry(kMapId, "map.dtd"));
    CatalogResolver resolver(
        {folder_.file("none.xml"), folder_.write("bad.xml", "<catalog"), good});
    EXPECT_EQ(resolver.resolvePublic(kMapId), folder_.file("map.dtd"));
}

TEST_F(CatalogResolverTest, PassesOverACatalogThatLibxmlCouldNotBear) {
    const std::string bad =
        writeCatalog("bad.xml", "<nextCatalog catalog='none.xml'/><nextCatalog/>" +
                                    publicEntry(kMapId, "none.dtd"));
    EXPECT_EQ(findCatalogFault(bad), bad + ": a nextCatalog names no catalog");
    CatalogResolver named({bad, writeCatalog("good.xml", publicEntry(kMapId, "map.dtd"))});
    EXPECT_EQ(named.resolvePublic(kMapId), folder_.file("map.dtd"));
    CatalogResolver nested({writeCatalog(
        "outer.xml", "<nextCatalog catalog='bad.xml'/><nextCatalog catalog='good.xml'/>")});
    EXPECT_EQ(nested.resolvePublic(kMapId), folder_.file("map.dtd"));
}

TEST_F(CatalogResolverTest, NeverOpensAFifo) {
    // Nobody writes to it: opened in the usual way, it would hold the test up for good.
    ASSERT_EQ(mkfifo(folder_.file("fifo").c_str(), 0600), 0);
    CatalogResolver resolver(
        {folder_.file("fifo"),
         writeCatalog("c.xml", "<nextCatalog catalog='fifo'/>" + publicEntry(kMapId, "map.dtd"))});
    EXPECT_EQ(resolver.resolvePublic("unknown"), std::nullopt);
    EXPECT_EQ(resolver.resolvePublic(kMapId), folder_.file("map.dtd"));
}

TEST_F(CatalogResolverTest, EndsOnCatalogsThatNameEachOther) {
    writeCatalog("b.xml", "<nextCatalog catalog='a.xml'/>");
    CatalogResolver resolver({writeCatalog("a.xml", "<nextCatalog catalog='b.xml'/>")});
    EXPECT_EQ(resolver.resolvePublic(kMapId), std::nullopt);
}

/// A server that nobody is meant to call.
class Listener {
public:
    Listener() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        if (bind(socket_, generic, size) != 0 || listen(socket_, 4) != 0 ||
            getsockname(socket_, generic, &size) != 0) {
            throw std::runtime_error("cannot listen on the loopback interface");
        }
        port_ = ntohs(address.sin_port);
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener() { close(socket_); }

    std::string url(const std::string& scheme, const std::string& path) const {
        return scheme + "://127.0.0.1:" + std::to_string(port_) + path;
    }

    bool wasCalled() const {
        pollfd waiting{socket_, POLLIN, 0};
        return poll(&waiting, 1, 0) > 0;
    }

    void call() const {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<std::uint16_t>(port_));
        const int caller = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        EXPECT_EQ(connect(caller, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
        close(caller);
    }

private:
    int socket_;
    int port_ = 0;
};

TEST_F(CatalogResolverTest, NeverCallsAServer) {
    const Listener listener;
    for (const std::string& scheme : {std::string("http"), std::string("ftp")}) {
        const std::string url = listener.url(scheme, "/c.xml");
        std::ostringstream doctype;
        doctype << "<?xml version='1.0'?>\n<!DOCTYPE catalog PUBLIC 'x' '" << url
                << "' [<!ENTITY % e SYSTEM '" << url << "'> %e;]>\n";
        std::ostringstream entries;
        entries << "<nextCatalog catalog='" << url << "'/>"
                << "<delegatePublic publicIdStartString='-//' catalog='" << url << "'/>";
        const std::string catalog =
            folder_.write(scheme + ".xml", doctype.str() + catalogOf(entries.str()).substr(22));
        EXPECT_EQ(findCatalogFault(catalog), std::nullopt);
        CatalogResolver resolver({url, catalog});
        EXPECT_EQ(resolver.resolvePublic(kMapId), std::nullopt);
        EXPECT_EQ(resolver.resolvePublic("plain"), std::nullopt);
    }
    EXPECT_FALSE(listener.wasCalled());

    listener.call();
    EXPECT_TRUE(listener.wasCalled()) << "the listener would not have noticed a call";
}

TEST_F(CatalogResolverTest, FindsWhatIsWrongWithACatalog) {
    const std::string text = folder_.write("text.xml", "PUBLIC \"a\" \"b\"");
    const std::string other = folder_.write("other.xml", "<catalog/>");
    ASSERT_EQ(mkfifo(folder_.file("fifo").c_str(), 0600), 0);
    EXPECT_EQ(findCatalogFault(writeCatalog("good.xml", "")), std::nullopt);
    EXPECT_EQ(findCatalogFault(folder_.file("none.xml")),
              folder_.file("none.xml") + ": No such file or directory");
    EXPECT_EQ(findCatalogFault(folder_.path().string()),
              folder_.path().string() + ": not a regular file");
    EXPECT_EQ(findCatalogFault(folder_.file("fifo")),
              folder_.file("fifo") + ": not a regular file");
    EXPECT_EQ(findCatalogFault(text), text + ": not well-formed XML");
    EXPECT_EQ(findCatalogFault(other), other + ": not an XML catalog");
}

TEST_F(CatalogResolverTest, FindsWhatIsWrongWithACatalogThatAUriNames) {
    writeCatalog("a b/good.xml", "");
    folder_.write("a b/bad.xml", "<catalog/>");
    const std::string uri = "file://" + folder_.path().string() + "/a%20b/";
    EXPECT_EQ(findCatalogFault(uri + "good.xml"), std::nullopt);
    EXPECT_EQ(findCatalogFault(uri + "bad.xml"),
              folder_.file("a b/bad.xml") + ": not an XML catalog");
    EXPECT_EQ(findCatalogFault("file://server/c.xml"),
              "file://server/c.xml: No such file or directory");
}

TEST(CatalogPathTest, IsAbsolute) {
    EXPECT_EQ(catalogPath("c.xml"), std::filesystem::current_path() / "c.xml");
    EXPECT_EQ(catalogPath("file:///a%20b/c.xml"), "/a b/c.xml");
}

/// Sets the environment's list of catalogs for one test.
class DefaultCatalogsTest : public testing::Test {
protected:
    DefaultCatalogsTest() {
        if (const char* const value = std::getenv(kVariable)) {
            saved_ = value;
        }
    }
    ~DefaultCatalogsTest() override {
        if (saved_) {
            setenv(kVariable, saved_->c_str(), 1);
        } else {
            unsetenv(kVariable);
        }
    }

    static constexpr const char* kVariable = "XML_CATALOG_FILES";
    std::optional<std::string> saved_;
};

TEST_F(DefaultCatalogsTest, ComeFromTheEnvironment) {
    setenv(kVariable, "  /a.xml file:///b%20c.xml\t/d.xml ", 1);
    EXPECT_EQ(defaultCatalogs(),
              (std::vector<std::string>{"/a.xml", "file:///b%20c.xml", "/d.xml"}));
    setenv(kVariable, "", 1);
    EXPECT_TRUE(defaultCatalogs().empty());
}

TEST_F(DefaultCatalogsTest, AreTheSystemsAndTheToolkitsOtherwise) {
    unsetenv(kVariable);
    EXPECT_EQ(defaultCatalogs(), (std::vector<std::string>{"/etc/xml/catalog",
                                                           "/usr/share/dita-ot/catalog-dita.xml"}));
}

TEST_F(DefaultCatalogsTest, MayBeNamedByUri) {
    const TemporaryFolder folder;
    folder.write("a b/c.xml", catalogOf(publicEntry(kMapId, "map.dtd")));
    CatalogResolver resolver({"file://" + folder.path().string() + "/a%20b/c.xml"});
    EXPECT_EQ(resolver.resolvePublic(kMapId), folder.file("a b/map.dtd"));
}

}  // namespace
}  // namespace marrowpress
