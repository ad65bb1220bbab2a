#include "findings/json_values.h"

#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>
#include <string>

namespace marrowpress {
namespace {

std::string textOf(const boost::json::value& value) {
    return boost::json::serialize(value);
}

TEST(JsonValuesTest, ATextIsAlwaysUtf8) {
    EXPECT_EQ(textOf(jsonText("a\"\xC3\xA4")), "\"a\\\"\xC3\xA4\"");
    EXPECT_EQ(textOf(jsonText("a\xFF")), "\"a\xEF\xBF\xBD\"");
}

TEST(JsonValuesTest, WhatIsNotThereIsNull) {
    EXPECT_EQ(textOf(jsonText("")), "\"\"");
    EXPECT_EQ(textOf(jsonTextOrNull("")), "null");
    EXPECT_EQ(textOf(jsonTextOrNull("a")), "\"a\"");
    EXPECT_EQ(textOf(jsonNumberOrNull(0)), "null");
    EXPECT_EQ(textOf(jsonNumberOrNull(7)), "7");
}

TEST(JsonValuesTest, APlaceHasAllItsMembers) {
    EXPECT_EQ(textOf(jsonPlace({"/a", 2, 3})), R"({"file":"/a","line":2,"column":3})");
    EXPECT_EQ(textOf(jsonPlace({})), R"({"file":null,"line":null,"column":null})");
    EXPECT_EQ(textOf(jsonStep({{"/a", 2, 3}, "href b"})),
              R"({"file":"/a","line":2,"column":3,"what":"href b"})");
}

TEST(JsonValuesTest, AListBecomesAnArrayInItsOrder) {
    EXPECT_EQ(textOf(jsonArray(std::vector<std::string>{"b", "a"}, jsonText)), R"(["b","a"])");
    EXPECT_EQ(textOf(jsonArray(std::vector<std::string>{}, jsonText)), "[]");
}

}  // namespace
}  // namespace marrowpress
