#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>

#include "tests/dangers/danger.h"
#include "tests/support/file_conditions.h"
#include "tests/support/message_texts.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// What may stand where a file is looked for, and what makes it at a path.
struct OddFile {
    const char* name;
    void (*make)(const std::string& path);
};

/// Not each file system has room for one.
void makeLargerThanAnyMemory(const std::string& path) {
    constexpr std::uintmax_t kTerabyte = 1ULL << 40;
    ASSERT_NE(::mknod(path.c_str(), S_IFREG | kOwnerOnly, 0), -1);
    std::error_code error;
    fs::resize_file(path, 4 * kTerabyte, error);
    if (error) {
        GTEST_SKIP() << "no file of that size: " << error.message();
    }
}

const OddFile kOddFiles[] = {
    {"Pipe", [](const std::string& path) { makePipe(path); }},
    {"Socket",
     [](const std::string& path) {
         ASSERT_EQ(::mknod(path.c_str(), S_IFSOCK | kOwnerOnly, 0), 0);
     }},
    {"EndlessDevice", [](const std::string& path) { fs::create_symlink("/dev/zero", path); }},
    {"Terminal", [](const std::string& path) { fs::create_symlink("/dev/tty", path); }},
    {"Folder", [](const std::string& path) { fs::create_directory(path); }},
    {"LoopOfLinks", [](const std::string& path) { fs::create_symlink(path, path); }},
    {"LinkToNothing", [](const std::string& path) { fs::create_symlink("none", path); }},
    {"EmptyFile",
     [](const std::string& path) { ASSERT_EQ(::mknod(path.c_str(), S_IFREG | kOwnerOnly, 0), 0); }},
    {"FileLargerThanAnyMemory", &makeLargerThanAnyMemory},
};

class OddFileDangerTest : public DangerTest, public testing::WithParamInterface<OddFile> {
protected:
    void SetUp() override {
        GetParam().make(folder.file(kOddTopic));
        GetParam().make(folder.file(kOddMap));
    }

    bool is(std::string_view name) const { return GetParam().name == name; }
    bool isLinkToNothing() const { return is("LoopOfLinks") || is("LinkToNothing"); }
    bool isFile() const { return is("EmptyFile") || is("FileLargerThanAnyMemory"); }

    /// What is said of it at a reference of a map, which two passes look at.
    std::string lineAt(const std::string& path) const {
        return isLinkToNothing() ? referencedFileNotFound(path) + referencedFileNotFound(path)
                                 : cannotRead(path);
    }

    /// Publishes a map that refers to a topic with this text.
    void expectOfATopic(const std::string& text, const std::string& lines) {
        folder.write("topic.dita", text);
        writeMap(reference("topicref", "topic.dita"));
        expectTheRestWhole(lines);
    }

    void expectTheRestWhole(const std::string& lines) {
        EXPECT_EQ(publish(params), 0);
        EXPECT_EQ(console, lines);
        EXPECT_TRUE(isBesideWhole());
        EXPECT_TRUE(isTidy());
    }

    static constexpr const char* kOddTopic = "odd.dita";
    static constexpr const char* kOddMap = "odd.ditamap";
    boost::json::object params = composite();
};

TEST_P(OddFileDangerTest, InThePlaceOfTheMapEndsTheRun) {
    params["ditamap"] = folder.file(kOddMap);
    EXPECT_EQ(publish(params), -42);
    EXPECT_EQ(console, cannotRead("$F/odd.ditamap"));
    EXPECT_TRUE(isTidy());
}

TEST_P(OddFileDangerTest, InThePlaceOfANestedMapIsTold) {
    writeMap(reference("mapref", kOddMap));
    EXPECT_EQ(publish(params), isLinkToNothing() ? 0 : -42);
    EXPECT_EQ(console, lineAt("$F/odd.ditamap"));
    EXPECT_EQ(isBesideWhole(), isLinkToNothing());
    EXPECT_TRUE(isTidy());
}

TEST_P(OddFileDangerTest, InThePlaceOfATopicIsTold) {
    writeMap(reference("topicref", kOddTopic));
    expectTheRestWhole(lineAt("$F/odd.dita"));
}

TEST_P(OddFileDangerTest, InThePlaceOfAContentReferencesTargetIsTold) {
    expectOfATopic(topic("t", "<body><p conref='odd.dita#t/p'/></body>"),
                   cannotRead("$F/odd.dita"));
}

TEST_P(OddFileDangerTest, InThePlaceOfAProfileIsTold) {
    params["ditaVal"] = folder.file(kOddTopic);
    expectTheRestWhole(cannotRead("$F/odd.dita"));
}

TEST_P(OddFileDangerTest, InThePlaceOfADtdIsPassedOver) {
    folder.write("with-odd.dtd", "<!ENTITY % p SYSTEM 'odd.dita'>%p;");
    pathsByPublicId["odd"] = folder.file(kOddTopic);
    for (const std::string& doctype :
         {std::string("SYSTEM 'odd.dita'"), "SYSTEM '" + folder.file(kOddTopic) + "'",
          "SYSTEM 'file://" + folder.file(kOddTopic) + "'", std::string("PUBLIC 'odd' 'none'"),
          std::string("SYSTEM 'with-odd.dtd'")}) {
        expectOfATopic("<!DOCTYPE topic " + doctype + ">" + topic("t"), "");
        EXPECT_NE(folder.read("out/book.dita").find("<title>t</title>"), std::string::npos);
    }
}

TEST_P(OddFileDangerTest, InThePlaceOfTheDtdOfAnOutputEndsTheRunOrIsPassedOver) {
    for (const char* const key : {"keyspaceDocDtd", "compositeDocDtd"}) {
        params = composite();
        params[key] = folder.file(kOddTopic);
        const bool isPassedOver = isFile() || isLinkToNothing();
        EXPECT_EQ(publish(params), isPassedOver ? 0 : -42) << key;
        EXPECT_EQ(console, "") << key;
        EXPECT_EQ(isBesideWhole(), isPassedOver) << key;
        EXPECT_TRUE(isTidy()) << key;
    }
}

TEST_P(OddFileDangerTest, InThePlaceOfAnEntityIsTold) {
    const std::string lines = is("EmptyFile") ? "" : cannotRead("$F/topic.dita");
    expectOfATopic(
        "<!DOCTYPE topic [<!ENTITY e SYSTEM 'odd.dita'>]>" + topic("t", "<body>&e;</body>"), lines);
    expectOfATopic("<!DOCTYPE topic [<!ENTITY % p SYSTEM 'odd.dita'>%p;]>" + topic("t"), lines);
}

INSTANTIATE_TEST_SUITE_P(A, OddFileDangerTest, testing::ValuesIn(kOddFiles),
                         [](const auto& file) { return std::string(file.param.name); });

}  // namespace
}  // namespace marrowpress
