#include "findings/baseline.h"

#include <gtest/gtest.h>

#include <sstream>

#include "findings/json_reader.h"
#include "findings/json_writer.h"
#include "tests/support/sample_findings.h"

namespace marrowpress {
namespace {

Finding findingOn(const std::string& file, std::vector<std::uint32_t> lines) {
    Finding result;
    result.id = "MP105";
    result.element = "keyword";
    result.target = "k";
    result.place = {file, lines.front(), 1};
    for (std::size_t i = 1; i < lines.size(); ++i) {
        result.places.push_back({file, lines[i], 1});
    }
    return result;
}

Baseline baselineOf(const std::vector<Finding>& recorded, const char* folder) {
    Baseline baseline(folder);
    for (const Finding& finding : recorded) {
        baseline.add(finding);
    }
    return baseline;
}

NewFindings newOf(const std::vector<Finding>& recorded, std::vector<Finding> findings) {
    return baselineOf(recorded, "/guide").newOf(std::move(findings), "/guide");
}

TEST(BaselineTest, WhatWasThereBeforeIsKnown) {
    const NewFindings result =
        newOf({findingOn("/guide/a.dita", {1, 2})}, {findingOn("/guide/a.dita", {1, 2})});
    EXPECT_TRUE(result.findings.empty());
    EXPECT_EQ(result.knownPlaces, 2U);
}

TEST(BaselineTest, LinesMayHaveMoved) {
    const NewFindings result =
        newOf({findingOn("/guide/a.dita", {1, 2})}, {findingOn("/guide/a.dita", {70, 80})});
    EXPECT_TRUE(result.findings.empty());
}

TEST(BaselineTest, TextAndSeverityMayHaveChanged) {
    Finding now = findingOn("/guide/a.dita", {1});
    now.severity = Severity::kNote;
    now.text = "text";
    EXPECT_TRUE(newOf({findingOn("/guide/a.dita", {1})}, {now}).findings.empty());
}

TEST(BaselineTest, PlacesAreCounted) {
    const NewFindings result =
        newOf({findingOn("/guide/a.dita", {1, 2})}, {findingOn("/guide/a.dita", {1, 2, 3})});
    ASSERT_EQ(result.findings.size(), 1U);
    EXPECT_EQ(result.findings[0].place.line, 3U);
    EXPECT_TRUE(result.findings[0].places.empty());
    EXPECT_EQ(result.knownPlaces, 2U);
}

TEST(BaselineTest, EachFileCountsForItself) {
    Finding now = findingOn("/guide/a.dita", {1, 2});
    now.places.push_back({"/guide/b.dita", 5, 1});
    now.places.push_back({"/guide/b.dita", 6, 1});
    const NewFindings result = newOf({findingOn("/guide/a.dita", {1, 2, 3})}, {now});
    ASSERT_EQ(result.findings.size(), 1U);
    EXPECT_EQ(result.findings[0].place, (FindingPlace{"/guide/b.dita", 5, 1}));
    EXPECT_EQ(result.findings[0].places, (std::vector<FindingPlace>{{"/guide/b.dita", 6, 1}}));
    EXPECT_EQ(result.knownPlaces, 2U);
}

TEST(BaselineTest, AnotherIdElementOrTargetIsNew) {
    const Finding old = findingOn("/guide/a.dita", {1});
    Finding id = old;
    id.id = "MP106";
    Finding element = old;
    element.element = "xref";
    Finding target = old;
    target.target = "l";
    const NewFindings result = newOf({old}, {id, element, target});
    EXPECT_EQ(result.findings.size(), 3U);
    EXPECT_EQ(result.knownPlaces, 0U);
}

TEST(BaselineTest, FindingsOfOneIdentityShareTheCount) {
    Finding warning = findingOn("/guide/a.dita", {5});
    warning.severity = Severity::kWarning;
    const NewFindings result =
        newOf({findingOn("/guide/a.dita", {1})}, {findingOn("/guide/a.dita", {1}), warning});
    ASSERT_EQ(result.findings.size(), 1U);
    EXPECT_EQ(result.findings[0].severity, Severity::kWarning);
}

TEST(BaselineTest, TheWayStaysWithThePlaceThatItLeadsTo) {
    Finding now = findingOn("/guide/a.dita", {1, 2});
    now.via = {{{"/guide/root.ditamap", 1, 1}, "href a.dita"}};
    EXPECT_EQ(newOf({}, {now}).findings[0].via, now.via);
    EXPECT_TRUE(newOf({findingOn("/guide/a.dita", {1})}, {now}).findings[0].via.empty());
}

TEST(BaselineTest, ACopyOfTheSourcesElsewhereHasTheSame) {
    const Baseline baseline = baselineOf({findingOn("/builds/7/a.dita", {1})}, "/builds/7");
    EXPECT_TRUE(baseline.newOf({findingOn("/guide/a.dita", {1})}, "/guide").findings.empty());
    EXPECT_EQ(baseline.newOf({findingOn("/guide/a.dita", {1})}, "/").findings.size(), 1U);
}

TEST(BaselineTest, ArtefactsAreNeitherKnownNorRecorded) {
    Finding artefact = findingOn("/guide/a.dita", {1});
    artefact.isArtefact = true;
    EXPECT_EQ(newOf({artefact}, {findingOn("/guide/a.dita", {1})}).findings.size(), 1U);
    const NewFindings result = newOf({findingOn("/guide/a.dita", {1})}, {artefact});
    EXPECT_EQ(result.findings.size(), 1U);
    EXPECT_EQ(result.knownPlaces, 0U);
}

TEST(BaselineTest, ComparesOftenWithTheSameCounts) {
    const Baseline baseline = baselineOf({findingOn("/guide/a.dita", {1})}, "/guide");
    for (int run = 0; run < 2; ++run) {
        EXPECT_TRUE(baseline.newOf({findingOn("/guide/a.dita", {1})}, "/guide").findings.empty());
    }
}

TEST(BaselineTest, WhatWasWrittenAsJsonIsKnownWhateverItsNamesAre) {
    std::stringstream file;
    writeJson(file, sampleFindings(), sampleSummary());
    Baseline baseline{std::string(kSampleFolder)};
    readJson(file, [&baseline](const Finding& recorded) { baseline.add(recorded); });
    const NewFindings result = baseline.newOf(sampleFindings(), kSampleFolder);
    ASSERT_EQ(result.findings.size(), 1U);
    EXPECT_TRUE(result.findings[0].isArtefact);
}

}  // namespace
}  // namespace marrowpress
