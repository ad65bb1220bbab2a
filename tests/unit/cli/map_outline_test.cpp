#include "cli/map_outline.h"

#include <gtest/gtest.h>

#include "tests/support/observations.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

using Lines = std::vector<std::string>;

const char* nameOf(OutlineState state) {
    constexpr const char* kNames[] = {"topic",    "map",      "heading", "excluded",
                                      "resource", "no print", "missing", "not taken"};
    return kNames[static_cast<std::size_t>(state)];
}

/// Maps of a test, and what a run tells of references in them. Each reference stands on a line of
/// its own, in column 1.
class MapOutlineTest : public testing::Test {
protected:
    void write(const std::string& name, const std::string& lines) {
        folder.write(name, "<map>\n" + lines + "\n</map>");
    }

    void tell(Observation met, const std::string& map, std::uint32_t line,
              const std::string& by = {}, std::uint32_t byLine = 0) {
        const std::string path = folder.file(map);
        const std::string byPath = folder.file(by);
        const ObservedStep steps[]{{{path.c_str(), line, 1}, "", ""},
                                   {{byPath.c_str(), byLine, 1}, "conref", ""}};
        met.steps = steps;
        met.stepCount = by.empty() ? 1 : 2;
        exclusions.observe(met);
        outline.observe(met);
    }

    void take(const std::string& map, std::uint32_t line, const std::string& topic,
              const std::string& by = {}, std::uint32_t byLine = 0) {
        const std::string path = folder.file(topic);
        tell(observationOf(ObservationKind::kTopic, path.c_str()), map, line, by, byLine);
    }

    void refer(ReferenceKind kind, const std::string& map, std::uint32_t line,
               const std::string& file) {
        const std::string path = folder.file(file);
        Observation met = observationOf(ObservationKind::kFileReference, path.c_str());
        met.code = static_cast<std::uint32_t>(kind);
        tell(met, map, line);
    }

    void exclude(const std::string& map, std::uint32_t line) {
        Observation met = observationOf(ObservationKind::kExcluded, "");
        met.element = "topicref";
        met.detail = "audience";
        tell(met, map, line);
    }

    /// "depth state file or label" of each entry.
    Lines lines() {
        exclusions.finish();
        outline.finish();
        Lines told;
        for (const OutlineEntry& entry : outline.entries()) {
            const std::size_t folderSize = folder.path().string().size() + 1;
            std::string line = std::to_string(entry.depth) + " " + nameOf(entry.state);
            line += entry.file.empty() ? "" : " " + entry.file.substr(folderSize);
            line += entry.label.empty() ? "" : " \"" + entry.label + "\"";
            told.push_back(line);
        }
        return told;
    }

    TemporaryFolder folder;
    ExclusionList exclusions;
    MapOutline outline{folder.file("m.ditamap"), false, exclusions};
};

TEST_F(MapOutlineTest, ReferencesStandAsTheyNest) {
    write("m.ditamap",
          "<topicref href='a.dita'>\n<topicref href='b.dita#x/y' navtitle='B'/></topicref>\n"
          "<topichead navtitle='Part'>\n<topicref href='c.dita'/></topichead>\n"
          "<topicgroup>\n<topicref href='d.dita'/></topicgroup>");
    for (const auto& [line, topic] : std::vector<std::pair<std::uint32_t, std::string>>{
             {2, "a.dita"}, {3, "b.dita"}, {5, "c.dita"}, {7, "d.dita"}}) {
        take("m.ditamap", line, topic);
    }
    EXPECT_EQ(lines(), (Lines{"0 topic a.dita", "1 topic b.dita \"B\"", "0 heading \"Part\"",
                              "1 topic c.dita", "0 topic d.dita"}));
    EXPECT_EQ(outline.entries()[1].id, "x");
}

TEST_F(MapOutlineTest, MapsAreTakenIn) {
    write("m.ditamap", "<topicref href='n.ditamap'/>\n<topicref href='n.ditamap'/>");
    write("n.ditamap", "<topicref href='a.dita'/>\n<topicref href='m.ditamap'/>");
    refer(ReferenceKind::kMap, "m.ditamap", 2, "n.ditamap");
    refer(ReferenceKind::kMap, "m.ditamap", 3, "n.ditamap");
    refer(ReferenceKind::kMap, "n.ditamap", 3, "m.ditamap");
    take("n.ditamap", 2, "a.dita");
    EXPECT_EQ(lines(), (Lines{"0 map n.ditamap", "1 topic a.dita", "1 map m.ditamap",
                              "0 map n.ditamap", "1 topic a.dita", "1 map m.ditamap"}));
}

TEST_F(MapOutlineTest, WhatTheProfileLeavesOutStaysWithAllBelowIt) {
    write("m.ditamap",
          "<topicref href='a.dita' audience='x'>\n<topicref href='b.dita'/></topicref>");
    exclude("m.ditamap", 2);
    EXPECT_EQ(lines(), (Lines{"0 excluded a.dita", "1 excluded b.dita"}));
    ASSERT_NE(outline.entries()[0].excluded, nullptr);
    EXPECT_EQ(outline.entries()[0].excluded->value, "x");
    EXPECT_EQ(outline.entries()[1].excluded, nullptr);
}

TEST_F(MapOutlineTest, WhatIsNotTakenInSaysWhy) {
    write("m.ditamap",
          "<topicref href='r.dita' processing-role='resource-only'/>\n"
          "<topicref href='gone.dita'/>\n<topicref href='here.pdf'/>\n"
          "<topicref href='https://example.org/' scope='external'/>\n"
          "<topicref href='n.ditamap'/>");
    folder.write("here.pdf", "");
    refer(ReferenceKind::kTopic, "m.ditamap", 3, "gone.dita");
    refer(ReferenceKind::kTopic, "m.ditamap", 4, "here.pdf");
    refer(ReferenceKind::kMap, "m.ditamap", 6, "n.ditamap");
    const std::string map = folder.file("n.ditamap");
    outline.observe(observationOf(ObservationKind::kDocumentUnread, map.c_str()));
    EXPECT_EQ(lines(), (Lines{"0 resource r.dita", "0 missing gone.dita", "0 not taken here.pdf",
                              "0 not taken \"https://example.org/\"", "0 missing n.ditamap"}));
}

TEST_F(MapOutlineTest, PrintCountsWhereTheRunIsForIt) {
    write("p.ditamap", "<topicref href='a.dita' print='no'>\n<topicref href='b.dita'/></topicref>");
    for (const bool isForPrint : {false, true}) {
        MapOutline printed(folder.file("p.ditamap"), isForPrint, exclusions);
        printed.finish();
        const OutlineState state = isForPrint ? OutlineState::kNotPrinted : OutlineState::kNotTaken;
        EXPECT_EQ(printed.entries()[0].state, state);
        EXPECT_EQ(printed.entries()[1].state, state);
    }
}

TEST_F(MapOutlineTest, DefinitionsAndTablesOfRelationsAreNoneOfIt) {
    write("m.ditamap",
          "<keydef keys='a' href='a.dita'/>\n"
          "<topicref keys='b' href='b.dita' processing-role='resource-only'/>\n"
          "<reltable><relrow><relcell><topicref href='c.dita'/></relcell></relrow></reltable>\n"
          "<topicmeta><image href='d.png'/></topicmeta>");
    EXPECT_EQ(lines(), Lines{});
}

TEST_F(MapOutlineTest, WhatAContentReferenceBringsStandsInItsPlace) {
    write("m.ditamap", "<topicref href='a.dita'/>\n<topicref conref='n.ditamap#r'/>");
    take("m.ditamap", 2, "a.dita");
    take("n.ditamap", 7, "b.dita", "m.ditamap", 3);
    take("n.ditamap", 9, "c.dita");
    EXPECT_EQ(lines(), (Lines{"0 topic a.dita", "0 topic b.dita", "0 topic c.dita"}));
}

TEST_F(MapOutlineTest, MapsThatDoubleEndSomewhere) {
    for (int level = 0; level < 40; ++level) {
        const std::string name = level == 0 ? "m.ditamap" : std::to_string(level) + ".ditamap";
        const std::string next = std::to_string(level + 1) + ".ditamap";
        write(name, "<topicref href='" + next + "'/>\n<topicref href='" + next + "'/>");
        refer(ReferenceKind::kMap, name, 2, next);
        refer(ReferenceKind::kMap, name, 3, next);
    }
    EXPECT_EQ(lines().size(), MapOutline::kMostEntries);
    EXPECT_TRUE(outline.isCut());
}

}  // namespace
}  // namespace marrowpress
