#include "cli/batch/known_conflicts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "cli/batch/job_results.h"
#include "results/file_digest.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Two composites, "one" and "two", and results that say more of them.
class KnownConflictsTest : public testing::Test {
protected:
    KnownConflictsTest() {
        for (const char* const id : {"one", "two"}) {
            plan_.jobs.emplace_back();
            plan_.jobs.back().id = id;
            plan_.jobs.back().options.map = folder_.write(std::string(id) + ".ditamap", "<map/>");
            plan_.jobs.back().options.output = folder_.file(std::string(id) + ".dita");
        }
    }

    Job& two() { return plan_.jobs.back(); }

    /// What the second job has read and written as it is asked to now.
    RunResult resultOfTwo(const std::vector<std::string>& read, const std::string& written) {
        RunResult result;
        result.id = "two";
        const WantedRun wanted = wantedRunOf(plan_, two());
        result.request = wanted.request;
        result.options = wanted.options;
        for (const std::string& name : read) {
            result.dependencies.push_back({folder_.file(name), "topic", "read", {}, {}});
            const std::optional<FileDigest> digest = digestOf(folder_.file(name));
            result.run.files.push_back(
                digest ? std::optional(KnownFile{digest->stamp, digest->xxh128}) : std::nullopt);
        }
        result.outputs.push_back({folder_.file(written), {}});
        result.run.files.emplace_back();
        return result;
    }

    std::vector<std::string> found() const {
        std::vector<std::string> texts;
        for (const JobConflict& conflict : findKnownConflicts(plan_, {0, 1}, {0, 1}, results_)) {
            texts.push_back(conflict.writer + (conflict.isRead ? " < " : " = ") + conflict.other);
        }
        return texts;
    }

    TemporaryFolder folder_;
    Plan plan_;
    ResultFolder results_{folder_.file("results"), [](const std::string&) {}};
};

TEST_F(KnownConflictsTest, RequestsCountWhateverResultsSay) {
    EXPECT_THAT(found(), IsEmpty());
    two().options.filters = {folder_.file("one.dita")};
    EXPECT_THAT(found(), ElementsAre("one < two"));
    two().options.filters.clear();
    two().options.output = folder_.file("one.dita");
    EXPECT_THAT(found(), ElementsAre("one = two"));
}

TEST_F(KnownConflictsTest, WhatAResultTellsCountsUntilSomethingElseIsRead) {
    folder_.write("topic.dita", "<topic/>");
    folder_.write("one.dita", "as it was");
    results_.put(resultOfTwo({"two.ditamap", "topic.dita", "one.dita"}, "two.dita"));
    EXPECT_THAT(found(), ElementsAre("one < two"));
    folder_.write("one.dita", "written again");
    EXPECT_THAT(found(), ElementsAre("one < two")) << "that is what it is about";
    folder_.write("topic.dita", "<topic id='mended'/>");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(KnownConflictsTest, AResultOfAnotherRequestTellsNothing) {
    results_.put(resultOfTwo({"two.ditamap", "one.dita"}, "two.dita"));
    EXPECT_THAT(found(), ElementsAre("one < two"));
    two().options.isForPrint = true;
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(KnownConflictsTest, AnOutputThatAJobHadBeforeIsFreeForAnother) {
    std::swap(plan_.jobs.front().options.output, two().options.output);
    const RunResult earlier = resultOfTwo({"two.ditamap"}, "one.dita");
    std::swap(plan_.jobs.front().options.output, two().options.output);
    results_.put(earlier);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(KnownConflictsTest, WhatAFlatBookWritesItsResultTells) {
    two().options.format = OutputFormat::kFlatBook;
    two().options.output = folder_.path().string();
    results_.put(resultOfTwo({"two.ditamap"}, "one.dita"));
    EXPECT_THAT(found(), ElementsAre("one = two"));
    folder_.write("two.ditamap", "<map>other topics</map>");
    EXPECT_THAT(found(), IsEmpty());
}

}  // namespace
}  // namespace marrowpress
