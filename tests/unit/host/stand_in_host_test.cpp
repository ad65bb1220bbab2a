#include "host/stand_in_host.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <stdexcept>

#include "host/trace.h"
#include "marrowpress/interface_ref.h"
#include "tests/support/message_texts.h"

namespace marrowpress {
namespace {

/// A client that does what the test tells it to.
class FakeClient final : public IClientLifecycle, public IClientNotification {
public:
    ComStatus queryInterface(const InterfaceId& id, void** object) override {
        *object = nullptr;
        if (id == IClientLifecycle::kId) *object = static_cast<IClientLifecycle*>(this);
        if (id == IClientNotification::kId) *object = static_cast<IClientNotification*>(this);
        if (*object == nullptr) return kComNoInterface;
        addRef();
        return kComOk;
    }
    std::uint32_t addRef() override { return ++references; }
    std::uint32_t release() override { return --references; }

    ComStatus initialize(std::uint32_t code) override {
        initCode = code;
        std::int32_t status = -1;
        InterfaceRef<IHostNotifications>::query(provider)->registerNotification(13, 1, &status);
        return status == 0 ? kComOk : kComFailed;
    }
    ComStatus terminate() override {
        ++terminations;
        return kComOk;
    }
    ComStatus notify(std::uint32_t notification, std::uint32_t, const char* text,
                     std::int32_t) override {
        received = std::to_string(notification) + ":" + text;
        if (onNotify) onNotify(*InterfaceRef<IHostClients>::query(provider).get());
        return kComOk;
    }

    IHostObject* provider = nullptr;
    std::function<void(IHostClients&)> onNotify;
    std::uint32_t references = 0;
    std::uint32_t initCode = 0;
    int terminations = 0;
    std::string received;
};

// The entry function has no argument that could carry the test's client.
FakeClient* currentClient = nullptr;

std::int32_t attachFakeClient(void*, IHostObject* provider, IHostObject*,
                              const ClientRegistration*) {
    currentClient->provider = provider;
    const auto host = InterfaceRef<IHostMain>::query(provider);
    std::int32_t status = -1;
    host->attachClient(static_cast<IClientLifecycle*>(currentClient), IHostMain::kInProcessClient,
                       nullptr, &status);
    return status;
}

std::int32_t refuse(void*, IHostObject*, IHostObject*, const ClientRegistration*) {
    return -1;
}

std::int32_t attachNothing(void*, IHostObject*, IHostObject*, const ClientRegistration*) {
    return 0;
}

char* duplicate(const char* text) {
    return copyToMalloc(text);
}

/// An answer with one value of each type, built as a client builds it.
HostTypedValueList makeAnswer() {
    auto* const values = static_cast<HostTypedValue*>(std::calloc(4, sizeof(HostTypedValue)));
    values[0].type = HostValueType::kInteger;
    values[0].value.integer = -43;
    values[1].type = HostValueType::kStringList;
    values[1].value.strings = {2, 0, static_cast<char**>(std::calloc(2, sizeof(char*)))};
    values[1].value.strings.strings[0] = duplicate("/a.dita");
    values[1].value.strings.strings[1] = duplicate("");
    values[2].type = HostValueType::kIntegerList;
    values[2].value.integers = {1, 0,
                                static_cast<std::int32_t*>(std::calloc(1, sizeof(std::int32_t)))};
    values[2].value.integers.integers[0] = 7;
    values[3].type = HostValueType::kString;
    values[3].value.string = duplicate("x");
    return {4, values};
}

const TypedValues kExpectedAnswer{{1, -43},
                                  {6, std::vector<std::string>{"/a.dita", ""}},
                                  {15, std::vector<std::int32_t>{7}},
                                  {3, std::string("x")}};

class StandInHostTest : public testing::Test {
protected:
    StandInHostTest() { currentClient = &client_; }
    ~StandInHostTest() override { currentClient = nullptr; }

    /// A host with the fake client attached and started.
    std::unique_ptr<StandInHost> start(StandInHostOptions options = {}) {
        auto host = std::make_unique<StandInHost>(std::move(options));
        EXPECT_TRUE(host->attach(attachFakeClient));
        EXPECT_TRUE(host->initialize());
        return host;
    }

    FakeClient client_;
};

TEST_F(StandInHostTest, CarriesARequestAndItsAnswer) {
    const auto host = start();
    client_.onNotify = [](IHostClients& clients) {
        HostTypedValueList answer{9, nullptr};
        std::int32_t status = -1;
        EXPECT_EQ(clients.returnTypedValue(makeAnswer(), &answer, &status), kComOk);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(answer.count, 0U);
    };
    EXPECT_EQ(host->send("{\"type\":1}"), kExpectedAnswer);
    EXPECT_EQ(client_.received, "13:{\"type\":1}");
    EXPECT_EQ(client_.initCode, 1U);
}

TEST_F(StandInHostTest, HasNoAnswerWhenTheClientGivesNone) {
    const auto host = start();
    EXPECT_EQ(host->send("x"), std::nullopt);
}

TEST_F(StandInHostTest, ForgetsTheAnswerOfTheRequestBefore) {
    const auto host = start();
    client_.onNotify = [](IHostClients& clients) {
        clients.returnTypedValue(makeAnswer(), nullptr, nullptr);
    };
    EXPECT_TRUE(host->send("x").has_value());
    client_.onNotify = nullptr;
    EXPECT_EQ(host->send("x"), std::nullopt);
}

TEST_F(StandInHostTest, TakesAnEmptyAnswerForAnAnswer) {
    const auto host = start();
    client_.onNotify = [](IHostClients& clients) {
        clients.returnTypedValue({0, nullptr}, nullptr, nullptr);
    };
    EXPECT_EQ(host->send("x"), TypedValues());
}

TEST_F(StandInHostTest, RefusesAnAnswerOutsideOfACall) {
    const auto host = start();
    std::int32_t status = 0;
    const auto clients = InterfaceRef<IHostClients>::query(&host->provider());
    EXPECT_EQ(clients->returnTypedValue(makeAnswer(), nullptr, &status), kComOk);
    EXPECT_NE(status, 0);
    EXPECT_EQ(host->send("x"), std::nullopt);
}

TEST_F(StandInHostTest, SendsNothingToAClientThatHasNotSubscribed) {
    StandInHost host;
    ASSERT_TRUE(host.attach(attachFakeClient));
    EXPECT_FALSE(host.isSubscribed(13));
    EXPECT_EQ(host.send("x"), std::nullopt);
    EXPECT_EQ(client_.received, "");
}

TEST_F(StandInHostTest, SendsNothingAfterTheSubscriptionEnded) {
    const auto host = start();
    EXPECT_TRUE(host->isSubscribed(13));
    InterfaceRef<IHostNotifications>::query(&host->provider())
        ->registerNotification(13, 0, nullptr);
    EXPECT_EQ(host->send("x"), std::nullopt);
    EXPECT_EQ(client_.received, "");
}

TEST_F(StandInHostTest, IsNotAttachedWhenTheClientRefusesOrAttachesNothing) {
    StandInHost host;
    EXPECT_FALSE(host.attach(refuse));
    EXPECT_FALSE(host.attach(attachNothing));
    EXPECT_FALSE(host.initialize());
    EXPECT_EQ(host.send("x"), std::nullopt);
}

TEST_F(StandInHostTest, LetsTheClientGoAtItsEnd) {
    {
        const auto host = start();
        EXPECT_EQ(client_.references, 1U);
        EXPECT_EQ(host->referenceCount(), 0U);
    }
    EXPECT_EQ(client_.references, 0U);
    EXPECT_EQ(client_.terminations, 1);
}

TEST_F(StandInHostTest, TakesOneClientOnly) {
    const auto host = start();
    EXPECT_EQ(attachFakeClient(nullptr, &host->provider(), nullptr, nullptr), -1);
    EXPECT_EQ(client_.references, 1U);
}

TEST_F(StandInHostTest, OutlivesItsOwnerWhileAReferenceIsOut) {
    auto host = std::make_unique<StandInHost>();
    const auto properties = InterfaceRef<IHostProperties>::query(&host->provider());
    EXPECT_EQ(host->referenceCount(), 1U);
    host.reset();
    std::uint32_t id = 1;
    EXPECT_EQ(properties->getIdProp(0, 0, 53, &id, nullptr), kComOk);
    EXPECT_EQ(id, 0U);
}

TEST_F(StandInHostTest, GivesOutEveryInterface) {
    StandInHost host;
    IHostObject* const provider = &host.provider();
    EXPECT_TRUE(InterfaceRef<IHostObject>::query(provider));
    EXPECT_TRUE(InterfaceRef<IHostMain>::query(provider));
    EXPECT_TRUE(InterfaceRef<IHostText>::query(provider));
    EXPECT_TRUE(InterfaceRef<IHostModules>::query(provider));
    EXPECT_TRUE(InterfaceRef<IHostNotifications>::query(provider));
    EXPECT_TRUE(InterfaceRef<IHostClients>::query(provider));
    EXPECT_TRUE(InterfaceRef<IHostProperties>::query(provider));
    EXPECT_TRUE(InterfaceRef<IHostProgress>::query(provider));
    EXPECT_TRUE(InterfaceRef<IHostConsole>::query(provider));
    EXPECT_FALSE(InterfaceRef<IClientResources>::query(provider));
}

TEST_F(StandInHostTest, HandsTextsOverForGood) {
    StandInHost host;
    const auto text = InterfaceRef<IHostText>::query(&host.provider());
    std::int32_t answer = -1;
    EXPECT_EQ(text->query(IHostText::kClientFreesTexts, &answer), kComOk);
    EXPECT_EQ(answer, 1);
    EXPECT_EQ(text->query(2, &answer), kComOk);
    EXPECT_EQ(answer, 0);
}

TEST_F(StandInHostTest, WalksItsOpenDocuments) {
    StandInHostOptions options;
    options.openDocuments = {{7, "/a.dita", 1}, {9, "/b.dita", 0}};
    StandInHost host(options);
    const auto properties = InterfaceRef<IHostProperties>::query(&host.provider());

    const auto id = [&](std::uint32_t object, std::uint32_t property) {
        std::uint32_t value = 99;
        properties->getIdProp(0, object, property, &value, nullptr);
        return value;
    };
    EXPECT_EQ(id(0, 53), 7U);
    EXPECT_EQ(id(7, 111), 9U);
    EXPECT_EQ(id(9, 111), 0U);

    char* path = nullptr;
    ASSERT_EQ(properties->getStringProp(0, 9, 20, &path, nullptr), kComOk);
    EXPECT_STREQ(path, "/b.dita");
    std::free(path);

    std::int32_t flag = -1;
    properties->getIntProp(0, 7, 131, &flag, nullptr);
    EXPECT_EQ(flag, 1);
}

struct UnknownProperty {
    std::uint32_t object;
    std::uint32_t property;
};

TEST_F(StandInHostTest, RefusesUnknownProperties) {
    StandInHostOptions options;
    options.openDocuments = {{7, "/a.dita", 1}};
    StandInHost host(options);
    const auto properties = InterfaceRef<IHostProperties>::query(&host.provider());
    for (const auto& [object, property] :
         std::array<UnknownProperty, 5>{{{0, 89}, {0, 1}, {7, 53}, {8, 20}, {8, 131}}}) {
        SCOPED_TRACE(property);
        std::int32_t status = 0;
        std::uint32_t id = 99;
        EXPECT_EQ(properties->getIdProp(0, object, property, &id, &status), kComOk);
        EXPECT_NE(status, 0);
        EXPECT_EQ(id, 0U);
        status = 0;
        std::int32_t number = 99;
        EXPECT_EQ(properties->getIntProp(0, object, property, &number, &status), kComOk);
        EXPECT_NE(status, 0);
        EXPECT_EQ(number, 0);
        status = 0;
        std::array<char, 1> text{};
        char* value = text.data();
        EXPECT_EQ(properties->getStringProp(0, object, property, &value, &status), kComOk);
        EXPECT_NE(status, 0);
        EXPECT_EQ(value, nullptr);
    }
}

/// What the client "XmlUtilities" says, as a client reads it.
struct XmlUtilitiesProbe {
    explicit XmlUtilitiesProbe(StandInHost& host)
        : clients(InterfaceRef<IHostClients>::query(&host.provider())) {}

    std::int32_t call(const char* client, const char* command) {
        std::int32_t result = 99;
        EXPECT_EQ(clients->callClient(client, command, &result, nullptr), kComOk);
        return result;
    }
    TypedValues callTyped(const char* client, const char* command) {
        HostTypedValueList reply{9, nullptr};
        EXPECT_EQ(clients->callClientTyped(client, command, &reply, nullptr), kComOk);
        return copyTypedValues(HostTypedValues(reply).list());
    }

    InterfaceRef<IHostClients> clients;
};

constexpr const char* kResolveMap = "EntityResolver resolveentity -publicid \"map\"";

StandInHostOptions::PublicIdResolver resolverOfMap() {
    return [](std::string_view id) {
        return id == "map" ? std::optional<std::string>("/dtd/map.dtd") : std::nullopt;
    };
}

TEST_F(StandInHostTest, AnswersForXmlUtilities) {
    StandInHostOptions options;
    options.resolvePublicId = resolverOfMap();
    StandInHost host(options);
    XmlUtilitiesProbe probe(host);

    EXPECT_EQ(probe.call("XmlUtilities", "EntityResolver start -basefile \"/m\""), 1);
    EXPECT_EQ(probe.call("XmlUtilities", kResolveMap), 1);
    EXPECT_EQ(probe.call("XmlUtilities", "EntityResolver end"), 1);
    EXPECT_EQ(probe.call("XmlUtilities", "EntityResolver terminate"), 1);
    EXPECT_EQ(probe.call("XmlUtilities", "EntityResolver stop"), 0);
    EXPECT_EQ(probe.call("xmlutilities", "EntityResolver end"), 0);

    EXPECT_EQ(probe.callTyped("XmlUtilities", kResolveMap),
              (TypedValues{{3, std::string("/dtd/map.dtd")}}));
    EXPECT_EQ(probe.callTyped("XmlUtilities", "EntityResolver resolveentity -publicid \"topic\""),
              TypedValues());
    EXPECT_EQ(probe.callTyped("XmlUtilities", "EntityResolver end"), TypedValues());
    EXPECT_EQ(probe.callTyped("Other", kResolveMap), TypedValues());
}

TEST_F(StandInHostTest, MayDoWithoutXmlUtilities) {
    StandInHost host;
    XmlUtilitiesProbe probe(host);
    EXPECT_EQ(probe.call("XmlUtilities", "EntityResolver end"), 0);
    EXPECT_EQ(probe.callTyped("XmlUtilities", kResolveMap), TypedValues());
}

TEST_F(StandInHostTest, ShowsLinesAsTheyAre) {
    std::vector<std::string> lines;
    StandInHostOptions options;
    options.onProgress = [&](std::string_view line) { lines.emplace_back(line); };
    options.onConsole = [&](std::optional<MessageId> id, std::string_view line) {
        EXPECT_EQ(id, lines.size() == 1 ? std::nullopt : std::optional(MessageId::kCannotWrite));
        lines.emplace_back(line);
    };
    StandInHost host(options);
    InterfaceRef<IHostProgress>::query(&host.provider())->reportProgress(4, "50 %s", -1, nullptr);
    InterfaceRef<IHostConsole>::query(&host.provider())->write("%n%n\r\n", nullptr);
    const std::string unwritten = cannotWrite("%n");
    InterfaceRef<IHostConsole>::query(&host.provider())->write(unwritten.c_str(), nullptr);
    EXPECT_EQ(lines, (std::vector<std::string>{"50 %s", "%n%n\r\n", unwritten}));
}

TEST_F(StandInHostTest, ThrowsNothingThroughTheClient) {
    StandInHostOptions options;
    options.onConsole = [](std::optional<MessageId>, std::string_view) {
        throw std::runtime_error("full");
    };
    options.resolvePublicId = [](std::string_view) -> std::optional<std::string> { throw 1; };
    StandInHost host(options);
    EXPECT_EQ(InterfaceRef<IHostConsole>::query(&host.provider())->write("x", nullptr), kComFailed);
    HostTypedValueList reply{9, nullptr};
    EXPECT_EQ(InterfaceRef<IHostClients>::query(&host.provider())
                  ->callClientTyped("XmlUtilities", kResolveMap, &reply, nullptr),
              kComFailed);
    EXPECT_EQ(reply.count, 0U);
}

TEST_F(StandInHostTest, TracesTheOperationsInOrder) {
    std::ostringstream out;
    Trace trace(out);
    StandInHostOptions options;
    options.trace = &trace;
    options.resolvePublicId = resolverOfMap();
    const auto host = start(options);
    client_.onNotify = [](IHostClients& clients) {
        HostTypedValueList reply{};
        clients.callClientTyped("XmlUtilities", kResolveMap, &reply, nullptr);
        releaseTypedValues(reply);
        clients.returnTypedValue({0, nullptr}, nullptr, nullptr);
    };
    host->send("x");
    EXPECT_EQ(out.str(),
              R"({"op":"HostRegisterNotification","notification":13,"state":1,"result":0}
{"op":"HostCallClientTyped","client":"XmlUtilities","command":"EntityResolver resolveentity -publicid \"map\"","reply":[{"type":3,"value":"/dtd/map.dtd"}]}
{"op":"HostReturnTypedValue","values":[]}
)");
}

}  // namespace
}  // namespace marrowpress
