#include "cli/key_explanation.h"

#include <gtest/gtest.h>

#include "tests/support/chosen_language.h"
#include "tests/support/told_keys.h"

namespace marrowpress {
namespace {

class KeyExplanationTest : public testing::Test, protected ToldKeys {
protected:
    std::string explanation(const char* key) {
        list.finish();
        return keyExplanation(list, *list.find(key), "/w");
    }

    ChosenLanguage english{Language::kEnglish};
};

TEST_F(KeyExplanationTest, SaysOfEachDefinitionWhyItCountsOrNot) {
    define("a", KeyState::kExcluded, "/w/m.ditamap", 2);
    define("a", KeyState::kEffective, "/w/m.ditamap", 4, "", "b");
    define("a", KeyState::kShadowed, "/w/m.ditamap", 6);
    define("a", KeyState::kShadowed, "/w/k.ditamap", 3, "/w/old.dita");
    define("a", KeyState::kLost, "/w/l.ditamap", 5);
    mean("a", "/w/m.ditamap", 4, "/w/t.dita", "The A");
    refer("a", "/w/t.dita", 6);
    EXPECT_EQ(
        explanation("a"),
        "a: 5 definitions\n"
        "Maps are read level by level from the root map on, each from its top to its end; the "
        "first definition counts\n"
        "\n1. m.ditamap:2:3\n"
        "    does not count: the profile excludes it\n"
        "\n2. m.ditamap:4:3\n"
        "    counts: none in front of it does\n"
        "    leads on to the key `b`\n"
        "    leads to t.dita\n"
        "    stands for the text: The A\n"
        "\n3. m.ditamap:6:3\n"
        "    does not count: m.ditamap:4:3 stands in front of it in the same map\n"
        "\n4. k.ditamap:3:3\n"
        "    does not count: m.ditamap:4:3 is in a map that is read earlier\n"
        "    leads to old.dita\n"
        "    via m.ditamap:2:3: href k\n"
        "\n5. l.ditamap:5:3\n"
        "    does not count: the part of a map that it refers to takes its place\n"
        "    via m.ditamap:2:3: href k\n"
        "\n1 reference to the key\n"
        "    t.dita:6:3\n");
}

TEST_F(KeyExplanationTest, AnOnlyDefinitionCounts) {
    define("a", KeyState::kEffective, "/w/m.ditamap", 4);
    EXPECT_EQ(explanation("a"),
              "a: 1 definition\n"
              "\n1. m.ditamap:4:3\n"
              "    counts: it is the only one\n"
              "\n0 references to the key\n");
}

TEST_F(KeyExplanationTest, AKeyThatNobodyDefinesNamesTheNearest) {
    define("product", KeyState::kEffective, "/w/m.ditamap", 4);
    refer("prodct", "/w/t.dita", 6);
    EXPECT_EQ(explanation("prodct"),
              "prodct: 0 definitions\n"
              "The key `prodct` is not defined\n"
              "hint: did you mean `product`?\n"
              "\n1 reference to the key\n"
              "    t.dita:6:3\n");
}

TEST_F(KeyExplanationTest, SpeaksGermanToo) {
    const ChosenLanguage german(Language::kGerman);
    define("a", KeyState::kEffective, "/w/m.ditamap", 4);
    EXPECT_EQ(explanation("a"),
              "a: 1 Definition\n"
              "\n1. m.ditamap:4:3\n"
              "    gilt: sie ist die einzige\n"
              "\n0 Verweise auf den Schlüssel\n");
}

}  // namespace
}  // namespace marrowpress
