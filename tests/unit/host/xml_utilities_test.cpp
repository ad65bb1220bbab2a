#include "host/xml_utilities.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

using CommandKind = XmlUtilitiesCommand::Kind;

struct GoodCase {
    const char* name;
    std::string_view text;
    XmlUtilitiesCommand command;
};

const GoodCase kGoodCases[] = {
    {"Start",
     R"(EntityResolver start -basefile "/my docs/m.ditamap")",
     {CommandKind::kStart, "/my docs/m.ditamap", "", ""}},
    {"StartWithEmptyPath",
     R"(EntityResolver start -basefile "")",
     {CommandKind::kStart, "", "", ""}},
    {"End", "EntityResolver end", {CommandKind::kEnd, "", "", ""}},
    {"Terminate", "EntityResolver terminate", {CommandKind::kTerminate, "", "", ""}},
    {"Resolve",
     R"(EntityResolver resolveentity -publicid "-//OASIS//DTD DITA Map//EN")",
     {CommandKind::kResolveEntity, "", "", "-//OASIS//DTD DITA Map//EN"}},
    {"ResolveWithBaseUri",
     R"(EntityResolver resolveentity -baseuri "/p/"-publicid "x y")",
     {CommandKind::kResolveEntity, "", "/p/", "x y"}},
    {"ResolveWithBaseUriAndBlank",
     R"(EntityResolver resolveentity -baseuri "/p/" -publicid "x")",
     {CommandKind::kResolveEntity, "", "/p/", "x"}},
    {"ResolveNothing",
     R"(EntityResolver resolveentity -publicid "")",
     {CommandKind::kResolveEntity, "", "", ""}},
};

class XmlUtilitiesCommandTest : public testing::TestWithParam<GoodCase> {};

TEST_P(XmlUtilitiesCommandTest, IsRead) {
    EXPECT_EQ(parseXmlUtilitiesCommand(GetParam().text), GetParam().command);
}

INSTANTIATE_TEST_SUITE_P(, XmlUtilitiesCommandTest, testing::ValuesIn(kGoodCases),
                         [](const auto& c) { return std::string(c.param.name); });

struct BadCommandCase {
    const char* name;
    std::string_view text;
};

constexpr BadCommandCase kBadCommandCases[] = {
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

class BadXmlUtilitiesCommandTest : public testing::TestWithParam<BadCommandCase> {};

TEST_P(BadXmlUtilitiesCommandTest, IsUnknown) {
    EXPECT_EQ(parseXmlUtilitiesCommand(GetParam().text), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(, BadXmlUtilitiesCommandTest, testing::ValuesIn(kBadCommandCases),
                         [](const auto& c) { return std::string(c.param.name); });

}  // namespace
}  // namespace marrowpress
