#include "cli/scratch_run.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class ScratchRunTest : public testing::Test {
protected:
    ScratchRunTest() {
        options.map = folder.write("m.ditamap", "<map><topicref href=\"none.xml\"/></map>");
        options.diagnostics.hasNoProgress = true;
    }

    /// Gives what went to standard error meanwhile.
    std::string run(bool hasFindings = true) {
        std::ostringstream err;
        const PublishPaths paths = resolvePublishPaths(options);
        const ProfileSet profiles({}, false);
        RunDisplay display(options.diagnostics, err);
        runInScratch({options, paths, profiles, hasFindings,
                      [this](const Observation& met) {
                          if (met.kind == ObservationKind::kOutputWritten) {
                              output = met.target;
                          }
                      },
                      [this](const std::string& path) { catalogs.push_back(path); }, nullptr,
                      endsBeforeOutput},
                     display, total);
        return err.str();
    }

    TemporaryFolder folder;
    RunOptions options;
    bool endsBeforeOutput = false;
    RunTotal total;
    std::string output;
    std::vector<std::string> catalogs;
};

TEST_F(ScratchRunTest, WritesIntoAFolderThatIsGoneAtTheEnd) {
    run();
    EXPECT_NE(output, "");
    EXPECT_FALSE(output.starts_with(folder.path().string())) << output;
    EXPECT_FALSE(fs::exists(output));
    EXPECT_EQ(total.code, ExitCode::kSuccess);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

TEST_F(ScratchRunTest, AddsWhatItFindsToTheTotal) {
    run();
    const std::size_t once = total.list.findings().size();
    EXPECT_GT(once, 0U);
    // The same again is folded.
    run();
    EXPECT_EQ(total.list.findings().size(), once);
}

TEST_F(ScratchRunTest, WithoutAnOutputTheFindingsAreTheSame) {
    run();
    const std::vector<Finding> withOutput = total.list.take();
    output.clear();
    endsBeforeOutput = true;
    run();
    EXPECT_EQ(output, "");
    EXPECT_EQ(total.code, ExitCode::kSuccess);
    const std::vector<Finding> without = total.list.take();
    ASSERT_EQ(without.size(), withOutput.size());
    for (std::size_t index = 0; index < without.size(); ++index) {
        EXPECT_EQ(without[index].text, withOutput[index].text);
    }
}

TEST_F(ScratchRunTest, WithoutAnOutputARunCanFailAllTheSame) {
    folder.write("m.ditamap", "<map");
    endsBeforeOutput = true;
    run(false);
    EXPECT_EQ(total.code, ExitCode::kRunFailed);
}

TEST_F(ScratchRunTest, WithoutFindingsReportLinesAreShown) {
    EXPECT_NE(run(false), "");
    EXPECT_TRUE(total.list.findings().empty());
    EXPECT_NE(output, "");
}

TEST_F(ScratchRunTest, ARunThatFailsIsNotedInTheTotal) {
    folder.write("m.ditamap", "<map");
    run(false);
    EXPECT_EQ(total.code, ExitCode::kRunFailed);
    total.code = ExitCode::kSuccess;
    run(true);
    EXPECT_EQ(total.code, ExitCode::kRunFailed);
}

TEST_F(ScratchRunTest, TellsTheCatalogsThatAreLookedFor) {
    options.catalogs = {
        folder.write("c.xml", R"(<catalog xmlns="urn:oasis:names:tc:entity:xmlns:xml:catalog">)"
                              R"(<nextCatalog catalog="more.xml"/></catalog>)")};
    run();
    EXPECT_EQ(catalogs, (std::vector<std::string>{folder.file("c.xml"), folder.file("more.xml")}));
}

}  // namespace
}  // namespace marrowpress
