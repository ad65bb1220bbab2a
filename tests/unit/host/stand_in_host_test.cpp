#include "host/stand_in_host.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "host/trace.h"
#include "marrowpress/interface_ref.h"

namespace marrowpress {
namespace {

/// A client that does what the test tells it to.
class FakeClient final : public IClientLifecycle, public IClientNotification {
public:
    ComStatus queryInterface(const InterfaceId& id, void** object) override {
        *object = nullptr;
        if (id == IClientLifecycle::kId) {
            *object = static_cast<IClientLifecycle*>(this);
        }
        if (id == IClientNotification::kId) {
            *object = static_cast<IClientNotification*>(this);
        }
        if (!*object) {
            return kComNoInterface;
        }
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
        if (onNotify) {
            onNotify(*InterfaceRef<IHostClients>::query(provider).get());
        }
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

TEST_F(StandInHostTest, TellsWhatItThrewIntoTheClient) {
    StandInHostOptions options;
    bool isInterrupted = true;
    options.isInterrupted = [&] { return isInterrupted; };
    const auto host = start(options);
    client_.onNotify = [](IHostClients& clients) {
        try {
            clients.callClient("XmlUtilities", "EntityResolver start -basefile \"/m\"", nullptr,
                               nullptr);
        } catch (const std::exception&) {
            // As a client has to withstand it.
        }
        clients.returnTypedValue(makeAnswer(), nullptr, nullptr);
    };
    EXPECT_THROW(host->send("x"), RunInterrupted);
    isInterrupted = false;
    EXPECT_EQ(host->send("x"), kExpectedAnswer);
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

constexpr const char* kMapQuestion = "EntityResolver resolveentity -publicid \"map\"";

TEST_F(StandInHostTest, TracesTheOperationsInOrder) {
    std::ostringstream out;
    Trace trace(out);
    StandInHostOptions options;
    options.trace = &trace;
    options.resolvePublicId = [](std::string_view) { return std::string("/dtd/map.dtd"); };
    const auto host = start(options);
    client_.onNotify = [](IHostClients& clients) {
        HostTypedValueList reply{};
        clients.callClientTyped("XmlUtilities", kMapQuestion, &reply, nullptr);
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
