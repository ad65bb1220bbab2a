#include "cli/report_files.h"

#include <gtest/gtest.h>

#include "tests/support/current_folder.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// In a folder with a map "m.ditamap" and an empty folder "out".
class ReportFilesTest : public testing::Test {
protected:
    ReportFilesTest() {
        folder.write("m.ditamap", "<map/>");
        fs::create_directory("out");
        files.inputs = {namedPath("MAP", "m.ditamap"), namedPath("--filter", "p.ditaval")};
        files.outputs = {namedPath("--output", "out/m.dita")};
    }

    /// The fault of reports "--r0", "--r1" and so on; "" when there is none.
    std::string fault(const std::vector<std::string>& given) const {
        std::vector<NamedPath> reports;
        for (const std::string& path : given) {
            reports.push_back(namedPath("--r" + std::to_string(reports.size()), path));
        }
        return findReportFault(reports, files).value_or("");
    }

    TemporaryFolder folder;
    CurrentFolder current{folder.path()};
    RunFiles files;
};

TEST_F(ReportFilesTest, GoodOnesHaveNoFault) {
    folder.write("old.sarif", "{}");
    EXPECT_EQ(fault({}), "");
    EXPECT_EQ(fault({"new.sarif", "out/new.sarif", "old.sarif", "./out/../new.xml"}), "");
    EXPECT_FALSE(fs::exists("new.sarif"));
}

TEST_F(ReportFilesTest, TheFolderMustBeThere) {
    EXPECT_EQ(fault({"new.sarif", "none/r.sarif"}), "--r1: there is no folder none");
    EXPECT_EQ(fault({"m.ditamap/r.sarif"}), "--r0: there is no folder m.ditamap");
}

TEST_F(ReportFilesTest, MustBeFiles) {
    EXPECT_EQ(fault({"out"}), "--r0: out is a folder");
    EXPECT_EQ(fault({"new/"}), "--r0: new/ is a folder");
    fs::create_symlink("none", "link");
    EXPECT_EQ(fault({"link"}), "--r0: link is a symbolic link to nothing");
}

TEST_F(ReportFilesTest, MustBeWritable) {
    folder.write("ro/old.sarif", "");
    fs::permissions("ro/old.sarif", fs::perms(0444));
    fs::permissions("ro", fs::perms(0555));
    fs::permissions(folder.path(), fs::perms(0755));
    const WithoutRights noRights;
    EXPECT_EQ(fault({"ro/new.sarif"}), "--r0: cannot write to ro: Permission denied");
    EXPECT_EQ(fault({"ro/old.sarif"}), "--r0: cannot write to ro/old.sarif: Permission denied");
    EXPECT_EQ(fault({"new.sarif"}), "--r0: cannot write to the current folder: Permission denied");
}

TEST_F(ReportFilesTest, MayNotBeWhatLooksLikeASource) {
    folder.write("topic.dita", "\n<?xml version=\"1.0\"?><topic/>");
    folder.write("image.png", std::string("\x89PNG\0", 5));
    folder.write("old.xml", "<?xml version=\"1.0\"?><testsuites/>");
    folder.write("old.sarif", "{}");
    folder.write("old.txt", "a < b");
    folder.write("empty.json", "");
    const std::string expected = " is there already, and no report; choose another file";
    EXPECT_EQ(fault({"topic.dita"}), "--r0: topic.dita" + expected);
    EXPECT_EQ(fault({"image.png"}), "--r0: image.png" + expected);
    for (const char* const report : {"old.xml", "old.sarif", "old.txt", "empty.json"}) {
        EXPECT_EQ(fault({report}), "") << report;
    }
}

TEST_F(ReportFilesTest, MayNotBeInputs) {
    const std::string expected = " is what the run reads as MAP; choose another file";
    fs::create_directory_symlink(".", "link");
    fs::create_symlink("m.ditamap", "map");
    fs::create_hard_link("m.ditamap", "hard");
    for (const std::string& given :
         {std::string("m.ditamap"), std::string("out/../m.ditamap"), std::string("link/m.ditamap"),
          std::string("map"), std::string("hard"), folder.file("m.ditamap")}) {
        EXPECT_EQ(fault({given}), "--r0: " + given + expected);
    }
    EXPECT_EQ(fault({"p.ditaval"}),
              "--r0: p.ditaval is what the run reads as --filter; choose another file");
}

TEST_F(ReportFilesTest, MayNotBeOutputs) {
    const std::string expected = " is what the run writes for --output; choose another file";
    EXPECT_EQ(fault({"out/m.dita"}), "--r0: out/m.dita" + expected);
    fs::create_directory_symlink("out", "link");
    EXPECT_EQ(fault({"link/m.dita"}), "--r0: link/m.dita" + expected);
    EXPECT_EQ(fault({"out/M.dita"}), "");
}

TEST_F(ReportFilesTest, MayNotBeComponents) {
    EXPECT_EQ(fault({"out/r.qs"}), "");
    files.hasComponents = true;
    EXPECT_EQ(fault({"out/r.qs"}),
              "--r0: out/r.qs has the name of a component, which the run may write; choose another "
              "file");
    EXPECT_NE(fault({"out/r.qs_tmp"}), "");
    EXPECT_EQ(fault({"out/r.qs.sarif"}), "");
}

TEST_F(ReportFilesTest, MayNotBeOneAnother) {
    EXPECT_EQ(fault({"a", "b", "out/../a"}),
              "--r2: out/../a is also the file of --r0; choose another file");
    folder.write("a", "");
    fs::create_hard_link("a", "hard");
    EXPECT_EQ(fault({"a", "hard"}), "--r1: hard is also the file of --r0; choose another file");
    EXPECT_EQ(fault({"/dev/null", "/dev/null"}), "");
}

TEST_F(ReportFilesTest, PipesAreNotWaitedFor) {
    const Watchdog watchdog(60);
    makePipe(folder.file("pipe"));
    EXPECT_EQ(fault({"pipe"}), "");
    EXPECT_EQ(fault({"pipe", "pipe"}), "--r1: pipe is also the file of --r0; choose another file");
}

}  // namespace
}  // namespace marrowpress
