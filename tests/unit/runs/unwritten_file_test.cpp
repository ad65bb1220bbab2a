#include "runs/unwritten_file.h"

#include <gtest/gtest.h>

#include "findings/wording.h"

namespace marrowpress {
namespace {

TEST(UnwrittenFindingTest, NamesTheFileAndTheReason) {
    const Finding finding = unwrittenFinding("/w/out/m.dita", "No space", "/w");
    EXPECT_EQ(finding.id, "MP107");
    EXPECT_EQ(finding.severity, Severity::kError);
    EXPECT_EQ(finding.place.file, "/w/out/m.dita");
    EXPECT_EQ(finding.target, "/w/out/m.dita");
    EXPECT_EQ(finding.text, cannotWriteText("out/m.dita", "No space"));
}

TEST(UnreadableFindingTest, NamesTheFileAndTheReason) {
    const Finding finding = unreadableFinding("/w/a.png", "Permission denied", "/w");
    EXPECT_EQ(finding.id, "MP106");
    EXPECT_EQ(finding.severity, Severity::kError);
    EXPECT_EQ(finding.place.file, "/w/a.png");
    EXPECT_EQ(finding.text, cannotReadText("a.png", "Permission denied"));
}

}  // namespace
}  // namespace marrowpress
