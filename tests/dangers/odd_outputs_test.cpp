#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <filesystem>
#include <iterator>

#include "tests/dangers/danger.h"
#include "tests/support/file_conditions.h"
#include "tests/support/message_texts.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// What may stand where a run is to write, and what makes it at a path. False where it may not be
/// made.
struct OddOutput {
    const char* name;
    fs::file_type type;
    bool (*make)(const std::string& path);
};

const OddOutput kOddOutputs[] = {
    {"EmptyFolder", fs::file_type::directory,
     [](const std::string& path) { return fs::create_directory(path); }},
    {"FolderWithAFile", fs::file_type::directory,
     [](const std::string& path) {
         return fs::create_directory(path) && ::mknod((path + "/f").c_str(), S_IFREG, 0) == 0;
     }},
    {"Pipe", fs::file_type::fifo,
     [](const std::string& path) { return ::mkfifo(path.c_str(), kOwnerOnly) == 0; }},
    {"Socket", fs::file_type::socket,
     [](const std::string& path) { return ::mknod(path.c_str(), S_IFSOCK | kOwnerOnly, 0) == 0; }},
    // The device that takes whatever is written.
    {"Device", fs::file_type::character,
     [](const std::string& path) {
         return ::mknod(path.c_str(), S_IFCHR | kOwnerOnly, makedev(1, 3)) == 0;
     }},
};

/// An output's place is taken, a request is sent, and what took it stays.
class OddOutputDangerTest : public DangerTest, public testing::WithParamInterface<OddOutput> {
protected:
    /// False where it may not be made; the test is to be skipped then.
    bool occupy(const std::string& name) const {
        const bool isMade = GetParam().make(folder.file(name));
        EXPECT_TRUE(isMade || errno == EPERM) << name;
        return isMade;
    }

    /// What is below the folder, and of what kind.
    std::string inventory() const {
        std::string lines;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder.path())) {
            lines += entry.path().string() + " " +
                     std::to_string(static_cast<int>(entry.symlink_status().type())) + "\n";
        }
        return lines;
    }

    void expectRefused(const char* name, bool isFlatBook) {
        const Watchdog watchdog(60);
        const std::string before = inventory();
        EXPECT_EQ(status(isFlatBook ? publishFlatBook(flatBook()) : publishComposite(composite())),
                  -43)
            << name;
        EXPECT_EQ(inventory(), before) << name;
        EXPECT_EQ(console, "") << name;
        fs::remove_all(folder.path() / name);
    }
};

TEST_P(OddOutputDangerTest, InThePlaceOfACompositeIsRefusedAndStays) {
    if (!occupy("out/book.dita")) {
        GTEST_SKIP() << "only root may make devices";
    }
    expectRefused("out/book.dita", false);
}

TEST_P(OddOutputDangerTest, InThePlaceOfTheKeySpaceDocumentIsRefusedAndStays) {
    for (const bool isFlatBook : {false, true}) {
        if (!occupy("out/KeyspaceDoc.ditamap")) {
            GTEST_SKIP() << "only root may make devices";
        }
        folder.write("out/book.dita", "old");
        expectRefused("out/KeyspaceDoc.ditamap", isFlatBook);
        EXPECT_EQ(folder.read("out/book.dita"), "old");
    }
}

TEST_P(OddOutputDangerTest, InThePlaceOfAComponentIsToldAndStays) {
    const Watchdog watchdog(60);
    if (!occupy("out/odd.qs")) {
        GTEST_SKIP() << "only root may make devices";
    }
    folder.write("odd.dita", topic("odd"));
    writeMap(reference("topicref", "odd.dita"));
    EXPECT_EQ(status(publishFlatBook(flatBook())), 0);
    EXPECT_NE(console.find(cannotWrite("$F/out/odd.qs")), std::string::npos) << console;
    EXPECT_EQ(fs::symlink_status(folder.path() / "out/odd.qs").type(), GetParam().type);
    EXPECT_NE(folder.read("out/beside.qs").find("<p>Beside it.</p>"), std::string::npos);
}

/// A link stands in an output's place, and leads to a file or a folder of somebody else's.
class LinkedOutputDangerTest : public DangerTest {
protected:
    LinkedOutputDangerTest() { folder.write("theirs/file", "theirs"); }

    /// Each kind of link that may be at `name`: true for one more, which is made.
    bool makeLink(const std::string& name, int kind) const {
        const fs::path link = folder.path() / name;
        fs::remove(link);
        switch (kind) {
            case 0:
                fs::create_symlink("../theirs/file", link);
                return true;
            case 1:
                fs::create_hard_link(folder.path() / "theirs/file", link);
                return true;
            case 2:
                fs::create_directory_symlink("../theirs", link);
                return true;
            case 3:
                fs::create_symlink("../theirs/none", link);
                return true;
            default:
                return false;
        }
    }

    void expectTheirsUntouched(const std::string& name, int kind) const {
        EXPECT_EQ(folder.read("theirs/file"), "theirs") << name << kind;
        EXPECT_FALSE(folder.exists("theirs/none")) << name << kind;
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.path() / "theirs"), {}), 1)
            << name << kind;
    }
};

TEST_F(LinkedOutputDangerTest, OfACompositeGoesAlone) {
    for (int kind = 0; makeLink("out/book.dita", kind); ++kind) {
        EXPECT_EQ(publish(), 0) << kind;
        EXPECT_EQ(fs::symlink_status("book.dita").type(), fs::file_type::regular) << kind;
        EXPECT_TRUE(isBesideWhole()) << kind;
        expectTheirsUntouched("out/book.dita", kind);
    }
}

TEST_F(LinkedOutputDangerTest, OfAComponentGoesAlone) {
    for (int kind = 0; makeLink("out/beside.qs", kind); ++kind) {
        EXPECT_EQ(status(publishFlatBook(flatBook())), 0) << kind;
        EXPECT_EQ(fs::symlink_status("beside.qs").type(), fs::file_type::regular) << kind;
        EXPECT_NE(folder.read("out/beside.qs").find("<p>Beside it.</p>"), std::string::npos)
            << kind;
        expectTheirsUntouched("out/beside.qs", kind);
    }
}

TEST_F(LinkedOutputDangerTest, OfTheKeySpaceDocumentGoesAlone) {
    for (const char* const name : {"out/KeyspaceDoc.ditamap", "out/KeyspaceDoc.ditamap_tmp"}) {
        for (int kind = 0; makeLink(name, kind); ++kind) {
            EXPECT_EQ(publish(), 0) << name << kind;
            EXPECT_TRUE(isBesideWhole()) << name << kind;
            expectTheirsUntouched(name, kind);
            EXPECT_EQ(status(publishFlatBook(flatBook())), 0) << name << kind;
            expectTheirsUntouched(name, kind);
        }
        fs::remove(folder.path() / name);
    }
}

INSTANTIATE_TEST_SUITE_P(A, OddOutputDangerTest, testing::ValuesIn(kOddOutputs),
                         [](const auto& output) { return std::string(output.param.name); });

}  // namespace
}  // namespace marrowpress
