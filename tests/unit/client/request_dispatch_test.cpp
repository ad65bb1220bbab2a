#include "client/request_dispatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <functional>
#include <new>
#include <stdexcept>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>

#include "application/host_operations.h"
#include "application/messengers.h"
#include "application/text_layer.h"
#include "client/client_attachment.h"
#include "profiling/condition_merge.h"
#include "references/direct_references.h"
#include "references/exclusion_filter.h"
#include "references/node_filters.h"
#include "support/request_singleton.h"
#include "tests/support/icu_data_directory.h"
#include "tests/support/message_texts.h"
#include "tests/support/refused_converters.h"
#include "tests/support/scripted_host.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/texts.h"
#include "tests/unit/client/xml_platform.h"
#include "xml/document_store.h"
#include "xml/grammar_parser_cache.h"

namespace marrowpress {
namespace {

using Lines = std::vector<std::string>;

bool hasRequestObjects() {
    return RequestSingleton<DocumentStore>::existing() ||
           RequestSingleton<GrammarParserCache>::existing() ||
           RequestSingleton<TopicIdGenerator>::existing() ||
           RequestSingleton<OpenDocumentTable>::existing() ||
           RequestSingleton<ProgressMessenger>::existing() ||
           RequestSingleton<ReportMessenger>::existing() ||
           RequestSingleton<ExclusionFilterHolder>::existing() ||
           RequestSingleton<ConditionRenamer>::existing();
}

/// An answer of four values, the lists as JSON.
std::string answer(std::int32_t status, const boost::json::array& flaggedPaths = {},
                   const boost::json::array& flaggedIds = {},
                   const boost::json::array& openIds = {}) {
    return boost::json::serialize(boost::json::array{{{"type", 1}, {"value", status}},
                                                     {{"type", 6}, {"value", flaggedPaths}},
                                                     {{"type", 15}, {"value", flaggedIds}},
                                                     {{"type", 15}, {"value", openIds}}});
}

class RequestDispatchTest : public testing::Test {
protected:
    RequestDispatchTest() { interfaces_.connect(); }
    ~RequestDispatchTest() override {
        EXPECT_FALSE(isXmlPlatformUp());
        EXPECT_FALSE(hasRequestObjects());
        HostLastError = 0;
        HostFinishMessageLoop = false;
        HostSetClientEncoding("UTF-8");
    }

    ScriptedHost host;

private:
    QsApiInterfacesC interfaces_{host.provider()};
};

using OnClientInitializeTest = RequestDispatchTest;

TEST_F(OnClientInitializeTest, SubscribesInItsOrder) {
    const IcuDataDirectory none;
    HostFinishMessageLoop = false;
    host.onCall = [&](const std::string& call) { EXPECT_FALSE(HostFinishMessageLoop) << call; };
    onClientInitialize(1);
    EXPECT_EQ(host.calls,
              Lines({"enableUnicode 1", "getStringProp 0 0 89", "registerNotification 13 1"}));
    EXPECT_TRUE(HostFinishMessageLoop);
}

TEST_F(OnClientInitializeTest, ShowsIcuTheHostsDataFolder) {
    const IcuDataDirectory none;
    host.texts[{0, 89}] = "/opt/host";
    onClientInitialize(1);
    EXPECT_EQ(IcuDataDirectory::current(), "/opt/host/icu_data");
}

TEST_F(OnClientInitializeTest, DoesNotAskForTheDataOfAnIcuThatHasIts) {
    const IcuDataDirectory earlier("/usr/share/other");
    onClientInitialize(1);
    EXPECT_EQ(host.calls, Lines({"enableUnicode 1", "registerNotification 13 1"}));
}

TEST_F(OnClientInitializeTest, OtherCodesDoNothing) {
    const IcuDataDirectory none;
    HostFinishMessageLoop = false;
    for (const std::uint32_t code : {0U, 2U, 13U, 0x100U, 0xFFFFFFFFU}) {
        onClientInitialize(code);
        EXPECT_EQ(host.calls, Lines{}) << code;
        EXPECT_FALSE(HostFinishMessageLoop) << code;
    }
}

TEST_F(OnClientInitializeTest, GoesOnWhenTheHostRefuses) {
    const IcuDataDirectory none;
    host.hostStatus = 17;
    onClientInitialize(1);
    EXPECT_EQ(host.calls.back(), "registerNotification 13 1");
    EXPECT_TRUE(HostFinishMessageLoop);
}

using OnNotifyTest = RequestDispatchTest;

TEST_F(OnNotifyTest, OtherNotificationsAreIgnored) {
    for (const std::uint32_t notification : {0U, 1U, 12U, 14U, 75U, 0x10DU, 0xFFFFFFFFU}) {
        onNotify(notification, 0, "{}", 0);
        onNotify(notification, 0, nullptr, 0);
        EXPECT_EQ(host.calls, Lines{}) << notification;
        EXPECT_FALSE(isXmlPlatformUp()) << notification;
        EXPECT_FALSE(hasRequestObjects()) << notification;
    }
}

TEST_F(OnNotifyTest, AnEmptyTextIsAnsweredWithinASession) {
    bool isUpAtAnswer = false;
    host.onCall = [&](const std::string&) { isUpAtAnswer = isXmlPlatformUp(); };
    onNotify(13, 0, "", 0);
    EXPECT_EQ(host.calls, Lines{"returnTypedValue"});
    EXPECT_TRUE(isUpAtAnswer);
    EXPECT_FALSE(isXmlPlatformUp());
    EXPECT_EQ(host.answers, Lines{answer(-43)});
}

TEST_F(OnNotifyTest, BadRequestsAreRefused) {
    for (const char* text : {
             static_cast<const char*>(nullptr),
             " ",
             "x",
             "{",
             "[]",
             "1",
             "null",
             "{}",
             R"({"params": {}})",
             R"({"type": 1, "params": {}})",
             R"({"type": null, "params": {}})",
             R"({"type": "Publish", "params": {}})",
             R"({"type": "Other", "params": {}})",
             R"({"type": "PublishComp"})",
             R"({"type": "PublishComp", "params": null})",
             R"({"type": "PublishComp", "params": []})",
             R"({"type": "PublishComp", "params": {}})",
             R"({"type": "PublishComp", "params": {"output": 1}})",
             R"({"type": "PublishFlatBook"})",
             R"({"type": "PublishFlatBook", "params": {}})",
             R"({"type": "PublishFlatBook", "params": {"outputDir": false}})",
         }) {
        host.answers.clear();
        onNotify(13, 0, text, 0);
        EXPECT_EQ(host.answers, Lines{answer(-43)}) << (text ? text : "(null)");
        EXPECT_FALSE(isXmlPlatformUp());
    }
}

TEST_F(OnNotifyTest, TheObjectAndTheNumberDoNotCount) {
    onNotify(13, 4294967295U, "", -7);
    EXPECT_EQ(host.answers, Lines{answer(-43)});
}

TEST_F(OnNotifyTest, AHostThatTakesNoAnswerChangesNothing) {
    host.hostStatus = 17;
    onNotify(13, 0, "", 0);
    EXPECT_FALSE(isXmlPlatformUp());
    host.hostStatus = 0;
    host.comStatus = kComServerBusy;
    onNotify(13, 0, "", 0);
    EXPECT_FALSE(isXmlPlatformUp());
    EXPECT_EQ(host.answers.size(), 2U);
}

TEST_F(OnNotifyTest, WithoutTheInterfaceForAnswersTheSessionIsClosed) {
    host.missing = {IHostClients::kId};
    QsApiInterfacesC interfaces(host.provider());
    interfaces.connect();
    onNotify(13, 0, "", 0);
    EXPECT_EQ(HostLastError, -1);
    EXPECT_FALSE(isXmlPlatformUp());
}

/// Whether a request passes a failure on, and nobody has heard of it.
bool endsUnanswered(const ScriptedHost& host) {
    try {
        onNotify(13, 0, "", 0);
        return false;
    } catch (...) {
        return host.calls.empty() && !hasRequestObjects();
    }
}

TEST(EngineStartTest, AFailureIsPassedOnAndTheNextRequestIsServed) {
    ScriptedHost host;
    QsApiInterfacesC interfaces(host.provider());
    interfaces.connect();
    // The first one is that with which a start that breaks off is undone.
    for (const int allowed : {0, 1}) {
        const RefusedConverters refused(allowed);
        EXPECT_TRUE(endsUnanswered(host));
        EXPECT_TRUE(endsUnanswered(host));
        EXPECT_FALSE(isXmlPlatformUp());
    }
    onNotify(13, 0, "", 0);
    EXPECT_EQ(host.answers.size(), 1U);
    EXPECT_FALSE(isXmlPlatformUp());
}

/// Requests for a map with one topic.
class ServedRequestTest : public RequestDispatchTest {
protected:
    ServedRequestTest() {
        folder.write("book.ditamap",
                     "<map class=\"- map/map \"><topicref class=\"- map/topicref \" "
                     "href=\"t.dita\"/></map>");
        folder.write("t.dita",
                     "<topic class=\"- topic/topic \" id=\"t\"><title class=\"- topic/title \">T"
                     "</title></topic>");
        params["ditamap"] = folder.file("book.ditamap");
        params["output"] = folder.file("out.xml");
        params["ditaVal"] = "";
        params["keyspaceDocDtd"] = folder.write("map.dtd", "<!ELEMENT map ANY>");
        params["compositeDocDtd"] = folder.write("dita.dtd", "<!ELEMENT dita ANY>");
        params["usePrint"] = false;
    }

    /// Runs the request and gives the one answer.
    std::string serve() {
        host.answers.clear();
        const boost::json::object request{{"type", "PublishComp"}, {"params", params}};
        onNotify(13, 0, boost::json::serialize(request).c_str(), 0);
        EXPECT_EQ(host.answers.size(), 1U);
        return host.answers.empty() ? "" : host.answers.front();
    }

    /// Opens a document in the host, as the only one.
    void open(const std::string& path, std::uint32_t id, std::int32_t flag) {
        host.ids[{0, 53}] = id;
        host.texts[{id, 20}] = path;
        host.integers[{id, 131}] = flag;
    }

    TemporaryFolder folder;
    boost::json::object params;
};

TEST_F(ServedRequestTest, GivesTheStatusAndThreeEmptyLists) {
    EXPECT_EQ(serve(), answer(0));
    EXPECT_NE(folder.read("out.xml").find(kGeneratedIds[0]), std::string::npos);
}

TEST_F(ServedRequestTest, ASecondTimeGivesTheSame) {
    serve();
    const std::string first = folder.read("out.xml");
    EXPECT_EQ(serve(), answer(0));
    EXPECT_EQ(folder.read("out.xml"), first);
}

TEST_F(ServedRequestTest, OpenDocumentsAreAskedForEachTime) {
    EXPECT_EQ(serve(), answer(0));
    open(folder.file("t.dita"), 7, 1);
    EXPECT_EQ(serve(), answer(0, {folder.file("t.dita")}, {7}, {}));
    open(folder.file("book.ditamap"), 8, 0);
    EXPECT_EQ(serve(), answer(0, {}, {}, {8}));
}

TEST_F(ServedRequestTest, AFailureAfterItForgetsItsLists) {
    open(folder.file("t.dita"), 7, 1);
    serve();
    onNotify(13, 0, "", 0);
    EXPECT_EQ(host.answers.back(), answer(-43));
}

TEST_F(ServedRequestTest, TheAnswerComesBeforeTheParserGoes) {
    bool isStoreThereAtAnswer = false;
    host.onCall = [&](const std::string& call) {
        if (call == "returnTypedValue") {
            isStoreThereAtAnswer = RequestSingleton<DocumentStore>::existing() != nullptr;
        }
    };
    serve();
    EXPECT_TRUE(isStoreThereAtAnswer);
    const auto returned = std::find(host.calls.begin(), host.calls.end(), "returnTypedValue");
    EXPECT_NE(
        std::find(returned, host.calls.end(), "callClient XmlUtilities: EntityResolver terminate"),
        host.calls.end());
}

TEST_F(ServedRequestTest, TheTextEndsAtItsFirstNul) {
    boost::json::object request{{"type", "PublishComp"}, {"params", params}};
    const std::string text = boost::json::serialize(request) + '\0' + "garbage";
    onNotify(13, 0, text.c_str(), 0);
    EXPECT_EQ(host.answers, Lines{answer(0)});
}

TEST_F(ServedRequestTest, AnUnreadableTopicIsNoFailure) {
    folder.write("t.dita", "<topic");
    EXPECT_EQ(serve(), answer(0));
    EXPECT_NE(std::find(host.calls.begin(), host.calls.end(),
                        "write " + cannotRead(folder.file("t.dita"))),
              host.calls.end());
}

TEST_F(ServedRequestTest, AFailureOfTheRunItselfHasItsOwnStatus) {
    folder.write("book.ditamap", "<map");
    EXPECT_EQ(serve(), answer(-42));
}

/// A failure of the engine that is no exception of the standard library's.
class EngineFailure final : public xercesc::XMLException {
public:
    const XMLCh* getType() const override { return u"EngineFailure"; }
};

TEST_F(ServedRequestTest, WhateverIsThrownInARunIsAFailureOfIt) {
    const std::vector<std::function<void()>> throwers{
        [] { throw 42; },
        [] { throw std::bad_alloc(); },
        [] { throw std::runtime_error("unexpected"); },
        [] { throw xercesc::OutOfMemoryException(); },
        [] { throw EngineFailure(); },
    };
    for (const std::function<void()>& thrower : throwers) {
        host.onCall = [&](const std::string& call) {
            if (call.starts_with("reportProgress")) {
                thrower();
            }
        };
        EXPECT_EQ(serve(), answer(-42));
        EXPECT_FALSE(isXmlPlatformUp());
        EXPECT_FALSE(folder.exists("KeyspaceDoc.ditamap"));
    }
    host.onCall = nullptr;
    EXPECT_EQ(serve(), answer(0));
}

TEST_F(ServedRequestTest, AHostThatFailsEveryCallChangesNothing) {
    serve();
    const std::string usual = folder.read("out.xml");
    host.hostStatus = 17;
    EXPECT_EQ(serve(), answer(0));
    EXPECT_EQ(folder.read("out.xml"), usual);
    host.hostStatus = 0;
    host.comStatus = kComServerBusy;
    EXPECT_EQ(serve(), answer(0));
    EXPECT_EQ(folder.read("out.xml"), usual);
    EXPECT_EQ(HostLastError, -88);

    host.missing = {IHostText::kId,    IHostModules::kId,    IHostNotifications::kId,
                    IHostClients::kId, IHostProperties::kId, IHostProgress::kId,
                    IHostConsole::kId};
    QsApiInterfacesC interfaces(host.provider());
    interfaces.connect();
    std::filesystem::remove(folder.file("out.xml"));
    host.calls.clear();
    const boost::json::object request{{"type", "PublishComp"}, {"params", params}};
    onNotify(13, 0, boost::json::serialize(request).c_str(), 0);
    EXPECT_EQ(host.calls, Lines{});
    EXPECT_EQ(folder.read("out.xml"), usual);
}

/// A host that does something odd at one of its calls, for each call of a request.
class OddHostTest : public ServedRequestTest {
protected:
    OddHostTest() {
        host.missing = {IHostText::kId};
        params["ditaVal"] = folder.file("missing.ditaval");
        EXPECT_EQ(serve(), answer(0));
        undisturbed_ = folder.read("out.xml");
        callCount_ = host.calls.size();
        EXPECT_GT(callCount_, 20U);
    }

    /// Serves the request with `oddity` at its call `number`, and then undisturbed. What the first
    /// one answered.
    Lines serveOddly(std::size_t number, const std::function<void()>& oddity) {
        host.calls.clear();
        host.answers.clear();
        bool hasHappened = false;
        host.onCall = [&](const std::string&) {
            if (!hasHappened && host.calls.size() == number) {
                hasHappened = true;
                oddity();
            }
        };
        const boost::json::object request{{"type", "PublishComp"}, {"params", params}};
        onNotify(13, 0, boost::json::serialize(request).c_str(), 0);
        host.onCall = nullptr;
        EXPECT_TRUE(hasHappened) << number;
        EXPECT_FALSE(isXmlPlatformUp());
        EXPECT_FALSE(folder.exists("KeyspaceDoc.ditamap"));
        const Lines answers = host.answers;
        isWhole_ = folder.exists("out.xml") && folder.read("out.xml") == undisturbed_;
        EXPECT_EQ(serve(), answer(0)) << number;
        EXPECT_EQ(folder.read("out.xml"), undisturbed_) << number;
        return answers;
    }

    std::size_t callCount() const { return callCount_; }
    bool isWhole() const { return isWhole_; }

private:
    std::string undisturbed_;
    std::size_t callCount_ = 0;
    bool isWhole_ = false;
};

TEST_F(OddHostTest, ThatThrowsAtAnyCallEndsTheRunAtMost) {
    std::size_t lastFailed = 0;
    for (std::size_t number = 1; number <= callCount(); ++number) {
        const Lines answers = serveOddly(number, [] { throw 42; });
        // An answer that is thrown back is followed by that of a run that failed.
        ASSERT_GE(answers.size(), 1U) << number;
        EXPECT_LE(answers.size(), 2U) << number;
        if (answers.back() == answer(0)) {
            EXPECT_TRUE(isWhole()) << number;
            EXPECT_GT(number, lastFailed) << "only after the answer had gone";
            continue;
        }
        EXPECT_EQ(answers.back(), answer(-42)) << number;
        lastFailed = number;
    }
    EXPECT_GT(lastFailed, 20U);
}

TEST_F(OddHostTest, ThatCallsBackGetsAFailureAndTheRunGoesOn) {
    for (const char* const request : {"{}", "", "no JSON"}) {
        for (std::size_t number = 1; number <= callCount(); ++number) {
            const Lines answers = serveOddly(number, [&] { onNotify(13, 0, request, 0); });
            EXPECT_TRUE(isWhole()) << number;
            // The answer itself may be the call at which the host calls back.
            std::size_t own = 0;
            for (const std::string& line : answers) {
                own += line == answer(0) ? 1 : 0;
                EXPECT_TRUE(line == answer(0) || line == answer(-42)) << line;
            }
            EXPECT_EQ(own, 1U) << number;
            EXPECT_EQ(answers.size(), 2U) << number;
        }
    }
}

TEST_F(OddHostTest, ThatRefusesAnyCallChangesNothing) {
    for (std::size_t number = 1; number <= callCount(); ++number) {
        const Lines answers = serveOddly(number, [&] { host.hostStatus = 17; });
        host.hostStatus = 0;
        EXPECT_TRUE(isWhole()) << number;
        EXPECT_EQ(answers, Lines{answer(0)}) << number;
    }
}

TEST_F(ServedRequestTest, AnOutputThatCannotBeRemovedIsRefused) {
    std::filesystem::create_directory(folder.path() / "out.xml");
    EXPECT_EQ(serve(), answer(-43));
}

TEST_F(ServedRequestTest, AParameterOfTheWrongTypeIsRefused) {
    params["usePrint"] = 1;
    EXPECT_EQ(serve(), answer(-43));
    params["usePrint"] = "true";
    EXPECT_EQ(serve(), answer(-43));
    params["usePrint"] = true;
    EXPECT_EQ(serve(), answer(0));
}

TEST_F(ServedRequestTest, AMissingParameterIsRefused) {
    for (const char* key :
         {"ditamap", "output", "ditaVal", "keyspaceDocDtd", "compositeDocDtd", "usePrint"}) {
        const boost::json::object all = params;
        params.erase(key);
        EXPECT_EQ(serve(), answer(-43)) << key;
        EXPECT_FALSE(folder.exists("KeyspaceDoc.ditamap")) << key;
        params = all;
    }
}

TEST_F(ServedRequestTest, ATypeThatOnlyBeginsWithTheKeyIsServed) {
    const boost::json::object request{{"type", "PublishCompanion"}, {"params", params}};
    onNotify(13, 0, boost::json::serialize(request).c_str(), 0);
    EXPECT_EQ(host.answers, Lines{answer(0)});
}

}  // namespace
}  // namespace marrowpress
