#include "findings/nearest.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

struct DistanceCase {
    const char* left;
    const char* right;
    std::size_t distance;
};

TEST(EditDistanceTest, CountsChangesOfCharacters) {
    const DistanceCase cases[] = {
        {"", "", 0},
        {"key", "key", 0},
        {"key", "", 3},
        {"", "key", 3},
        {"publish", "pubish", 1},
        {"publish", "publissh", 1},
        {"publish", "publash", 1},
        {"publish", "pulbish", 1},
        {"Größe", "Grosse", 3},
        {"ü", "u", 1},
        {"prod", "Prod", 1},
        {"abcd", "dcba", 3},
    };
    for (const DistanceCase& c : cases) {
        SCOPED_TRACE(std::string(c.left) + " " + c.right);
        EXPECT_EQ(editDistance(c.left, c.right, 9), c.distance);
        EXPECT_EQ(editDistance(c.right, c.left, 9), c.distance);
    }
}

TEST(EditDistanceTest, StopsBehindTheLimit) {
    EXPECT_EQ(editDistance("abcdef", "uvwxyz", 2), 3U);
    EXPECT_EQ(editDistance("a", "abcdefgh", 2), 3U);
    EXPECT_EQ(editDistance("abcdef", "abcdex", 1), 1U);
    EXPECT_EQ(editDistance("abcdef", "abcdex", 0), 1U);
}

TEST(EditDistanceTest, TakesBytesThatAreNoUtf8) {
    EXPECT_EQ(editDistance("\xFF\x80", "\xFF", 3), 1U);
    EXPECT_EQ(editDistance("\x80\x80", "", 3), 1U);
}

struct NearestCase {
    const char* name;
    std::vector<std::string> names;
    std::optional<std::string> nearest;
};

TEST(NearestNameTest, FindsWhatWasMeant) {
    const NearestCase cases[] = {
        {"pubish", {"host", "publish", "check"}, "publish"},
        {"PUBLISH", {"publist", "publish"}, "publish"},
        {"prod-nmae", {"prod-no", "prod-name"}, "prod-name"},
        {"Prod-Name", {"prod-names", "prod-name"}, "prod-name"},
        {"rot", {"rat", "rut"}, "rat"},
        {"prod", {"prod", "prods"}, "prods"},
        {"überblick", {"Überblick"}, "Überblick"},
        {"O", {"o"}, "o"},
    };
    for (const NearestCase& c : cases) {
        EXPECT_EQ(nearestName(c.name, c.names), c.nearest) << c.name;
    }
}

TEST(NearestNameTest, FindsNothingWhereNothingIsNear) {
    const NearestCase cases[] = {
        {"print", {"host", "publish", "check"}, std::nullopt},
        {"", {"a", "host"}, std::nullopt},
        {"x", {"y"}, std::nullopt},
        {"ab", {"ac"}, std::nullopt},
        {"prod", {"prod"}, std::nullopt},
        {"prod", {}, std::nullopt},
        {"a-very-long-name-of-some-chapter", {"a-very-big-noun-of-some-capital"}, std::nullopt},
    };
    for (const NearestCase& c : cases) {
        EXPECT_EQ(nearestName(c.name, c.names), c.nearest) << c.name;
    }
}

}  // namespace
}  // namespace marrowpress
