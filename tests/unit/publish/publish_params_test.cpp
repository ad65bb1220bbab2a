#include "publish/publish_params.h"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <functional>
#include <stdexcept>
#include <typeinfo>

#include "publish/output_formats.h"

namespace marrowpress {
namespace {

using Params = std::unique_ptr<PublishParams>;

Params parse(const std::string& text) {
    return parseRequest(OutputFormats::instance().factories(), text.c_str());
}

/// Whether `action` throws exactly the refusal of a request.
bool isRefused(const std::function<void()>& action) {
    try {
        action();
    } catch (const PublishException& failure) {
        return typeid(failure) == typeid(UnsupportedPublishParamsException) &&
               failure.code() == -43;
    } catch (...) {
        ADD_FAILURE() << "something else was thrown";
    }
    return false;
}

bool isTextRefused(const std::string& text) {
    return isRefused([&] { parse(text); });
}

/// A request of `depth` levels, all of them open at its deepest point.
std::string nestedRequest(std::size_t depth) {
    return R"({"type": "PublishComp", "deep": )" + std::string(depth - 1, '[') +
           std::string(depth - 1, ']') + "}";
}

TEST(PublishParamsFactoriesTest, MakeParamsWithTheirPublisher) {
    const PublishParamsFactories& factories = OutputFormats::instance().factories();
    const Params composite = factories[0]->create(nullptr);
    EXPECT_EQ(static_cast<std::uint32_t>(composite->publisherId()), 0U);
    EXPECT_NE(dynamic_cast<CompositePublishParams*>(composite.get()), nullptr);
    const Params flatBook = factories[1]->create(nullptr);
    EXPECT_EQ(static_cast<std::uint32_t>(flatBook->publisherId()), 1U);
    EXPECT_NE(dynamic_cast<FlatBookPublishParams*>(flatBook.get()), nullptr);
}

TEST(PublishParamsFactoriesTest, CopyTheValue) {
    boost::json::value value = boost::json::parse(R"({"ditamap": "/a"})");
    const Params params = CompositePublishParamsFactory().create(value);
    value.as_object()["ditamap"] = "/b";
    value = nullptr;
    EXPECT_EQ(params->getDitamap(), u"/a");
}

TEST(ParseRequestTest, TheTypeSelectsTheParams) {
    EXPECT_EQ(parse(R"({"type": "PublishComp"})")->publisherId(), PublisherId::kComposite);
    EXPECT_EQ(parse(R"({"type": "PublishFlatBook"})")->publisherId(), PublisherId::kFlatBook);
}

TEST(ParseRequestTest, TheTypeMayGoOnBehindTheKey) {
    for (const char* type :
         {"PublishCompanion", "PublishComp ", "PublishComp\\u0000x", "PublishComposite"}) {
        const Params params = parse("{\"type\": \"" + std::string(type) + "\"}");
        EXPECT_EQ(params->publisherId(), PublisherId::kComposite) << type;
    }
    for (const char* type : {"PublishFlatBooks", "PublishFlatBookPublishComp"}) {
        const Params params = parse("{\"type\": \"" + std::string(type) + "\"}");
        EXPECT_EQ(params->publisherId(), PublisherId::kFlatBook) << type;
    }
}

TEST(ParseRequestTest, AnyOtherTypeIsRefused) {
    for (const char* type :
         {"", "P", "Publish", "PublishCom", "PublishFlat", "publishcomp", "PUBLISHCOMP",
          " PublishComp", "XPublishComp", "Publish Comp", "\\u0000PublishComp", "PublishFlatBoo"}) {
        EXPECT_TRUE(isTextRefused("{\"type\": \"" + std::string(type) + "\"}")) << type;
    }
}

TEST(ParseRequestTest, TextsThatAreNoRequestAreRefused) {
    for (const char* text : {
             // no JSON
             "",
             " ",
             "x",
             "{",
             "}",
             R"({"type")",
             R"({"type":)",
             R"({"type": "PublishComp")",
             R"({'type': 'PublishComp'})",
             R"({type: "PublishComp"})",
             R"({"type": "PublishComp"} x)",
             R"({"type": "PublishComp"}{})",
             R"({"type": "PublishComp" "params": {}})",
             R"({"type": "PublishComp", "n": NaN})",
             R"({"type": "PublishComp", "n": 01})",
             "{\"type\": \"PublishComp\", \"n\": \"\t\"}",
             R"({"type": "PublishComp", "n": "\ud83d"})",
             R"({"type": "PublishComp", "n": "\x"})",
             "\xEF\xBB\xBF{\"type\": \"PublishComp\"}",
             // comments and trailing commas
             R"(/* a */ {"type": "PublishComp"})",
             R"({"type": /* a */ "PublishComp"})",
             "{\"type\": \"PublishComp\"} // a",
             "// a\n{\"type\": \"PublishComp\"}",
             R"({"type": "PublishComp",})",
             R"({"type": "PublishComp", "n": [1,]})",
             // invalid UTF-8
             "{\"type\": \"PublishComp\", \"n\": \"\xFF\"}",
             "{\"type\": \"PublishComp\", \"n\": \"\xC0\x80\"}",
             "{\"type\": \"PublishComp\", \"n\": \"\xE2\x82\"}",
             "{\"type\": \"PublishComp\", \"n\": \"\xED\xA0\x80\"}",
             "{\"type\": \"PublishComp\", \"\xFF\": 1}",
             "{\"type\": \"PublishComp\xFF\"}",
             // a root of another kind
             "null",
             "true",
             "1",
             "\"PublishComp\"",
             "[]",
             R"([{"type": "PublishComp"}])",
             // no type, or one of another kind
             "{}",
             R"({"params": {}})",
             R"({"Type": "PublishComp"})",
             R"({"type": null})",
             R"({"type": 0})",
             R"({"type": true})",
             R"({"type": ["PublishComp"]})",
             R"({"type": {"type": "PublishComp"}})",
         }) {
        EXPECT_TRUE(isTextRefused(text)) << text;
    }
}

TEST(ParseRequestTest, ANullTextIsRefused) {
    EXPECT_TRUE(isRefused([] { parseRequest(OutputFormats::instance().factories(), nullptr); }));
}

TEST(ParseRequestTest, ThirtyTwoLevelsAreTheLimit) {
    EXPECT_EQ(parse(nestedRequest(32))->publisherId(), PublisherId::kComposite);
    EXPECT_TRUE(isTextRefused(nestedRequest(33)));
    EXPECT_TRUE(isTextRefused(nestedRequest(5000)));
}

TEST(ParseRequestTest, TheTextEndsAtItsFirstNul) {
    const std::string text = std::string(R"({"type": "PublishComp"})") + '\0' + "garbage";
    EXPECT_EQ(parseRequest(OutputFormats::instance().factories(), text.data())->publisherId(),
              PublisherId::kComposite);
}

TEST(ParseRequestTest, BlanksAndOtherKeysDoNotCount) {
    const Params params = parse(
        " \r\n\t{\"other\": [1], \"params\": {\"ditamap\": \"/a\", \"more\": 1}, \"type\": "
        "\"PublishComp\", \"TYPE\": 2} \n");
    EXPECT_EQ(params->getDitamap(), u"/a");
}

TEST(ParseRequestTest, OfTwoEqualKeysTheLastCounts) {
    const Params params = parse(R"({"type": "PublishFlatBook", "params": 1, "type": "PublishComp",)"
                                R"( "params": {"ditamap": "/a", "ditamap": "/b"}})");
    EXPECT_EQ(params->publisherId(), PublisherId::kComposite);
    EXPECT_EQ(params->getDitamap(), u"/b");
}

TEST(ParseRequestTest, WithoutFactoriesNothingIsServed) {
    EXPECT_TRUE(
        isRefused([] { parseRequest(PublishParamsFactories(), R"({"type": "PublishComp"})"); }));
}

/// Makes composite parameters whose root map is the factory's own name, or throws.
class NamedFactory final : public PublishParamsFactory {
public:
    NamedFactory(const char* key, const char* name) : PublishParamsFactory(key), name_(name) {}

    Params create(const boost::json::value& params) const override {
        if (!name_) {
            throw 42;
        }
        wasNull = params.is_null();
        return std::make_unique<CompositePublishParams>(
            boost::json::value{{"ditamap", name_}, {"more", ""}});
    }

    mutable bool wasNull = false;

private:
    const char* name_;
};

TEST(ParseRequestTest, TheFirstFactoryThatFitsIsTaken) {
    PublishParamsFactories factories;
    factories.push_back(std::make_unique<NamedFactory>("PublishX", "x"));
    factories.push_back(std::make_unique<NamedFactory>("Pub", "first"));
    factories.push_back(std::make_unique<NamedFactory>("Publish", "second"));
    EXPECT_EQ(parseRequest(factories, R"({"type": "Publish"})")->getDitamap(), u"first");
    EXPECT_EQ(parseRequest(factories, R"({"type": "PublishX"})")->getDitamap(), u"x");
}

TEST(ParseRequestTest, MissingParamsArriveAsNull) {
    PublishParamsFactories factories;
    factories.push_back(std::make_unique<NamedFactory>("A", "a"));
    const auto& factory = static_cast<const NamedFactory&>(*factories[0]);
    parseRequest(factories, R"({"type": "A"})");
    EXPECT_TRUE(factory.wasNull);
    parseRequest(factories, R"({"type": "A", "params": 0})");
    EXPECT_FALSE(factory.wasNull);
}

TEST(ParseRequestTest, WhatAFactoryThrowsIsARefusal) {
    PublishParamsFactories factories;
    factories.push_back(std::make_unique<NamedFactory>("A", nullptr));
    EXPECT_TRUE(isRefused([&] { parseRequest(factories, R"({"type": "A"})"); }));
}

/// One getter, called on parameters of the type that it belongs to.
struct StringGetter {
    const char* type;
    const char* key;
    std::function<std::u16string(const PublishParams&)> get;
};

struct BoolGetter {
    const char* type;
    const char* key;
    std::function<bool(const PublishParams&)> get;
};

const CompositePublishParams& composite(const PublishParams& params) {
    return dynamic_cast<const CompositePublishParams&>(params);
}

const FlatBookPublishParams& flatBook(const PublishParams& params) {
    return dynamic_cast<const FlatBookPublishParams&>(params);
}

const StringGetter kStringGetters[] = {
    {"PublishComp", "ditamap", &PublishParams::getDitamap},
    {"PublishComp", "ditaVal", &PublishParams::getDitaVal},
    {"PublishComp", "keyspaceDocDtd", &PublishParams::getKeyspaceDocDtd},
    {"PublishComp", "compositeDocDtd", &PublishParams::getCompositeDocDtd},
    {"PublishComp", "output",
     [](const PublishParams& params) { return composite(params).getOutput(); }},
    {"PublishFlatBook", "ditamap", &PublishParams::getDitamap},
    {"PublishFlatBook", "ditaVal", &PublishParams::getDitaVal},
    {"PublishFlatBook", "keyspaceDocDtd", &PublishParams::getKeyspaceDocDtd},
    {"PublishFlatBook", "compositeDocDtd", &PublishParams::getCompositeDocDtd},
    {"PublishFlatBook", "outputDir",
     [](const PublishParams& params) { return flatBook(params).getOutputDir(); }},
};

const BoolGetter kBoolGetters[] = {
    {"PublishComp", "usePrint", &PublishParams::getUsePrint},
    {"PublishFlatBook", "usePrint", &PublishParams::getUsePrint},
    {"PublishFlatBook", "generateQSComponentsAtOneLoc",
     [](const PublishParams& params) {
         return flatBook(params).getGenerateQSComponentsAtOneLoc();
     }},
};

/// A request whose "params" is `params`, as JSON.
Params withParams(const char* type, const std::string& params) {
    return parse("{\"type\": \"" + std::string(type) + "\", \"params\": " + params + "}");
}

/// A request whose `key` has the value `value`, as JSON.
Params with(const char* type, const char* key, const std::string& value) {
    return withParams(type, "{\"" + std::string(key) + "\": " + value + "}");
}

TEST(PublishParamsTest, TextsComeInUtf16) {
    struct {
        const char* json;
        std::u16string text;
    } const cases[] = {
        {R"("")", u""},
        {R"("/a/b.dita")", u"/a/b.dita"},
        {"\"\xC3\xA4\xF0\x9F\x98\x80\"", u"\u00E4\U0001F600"},
        {R"("\u00e4\ud83d\ude00\\\t\/")", u"\u00E4\U0001F600\\\t/"},
        {R"(" a ")", u" a "},
    };
    for (const StringGetter& getter : kStringGetters) {
        for (const auto& [json, text] : cases) {
            EXPECT_EQ(getter.get(*with(getter.type, getter.key, json)), text)
                << getter.type << " " << getter.key << " " << json;
        }
    }
}

TEST(PublishParamsTest, TextsOfAnotherKindAreRefused) {
    for (const StringGetter& getter : kStringGetters) {
        // A text is no path from its first NUL on, and no other file is meant either.
        for (const char* json : {"null", "0", "1.5", "true", "false", "[]", R"(["a"])", "{}",
                                 R"("a\u0000b")", R"("\u0000")"}) {
            const Params params = with(getter.type, getter.key, json);
            EXPECT_TRUE(isRefused([&] { getter.get(*params); }))
                << getter.type << " " << getter.key << " " << json;
        }
    }
}

TEST(PublishParamsTest, BooleansAreReadAsTheyAre) {
    for (const BoolGetter& getter : kBoolGetters) {
        EXPECT_TRUE(getter.get(*with(getter.type, getter.key, "true"))) << getter.key;
        EXPECT_FALSE(getter.get(*with(getter.type, getter.key, "false"))) << getter.key;
    }
}

TEST(PublishParamsTest, BooleansOfAnotherKindAreRefused) {
    for (const BoolGetter& getter : kBoolGetters) {
        for (const char* json :
             {"null", "0", "1", "-1", "1.0", R"("true")", R"("false")", R"("")", "[]", "{}"}) {
            const Params params = with(getter.type, getter.key, json);
            EXPECT_TRUE(isRefused([&] { getter.get(*params); }))
                << getter.type << " " << getter.key << " " << json;
        }
    }
}

TEST(PublishParamsTest, AMissingKeyIsRefused) {
    for (const StringGetter& getter : kStringGetters) {
        const Params params = with(getter.type, "other", R"("a")");
        EXPECT_TRUE(isRefused([&] { getter.get(*params); })) << getter.key;
    }
    for (const BoolGetter& getter : kBoolGetters) {
        const Params params = with(getter.type, "other", "true");
        EXPECT_TRUE(isRefused([&] { getter.get(*params); })) << getter.key;
    }
}

TEST(PublishParamsTest, KeysAreExact) {
    const Params params =
        withParams("PublishComp", R"({"Ditamap": "/a", "ditamap ": "/b", "usePrin": true})");
    EXPECT_TRUE(isRefused([&] { params->getDitamap(); }));
    EXPECT_TRUE(isRefused([&] { params->getUsePrint(); }));
}

TEST(PublishParamsTest, ParamsThatAreNoObjectRefuseAtEachGetter) {
    for (const StringGetter& getter : kStringGetters) {
        for (const char* json : {"null", "0", "true", R"("ditamap")", "[]", "[{}]"}) {
            const Params params = withParams(getter.type, json);
            EXPECT_TRUE(isRefused([&] { getter.get(*params); })) << getter.key << " " << json;
        }
        const Params without = parse("{\"type\": \"" + std::string(getter.type) + "\"}");
        EXPECT_TRUE(isRefused([&] { getter.get(*without); })) << getter.key;
    }
    for (const BoolGetter& getter : kBoolGetters) {
        const Params without = parse("{\"type\": \"" + std::string(getter.type) + "\"}");
        EXPECT_TRUE(isRefused([&] { getter.get(*without); })) << getter.key;
    }
}

TEST(PublishParamsTest, EachGetterReadsItsOwnKeyEachTime) {
    const Params params = withParams(
        "PublishFlatBook",
        R"({"ditamap": "m", "ditaVal": "v", "keyspaceDocDtd": "k", "compositeDocDtd": "c",)"
        R"( "outputDir": "o", "usePrint": true, "generateQSComponentsAtOneLoc": false})");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(params->getDitamap(), u"m");
        EXPECT_EQ(params->getDitaVal(), u"v");
        EXPECT_EQ(params->getKeyspaceDocDtd(), u"k");
        EXPECT_EQ(params->getCompositeDocDtd(), u"c");
        EXPECT_EQ(flatBook(*params).getOutputDir(), u"o");
        EXPECT_TRUE(params->getUsePrint());
        EXPECT_FALSE(flatBook(*params).getGenerateQSComponentsAtOneLoc());
    }
}

TEST(PublishParamsTest, ARefusalIsRepeatedAndTouchesNoOtherKey) {
    const Params params = withParams("PublishComp", R"({"ditamap": 1, "output": "/o"})");
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(isRefused([&] { params->getDitamap(); }));
        EXPECT_EQ(composite(*params).getOutput(), u"/o");
    }
}

}  // namespace
}  // namespace marrowpress
