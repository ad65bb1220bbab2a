#include "cli/batch/placement.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class PlacementTest : public testing::Test {
protected:
    PlacementTest() {
        job_.options.map = folder_.file("m.ditamap");
        job_.options.output = folder_.file("out/m.dita");
        folder_.write("out/own.dtd", "");
    }

    bool needsPlace() const { return needsItsPlace(job_, earlier_); }

    TemporaryFolder folder_;
    Job job_;
    std::optional<RunResult> earlier_;
};

TEST_F(PlacementTest, ACompositeCanBeMadeAside) {
    EXPECT_FALSE(needsPlace());
    earlier_.emplace();
    earlier_->dependencies = {{folder_.file("out/other.dita"), "topic", "read", {}, {}}};
    EXPECT_FALSE(needsPlace());
}

TEST_F(PlacementTest, AFlatBookNeedsItsPlace) {
    job_.options.format = OutputFormat::kFlatBook;
    EXPECT_TRUE(needsPlace());
}

TEST_F(PlacementTest, ASystemIdentifierThatLeadsFromTheFolderToAFileKeepsTheJobThere) {
    job_.options.compositeDtd = "own.dtd";
    EXPECT_TRUE(needsPlace());
    job_.options.compositeDtd = "ditabase.dtd";
    job_.options.keySpaceDtd = "../out/own.dtd";
    EXPECT_TRUE(needsPlace());
    job_.options.keySpaceDtd = folder_.file("out/own.dtd");
    EXPECT_FALSE(needsPlace()) << "it leads there from anywhere";
}

TEST_F(PlacementTest, AnEarlierRunThatReadItsOwnOutputTells) {
    for (const char* const name : {"out/m.dita", "out/KeyspaceDoc.ditamap"}) {
        earlier_.emplace();
        earlier_->dependencies = {{folder_.file(name), "topic", "absent", {}, {}}};
        EXPECT_TRUE(needsPlace()) << name;
    }
}

}  // namespace
}  // namespace marrowpress
