#include <gtest/gtest.h>

#include "cli/batch/job_lines.h"
#include "cli/batch/project_file.h"

namespace marrowpress {
namespace {

std::string jsonFault(const std::string& text) {
    try {
        parseJsonProject(text, "p.json");
    } catch (const JobFileError& fault) {
        return fault.what();
    }
    return "none";
}

TEST(ProjectJsonTest, AllPartsAreReadWithTheirLines) {
    const Project project = parseJsonProject(R"({
  "includes": ["common.json", {"href": "more.json"}],
  "contexts": [{"id": "c", "input": "m.ditamap", "profiles": {"ditavals": [{"href": "p.ditaval"}]}}],
  "publications": [{"id": "p", "transtype": "html5", "params": [{"name": "a", "value": "v"}]}],
  "deliverables": [
    {"name": "D", "context": {"idref": "c"},
     "output": "out", "publication": {"idref": "none"}},
    {"id": "second",
     "context": {"inputs": []}, "publication": {}}
  ]
})",
                                             "p.json");
    ASSERT_EQ(project.includes.size(), 2U);
    EXPECT_EQ(project.includes[1].text, "more.json");
    EXPECT_EQ(project.includes[1].line, 2U);
    EXPECT_EQ(project.contexts[0].inputs[0].text, "m.ditamap");
    EXPECT_EQ(project.contexts[0].ditavals[0].text, "p.ditaval");
    EXPECT_EQ(project.publications[0].params[0].value.text, "v");
    ASSERT_EQ(project.deliverables.size(), 2U);
    EXPECT_EQ(project.deliverables[0].output, "out");
    EXPECT_EQ(project.deliverables[0].line, 7U) << "that of its publication";
    EXPECT_EQ(project.deliverables[0].publication->idref.line, 7U);
    EXPECT_EQ(project.deliverables[1].id, "second");
    EXPECT_EQ(project.deliverables[1].line, 8U);
}

TEST(ProjectJsonTest, FaultsNameTheLineAndTheMember) {
    EXPECT_EQ(jsonFault("{\n\n}x"), "p.json:3: this is not well-formed JSON");
    EXPECT_EQ(jsonFault("{\"deliverables\": [}"), "p.json:1: this is not well-formed JSON");
    EXPECT_EQ(jsonFault("[]"), "p.json:1: this is no JSON object");
    EXPECT_EQ(jsonFault("{\n\"deliverables\": 7}"), "p.json:2: \"deliverables\" is no array");
    EXPECT_EQ(jsonFault("{\"deliverables\": [7]}"), "p.json:1: \"deliverables\" is no object");
    EXPECT_EQ(jsonFault("{\"contexts\": [{\"id\": 7}]}"), "p.json:1: \"id\" is no string");
    EXPECT_EQ(jsonFault("{\"includes\": [7]}"), "p.json:1: \"includes\" is no object");
}

}  // namespace
}  // namespace marrowpress
