#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/relaxng.h>

#include <memory>

#include "cli/batch/job_lines.h"
#include "cli/batch/project_file.h"
#include "host/libxml_handles.h"

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

constexpr const char* kProject = R"(<project xmlns="https://www.dita-ot.org/project">
<include href="common.xml"/>
<context id="c"><input href="m.ditamap"/><profile><ditaval href="p.ditaval"/></profile></context>
<publication id="p" transtype="html5"><param name="a" value="v"/>
  <param name="b" path="../x"/></publication>
<deliverable id="d" name="D"><context idref="c"/><output href="out"/>
  <publication idref="p"/></deliverable>
</project>)";

struct FreeSchema {
    void operator()(xmlRelaxNGParserCtxt* parser) const noexcept {
        xmlRelaxNGFreeParserCtxt(parser);
    }
    void operator()(xmlRelaxNG* schema) const noexcept { xmlRelaxNGFree(schema); }
    void operator()(xmlRelaxNGValidCtxt* validation) const noexcept {
        xmlRelaxNGFreeValidCtxt(validation);
    }
};

/// Whether the schema that is installed takes the text.
bool isByTheSchema(const std::string& text) {
    const std::unique_ptr<xmlRelaxNGParserCtxt, FreeSchema> parser(
        xmlRelaxNGNewParserCtxt(MARROWPRESS_SCHEMAS "/project.rng"));
    const std::unique_ptr<xmlRelaxNG, FreeSchema> schema(xmlRelaxNGParse(parser.get()));
    EXPECT_NE(schema, nullptr);
    const std::unique_ptr<xmlRelaxNGValidCtxt, FreeSchema> validation(
        xmlRelaxNGNewValidCtxt(schema.get()));
    xmlRelaxNGSetValidStructuredErrors(
        validation.get(), [](void* /*context*/, xmlError* /*error*/) {}, nullptr);
    const LibxmlDocument document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, 0));
    EXPECT_NE(document, nullptr);
    return xmlRelaxNGValidateDoc(validation.get(), document.get()) == 0;
}

std::string projectOf(const std::string& content) {
    return "<project xmlns=\"https://www.dita-ot.org/project\">" + content + "</project>";
}

TEST(ProjectXmlTest, AllPartsAreReadWithTheirLines) {
    const Project project = parseXmlProject(kProject, "p.xml");
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

TEST(ProjectXmlTest, TheSchemaTakesWhatIsReadAndWhatIsPassedOver) {
    EXPECT_TRUE(isByTheSchema(kProject));
    EXPECT_TRUE(isByTheSchema(projectOf("")));
    EXPECT_TRUE(isByTheSchema(projectOf(
        R"(text<publication id="p" odd="1"/><x xmlns="other"><context/></x><include href="a"/>)")));
}

TEST(ProjectXmlTest, TheSchemaRefusesWhatWouldNotBeFound) {
    EXPECT_FALSE(isByTheSchema("<project/>")) << "it has no namespace";
    for (const char* const content :
         {"<include/>", "<deliverable><context/></deliverable>",
          "<deliverable><publication/></deliverable>", "<context><input/></context>",
          R"(<context><ditaval href="a"/></context>)", R"(<input href="a"/>)",
          R"(<publication transtype="composite"><param value="a"/></publication>)"}) {
        EXPECT_FALSE(isByTheSchema(projectOf(content))) << content;
    }
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
