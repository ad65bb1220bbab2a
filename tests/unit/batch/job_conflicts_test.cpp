#include "cli/batch/job_conflicts.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

Job jobOf(const std::string& id, const std::string& map, const std::string& output) {
    Job job;
    job.id = id;
    job.options.map = map;
    job.options.output = output;
    return job;
}

std::vector<std::string> textsOf(const JobConflicts& conflicts) {
    std::vector<std::string> texts;
    for (const JobConflict& conflict : conflicts.find()) {
        texts.push_back(conflictText(conflict));
    }
    return texts;
}

using Texts = std::vector<std::string>;

TEST(JobConflictsTest, JobsThatShareSourcesOnlyHaveNone) {
    JobConflicts conflicts;
    conflicts.add(jobOf("a", "/n/m.ditamap", "/n/a.dita"));
    conflicts.add(jobOf("b", "/n/m.ditamap", "/n/b.dita"));
    EXPECT_EQ(textsOf(conflicts), Texts());
}

TEST(JobConflictsTest, TwoJobsOntoOneOutputByWhateverSpelling) {
    JobConflicts conflicts;
    conflicts.add(jobOf("a", "/n/m.ditamap", "/n/x/../a.dita"));
    conflicts.add(jobOf("b", "/n/m.ditamap", "/n/a.dita"));
    EXPECT_EQ(textsOf(conflicts), Texts{"`a` and `b` write the same file: /n/a.dita"});
}

TEST(JobConflictsTest, AnOutputThatIsTheMapOrTheProfileOfAnotherJob) {
    JobConflicts conflicts;
    conflicts.add(jobOf("a", "/n/m.ditamap", "/n/a.dita"));
    Job b = jobOf("b", "/n/a.dita", "/n/b.dita");
    b.options.filters = {"/n/c.dita"};
    conflicts.add(b);
    conflicts.add(jobOf("c", "/n/m.ditamap", "/n/c.dita"));
    EXPECT_EQ(textsOf(conflicts), (Texts{"`b` reads what `a` writes: /n/a.dita",
                                         "`b` reads what `c` writes: /n/c.dita"}));
}

TEST(JobConflictsTest, WhatAResultTellsCounts) {
    RunResult writer;
    writer.id = "a";
    writer.outputs = {{"/n/book/x.qs", {}}};
    RunResult reader;
    reader.id = "b";
    reader.dependencies = {{"/n/book/x.qs", "topic", "absent", {}, {}},
                           {"/n/book/x.qs", "topic", "absent", {}, {}}};
    JobConflicts conflicts;
    conflicts.add(reader);
    conflicts.add(writer);
    ASSERT_EQ(conflicts.find().size(), 1U);
    EXPECT_TRUE(conflicts.find().front().isRead);
    EXPECT_EQ(textsOf(conflicts), Texts{"`b` reads what `a` writes: /n/book/x.qs"});
}

TEST(JobConflictsTest, WhatAJobReadsOfItsOwnIsItsOwnBusiness) {
    RunResult result;
    result.id = "a";
    result.outputs = {{"/n/a.dita", {}}};
    result.dependencies = {{"/n/a.dita", "topic", "read", {}, {}}};
    JobConflicts conflicts;
    conflicts.add(jobOf("a", "/n/m.ditamap", "/n/a.dita"));
    conflicts.add(result);
    EXPECT_EQ(textsOf(conflicts), Texts());
}

TEST(JobConflictsTest, ReadersComeBehindThoseWhoseOutputsTheyRead) {
    const std::vector<JobConflict> conflicts{{"a", "b", "/x", true},
                                             {"b", "c", "/y", true},
                                             {"a", "c", "/x", true},
                                             {"d", "e", "/z", false}};
    EXPECT_EQ(JobConflicts::orderOf(conflicts), (Texts{"b", "c"}));
    EXPECT_EQ(JobConflicts::orderOf({}), Texts());
    EXPECT_EQ(JobConflicts::orderOf({{"a", "b", "/x", true}, {"b", "a", "/y", true}}),
              std::nullopt);
}

}  // namespace
}  // namespace marrowpress
