#include "client/client_attachment.h"

#include <gtest/gtest.h>

#include <functional>

#include "application/host_operations.h"
#include "application/text_layer.h"
#include "client/notifications.h"
#include "tests/support/icu_data_directory.h"
#include "tests/support/scripted_host.h"

namespace marrowpress {
namespace {

using Lines = std::vector<std::string>;

std::uint32_t lastInitCode = 0;
std::string lastNotification;

void takeInitCode(std::uint32_t initCode) {
    lastInitCode = initCode;
}

void takeNotification(std::uint32_t notification, std::uint32_t objectId, const char* text,
                      std::int32_t number) {
    lastNotification = std::to_string(notification) + " " + std::to_string(objectId) + " " + text +
                       " " + std::to_string(number);
}

/// An object that the client is asked to keep.
class KeptObject final : public IHostObject {
public:
    std::uint32_t references = 0;
    std::function<void()> onAddRef;

    ComStatus queryInterface(const InterfaceId&, void** object) override {
        *object = nullptr;
        return kComNoInterface;
    }
    std::uint32_t addRef() override {
        if (onAddRef) {
            onAddRef();
        }
        return ++references;
    }
    std::uint32_t release() override { return --references; }
};

class ClientAttachmentTest : public testing::Test {
protected:
    ClientAttachmentTest() { HostSetClientEncoding("UTF-8"); }
    ~ClientAttachmentTest() override { HostLastError = 0; }

    std::int32_t attach(void* handle, const ClientRegistration* registration) {
        return attachClient(handle, &host.provider(), &kept, registration,
                            {&takeInitCode, &takeNotification});
    }

    IcuDataDirectory noIcuData;
    KeptObject kept;
    ScriptedHost host;
    int module = 0;  ///< its address serves as a handle
};

TEST_F(ClientAttachmentTest, NeedsAProvider) {
    EXPECT_EQ(attachClient(&module, nullptr, &kept, nullptr, {&takeInitCode, &takeNotification}),
              -1);
    EXPECT_EQ(kept.references, 0U);
    EXPECT_EQ(QsApiInterfacesC::connected(), nullptr);
}

TEST_F(ClientAttachmentTest, NeedsTheMainInterface) {
    host.missing = {IHostMain::kId};
    EXPECT_EQ(attach(&module, nullptr), -1);
    EXPECT_EQ(host.calls, Lines{});
    EXPECT_EQ(host.references, 0U);
    EXPECT_EQ(kept.references, 0U);
    EXPECT_EQ(QsApiInterfacesC::connected(), nullptr);
}

TEST_F(ClientAttachmentTest, NeedsNothingElse) {
    host.missing = {IHostText::kId,    IHostModules::kId,    IHostNotifications::kId,
                    IHostClients::kId, IHostProperties::kId, IHostProgress::kId,
                    IHostConsole::kId};
    EXPECT_EQ(attach(&module, nullptr), 0);
    EXPECT_EQ(host.calls, Lines{"attachClient"});
    EXPECT_NE(host.client, nullptr);
}

TEST_F(ClientAttachmentTest, GoesInItsOrder) {
    kept.onAddRef = [&] {
        EXPECT_FALSE(HostFinishMessageLoop);
        host.calls.emplace_back("keepAlive");
    };
    HostFinishMessageLoop = true;
    EXPECT_EQ(attach(&module, nullptr), 0);
    EXPECT_EQ(host.calls,
              Lines({"query 1", "attachClient", "useModule", "getStringProp 0 0 89", "keepAlive"}));
    EXPECT_FALSE(HostFinishMessageLoop);
}

TEST_F(ClientAttachmentTest, ShowsIcuTheHostsDataFolder) {
    host.texts[{0, 89}] = "/opt/host";
    EXPECT_EQ(attach(&module, nullptr), 0);
    EXPECT_EQ(IcuDataDirectory::current(), "/opt/host/icu_data");
}

TEST_F(ClientAttachmentTest, AttachesAnInProcessClientAndNamesItsModule) {
    EXPECT_EQ(attach(&module, nullptr), 0);
    EXPECT_EQ(host.attachFlags, 0x18000000U);
    EXPECT_EQ(host.module, &module);
}

TEST_F(ClientAttachmentTest, HandsAGivenRegistrationOn) {
    ClientRegistration registration{};
    registration.fields[2] = "Given";
    registration.fields[11] = "out";
    for (void* handle : {static_cast<void*>(&module), static_cast<void*>(nullptr)}) {
        EXPECT_EQ(attach(handle, &registration), 0);
        Lines expected(12, "(null)");
        expected[2] = "Given";
        expected[11] = "out";
        EXPECT_EQ(host.registration, expected);
        host.dropClient();
    }
}

TEST_F(ClientAttachmentTest, DescribesItselfWithoutARegistration) {
    EXPECT_EQ(attach(&module, nullptr), 0);
    EXPECT_EQ(host.registration,
              Lines({"(null)", "(null)", "Marrowpress", "", "Map-level DITA publishing",
                     "Quillstone", "", "", "", "", "", ""}));
}

TEST_F(ClientAttachmentTest, SaysNothingOfItselfWithoutAModule) {
    EXPECT_EQ(attach(nullptr, nullptr), 0);
    EXPECT_EQ(host.registration, std::nullopt);
    EXPECT_EQ(host.module, nullptr);
}

TEST_F(ClientAttachmentTest, LearnsWhoFreesTexts) {
    for (const std::int32_t clientFreesTexts : {0, 1}) {
        host.clientFreesTexts = clientFreesTexts;
        EXPECT_EQ(attach(&module, nullptr), 0);
        ASSERT_NE(QsApiInterfacesC::connected(), nullptr);
        EXPECT_EQ(QsApiInterfacesC::connected()->freesHostTexts, clientFreesTexts != 0);
        host.dropClient();
    }
}

TEST_F(ClientAttachmentTest, HoldsTheKeptObjectAsLongAsTheHostHoldsTheClient) {
    EXPECT_EQ(attach(&module, nullptr), 0);
    EXPECT_EQ(kept.references, 1U);
    EXPECT_EQ(host.references, 8U);
    host.dropClient();
    EXPECT_EQ(kept.references, 0U);
    EXPECT_EQ(host.references, 0U);
    EXPECT_EQ(QsApiInterfacesC::connected(), nullptr);
}

TEST_F(ClientAttachmentTest, LeavesTheHostTheOnlyReference) {
    EXPECT_EQ(attach(&module, nullptr), 0);
    EXPECT_EQ(host.client->addRef(), 2U);
    EXPECT_EQ(host.client->release(), 1U);
}

TEST_F(ClientAttachmentTest, NeedsNoObjectToKeep) {
    EXPECT_EQ(attachClient(&module, &host.provider(), nullptr, nullptr,
                           {&takeInitCode, &takeNotification}),
              0);
    EXPECT_NE(host.client, nullptr);
}

TEST_F(ClientAttachmentTest, GoesAwayWithAHostThatKeepsNoReference) {
    host.keepsClient = false;
    EXPECT_EQ(attach(&module, nullptr), 0);
    EXPECT_EQ(host.references, 0U);
    EXPECT_EQ(kept.references, 0U);
    EXPECT_EQ(QsApiInterfacesC::connected(), nullptr);
}

TEST_F(ClientAttachmentTest, AHostThatRefusesIsNoFailure) {
    host.hostStatus = 17;
    EXPECT_EQ(attach(&module, nullptr), 0);
    host.dropClient();
    host.hostStatus = 0;
    host.comStatus = kComFailed;
    EXPECT_EQ(attach(&module, nullptr), 0);
}

TEST_F(ClientAttachmentTest, TheHostsCallsReachTheCallbacks) {
    ASSERT_EQ(attach(&module, nullptr), 0);
    const auto lifecycle = InterfaceRef<IClientLifecycle>::query(host.client);
    const auto notification = InterfaceRef<IClientNotification>::query(host.client);
    ASSERT_TRUE(lifecycle && notification);
    EXPECT_EQ(lifecycle->initialize(7), kComOk);
    EXPECT_EQ(lastInitCode, 7U);
    EXPECT_EQ(notification->notify(13, 5, "text", -2), kComOk);
    EXPECT_EQ(lastNotification, "13 5 text -2");
}

TEST_F(ClientAttachmentTest, OperationsGoToTheHost) {
    ASSERT_EQ(attach(&module, nullptr), 0);
    host.calls.clear();
    HostConsoleWrite("line\r\n");
    EXPECT_EQ(host.calls, Lines{"write line\r\n"});
}

}  // namespace
}  // namespace marrowpress
