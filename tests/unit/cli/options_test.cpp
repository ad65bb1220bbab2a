#include "cli/options.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace marrowpress {
namespace {

using Texts = std::vector<std::string>;

/// The record of the wanted kind; the test fails, with the fault's text, when it is another.
template <class Record>
Record parseAs(const Texts& arguments) {
    const Options options = parseOptions(arguments);
    if (const auto* const record = std::get_if<Record>(&options)) {
        return *record;
    }
    const auto* const error = std::get_if<UsageError>(&options);
    ADD_FAILURE() << (error ? error->text : "another kind of command");
    return {};
}

TEST(OptionsTest, PublishTakesItsDefaults) {
    const auto options =
        parseAs<PublishOptions>({"publish", "m.ditamap", "-f", "composite", "-o", "out.dita"});
    EXPECT_EQ(options.map, "m.ditamap");
    EXPECT_EQ(options.output, "out.dita");
    EXPECT_EQ(options.format, OutputFormat::kComposite);
    EXPECT_EQ(options.filter, std::nullopt);
    EXPECT_TRUE(options.catalogs.empty());
    EXPECT_FALSE(options.isAtOneLocation);
    EXPECT_FALSE(options.isForPrint);
    EXPECT_EQ(options.compositeDtd, "ditabase.dtd");
    EXPECT_EQ(options.keySpaceDtd, "map.dtd");
}

TEST(OptionsTest, PublishTakesEveryOption) {
    const auto options = parseAs<PublishOptions>(
        {"publish", "--output", "o", "--catalog", "c1", "--format=composite", "--print",
         "--catalog", "c2", "m", "--filter", "f.ditaval", "--composite-dtd", "a.dtd",
         "--keyspace-dtd=b.dtd"});
    EXPECT_EQ(options.map, "m");
    EXPECT_EQ(options.output, "o");
    EXPECT_EQ(options.filter, "f.ditaval");
    EXPECT_EQ(options.catalogs, (Texts{"c1", "c2"}));
    EXPECT_TRUE(options.isForPrint);
    EXPECT_EQ(options.compositeDtd, "a.dtd");
    EXPECT_EQ(options.keySpaceDtd, "b.dtd");
}

TEST(OptionsTest, PublishTakesAFlatBook) {
    const auto options = parseAs<PublishOptions>({"publish", "m", "-f", "flatbook", "-o", "dir"});
    EXPECT_EQ(options.format, OutputFormat::kFlatBook);
    EXPECT_EQ(options.output, "dir");
    EXPECT_FALSE(options.isAtOneLocation);
    EXPECT_TRUE(
        parseAs<PublishOptions>({"publish", "--one-location", "m", "-f", "flatbook", "-o", "dir"})
            .isAtOneLocation);
}

TEST(OptionsTest, PublishTakesFilesNamedLikeCommandsAndLists) {
    const auto options =
        parseAs<PublishOptions>({"publish", "host", "-f", "composite", "-o", "[a,b]"});
    EXPECT_EQ(options.map, "host");
    EXPECT_EQ(options.output, "[a,b]");
}

TEST(OptionsTest, HostTakesItsDefaults) {
    const auto options = parseAs<HostOptions>({"host", "a.json"});
    EXPECT_EQ(options.requests, Texts{"a.json"});
    EXPECT_TRUE(options.catalogs.empty());
    EXPECT_TRUE(options.hasXmlUtilities);
    EXPECT_EQ(options.openDocuments, std::nullopt);
    EXPECT_EQ(options.trace, std::nullopt);
}

TEST(OptionsTest, HostTakesRequestsInOrderBetweenItsOptions) {
    const auto options = parseAs<HostOptions>({"host", "b", "--catalog", "c1", "a", "--trace", "t",
                                               "--no-xml-utilities", "-", "--catalog=c2",
                                               "--open-documents", "d", "a", "publish"});
    EXPECT_EQ(options.requests, (Texts{"b", "a", "-", "a", "publish"}));
    EXPECT_EQ(options.catalogs, (Texts{"c1", "c2"}));
    EXPECT_FALSE(options.hasXmlUtilities);
    EXPECT_EQ(options.openDocuments, "d");
    EXPECT_EQ(options.trace, "t");
}

TEST(OptionsTest, HostTakesWhatStandsBehindTwoDashesForRequests) {
    const auto options = parseAs<HostOptions>({"host", "--catalog", "c", "--", "--trace", "-"});
    EXPECT_EQ(options.requests, (Texts{"--trace", "-"}));
    EXPECT_EQ(options.catalogs, Texts{"c"});
}

TEST(OptionsTest, HostTakesANameInBracketsForOneFile) {
    const auto options = parseAs<HostOptions>({"host", "[a,b]", "--catalog", "[c,d]"});
    EXPECT_EQ(options.requests, Texts{"./[a,b]"});
    EXPECT_EQ(options.catalogs, Texts{"./[c,d]"});
}

TEST(OptionsTest, VersionIsTheProjects) {
    const std::string text = parseAs<Information>({"--version"}).text;
    EXPECT_TRUE(text.starts_with("marrowpress ")) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
}

TEST(OptionsTest, HelpHasAnExample) {
    for (const Texts& arguments : {Texts{"--help"}, Texts{"publish", "--help"}}) {
        const std::string text = parseAs<Information>(arguments).text;
        EXPECT_NE(text.find("build/release/bin/marrowpress publish "
                            "examples/drill-guide/drill-guide.ditamap"),
                  std::string::npos)
            << text;
    }
    EXPECT_NE(parseAs<Information>({"publish", "-h"}).text.find("-f flatbook -o out/book"),
              std::string::npos);
    const std::string text = parseAs<Information>({"host", "-h"}).text;
    EXPECT_NE(text.find("build/release/bin/marrowpress host -"), std::string::npos) << text;
    EXPECT_NE(text.find("--no-xml-utilities"), std::string::npos) << text;
}

struct BadCase {
    const char* name;
    Texts arguments;
    const char* named;    // what the error names
    const char* command;  // whose help it points to
};

const BadCase kBadCases[] = {
    {"Nothing", {}, "subcommand", "marrowpress"},
    {"UnknownCommand", {"print", "m"}, "\"print\"", "marrowpress"},
    {"UnknownProgramOption", {"--quiet"}, "\"--quiet\"", "marrowpress"},
    {"NoMap", {"publish", "-f", "composite", "-o", "o"}, "MAP", "marrowpress publish"},
    {"NoOutput", {"publish", "m", "-f", "composite"}, "--output", "marrowpress publish"},
    {"NoFormat", {"publish", "m", "-o", "o"}, "--format", "marrowpress publish"},
    {"UnknownFormat", {"publish", "m", "-f", "pdf", "-o", "o"}, "\"pdf\"", "marrowpress publish"},
    {"OneLocationWithComposite",
     {"publish", "m", "-f", "composite", "-o", "o", "--one-location"},
     "--one-location",
     "marrowpress publish"},
    {"OneLocationWithValue",
     {"publish", "m", "-f", "flatbook", "-o", "o", "--one-location=no"},
     "one-location",
     "marrowpress publish"},
    {"FlatBookWithoutOutput",
     {"publish", "m", "-f", "flatbook"},
     "--output",
     "marrowpress publish"},
    {"FormatInOtherCase",
     {"publish", "m", "-f", "Composite", "-o", "o"},
     "\"Composite\"",
     "marrowpress publish"},
    {"TwoMaps", {"publish", "m", "n", "-f", "composite", "-o", "o"}, "n", "marrowpress publish"},
    {"TwoOutputs",
     {"publish", "m", "-f", "composite", "-o", "o", "-o", "p"},
     "--output",
     "marrowpress publish"},
    {"OutputWithoutValue",
     {"publish", "m", "-f", "composite", "-o"},
     "--output",
     "marrowpress publish"},
    {"EmptyMap", {"publish", "", "-f", "composite", "-o", "o"}, "MAP", "marrowpress publish"},
    {"EmptyOutput",
     {"publish", "m", "-f", "composite", "-o", ""},
     "--output",
     "marrowpress publish"},
    {"EmptyFilter",
     {"publish", "m", "-f", "composite", "-o", "o", "--filter", ""},
     "--filter",
     "marrowpress publish"},
    {"FlagWithValue",
     {"publish", "m", "-f", "composite", "-o", "o", "--print=no"},
     "print",
     "marrowpress publish"},
    {"UnknownPublishOption",
     {"publish", "m", "-f", "composite", "-o", "o", "--trace", "t"},
     "--trace",
     "marrowpress publish"},
    {"NoRequest", {"host"}, "REQUEST", "marrowpress host"},
    {"NoRequestBehindCatalog", {"host", "--catalog", "c"}, "REQUEST", "marrowpress host"},
    {"EmptyRequest", {"host", ""}, "REQUEST", "marrowpress host"},
    {"StandardInputTwice", {"host", "-", "a", "-"}, "REQUEST", "marrowpress host"},
    {"TraceTwice", {"host", "a", "--trace", "t", "--trace", "u"}, "--trace", "marrowpress host"},
    {"UnknownHostOption", {"host", "a", "--catlog"}, "--catlog", "marrowpress host"},
};

class BadOptionsTest : public testing::TestWithParam<BadCase> {};

TEST_P(BadOptionsTest, NameTheArgumentAndPointToHelp) {
    const std::string text = parseAs<UsageError>(GetParam().arguments).text;
    EXPECT_NE(text.find(GetParam().named), std::string::npos) << text;
    const std::string command = GetParam().command;
    EXPECT_TRUE(text.starts_with(command + ": ")) << text;
    EXPECT_TRUE(text.ends_with("\nRun `" + command + " --help` for help.\n")) << text;
}

INSTANTIATE_TEST_SUITE_P(, BadOptionsTest, testing::ValuesIn(kBadCases),
                         [](const auto& c) { return std::string(c.param.name); });

}  // namespace
}  // namespace marrowpress
