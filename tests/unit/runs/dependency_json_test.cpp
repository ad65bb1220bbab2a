#include "runs/dependency_json.h"

#include <gtest/gtest.h>

#include "tests/support/listed_files.h"

namespace marrowpress {
namespace {

class DependencyJsonTest : public testing::Test, protected ListedFiles {};

TEST_F(DependencyJsonTest, IsAnObjectForEachFile) {
    EXPECT_EQ(dependencyJson(files()),
              R"({"file":"/w/m.ditamap","kind":"map reference","state":"read","from":null})"
              "\n"
              R"({"file":"/w/a.dita","kind":"topic","state":"read",)"
              R"("from":{"file":"/w/m.ditamap","line":2,"column":3}})"
              "\n"
              R"({"file":"/dtd/t.dtd","kind":"DTD","state":"absent",)"
              R"("from":{"file":"/w/a.dita","line":null,"column":null}})"
              "\n"
              R"({"file":"/dtd/d.dtd","kind":"DTD","state":"absent","from":null})"
              "\n");
}

TEST_F(DependencyJsonTest, ReferencesAreAnObjectEach) {
    EXPECT_EQ(edgeJson(edges()),
              R"({"from":{"file":"/w/m.ditamap","line":2,"column":3},"kind":"topic",)"
              R"("to":"/w/a.dita"})"
              "\n"
              R"({"from":{"file":"/w/a.dita","line":null,"column":null},"kind":"DTD",)"
              R"("to":"/dtd/t.dtd"})"
              "\n"
              R"({"from":null,"kind":"DTD","to":"/dtd/d.dtd"})"
              "\n");
}

TEST_F(DependencyJsonTest, EachKindAndStateHasAName) {
    const std::pair<DependencyKind, std::string> kinds[] = {
        {DependencyKind::kMap, "map reference"},
        {DependencyKind::kTopic, "topic"},
        {DependencyKind::kKeyDefinition, "keydef"},
        {DependencyKind::kConref, "conref"},
        {DependencyKind::kLink, "xref"},
        {DependencyKind::kImage, "image"},
        {DependencyKind::kDtd, "DTD"},
        {DependencyKind::kCatalog, "catalog"},
        {DependencyKind::kProfile, "DITAVAL"}};
    for (const auto& [kind, expected] : kinds) {
        const Dependency file{"/f", kind, DependencyState::kUnreadable, {}};
        EXPECT_EQ(dependencyJson({&file}), R"({"file":"/f","kind":")" + expected +
                                               R"(","state":"unreadable","from":null})"
                                               "\n");
    }
}

}  // namespace
}  // namespace marrowpress
