#include "findings/file_hints.h"

#include <gtest/gtest.h>

#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// In a folder with some topics.
class FileHintsTest : public testing::Test {
protected:
    FileHintsTest() {
        for (const char* const name : {"parts.dita", "Tools.dita", "topics/Motor.dita",
                                       "topics/Gr\u00F6\u00DFe.dita", "Images/drill.png"}) {
            folder.write(name, "text");
        }
    }

    /// What is found for a name below the test's folder, likewise; "=" in front of what differs in
    /// letter case only.
    std::string hintFor(const std::string& name) const {
        const std::optional<FileHint> hint = FileHints().find(folder.file(name));
        if (!hint) {
            return "";
        }
        return (hint->isLetterCaseOnly ? "=" : "") +
               fs::path(hint->path).lexically_relative(folder.path()).string();
    }

    TemporaryFolder folder;
};

TEST_F(FileHintsTest, AnotherLetterCaseIsFound) {
    EXPECT_EQ(hintFor("Parts.dita"), "=parts.dita");
    EXPECT_EQ(hintFor("tools.DITA"), "=Tools.dita");
    EXPECT_EQ(hintFor("topics/GR\u00D6SSE.dita"), "=topics/Gr\u00F6\u00DFe.dita");
}

TEST_F(FileHintsTest, AnotherLetterCaseOnTheWayIsFound) {
    EXPECT_EQ(hintFor("Topics/Motor.dita"), "=topics/Motor.dita");
    EXPECT_EQ(hintFor("IMAGES/Drill.PNG"), "=Images/drill.png");
    EXPECT_EQ(hintFor("IMAGES/../TOPICS/./motor.dita"), "=topics/Motor.dita");
}

TEST_F(FileHintsTest, ANameInWhichLittleDiffersIsFound) {
    EXPECT_EQ(hintFor("part.dita"), "parts.dita");
    EXPECT_EQ(hintFor("topics/Motro.dita"), "topics/Motor.dita");
    EXPECT_EQ(hintFor("topic/Motor.dita"), "topics/Motor.dita");
    EXPECT_EQ(hintFor("image/Drill.png"), "Images/drill.png");
}

TEST_F(FileHintsTest, TwoWrongNamesAreTooMany) {
    EXPECT_EQ(hintFor("topic/Motro.dita"), "");
}

TEST_F(FileHintsTest, LetterCaseGoesBeforeTheNearestName) {
    folder.write("part.dita", "text");
    EXPECT_EQ(hintFor("PARTS.dita"), "=parts.dita");
}

TEST_F(FileHintsTest, SomethingElseIsNotFound) {
    EXPECT_EQ(hintFor("introduction.dita"), "");
    EXPECT_EQ(hintFor("none/at/all.dita"), "");
    EXPECT_EQ(hintFor("parts.dita/x.dita"), "");
}

TEST_F(FileHintsTest, OnlyFilesAreFound) {
    fs::create_directory(folder.path() / "wiring.dita");
    EXPECT_EQ(hintFor("Wiring.dita"), "");
    EXPECT_EQ(hintFor("topicz"), "");
    folder.write("tOPICS", "text");
    EXPECT_EQ(hintFor("Topics/Motor.dita"), "=topics/Motor.dita");
    EXPECT_EQ(hintFor("Topics"), "=tOPICS");
}

TEST_F(FileHintsTest, ForWhatIsThereNothingIsFound) {
    EXPECT_EQ(hintFor("parts.dita"), "");
    EXPECT_EQ(hintFor("topics"), "");
    EXPECT_EQ(hintFor("topics/"), "");
    EXPECT_FALSE(FileHints().find("/"));
}

TEST_F(FileHintsTest, FoldersThatCannotBeReadHoldNothing) {
    fs::permissions(folder.path() / "topics", fs::perms(0311));
    fs::permissions(folder.path(), fs::perms(0755));
    const WithoutRights noRights;
    EXPECT_EQ(hintFor("topics/motor.dita"), "");
}

TEST_F(FileHintsTest, OddNamesAreFoundToo) {
    folder.write("a \"b\"\n%#?.dita", "text");
    folder.write("\xE4.dita", "text");
    EXPECT_EQ(hintFor("A \"b\"\n%#?.dita"), "=a \"b\"\n%#?.dita");
    EXPECT_EQ(hintFor("\xE4.ditta"), "\xE4.dita");
}

TEST_F(FileHintsTest, AfterManyComparisonsOnlyLetterCaseIsLookedAt) {
    for (int count = 0; count < 1000; ++count) {
        folder.write("many/a rather long name " + std::to_string(count), "");
    }
    FileHints hints;
    const auto findWrong = [&](int number) {
        return hints.find(folder.file("many/a rather wrong name " + std::to_string(number)));
    };
    EXPECT_TRUE(findWrong(0));
    for (int number = 0; number < 20; ++number) {
        findWrong(number);
    }
    EXPECT_FALSE(findWrong(20));
    EXPECT_TRUE(findWrong(0));
    EXPECT_TRUE(hints.find(folder.file("many/A RATHER LONG NAME 7")));
}

class SameFilesTest : public testing::Test {
protected:
    std::string write(const std::string& name) const { return folder.write(name, "text"); }

    TemporaryFolder folder;
};

TEST_F(SameFilesTest, DifferentFilesAreNotTheSame) {
    const std::string file = write("a");
    EXPECT_EQ(findSameFiles({}), std::vector<SameFile>());
    EXPECT_EQ(findSameFiles({file, write("b"), file, folder.file("none"), folder.file("none2")}),
              std::vector<SameFile>());
}

TEST_F(SameFilesTest, ALinkLeadsToAnother) {
    const std::string file = write("docs/a");
    fs::create_symlink("docs/a", folder.path() / "link");
    fs::create_directory_symlink("docs", folder.path() / "folder");
    const std::string link = folder.file("link");
    const std::string viaFolder = folder.file("folder/a");
    EXPECT_EQ(findSameFiles({link, write("b"), file, viaFolder, file}),
              (std::vector<SameFile>{{file, link}, {viaFolder, link}}));
}

TEST_F(SameFilesTest, AHardLinkIsAFileOfItsOwn) {
    const std::string file = write("a");
    fs::create_hard_link(file, folder.path() / "hard");
    fs::create_symlink("hard", folder.path() / "link");
    const std::string hard = folder.file("hard");
    const std::string link = folder.file("link");
    EXPECT_EQ(findSameFiles({file, hard, link}), (std::vector<SameFile>{{link, hard}}));
}

TEST_F(SameFilesTest, ANameThatDiffersInLetterCaseOnlyIsASpellingOfAHardLink) {
    // On a file system that ignores letter case both would be the name of one file.
    const std::string file = write("a.dita");
    fs::create_hard_link(file, folder.path() / "A.dita");
    EXPECT_EQ(findSameFiles({file, folder.file("A.dita")}),
              (std::vector<SameFile>{{folder.file("A.dita"), file}}));
}

}  // namespace
}  // namespace marrowpress
