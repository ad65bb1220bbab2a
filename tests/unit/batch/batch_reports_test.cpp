#include "cli/batch/batch_reports.h"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include "results/result_json.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class BatchReportsTest : public testing::Test {
protected:
    BatchReportsTest() {
        for (const char* const id : {"b", "a", "none"}) {
            plan_.jobs.emplace_back();
            plan_.jobs.back().id = id;
            plan_.jobs.back().options.map = "/n/m.ditamap";
        }
        for (const char* const id : {"a", "b"}) {
            RunResult result;
            result.id = id;
            result.state = ResultState::kFindings;
            result.exit = 3;
            Finding shared;
            shared.id = "MP105";
            shared.text = "a key is not defined";
            shared.place = {"/n/shared.dita", 2, 3};
            result.findings = {shared};
            results_.put(result);
        }
    }

    void write() const { writeBatchReports(reports_, plan_, indexes_, results_, /*exit=*/1); }

    TemporaryFolder folder_;
    Plan plan_;
    std::vector<std::size_t> indexes_{0, 1, 2};
    ResultFolder results_{folder_.file("results"), [](const std::string&) {}};
    BatchReports reports_;
};

TEST_F(BatchReportsTest, TheSummaryHasTheResultsInThePlansOrder) {
    reports_.summary = folder_.file("summary.json");
    write();
    const boost::json::value summary = boost::json::parse(folder_.read("summary.json"));
    EXPECT_EQ(summary.at("exit"), 1);
    ASSERT_EQ(summary.at("jobs").as_array().size(), 2U) << "a job without a result is not there";
    EXPECT_EQ(summary.at("jobs").at(0).at("id"), "b");
    EXPECT_EQ(summary.at("jobs").at(1).at("id"), "a");
}

TEST_F(BatchReportsTest, AFaultInASharedTopicIsOneInSarif) {
    reports_.sarif = folder_.file("all.sarif");
    write();
    const boost::json::value sarif = boost::json::parse(folder_.read("all.sarif"));
    EXPECT_EQ(sarif.at("runs").at(0).at("results").as_array().size(), 1U);
}

TEST_F(BatchReportsTest, JunitHasASuiteForEachJobAndAnErrorForOneWithoutAResult) {
    reports_.junit = folder_.file("all.xml");
    write();
    const std::string text = folder_.read("all.xml");
    for (const char* const name : {"a", "b", "none"}) {
        EXPECT_NE(text.find("<testsuite name=\"" + std::string(name) + "\""), std::string::npos)
            << text;
    }
    EXPECT_NE(text.find("<error message=\"exit 1\""), std::string::npos) << text;
}

TEST_F(BatchReportsTest, TheIndexStandsInThePagesFolder) {
    folder_.write("pages/a.html", "");
    reports_.pageFolder = folder_.file("pages");
    write();
    EXPECT_NE(folder_.read("pages/index.html").find("href=\"./a.html\""), std::string::npos);
}

}  // namespace
}  // namespace marrowpress
