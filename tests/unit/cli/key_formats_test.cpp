#include "cli/key_formats.h"

#include <gtest/gtest.h>

#include "tests/support/told_keys.h"

namespace marrowpress {
namespace {

class KeyFormatsTest : public testing::Test, protected ToldKeys {};

TEST_F(KeyFormatsTest, ATableHasALineForEachKeyAndEachFurtherDefinition) {
    tellAll();
    EXPECT_EQ(
        keyTable(list, all(), "/w"),
        "KEY   STATE      DEFINITION     STANDS FOR  CHAIN  USES  DEFINITIONS  FIRST USE\n"
        "off   excluded   m.ditamap:9:3  off.dita    -      0     1            -\n"
        "a     used       m.ditamap:4:3  t.dita#t    b      2     2            t.dita:6:3\n"
        "a     shadowed   k.ditamap:3:3  old.dita    -      -     -            -\n"
        "b     used       m.ditamap:5:3  t.dita#t    -      1     1            m.ditamap:4:3\n"
        "gone  undefined  -              -           -      1     0            t.dita:8:3\n");
}

TEST_F(KeyFormatsTest, ATableShowsATextInQuotesAndCutsALongOne) {
    define("a", KeyState::kEffective, "/w/m.ditamap", 1);
    define("b", KeyState::kEffective, "/w/m.ditamap", 2);
    mean("a", "/w/m.ditamap", 1, "", "Short");
    const std::string text = std::string(59, 'x') + "\xC3\xA4 and more";
    mean("b", "/w/m.ditamap", 2, "", text.c_str());
    const std::string table = keyTable(list, all(), "/w");
    EXPECT_NE(table.find(" \"Short\" "), std::string::npos) << table;
    EXPECT_NE(table.find(" \"" + std::string(59, 'x') + "...\" "), std::string::npos) << table;
}

TEST_F(KeyFormatsTest, CsvHasTheSameLinesWithWholePaths) {
    tellAll();
    EXPECT_EQ(keyCsv(list, all()),
              "key,state,file,line,column,target,text,chain,uses,definitions,places\r\n"
              "off,excluded,/w/m.ditamap,9,3,/w/off.dita,,,0,1,\r\n"
              "a,used,/w/m.ditamap,4,3,/w/t.dita#t,\"An \"\"A\"\"\",b,2,2,/w/t.dita:6:3 "
              "/w/t.dita:7:3\r\n"
              "a,shadowed,/w/k.ditamap,3,3,/w/old.dita,,,,,\r\n"
              "b,used,/w/m.ditamap,5,3,/w/t.dita#t,,,1,1,/w/m.ditamap:4:3\r\n"
              "gone,undefined,,,,,,,1,0,/w/t.dita:8:3\r\n");
}

}  // namespace
}  // namespace marrowpress
