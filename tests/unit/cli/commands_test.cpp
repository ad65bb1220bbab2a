#include "cli/commands.h"

#include <gtest/gtest.h>

#include "tests/unit/cli/parsed_options.h"

namespace marrowpress {
namespace {

TEST(PublishArgumentsTest, TakesItsDefaults) {
    const auto options =
        parseAs<PublishOptions>({"publish", "m.ditamap", "-f", "composite", "-o", "out.dita"});
    EXPECT_EQ(options.map, "m.ditamap");
    EXPECT_EQ(options.output, "out.dita");
    EXPECT_EQ(options.format, OutputFormat::kComposite);
    EXPECT_TRUE(options.filters.empty());
    EXPECT_FALSE(options.allowsMissingFilter);
    EXPECT_TRUE(options.catalogs.empty());
    EXPECT_FALSE(options.isAtOneLocation);
    EXPECT_FALSE(options.isForPrint);
    EXPECT_EQ(options.compositeDtd, "ditabase.dtd");
    EXPECT_EQ(options.keySpaceDtd, "map.dtd");
}

TEST(PublishArgumentsTest, TakesEveryOption) {
    const auto options = parseAs<PublishOptions>(
        {"publish", "--output", "o", "--catalog", "c1", "--format=composite", "--print",
         "--catalog", "c2", "m", "--filter", "f.ditaval", "--composite-dtd", "a.dtd",
         "--allow-missing-filter", "--keyspace-dtd=b.dtd", "--filter=g.ditaval", "--quiet"});
    EXPECT_EQ(options.map, "m");
    EXPECT_EQ(options.output, "o");
    EXPECT_EQ(options.filters, (Texts{"f.ditaval", "g.ditaval"}));
    EXPECT_TRUE(options.allowsMissingFilter);
    EXPECT_EQ(options.catalogs, (Texts{"c1", "c2"}));
    EXPECT_TRUE(options.isForPrint);
    EXPECT_EQ(options.compositeDtd, "a.dtd");
    EXPECT_EQ(options.keySpaceDtd, "b.dtd");
    EXPECT_TRUE(options.diagnostics.isQuiet);
}

TEST(PublishArgumentsTest, TakesAFlatBook) {
    const auto options = parseAs<PublishOptions>({"publish", "m", "-f", "flatbook", "-o", "dir"});
    EXPECT_EQ(options.format, OutputFormat::kFlatBook);
    EXPECT_EQ(options.output, "dir");
    EXPECT_FALSE(options.isAtOneLocation);
    EXPECT_TRUE(
        parseAs<PublishOptions>({"publish", "--one-location", "m", "-f", "flatbook", "-o", "dir"})
            .isAtOneLocation);
}

TEST(PublishArgumentsTest, TakesFilesNamedLikeCommandsListsAndOptions) {
    const auto options = parseAs<PublishOptions>(
        {"publish", "host", "-f", "composite", "-o", "[a,b]", "--filter", "[c,d]"});
    EXPECT_EQ(options.map, "host");
    EXPECT_EQ(options.output, "[a,b]");
    EXPECT_EQ(options.filters, Texts{"[c,d]"});
    EXPECT_EQ(parseAs<PublishOptions>({"publish", "-f", "composite", "-o", "o", "--", "--map"}).map,
              "--map");
}

TEST(PublishArgumentsTest, TakesStandardOutputForAComposite) {
    EXPECT_EQ(parseAs<PublishOptions>({"publish", "m", "-f", "composite", "-o", "-"}).output, "-");
}

TEST(PublishArgumentsTest, TakesAFolderForMediaForAWishForRelativeReferences) {
    const Texts plain{"publish", "m", "-f", "composite", "-o", "o"};
    const auto parsedWith = [&plain](const Texts& more) {
        Texts arguments = plain;
        arguments.insert(arguments.end(), more.begin(), more.end());
        return parseAs<PublishOptions>(arguments);
    };
    EXPECT_FALSE(parsedWith({}).isRelative);
    EXPECT_EQ(parsedWith({}).mediaFolder, std::nullopt);
    EXPECT_TRUE(parsedWith({"--relative"}).isRelative);
    EXPECT_EQ(parsedWith({"--relative"}).mediaFolder, std::nullopt);
    EXPECT_TRUE(parsedWith({"--copy-media", "media"}).isRelative);
    EXPECT_EQ(parsedWith({"--copy-media", "media"}).mediaFolder, "media");
}

TEST(CheckArgumentsTest, TakesItsDefaults) {
    const auto options = parseAs<CheckOptions>({"check", "m.ditamap"});
    EXPECT_EQ(options.map, "m.ditamap");
    EXPECT_EQ(options.output, "");
    EXPECT_EQ(options.format, OutputFormat::kComposite);
    EXPECT_FALSE(options.isAtOneLocation);
    EXPECT_TRUE(options.filters.empty());
    EXPECT_TRUE(options.eachFilters.empty());
    EXPECT_FALSE(options.allowsMissingFilter);
    EXPECT_TRUE(options.catalogs.empty());
    EXPECT_FALSE(options.isForPrint);
}

TEST(CheckArgumentsTest, TakesEveryOption) {
    const auto options = parseAs<CheckOptions>(
        {"check", "-f", "flatbook", "-o", "dir", "--one-location", "--filter", "f", "--each-filter",
         "a", "m", "--each-filter", "b", "--allow-missing-filter", "--print", "--catalog", "c",
         "--fail-on", "never"});
    EXPECT_EQ(options.map, "m");
    EXPECT_EQ(options.output, "dir");
    EXPECT_EQ(options.format, OutputFormat::kFlatBook);
    EXPECT_TRUE(options.isAtOneLocation);
    EXPECT_EQ(options.filters, Texts{"f"});
    EXPECT_EQ(options.eachFilters, (Texts{"a", "b"}));
    EXPECT_TRUE(options.allowsMissingFilter);
    EXPECT_EQ(options.catalogs, Texts{"c"});
    EXPECT_TRUE(options.isForPrint);
    EXPECT_EQ(options.diagnostics.failOn, FailOn::kNever);
}

TEST(HostArgumentsTest, TakesItsDefaults) {
    const auto options = parseAs<HostOptions>({"host", "a.json"});
    EXPECT_EQ(options.requests, Texts{"a.json"});
    EXPECT_TRUE(options.catalogs.empty());
    EXPECT_TRUE(options.hasXmlUtilities);
    EXPECT_EQ(options.openDocuments, std::nullopt);
    EXPECT_EQ(options.trace, std::nullopt);
}

TEST(HostArgumentsTest, TakesRequestsInOrderBetweenItsOptions) {
    const auto options = parseAs<HostOptions>({"host", "b", "--catalog", "c1", "a", "--trace", "t",
                                               "--no-xml-utilities", "-", "--catalog=c2",
                                               "--open-documents", "d", "a", "publish"});
    EXPECT_EQ(options.requests, (Texts{"b", "a", "-", "a", "publish"}));
    EXPECT_EQ(options.catalogs, (Texts{"c1", "c2"}));
    EXPECT_FALSE(options.hasXmlUtilities);
    EXPECT_EQ(options.openDocuments, "d");
    EXPECT_EQ(options.trace, "t");
}

TEST(HostArgumentsTest, TakesWhatStandsBehindTwoDashesForRequests) {
    const auto options = parseAs<HostOptions>({"host", "--catalog", "c", "--", "--trace", "-"});
    EXPECT_EQ(options.requests, (Texts{"--trace", "-"}));
    EXPECT_EQ(options.catalogs, Texts{"c"});
}

TEST(HostArgumentsTest, TakesANameInBracketsForOneFile) {
    const auto options = parseAs<HostOptions>({"host", "[a,b]", "--catalog", "[c,d]"});
    EXPECT_EQ(options.requests, Texts{"./[a,b]"});
    EXPECT_EQ(options.catalogs, Texts{"./[c,d]"});
}

TEST(ExplainArgumentsTest, TakesAnIdOrNone) {
    const auto all = parseAs<ExplainOptions>({"explain"});
    EXPECT_EQ(all.id, std::nullopt);
    EXPECT_EQ(all.language, Language::kAuto);
    const auto one = parseAs<ExplainOptions>({"explain", "--lang", "de", "MP218"});
    EXPECT_EQ(one.id, "MP218");
    EXPECT_EQ(one.language, Language::kGerman);
}

struct BadArgumentsCase {
    Texts arguments;
    const char* fault;
};

/// The command is the first argument.
void expectFaults(const std::vector<BadArgumentsCase>& cases) {
    for (const BadArgumentsCase& c : cases) {
        EXPECT_EQ(faultOf(c.arguments.front(), c.arguments), c.fault);
    }
}

TEST(PublishArgumentsTest, RefusesWhatMakesNoSense) {
    expectFaults({
        {{"publish", "-f", "composite", "-o", "o"}, "MAP is required"},
        {{"publish", "m", "-f", "composite"}, "--output is required"},
        {{"publish", "m", "-f", "flatbook"}, "--output is required"},
        {{"publish", "m", "-o", "o"}, "--format is required"},
        {{"publish", "m", "--fromat", "composite", "-o", "o"},
         "unknown option `--fromat`; did you mean `--format`?"},
        {{"publish", "m", "-f", "pdf", "-o", "o"},
         "--format: unknown format `pdf`; known: composite, flatbook"},
        {{"publish", "m", "-f", "Composite", "-o", "o"},
         "--format: unknown format `Composite`; did you mean `composite`?"},
        {{"publish", "m", "-f", "composite", "-o", "o", "--one-location"},
         "--one-location: a composite is one file; this is for flatbook only"},
        {{"publish", "m", "-f", "flatbook", "-o", "-"},
         "--output: a flat book is several files; standard output (-) takes a composite"},
        {{"publish", "m", "-f", "flatbook", "-o", "o", "--one-location=no"},
         "--one-location: takes no value"},
        {{"publish", "m", "-f", "composite", "-o", "o", "--print=no"}, "--print: takes no value"},
        {{"publish", "m", "n", "-f", "composite", "-o", "o"},
         "there is no place for the argument `n`"},
        {{"publish", "m", "-f", "composite", "-o", "o", "-o", "p"},
         "--output: is given more than once"},
        {{"publish", "m", "-f", "composite", "--output"}, "--output: its value is missing"},
        {{"publish", "", "-f", "composite", "-o", "o"}, "MAP: is empty"},
        {{"publish", "m", "-f", "composite", "-o", ""}, "--output: is empty"},
        {{"publish", "m", "-f", "composite", "-o", "o", "--filter", ""}, "--filter: is empty"},
        {{"publish", "m", "-f", "composite", "-o", "o", "--copy-media", ""},
         "--copy-media: is empty"},
        {{"publish", "m", "-f", "composite", "-o", "o", "--relative=yes"},
         "--relative: takes no value"},
        {{"publish", "m", "-f", "composite", "-o", "o", "--trace", "t"},
         "unknown option `--trace`"},
        {{"publish", "m", "-f", "composite", "-o", "o", "--each-filter", "f"},
         "unknown option `--each-filter`"},
        {{"publish", "m", "-f", "composite", "-o", "o", "-v", "-q"},
         "--quiet: --verbose asks for the contrary"},
    });
}

TEST(CheckArgumentsTest, RefusesWhatMakesNoSense) {
    expectFaults({
        {{"check"}, "MAP is required"},
        {{"check", "m", "-f", "pdf"}, "--format: unknown format `pdf`; known: composite, flatbook"},
        {{"check", "m", "--one-location"},
         "--one-location: a composite is one file; this is for flatbook only"},
        {{"check", "m", "--each-filtr=f"},
         "unknown option `--each-filtr`; did you mean `--each-filter`?"},
        {{"check", "m", "--each-filter", ""}, "--each-filter: is empty"},
        {{"check", "m", "--composite-dtd", "d"}, "unknown option `--composite-dtd`"},
        {{"check", "m", "--diagnostics", "none", "--sarif", "s"},
         "--sarif: with --diagnostics none there are no findings"},
    });
}

TEST(HostArgumentsTest, RefusesWhatMakesNoSense) {
    expectFaults({
        {{"host"}, "REQUEST is required"},
        {{"host", "--catalog", "c"}, "REQUEST is required"},
        {{"host", ""}, "REQUEST: is empty"},
        {{"host", "-", "a", "-"}, "REQUEST: standard input (-) is there more than once"},
        {{"host", "a", "--trace", "t", "--trace", "u"}, "--trace: is given more than once"},
        {{"host", "a", "--catlog"}, "unknown option `--catlog`; did you mean `--catalog`?"},
        {{"host", "a", "--diagnostics", "json"}, "unknown option `--diagnostics`"},
    });
}

TEST(ExplainArgumentsTest, RefusesWhatMakesNoSense) {
    expectFaults({
        {{"explain", "MP21"}, "unknown id `MP21`; did you mean `MP201`?"},
        {{"explain", "mp105"}, "unknown id `mp105`; did you mean `MP105`?"},
        {{"explain", "key"}, "unknown id `key`; `marrowpress explain` lists all"},
        {{"explain", ""}, "ID: is empty"},
        {{"explain", "MP105", "MP106"}, "there is no place for the argument `MP106`"},
        {{"explain", "--lang", "fr"}, "--lang: unknown language `fr`; known: de, en, auto"},
    });
}

TEST(DoctorArgumentsTest, TheMapMayBeMissing) {
    EXPECT_EQ(parseAs<DoctorOptions>({"doctor"}).map, "");
    const auto options = parseAs<DoctorOptions>(
        {"doctor", "m", "--filter", "f", "--catalog", "c", "--print", "--lang", "de"});
    EXPECT_EQ(options.map, "m");
    EXPECT_EQ(options.filters, Texts{"f"});
    EXPECT_EQ(options.catalogs, Texts{"c"});
    EXPECT_TRUE(options.isForPrint);
    EXPECT_EQ(options.diagnostics.language, Language::kGerman);
    expectFaults(
        {{{"doctor", "--filter", "f"}, "MAP: --filter is about its documents, and there is none"},
         {{"doctor", "--sarif", "s"}, "MAP: there are findings of a map only"},
         {{"doctor", "m", "n"}, "there is no place for the argument `n`"},
         {{"doctor", "--fail-on", "error"}, "unknown option `--fail-on`"}});
}

TEST(CompletionArgumentsTest, TheShellIsNamed) {
    EXPECT_EQ(parseAs<CompletionOptions>({"completion", "bash", "--keys-of", "m"}).map, "m");
    expectFaults({{{"completion"}, "SHELL is required"},
                  {{"completion", "fish"}, "SHELL: unknown shell `fish`; known: bash"}});
}

TEST(KeysArgumentsTest, TakesItsDefaults) {
    const auto options = parseAs<KeysOptions>({"keys", "m.ditamap"});
    EXPECT_EQ(options.map, "m.ditamap");
    EXPECT_EQ(options.output, "");
    EXPECT_EQ(options.keyFormat, KeyFormat::kTable);
    EXPECT_EQ(options.explained, std::nullopt);
    EXPECT_EQ(options.diagnostics.failOn, FailOn::kNever);
}

TEST(KeysArgumentsTest, TakesEveryOption) {
    const auto options =
        parseAs<KeysOptions>({"keys", "m", "--format", "json", "--explain", "k", "--filter", "f",
                              "--allow-missing-filter", "--catalog", "c", "--print", "-q"});
    EXPECT_EQ(options.keyFormat, KeyFormat::kJson);
    EXPECT_EQ(options.explained, "k");
    EXPECT_EQ(options.filters, Texts{"f"});
    EXPECT_TRUE(options.allowsMissingFilter);
    EXPECT_EQ(options.catalogs, Texts{"c"});
    EXPECT_TRUE(options.isForPrint);
    EXPECT_TRUE(options.diagnostics.isQuiet);
    EXPECT_EQ(parseAs<KeysOptions>({"keys", "m", "-f", "csv"}).keyFormat, KeyFormat::kCsv);
}

TEST(DepsArgumentsTest, TakesItsDefaults) {
    const auto options = parseAs<DepsOptions>({"deps", "m.ditamap"});
    EXPECT_EQ(options.map, "m.ditamap");
    EXPECT_EQ(options.output, "");
    EXPECT_EQ(options.dependencyFormat, DependencyFormat::kList);
    EXPECT_FALSE(options.showsEdges);
    EXPECT_EQ(options.reverse, std::nullopt);
    EXPECT_EQ(options.diagnostics.failOn, FailOn::kNever);
}

TEST(DepsArgumentsTest, TakesEveryOption) {
    const auto options = parseAs<DepsOptions>({"deps", "m", "--format=json", "--edges", "--reverse",
                                               "i.png", "--filter", "f", "--catalog", "c"});
    EXPECT_EQ(options.dependencyFormat, DependencyFormat::kJson);
    EXPECT_TRUE(options.showsEdges);
    EXPECT_EQ(options.reverse, "i.png");
    EXPECT_EQ(options.filters, Texts{"f"});
    EXPECT_EQ(options.catalogs, Texts{"c"});
    const auto rule = parseAs<DepsOptions>({"deps", "m", "-f", "make", "-o", "out/m.dita"});
    EXPECT_EQ(rule.dependencyFormat, DependencyFormat::kMake);
    EXPECT_EQ(rule.output, "out/m.dita");
}

TEST(PublishArgumentsTest, TakesADepfile) {
    EXPECT_EQ(
        parseAs<PublishOptions>({"publish", "m", "-f", "composite", "-o", "o", "--depfile", "o.d"})
            .depfile,
        "o.d");
}

}  // namespace
}  // namespace marrowpress
