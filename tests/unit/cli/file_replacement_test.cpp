#include "cli/file_replacement.h"

#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>

#include "cli/file_failure.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/texts.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class FileReplacementTest : public testing::Test {
protected:
    std::size_t fileCount() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()));
    }

    TemporaryFolder folder;
};

/// What is said when the file can't be replaced; empty when it can.
std::string failureOf(const fs::path& path) {
    try {
        replaceFile(path, "two");
        return {};
    } catch (const FileFailure& failure) {
        return failure.reason();
    }
}

TEST_F(FileReplacementTest, AFileIsMadeOrReplacedAndNothingElseStays) {
    replaceFile(folder.file("a.d"), "one");
    EXPECT_EQ(folder.read("a.d"), "one");
    replaceFile(folder.file("a.d"), "two");
    EXPECT_EQ(folder.read("a.d"), "two");
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileReplacementTest, ALinkStaysAndItsFileIsReplaced) {
    folder.write("a.d", "one");
    fs::create_symlink("a.d", folder.path() / "link.d");
    replaceFile(folder.file("link.d"), "two");
    EXPECT_TRUE(fs::is_symlink(folder.path() / "link.d"));
    EXPECT_EQ(folder.read("a.d"), "two");
}

TEST_F(FileReplacementTest, AFileStaysWhenItCannotBeReplaced) {
    folder.write("a.d", "one");
    const FileSizeLimit limit(1);
    EXPECT_EQ(failureOf(folder.file("a.d")), "File too large");
    EXPECT_EQ(folder.read("a.d"), "one");
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileReplacementTest, AFolderThatIsMissingIsNotMade) {
    EXPECT_EQ(failureOf(folder.file("none/a.d")), "No such file or directory");
}

TEST_F(FileReplacementTest, ATextThatComesInPiecesIsPutTogether) {
    constexpr std::size_t kPieces = 10'000;
    replaceFile(folder.file("a.d"), [](std::ostream& out) {
        for (std::size_t piece = 0; piece < kPieces; ++piece) {
            out << "piece ";
        }
    });
    EXPECT_EQ(folder.read("a.d"), repeated("piece ", kPieces));
}

TEST_F(FileReplacementTest, AFileStaysWhenAPieceCannotBeWritten) {
    folder.write("a.d", "one");
    std::string reason;
    {
        const FileSizeLimit limit(70'000);
        try {
            replaceFile(folder.file("a.d"), [](std::ostream& out) {
                for (unsigned piece = 0; piece < 100; ++piece) {
                    out << repeated("piece ", 1000);
                }
                EXPECT_FALSE(out) << "who asks can stop";
            });
        } catch (const FileFailure& failure) {
            reason = failure.reason();
        }
    }
    EXPECT_EQ(reason, "File too large");
    EXPECT_EQ(folder.read("a.d"), "one");
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileReplacementTest, AFileStaysWhenItsTextIsNotMadeToTheEnd) {
    folder.write("a.d", "one");
    const auto fill = [](std::ostream& out) {
        out << "half";
        throw std::runtime_error("no more");
    };
    EXPECT_THROW(replaceFile(folder.file("a.d"), fill), std::runtime_error);
    EXPECT_EQ(folder.read("a.d"), "one");
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileReplacementTest, ADeviceIsWrittenTo) {
    EXPECT_EQ(failureOf("/dev/null"), "");
    EXPECT_EQ(failureOf("/dev/full"), "No space left on device");
}

}  // namespace
}  // namespace marrowpress
