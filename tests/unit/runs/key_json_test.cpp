#include "runs/key_json.h"

#include <gtest/gtest.h>

#include "tests/support/told_keys.h"

namespace marrowpress {
namespace {

class KeyJsonTest : public testing::Test, protected ToldKeys {};

TEST_F(KeyJsonTest, IsAnObjectForEachKey) {
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
