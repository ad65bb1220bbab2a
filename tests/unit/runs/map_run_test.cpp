#include "runs/map_run.h"

#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>
#include <filesystem>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

TEST(ComponentsTest, AreTheFifthValueEachOnce) {
    using Texts = std::vector<std::string>;
    TypedValues answer{{1, 0},
                       {6, Texts{"/open"}},
                       {15, std::vector<std::int32_t>{7}},
                       {15, std::vector<std::int32_t>{}}};
    EXPECT_EQ(componentsOf(answer), std::nullopt);
    answer.push_back({6, Texts{"/b.qs", "/a.qs", "/b.qs", "/c.qs", "/a.qs"}});
    EXPECT_EQ(componentsOf(answer), (Texts{"/b.qs", "/a.qs", "/c.qs"}));
    answer.back() = {6, Texts{}};
    EXPECT_EQ(componentsOf(answer), Texts{});
    answer.back() = {15, std::vector<std::int32_t>{1}};
    EXPECT_EQ(componentsOf(answer), std::nullopt);
}

class MapRunTest : public testing::Test {
protected:
    MapRunTest() {
        folder.write("t.dita", "<topic id=\"t\"><title>T</title></topic>");
        folder.write("m.ditamap",
                     "<map><topicref href=\"t.dita\"/><topicref href=\"none.dita\"/></map>");
        const boost::json::object params{{"ditamap", folder.file("m.ditamap")},
                                         {"output", folder.file("out.dita")},
                                         {"ditaVal", ""},
                                         {"keyspaceDocDtd", "map.dtd"},
                                         {"compositeDocDtd", "ditabase.dtd"},
                                         {"usePrint", false}};
        setting.request = boost::json::serialize(
            boost::json::object{{"type", "PublishComp"}, {"params", params}});
    }

    TemporaryFolder folder;
    RunSetting setting;
};

TEST_F(MapRunTest, SinksGetWhatTheClientSays) {
    std::size_t progressLines = 0;
    std::string report;
    RunSinks sinks;
    sinks.onProgress = [&](std::string_view) { ++progressLines; };
    sinks.onReport = [&](std::string_view line) { report += line; };
    const RunOutcome outcome = runRequest(setting, sinks);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.hasBegun);
    EXPECT_GT(progressLines, 0U);
    EXPECT_NE(report.find("none.dita"), std::string::npos) << report;
    EXPECT_TRUE(std::filesystem::exists(folder.file("out.dita")));
}

TEST_F(MapRunTest, OnlyAnObservedRunIsObserved) {
    std::size_t met = 0;
    RunSinks sinks;
    sinks.onObservation = [&](const Observation&) { ++met; };
    runRequest(setting, sinks);
    EXPECT_EQ(met, 0U);
    FindingCollector collector({}, {});
    setting.collector = &collector;
    sinks.onReport = [](std::string_view line) { ADD_FAILURE() << line; };
    runRequest(setting, sinks);
    EXPECT_GT(met, 0U);
}

TEST_F(MapRunTest, OneThatIsInterruptedWritesNothing) {
    RunSinks sinks;
    sinks.isInterrupted = [] { return true; };
    EXPECT_THROW(runRequest(setting, sinks), RunInterrupted);
    EXPECT_FALSE(std::filesystem::exists(folder.file("out.dita")));
}

}  // namespace
}  // namespace marrowpress
