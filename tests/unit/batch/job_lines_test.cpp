#include "cli/batch/job_lines.h"

#include <gtest/gtest.h>

#include <sstream>

namespace marrowpress {
namespace {

constexpr const char* kComposite =
    R"({"type":"PublishComp","params":{"ditamap":"m.ditamap","output":"o.dita","ditaVal":"p.ditaval",)"
    R"("keyspaceDocDtd":"k.dtd","compositeDocDtd":"c.dtd","usePrint":true}})";
constexpr const char* kBook =
    R"({"type":"PublishFlatBook","params":{"ditamap":"m.ditamap","outputDir":"book","ditaVal":"",)"
    R"("generateQSComponentsAtOneLoc":true,"keyspaceDocDtd":"k.dtd","compositeDocDtd":"c.dtd",)"
    R"("usePrint":false}})";

std::vector<Job> jobsOf(const std::string& text) {
    std::istringstream in(text);
    return readJobLines(in, "jobs.jsonl");
}

std::string lineFault(const std::string& text) {
    try {
        jobsOf(text);
    } catch (const JobFileError& fault) {
        return fault.what();
    }
    return "none";
}

std::string lineWith(const std::string& request, const std::string& more = "") {
    return R"({"id":"a","request":)" + request + more + "}\n";
}

TEST(JobLinesTest, ARequestIsWhatTheApplicationSends) {
    const std::vector<Job> jobs =
        jobsOf(lineWith(kComposite, R"(,"tags":["x","y"])") + " \n" + lineWith(kBook));
    ASSERT_EQ(jobs.size(), 2U);
    const PublishOptions& composite = jobs[0].options;
    EXPECT_EQ(jobs[0].id, "a");
    EXPECT_EQ(jobs[0].tags, (std::vector<std::string>{"x", "y"}));
    EXPECT_EQ(jobs[0].line, 1U);
    EXPECT_EQ(composite.map, "m.ditamap");
    EXPECT_EQ(composite.output, "o.dita");
    EXPECT_EQ(composite.filters, std::vector<std::string>{"p.ditaval"});
    EXPECT_EQ(composite.keySpaceDtd, "k.dtd");
    EXPECT_EQ(composite.compositeDtd, "c.dtd");
    EXPECT_TRUE(composite.isForPrint);
    EXPECT_FALSE(isFlatBook(composite));
    EXPECT_EQ(jobs[1].line, 3U) << "blank lines are passed over";
    EXPECT_TRUE(isFlatBook(jobs[1].options));
    EXPECT_TRUE(jobs[1].options.isAtOneLocation);
    EXPECT_TRUE(jobs[1].options.filters.empty());
}

TEST(JobLinesTest, APlansLineMayHaveSeveralFiltersAndATranstype) {
    const std::vector<Job> jobs =
        jobsOf(lineWith(kComposite, R"(,"filters":["p.ditaval","q.ditaval"],"transtype":"html5")"));
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_EQ(jobs[0].options.filters, (std::vector<std::string>{"p.ditaval", "q.ditaval"}));
    EXPECT_EQ(jobs[0].transtype, "html5");
}

TEST(JobLinesTest, FaultsNameTheLineAndTheMember) {
    EXPECT_EQ(lineFault("\nx\n"), "jobs.jsonl:2: this is no JSON");
    EXPECT_EQ(lineFault("[]\n"), "jobs.jsonl:1: this is no JSON object");
    EXPECT_EQ(lineFault("{\"request\":{}}\n"), "jobs.jsonl:1: \"id\" is missing");
    EXPECT_EQ(lineFault("{\"id\":7}\n"), "jobs.jsonl:1: \"id\" is no string");
    EXPECT_EQ(lineFault(R"({"id":"a\u0000"})"),
              "jobs.jsonl:1: \"id\" holds a character of the number 0");
    EXPECT_EQ(lineFault(lineWith("7")), "jobs.jsonl:1: \"request\" is no object");
    EXPECT_EQ(lineFault(lineWith(R"({"type":"PublishPdf","params":{}})")),
              "jobs.jsonl:1: \"type\" is neither PublishComp nor PublishFlatBook");
    EXPECT_EQ(lineFault(lineWith(kComposite, R"(,"tags":"x")")),
              "jobs.jsonl:1: \"tags\" is no array");
    EXPECT_EQ(lineFault(lineWith(kComposite, R"(,"tags":[1])")),
              "jobs.jsonl:1: \"tags\" is no array of strings");
    EXPECT_EQ(lineFault(lineWith(kComposite, R"(,"odd":1)")),
              "jobs.jsonl:1: \"odd\" is an unknown member");
    std::string wrongFlag = kComposite;
    wrongFlag.replace(wrongFlag.find("true"), 4, "\"yes\"");
    EXPECT_EQ(lineFault(lineWith(wrongFlag)),
              "jobs.jsonl:1: \"usePrint\" is neither true nor false");
}

}  // namespace
}  // namespace marrowpress
