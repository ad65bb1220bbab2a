#include "results/file_digest.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <thread>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

TEST(FileDigestTest, IsThatOfTheStandardForKnownTexts) {
    const TemporaryFolder folder;
    EXPECT_EQ(sha256Of(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(sha256Of("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    const std::optional<FileDigest> digest = digestOf(folder.write("abc", "abc"));
    ASSERT_TRUE(digest);
    EXPECT_EQ(digest->sha256, sha256Of("abc"));
    EXPECT_EQ(digest->xxh128, "06b05ab6733a618578af5f94892f3950");
}

TEST(FileDigestTest, OfALargeFileIsThatOfAllItsPieces) {
    const TemporaryFolder folder;
    std::string text;
    for (int line = 0; line < 100'000; ++line) {
        text += std::to_string(line) + "\n";
    }
    const std::string path = folder.write("large", text);
    const std::optional<FileDigest> digest = digestOf(path);
    ASSERT_TRUE(digest);
    EXPECT_EQ(digest->sha256, sha256Of(text));
    EXPECT_EQ(quickDigestOf(path), digest->xxh128);
    text.back() = 'x';
    EXPECT_NE(quickDigestOf(folder.write("other", text)), digest->xxh128);
}

TEST(FileDigestTest, AnEmptyFileHasOne) {
    const TemporaryFolder folder;
    const std::string path = folder.write("empty", "");
    ASSERT_TRUE(digestOf(path));
    EXPECT_EQ(digestOf(path)->sha256, sha256Of(""));
}

TEST(FileDigestTest, WhatIsNoRegularFileHasNone) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
    for (const std::string& path :
         {folder.file("none"), folder.path().string(), folder.file("pipe")}) {
        EXPECT_EQ(digestOf(path), std::nullopt) << path;
        EXPECT_EQ(quickDigestOf(path), std::nullopt) << path;
    }
}

TEST(FileDigestTest, AFileThatChangesWhileItIsReadHasTheStampOfTheChange) {
    const TemporaryFolder folder;
    const std::string path = folder.write("large", "");
    // Nothing but zeros that take no place on the disk.
    std::filesystem::resize_file(path, std::uintmax_t{512} << 20);
    std::atomic<bool> isChanged = false;
    std::thread writer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        std::ofstream(path, std::ios::app) << "end";
        isChanged = true;
    });
    const std::optional<FileDigest> digest = digestOf(path);
    const bool isBeforeTheEnd = isChanged;
    writer.join();
    ASSERT_TRUE(digest);
    EXPECT_EQ(digest->stamp == stampOf(path), isBeforeTheEnd) << "the writer came too late";
}

TEST(FileDigestTest, ThatOfATextIsTheQuickOneOfAFileThatHoldsIt) {
    const TemporaryFolder folder;
    for (const char* const text : {"", "/docs/a.dita", "/docs/b.dita"}) {
        folder.write("file", text);
        const TextDigest digest = quickDigestOfText(text);
        std::ostringstream hex;
        hex << std::hex << std::setfill('0') << std::setw(16) << digest.high << std::setw(16)
            << digest.low;
        EXPECT_EQ(hex.str(), quickDigestOf(folder.file("file")));
    }
}

}  // namespace
}  // namespace marrowpress
