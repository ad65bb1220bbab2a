#include "cli/html.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(HtmlTextTest, NothingEndsTheTextOrTheQuotesAroundIt) {
    EXPECT_EQ(htmlText("</script><b a=\"x\" b='y'>&amp;"),
              "&lt;/script&gt;&lt;b a=&quot;x&quot; b=&#39;y&#39;&gt;&amp;amp;");
    EXPECT_EQ(htmlText("Übersicht"), "Übersicht");
}

TEST(HtmlTextTest, WhatCannotBeSeenIsEscaped) {
    EXPECT_EQ(htmlText("a\nb\x1B[0m\xFF\xE2\x80\xAE"), "a\\nb\\x1B[0m\\xFF\\u202E");
}

TEST(HtmlTextTest, ASourceLineKeepsItsTabs) {
    EXPECT_EQ(htmlOfShown("\t<p>"), "\t&lt;p&gt;");
}

TEST(HtmlNameTest, IsOneWordWithoutQuotes) {
    EXPECT_EQ(htmlName("a b,c\"d'e<f>g&h=i`j%k#l"),
              "a%20b%2Cc%22d%27e%3Cf%3Eg%26h%3Di%60j%25k%23l");
    EXPECT_EQ(htmlName("\xC3\xBC.dita"), "ü.dita");
    EXPECT_EQ(htmlName("a\nb\xFF"), "a\\nb\\xFF");
}

}  // namespace
}  // namespace marrowpress
