#include "runs/component_places.h"

#include <gtest/gtest.h>

#include "tests/support/chosen_language.h"
#include "tests/support/observations.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

const std::string kOwn =
    R"(<!DOCTYPE dita PUBLIC "-//OASIS//DTD DITA Composite//EN" "d.dtd"><dita/>)";

class ComponentPlacesTest : public testing::Test {
protected:
    /// What is found when components of these paths and sources are met, as "target: text | hint".
    std::vector<std::string> findings(
        const BookPlaces& places,
        const std::vector<std::pair<std::string, std::string>>& components) const {
        ComponentPlaces watched(places);
        std::uint32_t line = 0;
        for (const auto& [path, source] : components) {
            const std::string map = folder.file("m.ditamap");
            const ObservedStep step{{map.c_str(), ++line, 3}, "", ""};
            Observation met = observationOf(ObservationKind::kComponent, path.c_str());
            met.detail = source.c_str();
            met.steps = &step;
            watched.observe(met);
        }
        looked_ = watched.paths();
        FindingCollector collector({folder.path().string(), {}, {}}, {});
        watched.addFindings(collector);
        std::vector<std::string> lines;
        for (const Finding& finding : collector.list().findings()) {
            EXPECT_EQ(finding.id, "MP211");
            EXPECT_EQ(finding.severity, Severity::kError);
            lines.push_back(std::to_string(finding.place.line) + ": " + finding.text + " | " +
                            finding.hint);
        }
        return lines;
    }

    std::string file(const std::string& name) const { return folder.file(name); }

    using Lines = std::vector<std::string>;

    mutable Lines looked_;  ///< The paths that the last components were looked at.

    TemporaryFolder folder;
    ChosenLanguage english{Language::kEnglish};
    BookPlaces atOnePlace{folder.file("out"), folder.file("out"), true, false};
};

TEST_F(ComponentPlacesTest, NothingIsSaidOfComponentsWithAPlaceEach) {
    EXPECT_EQ(findings(atOnePlace,
                       {{file("out/a.qs"), file("a.dita")}, {file("out/b.qs"), file("b.dita")}}),
              Lines());
}

TEST_F(ComponentPlacesTest, ASourceThatIsReferredToTwiceIsOneComponent) {
    EXPECT_EQ(findings(atOnePlace,
                       {{file("out/a.qs"), file("a.dita")}, {file("out/a.qs"), file("a.dita")}}),
              Lines());
}

TEST_F(ComponentPlacesTest, TwoSourcesThatFallIntoOneAreToldAtTheSecond) {
    const Lines lines = findings(
        atOnePlace, {{file("out/a.qs"), file("x/a.dita")}, {file("out/a.qs"), file("y/a.dita")}});
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_TRUE(lines[0].starts_with("2: ")) << lines[0];
    for (const char* const name : {"`out/a.qs`", "`x/a.dita`", "`y/a.dita`"}) {
        EXPECT_NE(lines[0].find(name), std::string::npos) << lines[0];
    }
}

TEST_F(ComponentPlacesTest, TwoHeadingsThatFallIntoOneAreTold) {
    EXPECT_EQ(findings(atOnePlace, {{file("out/h.qs"), ""}, {file("out/h.qs"), ""}}).size(), 1U);
}

TEST_F(ComponentPlacesTest, WhatIsWrittenElsewhereMayStillClashWhereItWasAskedFor) {
    folder.write("x/a.qs", "own notes");
    const BookPlaces places{folder.file("scratch"), folder.file("out"), false, true};
    const Lines lines = findings(places, {{file("scratch/a.qs"), file("x/a.dita")},
                                          {file("scratch/a.qs"), file("y/a.dita")}});
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_TRUE(lines[0].starts_with("1: ")) << lines[0];
    EXPECT_NE(lines[0].find("`x/a.qs`"), std::string::npos) << lines[0];
    EXPECT_EQ(folder.read("x/a.qs"), "own notes");
}

TEST_F(ComponentPlacesTest, AFileOfSomebodyElsesIsKeptUnderAFreeName) {
    folder.write("out/a.qs", "own notes");
    folder.write("out/a.qs.kept-1", "older notes");
    const Lines lines = findings(atOnePlace, {{file("out/a.qs"), file("a.dita")}});
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find("| it is kept as `out/a.qs.kept-2` now"), std::string::npos)
        << lines[0];
    EXPECT_FALSE(folder.exists("out/a.qs"));
    EXPECT_EQ(folder.read("out/a.qs.kept-1"), "older notes");
    EXPECT_EQ(folder.read("out/a.qs.kept-2"), "own notes");
}

TEST_F(ComponentPlacesTest, AFileOfSomebodyElsesIsOnlyToldWhereNothingIsToBeTouched) {
    folder.write("out/a.qs", "own notes");
    atOnePlace.isOnlyLookedAt = true;
    EXPECT_EQ(findings(atOnePlace, {{file("out/a.qs"), file("a.dita")}}).size(), 1U);
    EXPECT_EQ(folder.read("out/a.qs"), "own notes");
    EXPECT_FALSE(folder.exists("out/a.qs.kept-1"));
    EXPECT_EQ(looked_, Lines{file("out/a.qs")});
}

TEST_F(ComponentPlacesTest, AComponentOfAnEarlierRunMayBeReplaced) {
    folder.write("out/a.qs", kOwn);
    folder.write("out/b.qs", "");
    EXPECT_EQ(findings(atOnePlace,
                       {{file("out/a.qs"), file("a.dita")}, {file("out/b.qs"), file("b.dita")}}),
              Lines());
    EXPECT_EQ(folder.read("out/a.qs"), kOwn);
}

TEST_F(ComponentPlacesTest, WithoutAnOutputHeadingsHaveNoPlace) {
    const BookPlaces places{folder.file("scratch"), {}, true, true};
    EXPECT_EQ(findings(places, {{file("scratch/h.qs"), ""}}), Lines());
    EXPECT_EQ(looked_, Lines());
    EXPECT_EQ(findings(places, {{file("scratch/h.qs"), ""}, {file("scratch/h.qs"), ""}}).size(),
              1U);
}

}  // namespace
}  // namespace marrowpress
