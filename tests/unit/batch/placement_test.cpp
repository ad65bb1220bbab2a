#include "cli/batch/placement.h"

#include <gtest/gtest.h>

#include "results/file_digest.h"
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

/// The result of a book of one map and one topic in "docs", written into "book".
class BookFoldersTest : public testing::Test {
protected:
    BookFoldersTest() {
        earlier_.request = wanted_.request = R"({"type":"PublishFlatBook"})";
        earlier_.options = wanted_.options = "{}";
        addDependency("docs/m.ditamap", "map reference");
        addDependency("docs/a.dita", "topic");
        earlier_.outputs.push_back({folder_.file("book/a.qs"), {}});
    }

    void addDependency(const std::string& name, const std::string& kind) {
        folder_.write(name, "first");
        earlier_.dependencies.push_back({folder_.file(name), kind, "read", {}, {}});
        earlier_.run.files.emplace_back(
            KnownFile{*stampOf(folder_.file(name)), *quickDigestOf(folder_.file(name))});
    }

    std::optional<BookFolders> find() const {
        FileComparison files;
        return findBookFolders(earlier_, wanted_, files);
    }

    TemporaryFolder folder_;
    RunResult earlier_;
    WantedRun wanted_;
};

TEST_F(BookFoldersTest, AreThoseOfTheEarlierResult) {
    const std::optional<BookFolders> folders = find();
    ASSERT_TRUE(folders);
    EXPECT_EQ(folders->written, std::set{folder_.file("book")});
    EXPECT_EQ(folders->read, std::set{folder_.file("docs")});
}

TEST_F(BookFoldersTest, ATopicThatChangesMovesNothing) {
    folder_.write("docs/a.dita", "changed");
    EXPECT_TRUE(find());
}

TEST_F(BookFoldersTest, WithAnotherMapNothingIsKnown) {
    folder_.write("docs/m.ditamap", "changed");
    EXPECT_FALSE(find());
}

TEST_F(BookFoldersTest, WithAnotherRequestNothingIsKnown) {
    wanted_.request = "{}";
    EXPECT_FALSE(find());
}

TEST_F(BookFoldersTest, OfARunThatWroteNothingNothingIsKnown) {
    earlier_.outputs.clear();
    EXPECT_FALSE(find());
}

TEST(AreApartTest, NeitherWritesWhereTheOtherReadsOrWrites) {
    const BookFolders first{{"/book1"}, {"/docs1", "/shared"}};
    EXPECT_TRUE(areApart(first, {{"/book2"}, {"/docs2", "/shared"}}));
    EXPECT_FALSE(areApart(first, {{"/book1"}, {"/docs2"}})) << "they write into one folder";
    EXPECT_FALSE(areApart(first, {{"/shared"}, {"/docs2"}})) << "the second one writes there";
    EXPECT_FALSE(areApart(first, {{"/book2"}, {"/book1"}})) << "the second one reads there";
}

}  // namespace
}  // namespace marrowpress
