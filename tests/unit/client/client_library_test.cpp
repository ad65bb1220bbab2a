#include "client/client_library.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "client/host_operations.h"
#include "support/text.h"
#include "tests/unit/client/icu_data_directory.h"
#include "tests/unit/client/refused_converters.h"
#include "tests/unit/client/scripted_host.h"

namespace marrowpress {
namespace {

using Lines = std::vector<std::string>;

const InterfaceId kHostInterfaces[] = {
    IHostMain::kId,    IHostText::kId,       IHostModules::kId,  IHostNotifications::kId,
    IHostClients::kId, IHostProperties::kId, IHostProgress::kId, IHostConsole::kId};

/// Which interfaces `interfaces` has, in the order of `kHostInterfaces`.
std::vector<bool> present(const QsApiInterfacesC& interfaces) {
    return {static_cast<bool>(interfaces.main),     static_cast<bool>(interfaces.textSettings),
            static_cast<bool>(interfaces.modules),  static_cast<bool>(interfaces.notifications),
            static_cast<bool>(interfaces.clients),  static_cast<bool>(interfaces.properties),
            static_cast<bool>(interfaces.progress), static_cast<bool>(interfaces.console)};
}

TEST(QsApiInterfacesCTest, AsksForEachInterfaceAndReleasesIt) {
    ScriptedHost host;
    {
        const QsApiInterfacesC interfaces(host.provider());
        EXPECT_EQ(present(interfaces), std::vector<bool>(8, true));
        EXPECT_EQ(host.references, 8U);
        EXPECT_EQ(QsApiInterfacesC::connected(), nullptr);
    }
    EXPECT_EQ(host.references, 0U);
    EXPECT_EQ(host.calls, Lines{});
}

TEST(QsApiInterfacesCTest, WhatTheHostLacksStaysNull) {
    for (std::size_t missing = 0; missing < std::size(kHostInterfaces); ++missing) {
        ScriptedHost host;
        host.missing = {kHostInterfaces[missing]};
        std::vector<bool> expected(8, true);
        expected[missing] = false;
        EXPECT_EQ(present(QsApiInterfacesC(host.provider())), expected) << missing;
        EXPECT_EQ(host.references, 0U) << missing;
    }
}

TEST(QsApiInterfacesCTest, TheLastConnectedCounts) {
    ScriptedHost firstHost;
    ScriptedHost secondHost;
    QsApiInterfacesC first(firstHost.provider());
    first.connect();
    {
        QsApiInterfacesC second(secondHost.provider());
        second.connect();
        HostEnableUnicode(1);
    }
    EXPECT_EQ(firstHost.calls, Lines{});
    EXPECT_EQ(secondHost.calls, Lines{"enableUnicode 1"});
    EXPECT_EQ(QsApiInterfacesC::connected(), nullptr);
}

TEST(QsApiInterfacesCTest, TheEndOfAnotherKeepsTheConnection) {
    ScriptedHost host;
    QsApiInterfacesC interfaces(host.provider());
    interfaces.connect();
    { const QsApiInterfacesC other(host.provider()); }
    EXPECT_EQ(QsApiInterfacesC::connected(), &interfaces);
}

TEST(QsApiInterfacesCTest, TheConnectionFollowsAMove) {
    ScriptedHost host;
    host.clientFreesTexts = 1;
    QsApiInterfacesC first(host.provider());
    first.askWhoFreesTexts();
    first.connect();
    const QsApiInterfacesC second(std::move(first));
    EXPECT_EQ(QsApiInterfacesC::connected(), &second);
    EXPECT_EQ(present(second), std::vector<bool>(8, true));
    EXPECT_TRUE(second.freesHostTexts);
    EXPECT_EQ(host.references, 8U);
}

TEST(QsApiInterfacesCTest, AMoveConnectsNothing) {
    ScriptedHost host;
    QsApiInterfacesC first(host.provider());
    const QsApiInterfacesC second(std::move(first));
    EXPECT_EQ(QsApiInterfacesC::connected(), nullptr);
    EXPECT_FALSE(second.freesHostTexts);
}

TEST(QsApiInterfacesCTest, AsksOnceWhoFreesTexts) {
    struct {
        std::int32_t answer;
        ComStatus status;
        bool isFreedHere;
    } const cases[] = {{1, kComOk, true},
                       {2, kComOk, true},
                       {0, kComOk, false},
                       {1, kComFailed, false},
                       {1, kComServerBusy, false}};
    for (const auto& [answer, status, isFreedHere] : cases) {
        ScriptedHost host;
        host.clientFreesTexts = answer;
        host.questionStatus = status;
        QsApiInterfacesC interfaces(host.provider());
        interfaces.askWhoFreesTexts();
        EXPECT_EQ(interfaces.freesHostTexts, isFreedHere) << answer << " " << status;
        EXPECT_EQ(host.calls, Lines{"query 1"});
    }
}

TEST(QsApiInterfacesCTest, WithoutAnAnswerTheHostFreesTexts) {
    ScriptedHost host;
    host.clientFreesTexts = 1;
    host.missing = {IHostText::kId};
    QsApiInterfacesC interfaces(host.provider());
    interfaces.askWhoFreesTexts();
    EXPECT_FALSE(interfaces.freesHostTexts);
}

TEST(HostRefTest, TakesOverOneReference) {
    ScriptedHost host;
    host.addRef();
    {
        const HostRef<IHostMain> held(&host);
        EXPECT_EQ(held.get(), static_cast<IHostMain*>(&host));
        EXPECT_EQ(host.references, 1U);
    }
    EXPECT_EQ(host.references, 0U);
}

TEST(HostRefTest, SharesByAReferenceOfItsOwn) {
    ScriptedHost host;
    {
        const auto shared = HostRef<IHostObject>::share(&host.provider());
        EXPECT_EQ(host.references, 1U);
    }
    EXPECT_EQ(host.references, 0U);
    EXPECT_FALSE(HostRef<IHostObject>::share(nullptr));
}

TEST(HostRefTest, MovesItsReference) {
    ScriptedHost host;
    HostRef<IHostObject> first = HostRef<IHostObject>::share(&host.provider());
    HostRef<IHostObject> second(std::move(first));
    EXPECT_FALSE(first);
    EXPECT_EQ(host.references, 1U);
    HostRef<IHostObject> third;
    third = std::move(second);
    EXPECT_FALSE(second);
    EXPECT_TRUE(third);
    EXPECT_EQ(host.references, 1U);
}

TEST(HostSetClientEncodingTest, TakesOnlyNamesOfTheLibrary) {
    for (const char* name : {"QuillRoman", "UTF-8"}) {
        EXPECT_TRUE(HostSetClientEncoding(name)) << name;
        EXPECT_EQ(hostClientEncoding(), name);
    }
    for (const char* name : {"", "utf-8", "UTF8", "UTF-8 ", "UTF-80", "no-such-encoding"}) {
        EXPECT_FALSE(HostSetClientEncoding(name)) << name;
        EXPECT_EQ(hostClientEncoding(), "UTF-8") << name;
    }
}

TEST(HostSetClientEncodingTest, KeepsNothingOfTheCallersText) {
    std::string name = "UTF-8";
    ASSERT_TRUE(HostSetClientEncoding(name));
    name = "xxxxx";
    EXPECT_EQ(hostClientEncoding(), "UTF-8");
}

/// What the text layer finds at its start, and makes of it.
class TextLayerTest : public testing::Test {
protected:
    TextLayerTest() {
        interfaces_.connect();
        HostLastError = 0;
        HostSetClientEncoding("UTF-8");
    }
    ~TextLayerTest() override { HostLastError = 0; }

    ScriptedHost host;

private:
    IcuDataDirectory none_;
    QsApiInterfacesC interfaces_{host.provider()};
};

TEST_F(TextLayerTest, ShowsIcuTheHostsDataFolder) {
    host.texts[{0, 89}] = "/opt/host";
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "/opt/host/icu_data");
    EXPECT_EQ(host.calls, Lines{"getStringProp 0 0 89"});
}

TEST_F(TextLayerTest, LeavesADirectoryThatIcuHas) {
    const IcuDataDirectory earlier("/usr/share/other");
    host.texts[{0, 89}] = "/opt/host";
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "/usr/share/other");
    EXPECT_EQ(host.calls, Lines{});
}

TEST_F(TextLayerTest, SetsNoDirectoryFromAnEmptyProperty) {
    host.texts[{0, 89}] = "";
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "");
}

TEST_F(TextLayerTest, SetsNoDirectoryWithoutTheProperty) {
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "");
}

TEST_F(TextLayerTest, SetsNoDirectoryFromAFailedRead) {
    host.texts[{0, 89}] = "/opt/host";
    host.hostStatus = 17;
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "");
    EXPECT_EQ(HostLastError, 17);
    host.hostStatus = 0;
    host.comStatus = kComFailed;
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "");
    EXPECT_EQ(HostLastError, -1);
}

TEST_F(TextLayerTest, AnEarlierErrorDoesNotCountAsAFailedRead) {
    host.texts[{0, 89}] = "/opt/host";
    HostLastError = 17;
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "/opt/host/icu_data");
    EXPECT_EQ(HostLastError, 17);
}

TEST_F(TextLayerTest, KeepsAnEncodingThatWasChosen) {
    initializeTextLayer();
    EXPECT_EQ(hostClientEncoding(), "UTF-8");
}

// The first choice of a process can only be seen in a process of its own.

TEST(TextLayerStartDeathTest, ChoosesTheDefaultWhenNothingWasChosen) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const bool wasEmpty = hostClientEncoding().empty();
            initializeTextLayer();
            std::_Exit(wasEmpty && hostClientEncoding() == "QuillRoman" ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

// The converter of a process is opened once.
TEST(ConverterStartDeathTest, WithoutAConverterTheRunsBetweenControlCharactersAreLost) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const RefusedConverters refused;
            const bool isAsTold = toUtf16(std::string_view("a\tb\nc")) == u"\t\n" &&
                                  toUtf8(std::u16string_view(u"a\nb\x01")) == "\n\x01" &&
                                  toUtf16(std::string_view("\xFF")) == u"???";
            std::_Exit(isAsTold ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(TextLayerStartDeathTest, AnEarlierChoiceStays) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            HostSetClientEncoding("UTF-8");
            initializeTextLayer();
            std::_Exit(hostClientEncoding() == "UTF-8" ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace marrowpress
