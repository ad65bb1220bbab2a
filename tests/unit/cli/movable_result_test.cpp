#include "cli/movable_result.h"

#include <gtest/gtest.h>

#include "cli/file_failure.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/texts.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class MovableResultTest : public testing::Test {
protected:
    MovableResultTest() {
        options.map = folder.write("docs/m.ditamap", "<map/>");
        options.output = folder.write("out/m.dita", "<dita/>");
        options.isRelative = true;
        folder.write("docs/x.png", "x");
    }

    MovableResult result() const {
        return {
            options, resolvePublishPaths(options), {folder.path() / "out", !isFlatBook(options)}};
    }

    /// The fault for a folder of copies, with "$" for the test's own; "" when there is none.
    std::string faultFor(const std::string& given) {
        options.mediaFolder = given;
        return replacedAll(result().fault().value_or(""), folder.path().string(), "$");
    }

    /// Writes an output, with "$" for the test's folder.
    std::string write(const std::string& name, const std::string& text) const {
        return folder.write(name, replacedAll(text, "$", folder.path().string()));
    }

    TemporaryFolder folder;
    PublishOptions options;
};

TEST_F(MovableResultTest, IsWantedForEitherOption) {
    EXPECT_TRUE(result().isWanted());
    options.isRelative = false;
    EXPECT_FALSE(result().isWanted());
    options.mediaFolder = "media";
    EXPECT_TRUE(result().isWanted());
}

TEST_F(MovableResultTest, HasReferencesFromItsFolderWhereverItIsWritten) {
    const std::string path = write("scratch/composite.dita", "<image href='$/docs/x.png'/>");
    result().make({path});
    EXPECT_EQ(folder.read("scratch/composite.dita"), "<image href='../docs/x.png'/>");
}

TEST_F(MovableResultTest, HasReferencesFromEachComponent) {
    options.format = OutputFormat::kFlatBook;
    options.mediaFolder = "media";
    const std::string text =
        "<image href='$/docs/x.png'/><xref href='$/out/a.qs#i'/>"
        "<xref href='$/docs/b.qs#i'/>";
    result().make({write("out/a.qs", text), write("docs/b.qs", text)});
    EXPECT_EQ(folder.read("out/a.qs"),
              "<image href='media/x.png'/><xref href='a.qs#i'/>"
              "<xref href='../docs/b.qs#i'/>");
    EXPECT_EQ(folder.read("docs/b.qs"),
              "<image href='../out/media/x.png'/>"
              "<xref href='../out/a.qs#i'/><xref href='b.qs#i'/>");
    EXPECT_EQ(folder.read("out/media/x.png"), "x");
}

TEST_F(MovableResultTest, CopiesIntoAFolderThatIsMade) {
    for (const std::string& given : {std::string("media"), std::string("a/b/"), std::string("."),
                                     std::string("../beside"), folder.file("elsewhere")}) {
        options.mediaFolder = given;
        const std::string path = write("out/m.dita", "<image href='$/docs/x.png'/>");
        {
            const MovableResult movable = result();
            ASSERT_EQ(movable.fault(), std::nullopt) << given;
            movable.make({path});
        }
        const std::string text = folder.read("out/m.dita");
        const std::string href = text.substr(13, text.size() - 16);
        EXPECT_TRUE(folder.exists("out/" + href)) << text;
        EXPECT_EQ((folder.path() / "out" / given / "x.png").lexically_normal(),
                  (folder.path() / "out" / href).lexically_normal());
    }
}

TEST_F(MovableResultTest, LeavesNoFolderWithoutCopies) {
    options.mediaFolder = "a/b";
    {
        const MovableResult movable = result();
        EXPECT_TRUE(folder.exists("out/a/b"));
        movable.make({write("out/m.dita", "<image href='$/docs/none.png'/>")});
    }
    EXPECT_FALSE(folder.exists("out/a"));
    EXPECT_EQ(folder.read("out/m.dita"), "<image href='../docs/none.png'/>");
}

TEST_F(MovableResultTest, RefusesAFolderThatCannotTakeCopies) {
    folder.write("out/file", "");
    fs::create_symlink("none", folder.path() / "out/link");
    EXPECT_EQ(faultFor("file"), "--copy-media: file is no folder");
    EXPECT_EQ(faultFor("link"), "--copy-media: cannot make the folder link: File exists");
    EXPECT_EQ(faultFor("\xFF"), "--copy-media: the path is not UTF-8");
    fs::create_directory(folder.path() / "out/closed");
    fs::permissions(folder.path() / "out/closed", fs::perms::none);
    fs::permissions(folder.path(), fs::perms::all);
    const WithoutRights noRights;
    EXPECT_EQ(faultFor("closed"), "--copy-media: cannot write to closed: Permission denied");
}

TEST_F(MovableResultTest, RefusesAFolderInThePlaceOfAnOutput) {
    const std::string end = " is what the run writes for --output; choose another folder";
    for (const char* const name :
         {"m.dita", "m.dita/media", "m.dita_tmp", "KeyspaceDoc.ditamap", "../out/m.dita"}) {
        EXPECT_EQ(faultFor(name), std::string("--copy-media: ") + name + end);
    }
    fs::remove(folder.path() / "out/m.dita");
    EXPECT_EQ(faultFor("m.dita"), "--copy-media: m.dita" + end);
    options.format = OutputFormat::kFlatBook;
    options.output = folder.file("out");
    EXPECT_EQ(
        faultFor("a.qs/media"),
        "--copy-media: a.qs/media has the name of a component, which the run may write; choose "
        "another folder");
    EXPECT_EQ(faultFor("m.dita"), "");
}

TEST_F(MovableResultTest, TakesTheFolderOfTheSources) {
    options.mediaFolder = "../docs";
    result().make({write("out/m.dita", "<image href='$/docs/x.png'/>")});
    EXPECT_EQ(folder.read("out/m.dita"), "<image href='../docs/x.png'/>");
    EXPECT_EQ(folder.read("docs/x.png"), "x");
}

TEST_F(MovableResultTest, LeavesWholeFilesWhenItFails) {
    options.format = OutputFormat::kFlatBook;
    const std::string longText = "<xref href='$/a'/>" + std::string(200000, 'x');
    const std::vector<std::string> files{write("out/a.qs", "<xref href='$/a'/>"),
                                         write("out/b.qs", longText),
                                         write("out/c.qs", "<xref href='$/a'/>")};
    const std::string unchanged = folder.read("out/b.qs");
    const FileSizeLimit limit(100000);
    EXPECT_THROW(result().make(files), FileFailure);
    EXPECT_EQ(folder.read("out/a.qs"), "<xref href='../a'/>");
    EXPECT_EQ(folder.read("out/b.qs"), unchanged);
    EXPECT_EQ(folder.read("out/c.qs"), "<xref href='" + folder.file("a") + "'/>");
}

}  // namespace
}  // namespace marrowpress
