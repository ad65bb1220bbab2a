#include "cli/neighbourhood.h"

#include <gtest/gtest.h>

#include "tests/support/told_files.h"
#include "tests/support/told_keys.h"

namespace marrowpress {
namespace {

using Texts = std::vector<std::string>;

class NeighbourhoodTest : public testing::Test {
protected:
    /// "kind path" of each, in order.
    static Texts told(const Neighbourhood& neighbourhood,
                      const std::vector<Neighbour>& neighbours) {
        Texts texts;
        for (const Neighbour& neighbour : neighbours) {
            texts.push_back(std::to_string(static_cast<int>(neighbour.kind)) + " " +
                            neighbourhood.files()[neighbour.file].path);
        }
        return texts;
    }

    const FileNode& fileOf(const Neighbourhood& neighbourhood, const std::string& path) const {
        return neighbourhood.files()[neighbourhood.find(path).value()];
    }

    ToldFiles files;
    ToldKeys keys;
};

TEST_F(NeighbourhoodTest, FilesKnowWhomTheyReferToAndWhoRefersToThem) {
    files.refer(ReferenceKind::kTopic, "/w/m.ditamap", 2, "/w/t.dita");
    files.refer(ReferenceKind::kLink, "/w/t.dita", 5, "/w/z.dita");
    files.refer(ReferenceKind::kConref, "/w/t.dita", 7, "/w/s.dita");
    files.refer(ReferenceKind::kImage, "/w/t.dita", 8, "/w/i.png");
    files.list.finish();
    const Neighbourhood neighbourhood(files.list, keys.list);
    EXPECT_EQ(told(neighbourhood, fileOf(neighbourhood, "/w/t.dita").outgoing),
              (Texts{"3 /w/s.dita", "4 /w/z.dita", "5 /w/i.png"}));
    EXPECT_EQ(told(neighbourhood, fileOf(neighbourhood, "/w/t.dita").incoming),
              Texts{"1 /w/m.ditamap"});
    EXPECT_EQ(fileOf(neighbourhood, "/w/t.dita").state, DependencyState::kAbsent);
}

TEST_F(NeighbourhoodTest, FilesOfTheSystemAreLeftOut) {
    files.name("/w/m.ditamap", "/dtd/map.dtd");
    files.list.addCatalog("/etc/xml/catalog");
    files.list.addProfiles({"/w/p.ditaval"});
    files.list.finish();
    const Neighbourhood neighbourhood(files.list, keys.list);
    ASSERT_EQ(neighbourhood.files().size(), 1U);
    EXPECT_EQ(neighbourhood.find("/dtd/map.dtd"), std::nullopt);
}

TEST_F(NeighbourhoodTest, ALinkByKeyIsThatOfItsUser) {
    files.refer(ReferenceKind::kTopic, "/w/m.ditamap", 2, "/w/u.dita");
    files.refer(ReferenceKind::kKeyDefinition, "/w/m.ditamap", 4, "/w/t.dita");
    files.refer(ReferenceKind::kLink, "/w/m.ditamap", 4, "/w/t.dita");
    files.list.finish();
    keys.define("k", KeyState::kEffective, "/w/m.ditamap", 4, "/w/t.dita");
    keys.mean("k", "/w/m.ditamap", 4, "/w/t.dita#t", "");
    keys.refer("k", "/w/u.dita", 9);
    keys.refer("k", "/w/u.dita", 11);
    keys.list.finish();
    const Neighbourhood neighbourhood(files.list, keys.list);
    EXPECT_EQ(told(neighbourhood, fileOf(neighbourhood, "/w/t.dita").incoming),
              (Texts{"2 /w/m.ditamap", "6 /w/u.dita"}));
}

}  // namespace
}  // namespace marrowpress
