#include "client/notifications.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "application/host_operations.h"
#include "client/version_resource.h"
#include "tests/support/scripted_host.h"

namespace marrowpress {
namespace {

using Callback = QuillstoneNotificationsC::Callback;
using Lines = std::vector<std::string>;

/// What came to a record, field by field.
Lines fieldsOf(const NotificationRecord& record) {
    Lines fields;
    for (const char* const* field = record.fields(); *field; ++field) {
        fields.emplace_back(*field);
    }
    EXPECT_EQ(record.count(), fields.size());
    return fields;
}

/// The record that stands in place of a notification's text.
const NotificationRecord& recordIn(const char* text) {
    return *reinterpret_cast<const NotificationRecord*>(text);
}

struct RecordCase {
    const char* text;
    Lines fields;
};

TEST(NotificationRecordTest, IsCutAtEachSeparator) {
    const RecordCase cases[] = {
        {"one", {"one"}},
        {"one\x1Etwo", {"one", "two"}},
        {"one\x1E\x1Ethree", {"one", "", "three"}},
        {"\x1Eone\x1E", {"", "one", ""}},
        {"\x1E", {"", ""}},
        {"", {""}},
        {"\xC3\xA4 \t\x1F\x1D\x1Ex", {"\xC3\xA4 \t\x1F\x1D", "x"}},
    };
    for (const RecordCase& record : cases) {
        EXPECT_EQ(fieldsOf(NotificationRecord(record.text)), record.fields);
    }
}

TEST(NotificationRecordTest, NoTextIsNoField) {
    const NotificationRecord record(nullptr);
    EXPECT_EQ(record.count(), 0U);
    EXPECT_EQ(record.fields()[0], nullptr);
}

TEST(NotificationRecordTest, LeavesTheTextAlone) {
    const std::string text =
        "a\x1E"
        "b";
    const NotificationRecord record(text.c_str());
    EXPECT_EQ(text,
              "a\x1E"
              "b");
}

TEST(NotificationRecordTest, IsFoundBehindItsTextForm) {
    const NotificationRecord record(
        "a\x1E"
        "b");
    EXPECT_EQ(&recordIn(record.asText()), &record);
}

/// What the callbacks got last.
struct Received {
    std::vector<std::uint32_t> initCodes;
    std::uint32_t notification = 0;
    std::uint32_t objectId = 0;
    const char* text = nullptr;
    std::int32_t number = 0;
    Lines fields;
    std::uint32_t countAtCall = 0;
};

Received received;
QuillstoneNotificationsC* current = nullptr;

void receiveInitCode(std::uint32_t initCode) {
    received.initCodes.push_back(initCode);
}

void receiveNotification(std::uint32_t notification, std::uint32_t objectId, const char* text,
                         std::int32_t number) {
    received.notification = notification;
    received.objectId = objectId;
    received.text = text;
    received.number = number;
    received.countAtCall = current->callCount(Callback::kNotify);
    if (notification == 75) {
        received.fields = fieldsOf(recordIn(text));
    }
}

void throwAtInitialize(std::uint32_t) {
    throw std::runtime_error("not ready");
}

void throwAtNotify(std::uint32_t, std::uint32_t, const char*, std::int32_t) {
    throw 42;
}

class QuillstoneNotificationsCTest : public testing::Test {
protected:
    QuillstoneNotificationsCTest() {
        received = {};
        current = client.get();
    }
    ~QuillstoneNotificationsCTest() override { current = nullptr; }

    InterfaceRef<QuillstoneNotificationsC> make(const ClientCallbacks& callbacks) {
        return InterfaceRef<QuillstoneNotificationsC>(
            QuillstoneNotificationsC::create(QsApiInterfacesC(host.provider()), callbacks));
    }

    ScriptedHost host;
    InterfaceRef<QuillstoneNotificationsC> client = make({&receiveInitCode, &receiveNotification});
};

TEST_F(QuillstoneNotificationsCTest, ConnectsTheHostOperationsWhileItLives) {
    EXPECT_EQ(QsApiInterfacesC::connected(), client.get());
    HostEnableUnicode(1);
    EXPECT_EQ(host.calls, Lines{"enableUnicode 1"});
    client = InterfaceRef<QuillstoneNotificationsC>();
    EXPECT_EQ(QsApiInterfacesC::connected(), nullptr);
    EXPECT_EQ(host.references, 0U);
}

TEST_F(QuillstoneNotificationsCTest, AnswersForItsInterfaces) {
    struct {
        InterfaceId id;
        void* expected;
    } const cases[] = {
        {IHostObject::kId, static_cast<IClientLifecycle*>(client.get())},
        {IClientLifecycle::kId, static_cast<IClientLifecycle*>(client.get())},
        {IClientNotification::kId, static_cast<IClientNotification*>(client.get())},
        {IClientResources::kId, static_cast<IClientResources*>(client.get())},
    };
    for (const auto& [id, expected] : cases) {
        void* object = nullptr;
        EXPECT_EQ(client->queryInterface(id, &object), kComOk);
        EXPECT_EQ(object, expected);
        EXPECT_EQ(client->release(), 1U);
    }
}

TEST_F(QuillstoneNotificationsCTest, HasNoOtherInterface) {
    InterfaceId almost = IClientLifecycle::kId;
    almost.data4[7] = 0xFF;
    for (const InterfaceId& id : {IHostMain::kId, IHostText::kId, InterfaceId{}, almost}) {
        void* object = this;
        EXPECT_EQ(client->queryInterface(id, &object), kComNoInterface);
        EXPECT_EQ(object, nullptr);
    }
    EXPECT_EQ(client->addRef(), 2U);
    EXPECT_EQ(client->release(), 1U);
}

TEST_F(QuillstoneNotificationsCTest, LivesUntilTheLastReferenceGoes) {
    EXPECT_EQ(client->addRef(), 2U);
    EXPECT_EQ(client->addRef(), 3U);
    EXPECT_EQ(client->release(), 2U);
    EXPECT_EQ(client->release(), 1U);
    EXPECT_EQ(host.references, 8U);
}

TEST_F(QuillstoneNotificationsCTest, HoldsOneReferenceOnTheKeptObject) {
    ScriptedHost kept;
    client->keptAlive = InterfaceRef<IHostObject>::share(&kept.provider());
    EXPECT_EQ(kept.references, 1U);
    client->keptAlive = InterfaceRef<IHostObject>::share(&kept.provider());
    EXPECT_EQ(kept.references, 1U);
    client = InterfaceRef<QuillstoneNotificationsC>();
    EXPECT_EQ(kept.references, 0U);
}

TEST_F(QuillstoneNotificationsCTest, PassesAnInitialisationOn) {
    EXPECT_EQ(client->initialize(1), kComOk);
    EXPECT_EQ(client->initialize(0), kComOk);
    EXPECT_EQ(received.initCodes, std::vector<std::uint32_t>({1, 0}));
}

TEST_F(QuillstoneNotificationsCTest, PassesNotificationsOnAsTheyAre) {
    for (const std::uint32_t notification : {0U, 12U, 13U, 14U, 74U, 76U, 4294967295U}) {
        const char* const text =
            "a\x1E"
            "b";
        EXPECT_EQ(client->notify(notification, 7, text, -3), kComOk);
        EXPECT_EQ(received.notification, notification);
        EXPECT_EQ(received.objectId, 7U);
        EXPECT_EQ(static_cast<const void*>(received.text), text);
        EXPECT_EQ(received.number, -3);
    }
}

TEST_F(QuillstoneNotificationsCTest, PassesAMissingTextOn) {
    EXPECT_EQ(client->notify(13, 0, nullptr, 0), kComOk);
    EXPECT_EQ(received.notification, 13U);
    EXPECT_EQ(received.text, nullptr);
}

TEST_F(QuillstoneNotificationsCTest, HandsARecordInPlaceOfItsText) {
    const std::string text =
        "a\x1E"
        "b\x1E";
    EXPECT_EQ(client->notify(75, 7, text.c_str(), 2), kComOk);
    EXPECT_EQ(received.notification, 75U);
    EXPECT_EQ(received.objectId, 7U);
    EXPECT_EQ(received.number, 2);
    EXPECT_EQ(received.fields, Lines({"a", "b", ""}));
    EXPECT_NE(static_cast<const void*>(received.text), text.c_str());
}

TEST_F(QuillstoneNotificationsCTest, ARecordWithoutTextHasNoFields) {
    EXPECT_EQ(client->notify(75, 0, nullptr, 0), kComOk);
    ASSERT_NE(received.text, nullptr);
    EXPECT_EQ(received.fields, Lines{});
}

TEST_F(QuillstoneNotificationsCTest, CountsEachKindOfCallback) {
    const auto counts = [&] {
        return std::vector<std::uint32_t>{
            client->callCount(Callback::kInitialize), client->callCount(Callback::kTerminate),
            client->callCount(Callback::kNotify), client->callCount(Callback::kGetResource)};
    };
    EXPECT_EQ(counts(), std::vector<std::uint32_t>({0, 0, 0, 0}));
    client->initialize(1);
    EXPECT_EQ(counts(), std::vector<std::uint32_t>({1, 0, 0, 0}));
    EXPECT_EQ(client->terminate(), kComOk);
    EXPECT_EQ(counts(), std::vector<std::uint32_t>({1, 1, 0, 0}));
    client->notify(13, 0, "", 0);
    client->notify(75, 0, "", 0);
    client->notify(1, 0, "", 0);
    EXPECT_EQ(counts(), std::vector<std::uint32_t>({1, 1, 3, 0}));
    char* text = nullptr;
    client->getResource("none", &text);
    EXPECT_EQ(counts(), std::vector<std::uint32_t>({1, 1, 3, 1}));
}

TEST_F(QuillstoneNotificationsCTest, CountsANotificationBeforeItGoesOn) {
    client->notify(13, 0, "", 0);
    EXPECT_EQ(received.countAtCall, 1U);
}

TEST_F(QuillstoneNotificationsCTest, TerminationKeepsTheHost) {
    EXPECT_EQ(client->terminate(), kComOk);
    EXPECT_EQ(host.calls, Lines{});
    EXPECT_EQ(QsApiInterfacesC::connected(), client.get());
}

TEST_F(QuillstoneNotificationsCTest, WhatACallbackThrowsEndsHere) {
    const InterfaceRef<QuillstoneNotificationsC> throwing =
        make({&throwAtInitialize, &throwAtNotify});
    EXPECT_EQ(throwing->initialize(1), static_cast<ComStatus>(0x8000FFFFU));
    EXPECT_EQ(throwing->notify(13, 0, "", 0), static_cast<ComStatus>(0x8000FFFFU));
    EXPECT_EQ(throwing->notify(75, 0,
                               "a\x1E"
                               "b",
                               0),
              static_cast<ComStatus>(0x8000FFFFU));
    EXPECT_EQ(throwing->callCount(Callback::kInitialize), 1U);
    EXPECT_EQ(throwing->callCount(Callback::kNotify), 2U);
}

TEST_F(QuillstoneNotificationsCTest, TellsThePathOfTheModule) {
    char* text = nullptr;
    ASSERT_EQ(client->getResource(nullptr, &text), kComOk);
    const HostText owner(text);
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(std::filesystem::equivalent(text, "/proc/self/exe")) << text;
}

TEST_F(QuillstoneNotificationsCTest, TellsTheTextsOfTheModule) {
    for (const char* name : {"ClientName", "FileDescription", "ClientProducts"}) {
        char* text = nullptr;
        EXPECT_EQ(client->getResource(name, &text), kComOk);
        const HostText owner(text);
        EXPECT_STREQ(text, versionResource(name));
        EXPECT_NE(text, versionResource(name)) << "the caller frees it";
    }
}

TEST_F(QuillstoneNotificationsCTest, HasNoOtherText) {
    for (const char* name : {"", "ClientVendor", "no such name"}) {
        char other = 'x';
        char* text = &other;
        EXPECT_EQ(client->getResource(name, &text), kComOk);
        EXPECT_EQ(text, nullptr) << name;
    }
}

}  // namespace
}  // namespace marrowpress
