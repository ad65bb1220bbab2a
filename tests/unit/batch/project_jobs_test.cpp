#include "cli/batch/project_jobs.h"

#include <gtest/gtest.h>

#include "cli/batch/job_lines.h"
#include "cli/batch/plan.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

using Texts = std::vector<std::string>;

/// Project files in a folder with maps and profiles.
class ProjectJobsTest : public testing::Test {
protected:
    ProjectJobsTest() {
        for (const char* const name : {"maps/one.ditamap", "maps/two.ditamap", "maps/a b.ditamap",
                                       "p.ditaval", "q.ditaval"}) {
            folder_.write(name, "");
        }
    }

    static std::string xml(const std::string& content) {
        return "<project xmlns=\"https://www.dita-ot.org/project\">\n" + content + "</project>\n";
    }

    static std::string deliverable(const std::string& attributes, const std::string& context,
                                   const std::string& publication) {
        return "<deliverable " + attributes + ">" + context + "<output href=\"site\"/>" +
               publication + "</deliverable>\n";
    }

    std::vector<Job> jobsOf(const std::string& text) const {
        const std::string path = folder_.write("p.xml", text);
        return readProject({text, path, path, folder_.file("out"), formats_});
    }

    /// Without the folder's path.
    std::string faultOf(const std::string& text) const {
        try {
            jobsOf(text);
        } catch (const JobFileError& fault) {
            std::string said = fault.what();
            const std::string folder = folder_.path().string() + "/";
            for (std::size_t at = said.find(folder); at != std::string::npos;
                 at = said.find(folder)) {
                said.erase(at, folder.size());
            }
            return said;
        }
        return "none";
    }

    TemporaryFolder folder_;
    std::map<std::string, std::string> formats_;
    const std::string kOne = R"(<context><input href="maps/one.ditamap"/></context>)";
    const std::string kComposite = R"(<publication transtype="composite"/>)";
};

TEST_F(ProjectJobsTest, ADeliverableIsAJob) {
    const std::vector<Job> jobs = jobsOf(xml(deliverable("id=\"guide\"", kOne, kComposite)));
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_EQ(jobs[0].id, "guide");
    EXPECT_EQ(jobs[0].transtype, "composite");
    EXPECT_EQ(jobs[0].options.map, folder_.file("maps/one.ditamap"));
    EXPECT_EQ(jobs[0].options.output, folder_.file("out/site/one.dita"));
    EXPECT_FALSE(isFlatBook(jobs[0].options));
    EXPECT_EQ(jobs[0].line, 2U);
}

TEST_F(ProjectJobsTest, AFlatBooksFolderIsThatOfTheOutput) {
    const std::vector<Job> jobs =
        jobsOf(xml(deliverable("", kOne, R"(<publication transtype="flatbook">
            <param name="one-location" value="yes"/></publication>)")));
    EXPECT_TRUE(isFlatBook(jobs[0].options));
    EXPECT_TRUE(jobs[0].options.isAtOneLocation);
    EXPECT_EQ(jobs[0].options.output, folder_.file("out/site"));
}

TEST_F(ProjectJobsTest, WithoutAnIdTheFileAndTheNumberName) {
    const std::vector<Job> jobs =
        jobsOf(xml(deliverable("", kOne, kComposite) + deliverable("id=\"x\"", kOne, kComposite) +
                   deliverable("", kOne, kComposite)));
    ASSERT_EQ(jobs.size(), 3U);
    EXPECT_EQ(jobs[0].id, "p-1");
    EXPECT_EQ(jobs[1].id, "x");
    EXPECT_EQ(jobs[2].id, "p-3");
}

TEST_F(ProjectJobsTest, SeveralInputsAreAJobEach) {
    const std::vector<Job> jobs =
        jobsOf(xml(deliverable("id=\"g\"",
                               R"(<context><input href="maps/one.ditamap"/>)"
                               R"(<input href="maps/a%20b.ditamap"/></context>)",
                               kComposite)));
    ASSERT_EQ(jobs.size(), 2U);
    EXPECT_EQ(jobs[0].id, "g-one");
    EXPECT_EQ(jobs[1].id, "g-a b");
    EXPECT_EQ(jobs[1].options.output, folder_.file("out/site/a b.dita"));
}

TEST_F(ProjectJobsTest, TheParametersThatAreOursAreTaken) {
    const std::vector<Job> jobs =
        jobsOf(xml(deliverable("", kOne, R"(<publication transtype="composite">
            <param name="print" value="yes"/><param name="composite-dtd" value="c.dtd"/>
            <param name="keyspace-dtd" value="k.dtd"/>
            <param name="outputFile.base" value="manual"/>
            <param name="args.css" value="x.css"/></publication>)")));
    EXPECT_TRUE(jobs[0].options.isForPrint);
    EXPECT_EQ(jobs[0].options.compositeDtd, "c.dtd");
    EXPECT_EQ(jobs[0].options.keySpaceDtd, "k.dtd");
    EXPECT_EQ(jobs[0].options.output, folder_.file("out/site/manual.dita"));
    EXPECT_EQ(faultOf(xml(deliverable("", kOne,
                                      "<publication transtype=\"composite\">\n"
                                      "<param name=\"print\" value=\"true\"/></publication>"))),
              "p.xml:3: the parameter `print` is yes or no, and not `true`");
}

TEST_F(ProjectJobsTest, WhatIsReferredToIsAddedToAndOverridden) {
    folder_.write("sub/common.xml", xml(R"(
        <context id="c"><input href="../maps/two.ditamap"/>
            <profile><ditaval href="../p.ditaval"/></profile></context>
        <publication id="p" transtype="composite"><param name="print" value="yes"/>
            <param name="outputFile.base" value="base"/></publication>)"));
    const std::vector<Job> jobs =
        jobsOf(xml(R"(<include href="sub/common.xml"/>)" +
                   deliverable("", R"(<context idref="c"/>)",
                               R"(<publication idref="p"><param name="print" value="no"/>
                        <profile><ditaval href="q.ditaval"/></profile></publication>)")));
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_EQ(jobs[0].options.map, folder_.file("maps/two.ditamap"));
    EXPECT_EQ(jobs[0].options.filters,
              (Texts{folder_.file("p.ditaval"), folder_.file("q.ditaval")}));
    EXPECT_FALSE(jobs[0].options.isForPrint);
    EXPECT_EQ(jobs[0].options.output, folder_.file("out/site/base.dita"));
}

TEST_F(ProjectJobsTest, JsonSaysTheSameAsXml) {
    const std::vector<Job> fromXml = jobsOf(
        xml(deliverable("id=\"g\"",
                        R"(<context><input href="maps/one.ditamap"/><profile>)"
                        R"(<ditaval href="p.ditaval"/></profile></context>)",
                        R"(<publication transtype="composite"><param name="print" value="yes"/>)"
                        R"(</publication>)")));
    for (const char* const input :
         {R"("input": "maps/one.ditamap")", R"("inputs": ["maps/one.ditamap"])",
          R"("inputs": [{"href": "maps/one.ditamap"}])"}) {
        const std::vector<Job> fromJson = jobsOf(
            R"({"deliverables": [{"id": "g", "output": "site", "context": {)" + std::string(input) +
            R"(, "profiles": {"ditavals": ["p.ditaval"]}}, "publication": )"
            R"({"transtype": "composite", "params": [{"name": "print", "value": "yes"}]}}]})");
        ASSERT_EQ(fromJson.size(), 1U);
        EXPECT_EQ(jobLine(fromJson[0]), jobLine(fromXml[0]));
    }
}

TEST_F(ProjectJobsTest, AnotherTranstypeIsMadeWhatIsSaid) {
    formats_["html5"] = "flatbook";
    const std::vector<Job> jobs =
        jobsOf(xml(deliverable("", kOne, R"(<publication transtype="html5"/>)")));
    EXPECT_TRUE(isFlatBook(jobs[0].options));
    EXPECT_EQ(jobs[0].transtype, "html5");
}

TEST_F(ProjectJobsTest, AnIncludedFileIsReadOnce) {
    folder_.write("c.xml", xml(deliverable("id=\"c\"", kOne, kComposite)));
    folder_.write("b.xml", xml(R"(<include href="c.xml"/>)"));
    EXPECT_EQ(jobsOf(xml(R"(<include href="b.xml"/><include href="c.xml"/>)")).size(), 1U);
}

TEST_F(ProjectJobsTest, EachJobKnowsTheFilesThatItComesFrom) {
    folder_.write("b.xml", xml(deliverable("id=\"b\"", kOne, kComposite)));
    const std::vector<Job> jobs = jobsOf(xml(R"(<include href="b.xml"/>)"));
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_EQ(jobs.front().sources,
              (std::vector<std::string>{folder_.file("p.xml"), folder_.file("b.xml")}));
}

TEST_F(ProjectJobsTest, FaultsNameTheFileTheLineAndTheName) {
    EXPECT_EQ(faultOf(xml("\n" + deliverable("", R"(<context idref="none"/>)", kComposite))),
              "p.xml:3: there is no context `none`");
    EXPECT_EQ(faultOf(xml(deliverable("", kOne, R"(<publication idref="none"/>)"))),
              "p.xml:2: there is no publication `none`");
    EXPECT_EQ(faultOf(xml(R"(<context id="a" idref="b"/><context id="b" idref="a"/>)" +
                          deliverable("", R"(<context idref="a"/>)", kComposite))),
              "p.xml:2: `b` refers to itself in a circle");
    EXPECT_EQ(faultOf(xml(
                  deliverable("", R"(<context><input href="x.ditamap"/></context>)", kComposite))),
              "p.xml:2: input: there is no file x.ditamap");
    EXPECT_EQ(faultOf(xml(deliverable("",
                                      R"(<context><input href="maps/one.ditamap"/>)"
                                      R"(<profile><ditaval href="x"/></profile></context>)",
                                      kComposite))),
              "p.xml:2: ditaval: there is no file x");
    EXPECT_EQ(faultOf(xml(deliverable("id=\"d\"", "", kComposite))),
              "p.xml:2: the deliverable `d` has no context");
    EXPECT_EQ(faultOf(xml(deliverable("", "<context/>", kComposite))),
              "p.xml:2: the deliverable has no input");
    EXPECT_EQ(faultOf(xml(deliverable("", kOne, ""))),
              "p.xml:2: the deliverable has no publication");
    EXPECT_EQ(faultOf(xml(deliverable("", kOne, "<publication/>"))),
              "p.xml:2: the deliverable has no transtype");
    EXPECT_TRUE(faultOf(xml("\n<include href=\"none.xml\"/>")).starts_with("p.xml:3: include: "));
    folder_.write("b.xml", xml(R"(<include href="p.xml"/>)"));
    EXPECT_EQ(faultOf(xml(R"(<include href="b.xml"/>)")),
              "b.xml:2: `p.xml` is included in a circle");
}

}  // namespace
}  // namespace marrowpress
