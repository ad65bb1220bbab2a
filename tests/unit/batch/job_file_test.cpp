#include "cli/batch/job_file.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* kJobRequest =
    R"({"type":"PublishComp","params":{"ditamap":"m","output":"o","ditaVal":"",)"
    R"("keyspaceDocDtd":"k","compositeDocDtd":"c","usePrint":false}})";

std::string lineOfId(const std::string& id) {
    return R"({"id":")" + id + R"(","request":)" + kJobRequest + "}\n";
}

Texts idsOf(const std::string& text) {
    Texts ids;
    for (const Job& job : readJobFile({text, "jobs", "jobs", {}, {}})) {
        ids.push_back(job.id);
    }
    return ids;
}

std::string jobFileFault(const std::string& text) {
    try {
        idsOf(text);
    } catch (const JobFileError& fault) {
        return fault.what();
    }
    return "none";
}

TEST(JobFileTest, TheKindIsToldByWhatTheFileHolds) {
    EXPECT_EQ(idsOf(lineOfId("a") + lineOfId("b")), (Texts{"a", "b"}));
    EXPECT_EQ(idsOf("\xEF\xBB\xBF" + lineOfId("a")), Texts{"a"});
    EXPECT_EQ(idsOf(R"({"deliverables": []})"), Texts());
    EXPECT_EQ(idsOf(R"(<project xmlns="https://www.dita-ot.org/project"/>)"), Texts());
    EXPECT_EQ(idsOf(" \n"), Texts());
    EXPECT_EQ(jobFileFault("deliverables:\n- name: a\n"),
              "jobs: project files are read as XML or JSON");
    EXPECT_EQ(jobFileFault("{\n\"deliverables\": [}\n"), "jobs:2: this is not well-formed JSON");
}

TEST(JobFileTest, AnIdIsAFileName) {
    for (const char* const id : {"", ".", "..", ".a", "a/b", "a\\u0001b"}) {
        EXPECT_TRUE(jobFileFault(lineOfId(id)).starts_with("jobs:1: the id `")) << id;
        EXPECT_TRUE(jobFileFault(lineOfId(id)).ends_with("is no file name")) << id;
    }
    EXPECT_TRUE(
        jobFileFault(lineOfId(std::string(201, 'a'))).ends_with("is longer than 200 bytes"));
    EXPECT_EQ(idsOf(lineOfId("Ä b")), Texts{"Ä b"});
}

TEST(JobFileTest, IdsDifferInMoreThanLetterCase) {
    EXPECT_EQ(jobFileFault(lineOfId("a") + lineOfId("b") + lineOfId("a")),
              "jobs:3: two jobs have the id `a`; the other one is at jobs:1");
    EXPECT_EQ(jobFileFault(lineOfId("Ä") + lineOfId("ä")),
              "jobs:2: the ids `ä` and `Ä` (jobs:1) differ in letter case only");
}

TEST(JobFileTest, OnlyTranstypesOfOursCanBePublished) {
    Job job;
    for (const char* const ours : {"", "composite", "flatbook"}) {
        job.transtype = ours;
        EXPECT_TRUE(canBePublished(job, {})) << ours;
    }
    job.transtype = "html5";
    EXPECT_FALSE(canBePublished(job, {}));
    EXPECT_TRUE(canBePublished(job, {{"html5", "composite"}}));
}

}  // namespace
}  // namespace marrowpress
