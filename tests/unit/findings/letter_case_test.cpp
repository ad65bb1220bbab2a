#include "findings/letter_case.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(FoldedCaseTest, LettersOfAllScriptsAreFolded) {
    EXPECT_EQ(foldedCase("Parts-1.DITA"), "parts-1.dita");
    EXPECT_EQ(foldedCase("\u00C4\u0416\u03A9"), foldedCase("\u00E4\u0436\u03C9"));
    EXPECT_EQ(foldedCase("STRASSE"), foldedCase("stra\u00DFe"));
    EXPECT_EQ(foldedCase(""), "");
}

TEST(FoldedCaseTest, NothingElseIsLost) {
    EXPECT_NE(foldedCase("a"), foldedCase("\u00E4"));
    EXPECT_NE(foldedCase("\u00E4"), foldedCase("a\u0308"));
    EXPECT_NE(foldedCase("a b"), foldedCase("ab"));
    EXPECT_EQ(foldedCase("A\nb\t#%"), "a\nb\t#%");
}

TEST(FoldedCaseTest, WhatIsNotUtf8StaysAsItIs) {
    EXPECT_EQ(foldedCase("A\xE4"), "A\xE4");
}

}  // namespace
}  // namespace marrowpress
