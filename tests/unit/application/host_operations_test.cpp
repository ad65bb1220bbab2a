#include "application/host_operations.h"

#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

#include "tests/support/scripted_host.h"

namespace marrowpress {
namespace {

using Lines = std::vector<std::string>;

/// One host operation, its results as text.
struct Operation {
    const char* name;
    InterfaceId interfaceId;
    std::string (*run)();
    const char* call;  ///< what arrives at the host
    const char* value;
    const char* failure;
    bool givesStatus;  ///< gives the host's own status in place of a failure value
};

std::string print(const HostTypedValues& values) {
    return boost::json::serialize(toJson(copyTypedValues(values.list())));
}

const Operation kOperations[] = {
    {"HostEnableUnicode", IHostText::kId,
     [] {
         HostEnableUnicode(1);
         return std::string();
     },
     "enableUnicode 1", "", "", false},
    {"HostRegisterNotification", IHostNotifications::kId,
     [] { return std::to_string(HostRegisterNotification(13, 1)); }, "registerNotification 13 1",
     "0", "", true},
    {"HostCallClient", IHostClients::kId,
     [] { return std::to_string(HostCallClient("Other", "do it")); }, "callClient Other: do it",
     "-3", "0", false},
    {"HostCallClientTyped", IHostClients::kId,
     [] { return print(HostCallClientTyped("Other", "ask it")); }, "callClientTyped Other: ask it",
     R"([{"type":3,"value":"reply"}])", "[]", false},
    {"HostReturnTypedValue", IHostClients::kId,
     [] { return print(HostReturnTypedValue(HostTypedValues(makeStringReply("mine")))); },
     "returnTypedValue", R"([{"type":3,"value":"received"}])", "[]", false},
    {"HostGetIntProp", IHostProperties::kId,
     [] { return std::to_string(HostGetIntProp(0, 7, HostProperty::kDocumentFlag)); },
     "getIntProp 0 7 131", "-9", "0", false},
    {"HostGetIdProp", IHostProperties::kId,
     [] { return std::to_string(HostGetIdProp(0, 7, HostProperty::kNextDocument)); },
     "getIdProp 0 7 111", "4294967295", "0", false},
    {"HostGetStringProp", IHostProperties::kId,
     [] {
         const HostText text = HostGetStringProp(0, 7, HostProperty::kDocumentPath);
         return std::string(text ? text.get() : "null");
     },
     "getStringProp 0 7 20", "/a.dita", "null", false},
    {"HostReportProgress", IHostProgress::kId,
     [] { return std::to_string(HostReportProgress(4, "half", -1)); }, "reportProgress 4 -1 half",
     "0", "", true},
    {"HostConsoleWrite", IHostConsole::kId,
     [] { return std::to_string(HostConsoleWrite("100%s\r\n")); }, "write 100%s\r\n", "0", "",
     true},
};

/// What `operation` gives when the host fails with `status`.
std::string failureValue(const Operation& operation, std::int32_t status) {
    return operation.givesStatus ? std::to_string(status) : operation.failure;
}

class HostOperationsTest : public testing::Test {
protected:
    HostOperationsTest() {
        host.commandResult = -3;
        host.integers[{7, 131}] = -9;
        host.ids[{7, 111}] = 4294967295;
        host.texts[{7, 20}] = "/a.dita";
        HostLastError = 0;
    }
    ~HostOperationsTest() override { HostLastError = 0; }

    /// Connects the host operations to `host`, as it is now, until the end of the scope.
    QsApiInterfacesC connected() {
        QsApiInterfacesC interfaces(host.provider());
        interfaces.connect();
        return interfaces;
    }

    ScriptedHost host;
};

TEST_F(HostOperationsTest, EachCallsItsOneMethodAndGivesTheValue) {
    const QsApiInterfacesC interfaces = connected();
    for (const Operation& operation : kOperations) {
        host.calls.clear();
        EXPECT_EQ(operation.run(), operation.value) << operation.name;
        EXPECT_EQ(host.calls, Lines{operation.call}) << operation.name;
        EXPECT_EQ(HostLastError, 0) << operation.name;
    }
}

TEST_F(HostOperationsTest, ASuccessLeavesTheLastError) {
    const QsApiInterfacesC interfaces = connected();
    for (const Operation& operation : kOperations) {
        HostLastError = 1234;
        EXPECT_EQ(operation.run(), operation.value) << operation.name;
        EXPECT_EQ(HostLastError, 1234) << operation.name;
    }
}

TEST_F(HostOperationsTest, APositiveStatusOfTheCallIsGood) {
    const QsApiInterfacesC interfaces = connected();
    host.comStatus = 1;
    for (const Operation& operation : kOperations) {
        EXPECT_EQ(operation.run(), operation.value) << operation.name;
        EXPECT_EQ(HostLastError, 0) << operation.name;
    }
}

TEST_F(HostOperationsTest, EachFailsWhenJustItsInterfaceIsMissing) {
    for (const Operation& operation : kOperations) {
        host.missing = {operation.interfaceId};
        const QsApiInterfacesC interfaces = connected();
        for (const Operation& other : kOperations) {
            const bool isMissing = other.interfaceId == operation.interfaceId;
            host.calls.clear();
            HostLastError = 0;
            EXPECT_EQ(other.run(), isMissing ? failureValue(other, -1) : other.value) << other.name;
            EXPECT_EQ(HostLastError, isMissing ? -1 : 0) << other.name;
            EXPECT_EQ(host.calls.size(), isMissing ? 0U : 1U) << other.name;
        }
    }
}

TEST_F(HostOperationsTest, AllFailWithoutAHost) {
    ASSERT_EQ(QsApiInterfacesC::connected(), nullptr);
    for (const Operation& operation : kOperations) {
        HostLastError = 0;
        EXPECT_EQ(operation.run(), failureValue(operation, -1)) << operation.name;
        EXPECT_EQ(HostLastError, -1) << operation.name;
    }
}

TEST_F(HostOperationsTest, ABusyHostHasAnErrorOfItsOwn) {
    const QsApiInterfacesC interfaces = connected();
    host.comStatus = static_cast<ComStatus>(0x8001010AU);
    for (const Operation& operation : kOperations) {
        HostLastError = 0;
        EXPECT_EQ(operation.run(), failureValue(operation, -88)) << operation.name;
        EXPECT_EQ(HostLastError, -88) << operation.name;
    }
}

TEST_F(HostOperationsTest, AnyOtherFailedCallIsUnavailable) {
    const QsApiInterfacesC interfaces = connected();
    for (const std::uint32_t status : {0x80004005U, 0x80004002U, 0x8000FFFFU, 0x80010109U,
                                       0x8001010BU, 0x80000000U, 0xFFFFFFFFU}) {
        host.comStatus = static_cast<ComStatus>(status);
        for (const Operation& operation : kOperations) {
            HostLastError = 0;
            EXPECT_EQ(operation.run(), failureValue(operation, -1)) << operation.name;
            EXPECT_EQ(HostLastError, -1) << operation.name;
        }
    }
}

TEST_F(HostOperationsTest, AFailedCallHidesTheHostsStatus) {
    const QsApiInterfacesC interfaces = connected();
    host.comStatus = kComFailed;
    host.hostStatus = 17;
    for (const Operation& operation : kOperations) {
        HostLastError = 0;
        EXPECT_EQ(operation.run(), failureValue(operation, -1)) << operation.name;
        EXPECT_EQ(HostLastError, -1) << operation.name;
    }
}

TEST_F(HostOperationsTest, AHostThatRefusesSaysWhy) {
    const QsApiInterfacesC interfaces = connected();
    for (const std::int32_t status : {17, -5, 1}) {
        host.hostStatus = status;
        for (const Operation& operation : kOperations) {
            HostLastError = 0;
            EXPECT_EQ(operation.run(), failureValue(operation, status)) << operation.name;
            EXPECT_EQ(HostLastError, status) << operation.name;
        }
    }
}

TEST_F(HostOperationsTest, ALaterFailureTakesThePlaceOfTheEarlier) {
    const QsApiInterfacesC interfaces = connected();
    host.hostStatus = 17;
    HostEnableUnicode(1);
    host.hostStatus = 18;
    HostConsoleWrite("x");
    EXPECT_EQ(HostLastError, 18);
}

TEST_F(HostOperationsTest, ReturnedValuesArriveAtTheHost) {
    const QsApiInterfacesC interfaces = connected();
    HostReturnTypedValue(HostTypedValues(makeStringReply("mine")));
    EXPECT_EQ(host.answers, Lines{R"([{"type":3,"value":"mine"}])"});
}

TEST_F(HostOperationsTest, ATextOfTheHostsIsCopiedWhenTheHostFreesIt) {
    host.clientFreesTexts = 0;
    QsApiInterfacesC interfaces = connected();
    interfaces.askWhoFreesTexts();
    const HostText text = HostGetStringProp(0, 7, HostProperty::kDocumentPath);
    EXPECT_STREQ(text.get(), "/a.dita");
    EXPECT_NE(text.get(), (host.texts[{7, 20}].data()));
}

TEST_F(HostOperationsTest, ATextOfTheHostsIsTakenOverWhenItIsFreedHere) {
    host.clientFreesTexts = 1;
    QsApiInterfacesC interfaces = connected();
    interfaces.askWhoFreesTexts();
    EXPECT_STREQ(HostGetStringProp(0, 7, HostProperty::kDocumentPath).get(), "/a.dita");
    host.hostStatus = 17;
    EXPECT_EQ(HostGetStringProp(0, 7, HostProperty::kDocumentPath), nullptr);
}

TEST_F(HostOperationsTest, AStringPropertyThatIsNotThereIsNull) {
    for (const std::int32_t clientFreesTexts : {0, 1}) {
        host.clientFreesTexts = clientFreesTexts;
        QsApiInterfacesC interfaces = connected();
        interfaces.askWhoFreesTexts();
        EXPECT_EQ(HostGetStringProp(0, 8, HostProperty::kDocumentPath), nullptr);
        EXPECT_EQ(HostLastError, 0);
    }
}

TEST(HostPropertyTest, HasTheHostsNumbers) {
    EXPECT_EQ(static_cast<std::uint32_t>(HostProperty::kFirstDocument), 53U);
    EXPECT_EQ(static_cast<std::uint32_t>(HostProperty::kNextDocument), 111U);
    EXPECT_EQ(static_cast<std::uint32_t>(HostProperty::kDocumentPath), 20U);
    EXPECT_EQ(static_cast<std::uint32_t>(HostProperty::kDocumentFlag), 131U);
    EXPECT_EQ(static_cast<std::uint32_t>(HostProperty::kIcuDataParent), 89U);
    EXPECT_EQ(kSessionObject, 0U);
}

}  // namespace
}  // namespace marrowpress
