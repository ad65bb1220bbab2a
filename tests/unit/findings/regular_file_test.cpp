#include "findings/regular_file.h"

#include <gtest/gtest.h>

#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

TEST(RegularFileTest, GivesItsBytes) {
    const TemporaryFolder folder;
    const std::string text = std::string(100000, 'x') + '\0' + "\xFF";
    RegularFile file(folder.write("f", text));
    ASSERT_TRUE(file.isOpen()) << file.fault();
    EXPECT_EQ(file.fault(), "");
    EXPECT_EQ(file.read(), text);
    EXPECT_EQ(file.read(), "");
}

TEST(RegularFileTest, SaysWhyItIsNotOpen) {
    const TemporaryFolder folder;
    const RegularFile missing(folder.file("none"));
    EXPECT_FALSE(missing.isOpen());
    EXPECT_EQ(missing.fault(), "No such file or directory");

    const std::string path = folder.write("f", "text");
    std::filesystem::permissions(path, std::filesystem::perms::none);
    std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
    const WithoutRights noRights;
    EXPECT_EQ(RegularFile(path).fault(), "Permission denied");
}

TEST(RegularFileTest, IsNothingElseThatHasAName) {
    const Watchdog watchdog(60);
    const TemporaryFolder folder;
    makePipe(folder.file("pipe"));
    for (const std::string& path :
         {folder.file("pipe"), folder.path().string(), std::string("/dev/null")}) {
        const RegularFile file(path);
        EXPECT_FALSE(file.isOpen()) << path;
        EXPECT_EQ(file.fault(), "not a regular file") << path;
    }
}

TEST(RegularFileTest, IsClosedAtItsEnd) {
    const TemporaryFolder folder;
    const std::string path = folder.write("f", "text");
    {
        const RegularFile file(path);
        EXPECT_TRUE(isOpenInProcess(path));
    }
    EXPECT_FALSE(isOpenInProcess(path));
}

}  // namespace
}  // namespace marrowpress
