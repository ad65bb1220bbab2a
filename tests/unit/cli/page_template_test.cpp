#include "cli/page_template.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(FilledTemplateTest, EachNameIsReplacedByItsText) {
    EXPECT_EQ(filledTemplate("a{{x}}b{{y}}{{x}}", {{"x", "1"}, {"y", "2"}}), "a1b21");
    EXPECT_EQ(filledTemplate("", {}), "");
}

TEST(FilledTemplateTest, NoTextIsLookedInto) {
    EXPECT_EQ(filledTemplate("{{x}}{{y}}", {{"x", "{{y}}"}, {"y", "{{x}}"}}), "{{y}}{{x}}");
}

TEST(FilledTemplateTest, WhatHasNoTextStays) {
    EXPECT_EQ(filledTemplate("{{x}} {{y", {{"y", "2"}}), "{{x}} {{y");
}

}  // namespace
}  // namespace marrowpress
