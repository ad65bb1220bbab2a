#include <gtest/gtest.h>

#include "tests/dangers/danger.h"
#include "tests/support/message_texts.h"

namespace marrowpress {
namespace {

#ifdef __SANITIZE_ADDRESS__
// Each takes the sanitizer as long as the other: both end at the same limit.
constexpr int kPowers[] = {9};
#else
constexpr int kPowers[] = {6, 9};
#endif

/// Topics whose entities stand for more than a machine holds.
class EntityBombDangerTest : public DangerTest {
protected:
    EntityBombDangerTest() { mostSeconds = 240; }

    /// An internal subset in which "e" stands for a character 10^`power` times.
    static std::string subset(int power) {
        std::string text = "<!ENTITY e0 'x'>";
        for (int level = 1; level <= power; ++level) {
            std::string uses;
            for (int use = 0; use < 10; ++use) {
                uses += "&e" + std::to_string(level - 1) + ";";
            }
            text += "<!ENTITY " + (level == power ? "e" : "e" + std::to_string(level)) + " '" +
                    uses + "'>";
        }
        return text;
    }

    /// Publishes a map with `bomb` between two others, which must not suffer.
    void expectToldAndTheRestWhole(const std::string& bomb) {
        folder.write("first.dita", topic("first", "<body><p>Before it.</p></body>"));
        folder.write("bomb.dita", bomb);
        writeMap(reference("topicref", "first.dita") + reference("topicref", "bomb.dita"));
        EXPECT_EQ(publish(), 0);
        EXPECT_EQ(console, cannotRead("$F/bomb.dita"));
        EXPECT_NE(folder.read("out/book.dita").find("<p>Before it.</p>"), std::string::npos);
        EXPECT_TRUE(isBesideWhole());
        EXPECT_TRUE(isTidy());
    }
};

TEST_F(EntityBombDangerTest, InContentIsToldAndTheRestOfTheRunIsWhole) {
    for (const int power : kPowers) {
        expectToldAndTheRestWhole("<!DOCTYPE topic [" + subset(power) +
                                  "]><topic id='b'><title>&e;</title></topic>");
    }
}

TEST_F(EntityBombDangerTest, InAnAttributeIsToldAndTheRestOfTheRunIsWhole) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer maps and unmaps memory for each of the entities";
#endif
    for (const int power : {6, 9}) {
        expectToldAndTheRestWhole("<!DOCTYPE topic [" + subset(power) +
                                  "]><topic id='b' base='&e;'><title>B</title></topic>");
    }
}

TEST_F(EntityBombDangerTest, IsNoDocumentThatUsesOneEntityTwoHundredThousandTimes) {
    std::string uses;
    constexpr std::size_t kUses = 200'000;
    for (std::size_t use = 0; use < kUses; ++use) {
        uses += "&e;";
    }
    folder.write("many.dita", "<!DOCTYPE topic [<!ENTITY e 'x'>]><topic id='m'><title>" + uses +
                                  "</title></topic>");
    writeMap(reference("topicref", "many.dita"));
    EXPECT_EQ(publish(), 0);
    EXPECT_EQ(console, "");
    EXPECT_NE(folder.read("out/book.dita").find("<title>" + std::string(kUses, 'x') + "</title>"),
              std::string::npos);
    EXPECT_TRUE(isBesideWhole());
}

}  // namespace
}  // namespace marrowpress
