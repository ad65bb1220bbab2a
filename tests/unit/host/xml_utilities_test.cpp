#include "host/xml_utilities.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

using Kind = XmlUtilitiesCommand::Kind;

struct GoodCase {
    const char* name;
    std::string_view text;
    XmlUtilitiesCommand command;
};

const GoodCase kGoodCases[] = {
    {"Start",
     R"(EntityResolver start -basefile "/my docs/m.ditamap")",
     {Kind::kStart, "/my docs/m.ditamap", "", ""}},
    {"StartWithEmptyPath", R"(EntityResolver start -basefile "")", {Kind::kStart, "", "", ""}},
    {"End", "EntityResolver end", {Kind::kEnd, "", "", ""}},
    {"Terminate", "EntityResolver terminate", {Kind::kTerminate, "", "", ""}},
    {"Resolve",
     R"(EntityResolver resolveentity -publicid "-//OASIS//DTD DITA Map//EN")",
     {Kind::kResolveEntity, "", "", "-//OASIS//DTD DITA Map//EN"}},
    {"ResolveWithBaseUri",
     R"(EntityResolver resolveentity -baseuri "/p/"-publicid "x y")",
     {Kind::kResolveEntity, "", "/p/", "x y"}},
    {"ResolveWithBaseUriAndBlank",
     R"(EntityResolver resolveentity -baseuri "/p/" -publicid "x")",
     {Kind::kResolveEntity, "", "/p/", "x"}},
    {"ResolveNothing",
     R"(EntityResolver resolveentity -publicid "")",
     {Kind::kResolveEntity, "", "", ""}},
};

class XmlUtilitiesCommandTest : public testing::TestWithParam<GoodCase> {};

TEST_P(XmlUtilitiesCommandTest, IsRead) {
    EXPECT_EQ(parseXmlUtilitiesCommand(GetParam().text), GetParam().command);
}

INSTANTIATE_TEST_SUITE_P(, XmlUtilitiesCommandTest, testing::ValuesIn(kGoodCases),
                         [](const auto& c) { return std::string(c.param.name); });

struct BadCase {
    const char* name;
    std::string_view text;
};

constexpr BadCase kBadCases[] = {
    {"Empty", ""},
    {"ServiceAlone", "EntityResolver"},
    {"ServiceAndBlank", "EntityResolver "},
    {"OtherService", "Transformer end"},
    {"OtherCase", "EntityResolver End"},
    {"TwoBlanks", "EntityResolver  end"},
    {"TrailingBlank", "EntityResolver end "},
    {"LongerWord", "EntityResolver endings"},
    {"StartWithoutFile", "EntityResolver start"},
    {"StartWithoutQuotes", "EntityResolver start -basefile /m.ditamap"},
    {"StartWithoutClosingQuote", R"(EntityResolver start -basefile "/m.ditamap)"},
    {"StartWithQuoteInPath", R"(EntityResolver start -basefile "/a"b.ditamap")"},
    {"ResolveWithoutPublicId", "EntityResolver resolveentity"},
    {"ResolveWithBaseUriAlone", R"(EntityResolver resolveentity -baseuri "/p/")"},
    {"ResolveInOtherOrder", R"(EntityResolver resolveentity -publicid "x" -baseuri "/p/")"},
    {"ResolveSystemId", R"(EntityResolver resolveentity -systemid "map.dtd")"},
};

class BadXmlUtilitiesCommandTest : public testing::TestWithParam<BadCase> {};

TEST_P(BadXmlUtilitiesCommandTest, IsUnknown) {
    EXPECT_EQ(parseXmlUtilitiesCommand(GetParam().text), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(, BadXmlUtilitiesCommandTest, testing::ValuesIn(kBadCases),
                         [](const auto& c) { return std::string(c.param.name); });

}  // namespace
}  // namespace marrowpress
