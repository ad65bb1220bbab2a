#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

#include "tests/dangers/danger.h"
#include "tests/support/file_conditions.h"
#include "tests/support/message_texts.h"
#include "tests/support/texts.h"

namespace marrowpress {
namespace {

/// Texts that are no request, or one that its sender didn't mean.
class OddRequestDangerTest : public DangerTest {
protected:
    OddRequestDangerTest() {
        request = boost::json::serialize(
            boost::json::object{{"type", "PublishComp"}, {"params", composite()}});
    }

    /// The status of the answer to `text`.
    std::int32_t sent(const std::string& text) {
        const Watchdog watchdog(120);
        return status(sendText(text));
    }

    /// The request with another text in the place of a value, which is taken as it stands.
    std::string with(const std::string& key, const std::string& value) const {
        boost::json::object params = composite();
        params[key] = "@";
        return replacedAll(boost::json::serialize(
                               boost::json::object{{"type", "PublishComp"}, {"params", params}}),
                           "\"@\"", value);
    }

    std::string request;
};

TEST_F(OddRequestDangerTest, ThatIsNoRequestIsRefused) {
    const std::string inner = request.substr(1, request.size() - 2);
    for (const std::string& text : {
             std::string(""),
             std::string(" "),
             std::string("\n\t"),
             std::string("null"),
             std::string("true"),
             std::string("-"),
             std::string("1e999999"),
             std::string("123456789012345678901234567890"),
             std::string("\"text\""),
             std::string("\"\\ud800\""),
             std::string("'text'"),
             std::string("[]"),
             std::string("{}"),
             std::string("{"),
             std::string("}"),
             std::string("[{}"),
             std::string("{\"type\"}"),
             std::string("{\"type\":}"),
             std::string("{type:\"PublishComp\"}"),
             std::string("{\"type\":\"PublishComp\",}"),
             std::string("{\"type\":NaN}"),
             std::string("{\"type\":[\"PublishComp\"]}"),
             std::string("{\"type\":\"publishcomp\",\"params\":{}}"),
             std::string("{\"type\":\"PublishComp\",\"params\":\"{}\"}"),
             std::string("// comment"),
             std::string("/* comment */ {}"),
             std::string("\xEF\xBB\xBF{}"),
             std::string("\xFF\xFE{\0}\0", 6),
             std::string("\xC3\x28"),
             std::string("{\"\xFF\":1}"),
             std::string("<request/>"),
             std::string("%s%s%n"),
             "[" + request + "]",
             "{" + inner + ",}",
             "{" + inner,
             request + "x",
             request + request,
             "\xEF\xBB\xBF" + request,
             "/**/" + request,
             repeated("[", 100'000),
             repeated("[", 100'000) + repeated("]", 100'000),
             repeated("{\"a\":", 100'000),
             "{\"type\":" + repeated("[", 40) + repeated("]", 40) + "}",
         }) {
        EXPECT_EQ(sent(text), -43) << text.substr(0, 80);
        EXPECT_TRUE(isTidy()) << text.substr(0, 80);
    }
    EXPECT_FALSE(folder.exists("out/book.dita"));
    EXPECT_EQ(sent(request), 0);
    EXPECT_TRUE(isBesideWhole());
}

TEST_F(OddRequestDangerTest, ThatIsOneAllTheSameIsServed) {
    for (const std::string& text :
         {" \r\n\t" + request + "\n",
          replacedAll(request, "\"type\"", "\"more\":[null,1.5e3,{\"a\":[]}],\"type\""),
          replacedAll(request, "{\"ditamap\"", "{\"ditamap\":7,\"ditamap\""),
          replacedAll(request, "PublishComp", "\\u0050ublishComp")}) {
        EXPECT_EQ(sent(text), 0) << text;
        EXPECT_TRUE(isBesideWhole()) << text;
    }
}

TEST_F(OddRequestDangerTest, ThatIsCutAtAnyByteIsRefused) {
    const std::string whole = replacedAll(request, "map.dtd", "\xC3\xA4\xE2\x82\xAC.dtd");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_EQ(sent(whole.substr(0, size)), -43) << size;
    }
    EXPECT_TRUE(isTidy());
    EXPECT_FALSE(folder.exists("out/book.dita"));
    EXPECT_EQ(sent(whole), 0);
    EXPECT_TRUE(isBesideWhole());
}

TEST_F(OddRequestDangerTest, ThatNamesAnythingEndsWithOneOfTheStatuses) {
    const std::string odd[] = {"\"\"",
                               "\" \"",
                               "\"/\"",
                               "\".\"",
                               "\"..\"",
                               "\"%s%n\"",
                               "\"%zz%00\"",
                               "\"a\\u0000b\"",
                               "\"\\u0001\"",
                               "\"\\ud83d\\ude00\"",
                               "\"//\"",
                               "\"file:\"",
                               "\"file:///\"",
                               "\"/dev/null\"",
                               "\"/proc/self/mem\"",
                               "\"" + repeated("x/", 5000) + "\"",
                               "\"" + std::string(300, 'x') + "\"",
                               "1e308",
                               "-0",
                               "[[]]",
                               "{\"a\":1}"};
    for (const char* const key :
         {"ditamap", "output", "ditaVal", "keyspaceDocDtd", "compositeDocDtd", "usePrint"}) {
        for (const std::string& value : odd) {
            // Outputs elsewhere are what the request asks for.
            if (std::string_view(key) == "output" && value.starts_with("\"/")) {
                continue;
            }
            const std::int32_t outcome = sent(with(key, value));
            EXPECT_TRUE(outcome == 0 || outcome == -42 || outcome == -43)
                << key << " " << value.substr(0, 80) << " " << outcome;
            if (outcome == 0 && std::string_view(key) != "output") {
                const bool isTold =
                    console.find(cannotWrite("$F/out/book.dita")) != std::string::npos;
                EXPECT_TRUE(isBesideWhole() || isTold)
                    << key << " " << value.substr(0, 80) << console;
            }
            EXPECT_TRUE(isTidy()) << key << " " << value.substr(0, 80);
        }
    }
}

TEST_F(OddRequestDangerTest, WithANulInAPathIsRefusedAndSourcesStay) {
    folder.write("p.ditaval", "<val/>");
    const std::string map = folder.read("root.ditamap");
    boost::json::object params = composite();
    params["ditaVal"] = folder.file("p.ditaval");
    const boost::json::object good = params;
    for (const char* const source : {"root.ditamap", "p.ditaval"}) {
        params["output"] = folder.file(source) + std::string("\0.dita", 6);
        EXPECT_EQ(publish(params), -43) << source;
    }
    for (const char* const key : {"ditamap", "ditaVal", "keyspaceDocDtd", "compositeDocDtd"}) {
        params = good;
        params[key] = std::string(params[key].as_string()) + std::string("\0x", 2);
        EXPECT_EQ(publish(params), -43) << key;
    }
    for (const char* const key : {"ditamap", "ditaVal"}) {
        params = good;
        params["output"] = params[key];
        params[key] = std::string(params[key].as_string()) + std::string("\0x", 2);
        EXPECT_EQ(publish(params), -43) << key;
    }
    EXPECT_EQ(folder.read("root.ditamap"), map);
    EXPECT_EQ(folder.read("p.ditaval"), "<val/>");
    // Nobody reads what is of the other kind of request, or of none.
    for (const char* const key : {"outputDir", "more"}) {
        params = good;
        params[key] = std::string("\0x", 2);
        EXPECT_EQ(publish(params), 0) << key;
    }
}

TEST_F(OddRequestDangerTest, WithATextOfAHundredMegabytesIsServed) {
    constexpr std::size_t kHundredMegabytes = 100'000'000;
    const std::string text = replacedAll(request, "\"type\"", "\"more\":\"@\",\"type\"");
    const std::size_t place = text.find('@');
    EXPECT_EQ(sent(std::string(text).replace(place, 1, kHundredMegabytes, 'x')), 0);
    EXPECT_TRUE(isBesideWhole());
}

}  // namespace
}  // namespace marrowpress
