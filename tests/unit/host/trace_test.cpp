#include "host/trace.h"

#include <gtest/gtest.h>

#include <sstream>

namespace marrowpress {
namespace {

class TraceTest : public testing::Test {
protected:
    std::ostringstream out_;
    Trace trace_{out_};
};

TEST_F(TraceTest, WritesEachOperationAsOneLine) {
    trace_.enableUnicode(1);
    trace_.registerNotification(13, 1, 0);
    trace_.getStringProp(0, 89, std::nullopt);
    trace_.getStringProp(7, 20, "/p/a.dita");
    trace_.getIdProp(0, 53, 4294967295U);
    trace_.getIntProp(7, 131, -1);
    trace_.reportProgress(4, "Half of it", -1);
    trace_.consoleWrite("Lesen: 100 %s\r\n");
    trace_.callClient("XmlUtilities", "EntityResolver start -basefile \"/p/m.ditamap\"", 1);
    trace_.callClientTyped("XmlUtilities", "c", {{3, "/dtd/map.dtd"}});
    trace_.callClientTyped("XmlUtilities", "c", {});
    trace_.returnTypedValue({{1, -42},
                             {6, std::vector<std::string>{"/p/a.dita"}},
                             {15, std::vector<std::int32_t>{7, 8}},
                             {15, std::vector<std::int32_t>{}}});

    EXPECT_EQ(out_.str(),
              R"({"op":"HostEnableUnicode","on":1}
{"op":"HostRegisterNotification","notification":13,"state":1,"result":0}
{"op":"HostGetStringProp","object":0,"property":89,"result":null}
{"op":"HostGetStringProp","object":7,"property":20,"result":"/p/a.dita"}
{"op":"HostGetIdProp","object":0,"property":53,"result":4294967295}
{"op":"HostGetIntProp","object":7,"property":131,"result":-1}
{"op":"HostReportProgress","kind":4,"text":"Half of it","number":-1}
{"op":"HostConsoleWrite","text":"Lesen: 100 %s\r\n"}
{"op":"HostCallClient","client":"XmlUtilities","command":"EntityResolver start -basefile \"/p/m.ditamap\"","result":1}
{"op":"HostCallClientTyped","client":"XmlUtilities","command":"c","reply":[{"type":3,"value":"/dtd/map.dtd"}]}
{"op":"HostCallClientTyped","client":"XmlUtilities","command":"c","reply":[]}
{"op":"HostReturnTypedValue","values":[{"type":1,"value":-42},{"type":6,"value":["/p/a.dita"]},{"type":15,"value":[7,8]},{"type":15,"value":[]}]}
)");
}

TEST_F(TraceTest, EscapesControlCharactersQuotesAndBackslashes) {
    trace_.consoleWrite("\x01\t\"\\/");
    EXPECT_EQ(out_.str(), "{\"op\":\"HostConsoleWrite\",\"text\":\"\\u0001\\t\\\"\\\\/\"}\n");
}

TEST_F(TraceTest, ReplacesBytesThatAreNoUtf8InEveryText) {
    trace_.consoleWrite("\xFC");
    trace_.reportProgress(4, "\xC0\xAF", -1);
    trace_.callClient("\x80", "\xED\xA0\x80", 0);
    trace_.callClientTyped("\x80", "\xFF", {{3, "\xFE"}});
    trace_.getStringProp(7, 20, "/\xE4");
    trace_.returnTypedValue({{6, std::vector<std::string>{"\xE4"}}});
    EXPECT_EQ(
        out_.str(),
        "{\"op\":\"HostConsoleWrite\",\"text\":\"\uFFFD\"}\n"
        "{\"op\":\"HostReportProgress\",\"kind\":4,\"text\":\"\uFFFD\uFFFD\",\"number\":-1}\n"
        "{\"op\":\"HostCallClient\",\"client\":\"\uFFFD\",\"command\":\"\uFFFD\uFFFD\uFFFD\","
        "\"result\":0}\n"
        "{\"op\":\"HostCallClientTyped\",\"client\":\"\uFFFD\",\"command\":\"\uFFFD\","
        "\"reply\":[{\"type\":3,\"value\":\"\uFFFD\"}]}\n"
        "{\"op\":\"HostGetStringProp\",\"object\":7,\"property\":20,\"result\":\"/\uFFFD\"}\n"
        "{\"op\":\"HostReturnTypedValue\",\"values\":[{\"type\":6,\"value\":[\"\uFFFD\"]}]}\n");
}

TEST_F(TraceTest, LeavesAFailedWriteInTheState) {
    out_.setstate(std::ios::badbit);
    trace_.enableUnicode(1);
    EXPECT_FALSE(out_.good());
}

}  // namespace
}  // namespace marrowpress
