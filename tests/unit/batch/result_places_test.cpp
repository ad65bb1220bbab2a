#include "cli/batch/result_places.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// A plan with one job, `a`, whose result is `results/a.json`.
class ResultPlacesTest : public testing::Test {
protected:
    ResultPlacesTest() {
        plan_.jobs.emplace_back();
        job().id = "a";
        job().options.map = folder_.write("m.ditamap", "");
        job().options.output = folder_.file("out/m.dita");
        options_.file = folder_.write("jobs.jsonl", "");
        options_.results = folder_.file("results");
    }

    Job& job() { return plan_.jobs.front(); }

    /// Without the folder's path.
    std::string faultOf() const {
        const ResultFolder results(options_.results, [](const std::string&) {});
        std::string fault = findResultPlaceFault(options_, plan_, results).value_or("none");
        const std::string folder = folder_.path().string() + "/";
        for (std::size_t at = fault.find(folder); at != std::string::npos;
             at = fault.find(folder)) {
            fault.erase(at, folder.size());
        }
        return fault;
    }

    TemporaryFolder folder_;
    Plan plan_;
    BatchOptions options_;
};

TEST_F(ResultPlacesTest, NoResultTakesThePlaceOfAFileThatIsRead) {
    EXPECT_EQ(faultOf(), "none");
    const std::string place = folder_.write("results/a.json", "");
    const std::string end = " of results/a.json, which is ";
    options_.file = place;
    EXPECT_NE(faultOf().find(end + "FILE; "), std::string::npos) << faultOf();
    options_.file = "-";
    EXPECT_EQ(faultOf(), "none");
    job().sources = {folder_.file("p.xml"), place};
    EXPECT_NE(faultOf().find(end + "FILE; "), std::string::npos) << faultOf();
    job().sources.clear();
    job().options.filters = {place};
    EXPECT_NE(faultOf().find(end + "a filter; "), std::string::npos) << faultOf();
    job().options.filters.clear();
    job().options.map = place;
    EXPECT_NE(faultOf().find(end + "a map; "), std::string::npos) << faultOf();
}

TEST_F(ResultPlacesTest, NoResultTakesThePlaceOfAnOutputThatIsWritten) {
    job().options.output = folder_.file("results/a.json");
    EXPECT_NE(faultOf().find("which is an output; "), std::string::npos) << faultOf();
    plan_.isCheck = true;
    EXPECT_EQ(faultOf(), "none") << "a check writes none";
}

TEST_F(ResultPlacesTest, APlaceIsTheSameByWhateverLink) {
    folder_.write("real/a.json", "");
    fs::create_directory_symlink(folder_.path() / "real", folder_.path() / "results");
    options_.file = folder_.file("real/a.json");
    EXPECT_NE(faultOf(), "none");
    fs::create_symlink(folder_.path() / "real/a.json", folder_.path() / "project.json");
    options_.file = folder_.file("project.json");
    EXPECT_NE(faultOf(), "none") << "what a link leads to is lost as well";
    options_.results += "/.";
    EXPECT_NE(faultOf(), "none");
    options_.file = folder_.file("real/../m.json");
    EXPECT_EQ(faultOf(), "none");
}

TEST_F(ResultPlacesTest, ResultsAndPagesWantAFolder) {
    options_.results = folder_.write("file", "");
    EXPECT_EQ(faultOf(), "--results: file is no folder");
    options_.action = BatchAction::kEmit;
    EXPECT_EQ(faultOf(), "none") << "a script may be for another machine";
    options_.action = BatchAction::kMerge;
    options_.reports.pageFolder = folder_.file("file");
    EXPECT_EQ(faultOf(), "--report: file is no folder");
    options_.reports.pageFolder = folder_.file("pages");
    EXPECT_EQ(faultOf(), "none");
}

TEST_F(ResultPlacesTest, NoPageHasThePlaceOfTheIndex) {
    job().id = "index";
    EXPECT_EQ(faultOf(), "none");
    options_.reports.pageFolder = folder_.file("pages");
    EXPECT_NE(faultOf().find("--report: the page of `index`"), std::string::npos) << faultOf();
}

}  // namespace
}  // namespace marrowpress
