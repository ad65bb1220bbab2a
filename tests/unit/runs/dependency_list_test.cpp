#include "runs/dependency_list.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"
#include "tests/support/told_files.h"

namespace marrowpress {
namespace {

using Texts = std::vector<std::string>;

const std::string kMap = "/w/m.ditamap";

class DependencyListTest : public testing::Test, protected ToldFiles {
protected:
    Texts paths() const {
        Texts paths;
        for (const Dependency& file : list.files()) {
            paths.push_back(file.file);
        }
        return paths;
    }

    Texts leadingTo(const std::string& path) const {
        Texts paths;
        for (const Dependency* const file : list.filesLeadingTo(path)) {
            paths.push_back(file->file);
        }
        return paths;
    }
};

TEST_F(DependencyListTest, TheMapComesFirst) {
    refer(ReferenceKind::kTopic, kMap, 2, "/w/a.dita");
    list.addCatalog("/w/../w/c.xml");
    list.addProfiles({"/w/p.ditaval"});
    list.finish();
    EXPECT_EQ(paths(), (Texts{kMap, "/w/c.xml", "/w/p.ditaval", "/w/a.dita"}));
    EXPECT_EQ(list.find(kMap)->kind, DependencyKind::kMap);
    EXPECT_EQ(list.find(kMap)->from, FindingPlace());
    EXPECT_EQ(list.find("/w/c.xml")->kind, DependencyKind::kCatalog);
    EXPECT_EQ(list.find("/w/p.ditaval")->kind, DependencyKind::kProfile);
    EXPECT_EQ(list.find("/w/none"), nullptr);
}

TEST_F(DependencyListTest, AFileHasTheKindAndThePlaceOfTheFirstReferenceToIt) {
    const struct {
        ReferenceKind kind;
        DependencyKind expected;
    } kinds[] = {{ReferenceKind::kMap, DependencyKind::kMap},
                 {ReferenceKind::kTopic, DependencyKind::kTopic},
                 {ReferenceKind::kConref, DependencyKind::kConref},
                 {ReferenceKind::kLink, DependencyKind::kLink},
                 {ReferenceKind::kImage, DependencyKind::kImage}};
    std::uint32_t line = 1;
    for (const auto& of : kinds) {
        refer(of.kind, kMap, line, "/w/" + std::to_string(line));
        refer(ReferenceKind::kTopic, kMap, 99, "/w/" + std::to_string(line));
        ++line;
    }
    list.finish();
    line = 1;
    for (const auto& of : kinds) {
        const Dependency& file = *list.find("/w/" + std::to_string(line));
        EXPECT_EQ(file.kind, of.expected);
        EXPECT_EQ(file.from, (FindingPlace{kMap, line, 3}));
        ++line;
    }
}

TEST_F(DependencyListTest, TheFileOfAKeyCountsOnceSomebodyLooksForIt) {
    for (const char* const path : {"/w/unused", "/w/image", "/w/shared"}) {
        refer(ReferenceKind::kKeyDefinition, kMap, 2, path);
    }
    refer(ReferenceKind::kImage, "/w/a.dita", 5, "/w/image");
    open("/w/shared");
    list.finish();
    EXPECT_EQ(paths(), (Texts{kMap, "/w/image", "/w/shared"}));
    EXPECT_EQ(list.find("/w/image")->kind, DependencyKind::kKeyDefinition);
    EXPECT_EQ(list.edges().size(), 3U);
}

TEST_F(DependencyListTest, EntitiesAreNamedByTheirFile) {
    name("/w/a.dita", "/dtd/topic.dtd");
    name("/dtd/topic.dtd", "/dtd/topic.mod");
    name("", "/dtd/ditabase.dtd");
    list.finish();
    EXPECT_EQ(list.find("/dtd/topic.mod")->kind, DependencyKind::kDtd);
    EXPECT_EQ(list.find("/dtd/topic.mod")->from, (FindingPlace{"/dtd/topic.dtd", 0, 0}));
    EXPECT_EQ(list.find("/dtd/ditabase.dtd")->from, FindingPlace());
}

TEST_F(DependencyListTest, WhatTheRunHasReadIsReadAndAllElseIsLookedAt) {
    const TemporaryFolder folder;
    const std::string there = folder.write("there.png", "");
    const std::string broken = folder.write("broken.dita", "<");
    for (const std::string& path : {there, broken, folder.file("none.png"), folder.path().string(),
                                    std::string("/w/gone-since.dita")}) {
        refer(ReferenceKind::kLink, kMap, 1, path);
    }
    open("/w/gone-since.dita");
    open(broken, ObservationKind::kDocumentUnread);
    list.finish();
    EXPECT_EQ(list.find(there)->state, DependencyState::kRead);
    EXPECT_EQ(list.find(broken)->state, DependencyState::kUnreadable);
    EXPECT_EQ(list.find(folder.file("none.png"))->state, DependencyState::kAbsent);
    EXPECT_EQ(list.find(folder.path().string())->state, DependencyState::kUnreadable);
    EXPECT_EQ(list.find("/w/gone-since.dita")->state, DependencyState::kRead);
}

TEST_F(DependencyListTest, AFileThatIsReadAtALaterTryIsRead) {
    refer(ReferenceKind::kTopic, kMap, 1, "/w/a.dita");
    open("/w/a.dita", ObservationKind::kDocumentUnread);
    open("/w/a.dita");
    list.finish();
    EXPECT_EQ(list.find("/w/a.dita")->state, DependencyState::kRead);
}

TEST_F(DependencyListTest, APrivateCopyOfTheProfilesIsNoFileOfTheList) {
    open("/tmp/filters.ditaval", ObservationKind::kDocumentRead, "val");
    list.finish();
    EXPECT_EQ(paths(), Texts{kMap});
}

TEST_F(DependencyListTest, AnEdgeIsToldOnceForEachPairAndKind) {
    refer(ReferenceKind::kTopic, kMap, 1, "/w/a.dita");
    refer(ReferenceKind::kTopic, kMap, 2, "/w/a.dita");
    refer(ReferenceKind::kConref, kMap, 3, "/w/a.dita");
    refer(ReferenceKind::kLink, "/w/a.dita", 3, "/w/a.dita");
    list.finish();
    ASSERT_EQ(list.edges().size(), 2U);
    EXPECT_EQ(list.edges()[0].place.line, 1U);
    EXPECT_EQ(list.edges()[1].kind, DependencyKind::kConref);
}

TEST_F(DependencyListTest, WhatLeadsToAFileIsFollowedUpToTheMap) {
    refer(ReferenceKind::kMap, kMap, 1, "/w/sub.ditamap");
    refer(ReferenceKind::kTopic, "/w/sub.ditamap", 1, "/w/a.dita");
    refer(ReferenceKind::kTopic, kMap, 2, "/w/b.dita");
    refer(ReferenceKind::kConref, "/w/a.dita", 1, "/w/lib.dita");
    refer(ReferenceKind::kImage, "/w/lib.dita", 1, "/w/i.png");
    list.finish();
    EXPECT_EQ(leadingTo("/w/i.png"), (Texts{"/w/lib.dita", "/w/a.dita", "/w/sub.ditamap", kMap}));
    EXPECT_EQ(leadingTo("/w/b.dita"), Texts{kMap});
    EXPECT_EQ(leadingTo(kMap), Texts{});
    EXPECT_EQ(leadingTo("/w/none"), Texts{});
}

TEST_F(DependencyListTest, ALinkBringsInNothingOfWhatItsTargetHolds) {
    refer(ReferenceKind::kTopic, kMap, 1, "/w/a.dita");
    refer(ReferenceKind::kTopic, kMap, 2, "/w/b.dita");
    refer(ReferenceKind::kLink, "/w/a.dita", 1, "/w/b.dita");
    refer(ReferenceKind::kImage, "/w/b.dita", 1, "/w/i.png");
    list.finish();
    EXPECT_EQ(leadingTo("/w/i.png"), (Texts{"/w/b.dita", kMap}));
    EXPECT_EQ(leadingTo("/w/b.dita"), (Texts{kMap, "/w/a.dita"}));
}

TEST_F(DependencyListTest, FilesThatReferToEachOtherAreToldOnce) {
    refer(ReferenceKind::kMap, kMap, 1, "/w/n.ditamap");
    refer(ReferenceKind::kMap, "/w/n.ditamap", 1, kMap);
    list.finish();
    EXPECT_EQ(leadingTo(kMap), Texts{"/w/n.ditamap"});
    EXPECT_EQ(leadingTo("/w/n.ditamap"), Texts{kMap});
}

}  // namespace
}  // namespace marrowpress
