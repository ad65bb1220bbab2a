#include "host/stand_in_interfaces.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

#include "tests/support/message_texts.h"
#include "tests/support/observations.h"

namespace marrowpress {
namespace {

/// The interfaces of one host, each asked for as a client does.
class StandInInterfacesTest : public testing::Test {
protected:
    template <class Interface>
    InterfaceRef<Interface> query() const {
        return InterfaceRef<Interface>::query(&interfaces_->provider());
    }
    StandInInterfaces& host() { return *interfaces_; }
    void make(StandInHostOptions options) {
        interfaces_ = std::make_shared<StandInInterfaces>(std::move(options));
    }

private:
    std::shared_ptr<StandInInterfaces> interfaces_ =
        std::make_shared<StandInInterfaces>(StandInHostOptions());
};

TEST_F(StandInInterfacesTest, GivesOutEveryInterface) {
    EXPECT_TRUE(query<IHostObject>());
    EXPECT_TRUE(query<IHostMain>());
    EXPECT_TRUE(query<IHostText>());
    EXPECT_TRUE(query<IHostModules>());
    EXPECT_TRUE(query<IHostNotifications>());
    EXPECT_TRUE(query<IHostClients>());
    EXPECT_TRUE(query<IHostProperties>());
    EXPECT_TRUE(query<IHostProgress>());
    EXPECT_TRUE(query<IHostConsole>());
    EXPECT_FALSE(query<IClientResources>());
}

TEST_F(StandInInterfacesTest, HasAnObserverOnlyForSomebodyWhoListens) {
    EXPECT_FALSE(query<IHostObserver>());
    std::string told;
    StandInHostOptions options;
    options.onObservation = [&](const Observation& observation) { told = observation.target; };
    make(std::move(options));
    const auto observer = query<IHostObserver>();
    ASSERT_TRUE(observer);
    const ObservedStep step{{nullptr, 0, 0}, "", ""};
    const Observation observation{
        ObservationKind::kPhase, 0, 0, "", "keys", "", "", "", &step, 1, nullptr, 0};
    EXPECT_EQ(observer->observe(&observation), kComOk);
    EXPECT_EQ(told, "keys");
}

TEST_F(StandInInterfacesTest, HasAnObserverOfReferencesOnlyForSomebodyWhoWantsThem) {
    EXPECT_FALSE(query<IHostReferenceObserver>());
    std::string told;
    StandInHostOptions options;
    options.onReference = [&](const Observation& observation) { told = observation.target; };
    make(std::move(options));
    const auto observer = query<IHostReferenceObserver>();
    ASSERT_TRUE(observer);
    EXPECT_FALSE(query<IHostObserver>());
    const ObservedStep step{{nullptr, 0, 0}, "", ""};
    const Observation observation{
        ObservationKind::kKeyReference, 0, 0, "", "key", "", "", "", &step, 1, nullptr, 0};
    EXPECT_EQ(observer->observeReference(&observation), kComOk);
    EXPECT_EQ(told, "key");
    EXPECT_EQ(observer->observeReference(nullptr), kComOk);
}

TEST_F(StandInInterfacesTest, AnObserverThatThrowsFailsTheCall) {
    StandInHostOptions options;
    options.onObservation = [](const Observation&) { throw std::runtime_error("no"); };
    make(std::move(options));
    const ObservedStep step{{nullptr, 0, 0}, "", ""};
    const Observation observation{
        ObservationKind::kPhase, 0, 0, "", "keys", "", "", "", &step, 1, nullptr, 0};
    EXPECT_NE(query<IHostObserver>()->observe(&observation), kComOk);
}

TEST_F(StandInInterfacesTest, HandsTextsOverForGood) {
    const auto text = query<IHostText>();
    std::int32_t answer = -1;
    EXPECT_EQ(text->query(IHostText::kClientFreesTexts, &answer), kComOk);
    EXPECT_EQ(answer, 1);
    EXPECT_EQ(text->query(2, &answer), kComOk);
    EXPECT_EQ(answer, 0);
}

TEST_F(StandInInterfacesTest, WalksItsOpenDocuments) {
    StandInHostOptions options;
    options.openDocuments = {{7, "/a.dita", 1}, {9, "/b.dita", 0}};
    make(options);
    const auto properties = query<IHostProperties>();

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

TEST_F(StandInInterfacesTest, RefusesUnknownProperties) {
    StandInHostOptions options;
    options.openDocuments = {{7, "/a.dita", 1}};
    make(options);
    const auto properties = query<IHostProperties>();
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

TEST_F(StandInInterfacesTest, AnswersForXmlUtilities) {
    StandInHostOptions options;
    options.resolvePublicId = resolverOfMap();
    make(options);
    XmlUtilitiesProbe probe{query<IHostClients>()};

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

TEST_F(StandInInterfacesTest, MayDoWithoutXmlUtilities) {
    XmlUtilitiesProbe probe{query<IHostClients>()};
    EXPECT_EQ(probe.call("XmlUtilities", "EntityResolver end"), 0);
    EXPECT_EQ(probe.callTyped("XmlUtilities", kResolveMap), TypedValues());
}

TEST_F(StandInInterfacesTest, ShowsLinesAsTheyAre) {
    std::vector<std::string> lines;
    StandInHostOptions options;
    options.onProgress = [&](std::string_view line) { lines.emplace_back(line); };
    options.onConsole = [&](std::optional<MessageId> id, std::string_view line) {
        EXPECT_EQ(id, lines.size() == 1 ? std::nullopt : std::optional(MessageId::kCannotWrite));
        lines.emplace_back(line);
    };
    make(options);
    query<IHostProgress>()->reportProgress(4, "50 %s", -1, nullptr);
    query<IHostConsole>()->write("%n%n\r\n", nullptr);
    const std::string unwritten = cannotWrite("%n");
    query<IHostConsole>()->write(unwritten.c_str(), nullptr);
    EXPECT_EQ(lines, (std::vector<std::string>{"50 %s", "%n%n\r\n", unwritten}));
}

TEST_F(StandInInterfacesTest, ASinkThatThrowsFailsTheCall) {
    StandInHostOptions options;
    options.onConsole = [](std::optional<MessageId>, std::string_view) {
        throw std::runtime_error("full");
    };
    make(options);
    EXPECT_EQ(query<IHostConsole>()->write("x", nullptr), kComFailed);
}

/// Calls each operation that a run uses, and counts those that throw.
class EarlyEndTest : public StandInInterfacesTest {
protected:
    int countThrowing() {
        int count = 0;
        const auto call = [&count](const auto& operation) {
            try {
                EXPECT_EQ(operation(), kComOk);
            } catch (const std::runtime_error&) {
                ++count;
            }
        };
        const auto properties = query<IHostProperties>();
        const auto clients = query<IHostClients>();
        std::int32_t number = 0;
        std::uint32_t id = 0;
        char* text = nullptr;
        HostTypedValueList reply{0, nullptr};
        call([&] { return properties->getIntProp(0, 7, 131, &number, nullptr); });
        call([&] { return properties->getIdProp(0, 0, 53, &id, nullptr); });
        call([&] { return properties->getStringProp(0, 7, 89, &text, nullptr); });
        call([&] { return query<IHostProgress>()->reportProgress(4, "x", -1, nullptr); });
        call([&] { return query<IHostConsole>()->write("x", nullptr); });
        call([&] { return clients->callClient("XmlUtilities", kStart, &number, nullptr); });
        call([&] { return clients->callClientTyped("XmlUtilities", "x", &reply, nullptr); });
        std::free(text);
        releaseTypedValues(reply);
        return count;
    }

    static constexpr const char* kStart = "EntityResolver start -basefile \"/m\"";
    static constexpr int kOperations = 7;
};

TEST_F(EarlyEndTest, EachOperationOfAnInterruptedRunThrows) {
    bool isInterrupted = false;
    StandInHostOptions options;
    options.isInterrupted = [&] { return isInterrupted; };
    make(options);
    host().beginCall();
    EXPECT_EQ(countThrowing(), 0);
    isInterrupted = true;
    EXPECT_EQ(countThrowing(), kOperations);
    // Whatever was asked for once stays so.
    isInterrupted = false;
    EXPECT_EQ(countThrowing(), kOperations);
    EXPECT_THROW(host().endCall(), RunInterrupted);
    EXPECT_EQ(countThrowing(), 0);
    host().beginCall();
    EXPECT_EQ(countThrowing(), 0);
    EXPECT_EQ(host().endCall(), std::nullopt);
}

TEST_F(EarlyEndTest, ThePhaseThatInterruptsARunIsToldAndThrows) {
    bool isInterrupted = false;
    StandInHostOptions options;
    options.onObservation = [&](const Observation& met) {
        isInterrupted = met.kind == ObservationKind::kPhase;
    };
    options.isInterrupted = [&] { return isInterrupted; };
    make(options);
    host().beginCall();
    const auto observer = query<IHostObserver>();
    const Observation document = observationOf(ObservationKind::kDocumentRead, "/a.dita");
    EXPECT_EQ(observer->observe(&document), kComOk);
    const Observation phase = observationOf(ObservationKind::kPhase, "output");
    EXPECT_THROW(observer->observe(&phase), RunInterrupted);
    EXPECT_THROW(host().endCall(), RunInterrupted);
}

TEST_F(EarlyEndTest, OutsideOfARequestNothingIsInterrupted) {
    StandInHostOptions options;
    options.isInterrupted = [] { return true; };
    make(options);
    EXPECT_EQ(countThrowing(), 0);
}

TEST_F(EarlyEndTest, WhoCleansUpAndWhoAnswersIsNotInterrupted) {
    StandInHostOptions options;
    options.isInterrupted = [] { return true; };
    make(options);
    host().beginCall();
    const auto clients = query<IHostClients>();
    for (const char* const command : {"EntityResolver end", "EntityResolver terminate"}) {
        EXPECT_EQ(clients->callClient("XmlUtilities", command, nullptr, nullptr), kComOk);
    }
    EXPECT_EQ(clients->returnTypedValue({0, nullptr}, nullptr, nullptr), kComOk);
    EXPECT_EQ(host().endCall(), TypedValues());
}

TEST_F(EarlyEndTest, AResolverThatThrowsEndsTheRun) {
    StandInHostOptions options;
    options.resolvePublicId = [](std::string_view) -> std::optional<std::string> {
        throw std::runtime_error("no handle");
    };
    make(options);
    host().beginCall();
    HostTypedValueList reply{9, nullptr};
    std::int32_t status = 0;
    EXPECT_THROW(
        query<IHostClients>()->callClientTyped("XmlUtilities", kResolveMap, &reply, &status),
        std::runtime_error);
    EXPECT_EQ(reply.count, 0U);
    EXPECT_EQ(countThrowing(), kOperations);
    try {
        host().endCall();
        FAIL();
    } catch (const std::runtime_error& failure) {
        EXPECT_STREQ(failure.what(), "no handle");
    }
}

TEST_F(StandInInterfacesTest, TellsWhichDocumentTheClientIsAt) {
    std::vector<std::string> told;
    StandInHostOptions options;
    options.resolvePublicId = [](std::string_view) { return std::nullopt; };
    options.onDocument = [&told](std::string_view path) { told.emplace_back(path); };
    make(std::move(options));
    const auto clients = query<IHostClients>();
    for (const char* const command :
         {"EntityResolver start -basefile \"/a.dita\"",
          "EntityResolver resolveentity -publicid \"p\"", "EntityResolver end",
          "EntityResolver terminate", "nonsense"}) {
        EXPECT_EQ(clients->callClient("XmlUtilities", command, nullptr, nullptr), kComOk);
    }
    EXPECT_EQ(told, (std::vector<std::string>{"/a.dita", ""}));
}

}  // namespace
}  // namespace marrowpress
