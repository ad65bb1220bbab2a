#include "cli/new_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#include "cli/file_failure.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class NewFileTest : public testing::Test {
protected:
    fs::path at(const std::string& name) const { return folder.file(name); }

    /// What `action` fails with; "" when it doesn't.
    static std::string failureOf(const std::function<void()>& action) {
        try {
            action();
        } catch (const FileFailure& failure) {
            return failure.what();
        }
        return "";
    }

    TemporaryFolder folder;
};

TEST_F(NewFileTest, ReplacesAFileWhenItIsComplete) {
    folder.write("m.dita", "old");
    const std::string text = std::string(300000, 'x') + '\0' + "\xFF\r\n";
    NewFile file(at("m.dita_tmp"), at("m.dita"));
    file.write("<dita>");
    file.write(text);
    file.write("");
    EXPECT_EQ(folder.read("m.dita"), "old");
    file.close();
    EXPECT_EQ(folder.read("m.dita"), "old");
    file.replace(at("m.dita"));
    EXPECT_EQ(folder.read("m.dita"), "<dita>" + text);
    EXPECT_FALSE(folder.exists("m.dita_tmp"));
}

TEST_F(NewFileTest, IsGoneWithoutAPlace) {
    folder.write("m.dita", "old");
    {
        NewFile file(at("m.dita_tmp"), at("m.dita"));
        file.write(std::string(300000, 'x'));
        EXPECT_TRUE(folder.exists("m.dita_tmp"));
    }
    EXPECT_FALSE(folder.exists("m.dita_tmp"));
    EXPECT_EQ(folder.read("m.dita"), "old");
}

TEST_F(NewFileTest, LeavesAloneWhatComesUnderItsNameLater) {
    folder.write("m.dita", "old");
    {
        NewFile file(at("m.dita_tmp"), at("m.dita"));
        file.close();
        file.replace(at("m.dita"));
        folder.write("m.dita_tmp", "mine");
    }
    EXPECT_EQ(folder.read("m.dita_tmp"), "mine");
}

TEST_F(NewFileTest, MovesOnlyWhereNothingIs) {
    folder.write("a.png", "old");
    fs::create_symlink("none", at("b.png"));
    fs::create_directory(at("c.png"));
    NewFile file(at("aside"), at("a.png"));
    file.write("new");
    file.close();
    for (const char* const name : {"a.png", "b.png", "c.png"}) {
        EXPECT_FALSE(file.moveTo(at(name))) << name;
    }
    EXPECT_EQ(folder.read("a.png"), "old");
    EXPECT_TRUE(file.moveTo(at("d.png")));
    EXPECT_EQ(folder.read("d.png"), "new");
    EXPECT_FALSE(folder.exists("aside"));
}

TEST_F(NewFileTest, HasTheModeThatWasAskedForOrTheUsualOne) {
    const auto modeOf = [](const fs::path& path) {
        struct stat status {};
        stat(path.c_str(), &status);
        return status.st_mode & 0777;
    };
    const mode_t earlier = umask(0077);
    const NewFile usual(at("a"), at("a"));
    const NewFile asked(at("b"), at("b"), 0664);
    umask(earlier);
    EXPECT_EQ(modeOf(at("a")), 0600U);
    EXPECT_EQ(modeOf(at("b")), 0664U);
}

TEST_F(NewFileTest, TakesNoPlaceThatIsTaken) {
    folder.write("m.dita_tmp", "mine");
    fs::create_symlink(at("x"), at("link"));
    const std::string end = ": File exists";
    EXPECT_EQ(failureOf([&] { NewFile(at("m.dita_tmp"), at("m.dita")); }),
              "cannot write " + folder.file("m.dita_tmp") + end);
    EXPECT_EQ(failureOf([&] { NewFile(at("link"), at("m.dita")); }),
              "cannot write " + folder.file("link") + end);
    EXPECT_EQ(folder.read("m.dita_tmp"), "mine");
    EXPECT_FALSE(folder.exists("x"));
}

TEST_F(NewFileTest, FailsForThePlaceThatItIsWrittenFor) {
    const std::string start = "cannot write " + folder.file("none/m.dita") + ": ";
    EXPECT_EQ(failureOf([&] { NewFile(at("none/aside"), at("none/m.dita")); }),
              start + "No such file or directory");
    NewFile file(at("aside"), at("none/m.dita"));
    file.close();
    EXPECT_EQ(failureOf([&] { file.replace(at("none/m.dita")); }),
              start + "No such file or directory");
    EXPECT_EQ(failureOf([&] { static_cast<void>(file.moveTo(at("none/m.dita"))); }),
              start + "No such file or directory");
}

TEST_F(NewFileTest, TellsOfAFullDisk) {
    const FileSizeLimit limit(100000);
    const std::string failure = "cannot write " + folder.file("m.dita") + ": File too large";
    EXPECT_EQ(failureOf([&] {
                  NewFile file(at("aside"), at("m.dita"));
                  for (int time = 0; time < 20; ++time) {
                      file.write(std::string(10000, 'x'));
                  }
              }),
              failure);
    EXPECT_EQ(failureOf([&] {
                  NewFile file(at("aside"), at("m.dita"));
                  file.write(std::string(100001, 'x'));
                  file.close();
              }),
              failure);
    EXPECT_FALSE(folder.exists("aside"));
}

TEST_F(NewFileTest, IsRemovedByASignal) {
    const pid_t child = fork();
    if (child == 0) {
        NewFile file(at("aside"), at("m.dita"));
        file.write("text");
        file.close();
        raise(SIGTERM);
        _exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status)) << status;
    EXPECT_FALSE(folder.exists("aside"));
}

}  // namespace
}  // namespace marrowpress
