#include "support/file_entry.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/text.h"
#include "tests/support/current_folder.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class FileEntryTest : public testing::Test {
protected:
    /// Whether replacing `output` would replace what is read as `input`.
    bool replaces(const std::string& output, const std::string& input) const {
        return isOneEntry(fileEntry(folder.file16(output)), readEntry(folder.file16(input)));
    }

    TemporaryFolder folder;
};

TEST_F(FileEntryTest, OneNameInOneFolderIsOneWhateverWayItIsSpelt) {
    folder.write("a/b/file", "x");
    fs::create_directory_symlink("a/b", folder.path() / "linked");
    for (const char* const spelling :
         {"a/b/file", "a/b/../b/file", "a/./b/file", "a//b/file", "linked/file"}) {
        EXPECT_TRUE(replaces(spelling, "a/b/file")) << spelling;
        EXPECT_TRUE(replaces("a/b/file", spelling)) << spelling;
    }
    EXPECT_TRUE(replaces("a/new", "linked/../new")) << "nothing stands there yet";
    const CurrentFolder current(folder.path() / "a/b");
    EXPECT_TRUE(isOneEntry(fileEntry(u"file"), fileEntry(folder.file16("a/b/file"))));
}

TEST_F(FileEntryTest, AFileThatALinkLeadsToIsOneWithWhatIsRead) {
    folder.write("real", "x");
    fs::create_symlink("real", folder.path() / "link");
    EXPECT_TRUE(replaces("real", "link"));
    EXPECT_TRUE(replaces("link", "link"));
}

TEST_F(FileEntryTest, ALinkIsNotOneWithWhatItLeadsTo) {
    folder.write("real", "x");
    fs::create_symlink("real", folder.path() / "link");
    fs::create_hard_link(folder.path() / "real", folder.path() / "second");
    EXPECT_FALSE(replaces("link", "real"));
    EXPECT_FALSE(replaces("second", "real"));
    EXPECT_FALSE(replaces("real", "second"));
}

TEST_F(FileEntryTest, OtherNamesAndNoNamesAreOthers) {
    folder.write("file", "x");
    folder.write("other", "x");
    EXPECT_FALSE(replaces("file", "other"));
    EXPECT_FALSE(replaces("file", "none/file"));
    EXPECT_FALSE(replaces("none/file", "none/file")) << "there is no such folder";
    EXPECT_FALSE(isOneEntry(fileEntry(u""), fileEntry(u"")));
}

}  // namespace
}  // namespace marrowpress
