#include "cli/key_formats.h"

#include <gtest/gtest.h>

#include "tests/support/told_keys.h"

namespace marrowpress {
namespace {

class KeyFormatsTest : public testing::Test, protected ToldKeys {
protected:
    std::vector<const ListedKey*> all() const {
        std::vector<const ListedKey*> keys;
        for (const ListedKey& key : list.keys()) {
            keys.push_back(&key);
        }
        return keys;
    }
};

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

TEST_F(KeyFormatsTest, JsonIsAnObjectForEachKey) {
    define("a", KeyState::kEffective, "/w/m.ditamap", 4, "", "b");
    define("a", KeyState::kLost, "/w/k.ditamap", 3, "/w/old.dita");
    mean("a", "/w/m.ditamap", 4, "", "A");
    refer("a", "/w/t.dita", 6);
    refer("gone", "/w/t.dita", 8);
    EXPECT_EQ(
        keyJson(list, all()),
        R"({"key":"a","state":"used","file":"/w/m.ditamap","line":4,"column":3,"target":null,)"
        R"("text":"A","chain":["b"],"uses":[{"file":"/w/t.dita","line":6,"column":3}],)"
        R"("definitions":[{"file":"/w/m.ditamap","line":4,"column":3,"state":"effective",)"
        R"("element":"keydef","target":null,"text":"A","keyref":"b","via":[]},)"
        R"({"file":"/w/k.ditamap","line":3,"column":3,"state":"lost","element":"keydef",)"
        R"("target":"/w/old.dita","text":null,"keyref":null,)"
        R"("via":[{"file":"/w/m.ditamap","line":2,"column":3,"what":"href k"}]}]})"
        "\n"
        R"({"key":"gone","state":"undefined","file":null,"line":null,"column":null,)"
        R"("target":null,"text":null,"chain":[],)"
        R"("uses":[{"file":"/w/t.dita","line":8,"column":3}],"definitions":[]})"
        "\n");
}

}  // namespace
}  // namespace marrowpress
