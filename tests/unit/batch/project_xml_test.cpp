#include <gtest/gtest.h>

#include "cli/batch/job_lines.h"
#include "cli/batch/project_file.h"

namespace marrowpress {
namespace {

std::string xmlFault(const std::string& text) {
    try {
        parseXmlProject(text, "p.xml");
    } catch (const JobFileError& fault) {
        return fault.what();
    }
    return "none";
}

TEST(ProjectXmlTest, AllPartsAreReadWithTheirLines) {
    const Project project = parseXmlProject(R"(<project xmlns="https://www.dita-ot.org/project">
<include href="common.xml"/>
<context id="c"><input href="m.ditamap"/><profile><ditaval href="p.ditaval"/></profile></context>
<publication id="p" transtype="html5"><param name="a" value="v"/>
  <param name="b" path="../x"/></publication>
<deliverable id="d" name="D"><context idref="c"/><output href="out"/>
  <publication idref="p"/></deliverable>
</project>)",
                                            "p.xml");
    ASSERT_EQ(project.includes.size(), 1U);
    EXPECT_EQ(project.includes[0].text, "common.xml");
    EXPECT_EQ(project.includes[0].line, 2U);
    ASSERT_EQ(project.contexts.size(), 1U);
    EXPECT_EQ(project.contexts[0].id, "c");
    EXPECT_EQ(project.contexts[0].inputs[0].text, "m.ditamap");
    EXPECT_EQ(project.contexts[0].ditavals[0].text, "p.ditaval");
    EXPECT_EQ(project.contexts[0].line, 3U);
    ASSERT_EQ(project.publications.size(), 1U);
    EXPECT_EQ(project.publications[0].transtype, "html5");
    EXPECT_EQ(project.publications[0].params[1].value.text, "../x");
    EXPECT_EQ(project.publications[0].params[1].value.line, 5U);
    ASSERT_EQ(project.deliverables.size(), 1U);
    EXPECT_EQ(project.deliverables[0].id, "d");
    EXPECT_EQ(project.deliverables[0].output, "out");
    EXPECT_EQ(project.deliverables[0].context->idref.text, "c");
    EXPECT_EQ(project.deliverables[0].publication->idref.line, 7U);
    EXPECT_EQ(project.deliverables[0].file, "p.xml");
}

TEST(ProjectXmlTest, WhatIsNoProjectSaysSo) {
    EXPECT_TRUE(xmlFault("<project>\n<include").starts_with("p.xml:2: this is not well-formed XML"))
        << xmlFault("<project>\n<include");
    EXPECT_TRUE(xmlFault("<project/>").starts_with("p.xml:1: this is no project file"));
    EXPECT_TRUE(xmlFault("<map/>").starts_with("p.xml:1: this is no project file"));
}

TEST(ProjectXmlTest, NothingElseIsOpenedAndNoEntityGrows) {
    std::string bomb = "<!DOCTYPE project SYSTEM \"file:///none.dtd\" [<!ENTITY a \"aaaaaaaaaa\">";
    for (char name = 'b'; name <= 'k'; ++name) {
        const std::string earlier = "&" + std::string(1, static_cast<char>(name - 1)) + ";";
        std::string value;
        for (int count = 0; count < 10; ++count) {
            value += earlier;
        }
        bomb += "<!ENTITY " + std::string(1, name) + " \"" + value + "\">";
    }
    bomb += "]><project xmlns=\"https://www.dita-ot.org/project\">&k;</project>";
    EXPECT_TRUE(xmlFault(bomb).starts_with("p.xml:1: this is not well-formed XML: "))
        << xmlFault(bomb);
    EXPECT_EQ(xmlFault("<!DOCTYPE project SYSTEM \"file:///none.dtd\">"
                       "<project xmlns=\"https://www.dita-ot.org/project\"/>"),
              "none");
}

}  // namespace
}  // namespace marrowpress
