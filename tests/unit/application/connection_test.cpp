#include "application/connection.h"

#include <gtest/gtest.h>

#include "application/host_operations.h"
#include "tests/support/scripted_host.h"

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

}  // namespace
}  // namespace marrowpress
