#include "cli/dependency_formats.h"

#include <gtest/gtest.h>

#include "tests/support/listed_files.h"

namespace marrowpress {
namespace {

class DependencyFormatsTest : public testing::Test, protected ListedFiles {};

TEST_F(DependencyFormatsTest, AListHasALineForEachFile) {
    EXPECT_EQ(dependencyTable(files(), "/w"),
              "FILE        KIND           STATE   FROM\n"
              "m.ditamap   map reference  read    -\n"
              "a.dita      topic          read    m.ditamap:2:3\n"
              "/dtd/t.dtd  DTD            absent  a.dita\n"
              "/dtd/d.dtd  DTD            absent  -\n");
}

TEST_F(DependencyFormatsTest, ReferencesHaveALineEach) {
    EXPECT_EQ(edgeTable(edges(), "/w"),
              "FROM           KIND   TO\n"
              "m.ditamap:2:3  topic  a.dita\n"
              "a.dita         DTD    /dtd/t.dtd\n"
              "-              DTD    /dtd/d.dtd\n");
}

}  // namespace
}  // namespace marrowpress
