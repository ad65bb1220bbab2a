#include "cli/dependency_formats.h"

#include <gtest/gtest.h>

#include "tests/support/told_files.h"

namespace marrowpress {
namespace {

class DependencyFormatsTest : public testing::Test, protected ToldFiles {
protected:
    DependencyFormatsTest() {
        refer(ReferenceKind::kTopic, "/w/m.ditamap", 2, "/w/a.dita");
        name("/w/a.dita", "/dtd/t.dtd");
        name("", "/dtd/d.dtd");
        open("/w/m.ditamap");
        open("/w/a.dita");
        list.finish();
    }

    std::vector<const Dependency*> files() const {
        std::vector<const Dependency*> files;
        for (const Dependency& file : list.files()) {
            files.push_back(&file);
        }
        return files;
    }

    std::vector<const DependencyEdge*> edges() const {
        std::vector<const DependencyEdge*> edges;
        for (const DependencyEdge& edge : list.edges()) {
            edges.push_back(&edge);
        }
        return edges;
    }
};

TEST_F(DependencyFormatsTest, AListHasALineForEachFile) {
    EXPECT_EQ(dependencyTable(files(), "/w"),
              "FILE        KIND           STATE   FROM\n"
              "m.ditamap   map reference  read    -\n"
              "a.dita      topic          read    m.ditamap:2:3\n"
              "/dtd/t.dtd  DTD            absent  a.dita\n"
              "/dtd/d.dtd  DTD            absent  -\n");
}

TEST_F(DependencyFormatsTest, JsonIsAnObjectForEachFile) {
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

TEST_F(DependencyFormatsTest, ReferencesHaveALineEach) {
    EXPECT_EQ(edgeTable(edges(), "/w"),
              "FROM           KIND   TO\n"
              "m.ditamap:2:3  topic  a.dita\n"
              "a.dita         DTD    /dtd/t.dtd\n"
              "-              DTD    /dtd/d.dtd\n");
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

TEST_F(DependencyFormatsTest, EachKindAndStateHasAName) {
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
