#include "cli/text_table.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(TextTableTest, ColumnsStandBelowEachOther) {
    TextTable table({"A", "LONG", "LAST"});
    table.add({"wide cell", "x", "1"});
    table.add({"", "yy", "22"});
    EXPECT_EQ(table.text(),
              "A          LONG  LAST\n"
              "wide cell  x     1\n"
              "-          yy    22\n");
}

TEST(TextTableTest, AColumnIsAsWideAsItsTextsAreOnATerminal) {
    TextTable table({"A", "B"});
    table.add({"\xC3\xA4\xC3\xB6", "1"});
    table.add({"\xE6\xBC\xA2", "2"});
    EXPECT_EQ(table.text(),
              "A   B\n"
              "\xC3\xA4\xC3\xB6  1\n"
              "\xE6\xBC\xA2  2\n");
}

TEST(TextTableTest, NothingFromOutsideEndsALineOrMovesTheCursor) {
    TextTable table({"A"});
    table.add({"a\nb\x1B[2J\xFF"});
    EXPECT_EQ(table.text(), "A\na\\nb\\x1B[2J\\xFF\n");
}

TEST(CsvLineTest, QuotesWhatNeedsQuotes) {
    EXPECT_EQ(csvLine({"a", "", "b c", "d,e", "say \"f\"", "g\nh", "i\rj"}),
              "a,,b c,\"d,e\",\"say \"\"f\"\"\",\"g\nh\",\"i\rj\"\r\n");
    EXPECT_EQ(csvLine({"a"}), "a\r\n");
}

}  // namespace
}  // namespace marrowpress
