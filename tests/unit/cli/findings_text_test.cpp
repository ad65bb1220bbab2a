#include "cli/findings_text.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/sample_findings.h"

namespace marrowpress {
namespace {

std::string textOf(DiagnosticsFormat format, const std::string& job = {}) {
    DiagnosticsOptions options;
    options.format = format;
    std::ostringstream out;
    writeFindings(out, sampleFindings(), sampleSummary(), options, {/*isTerminal=*/false, job});
    return out.str();
}

TEST(FindingsTextTest, EachFormatIsItsOwn) {
    EXPECT_EQ(textOf(DiagnosticsFormat::kNone), "");
    EXPECT_TRUE(textOf(DiagnosticsFormat::kJson).starts_with("{\"id\":"));
    const std::string human = textOf(DiagnosticsFormat::kHuman);
    const std::string shortText = textOf(DiagnosticsFormat::kShort);
    EXPECT_FALSE(human.empty());
    EXPECT_FALSE(shortText.empty());
    EXPECT_NE(human, shortText);
}

TEST(FindingsTextTest, EachLineOfJsonNamesTheJob) {
    std::istringstream lines(textOf(DiagnosticsFormat::kJson, "a \"b\""));
    std::string line;
    std::size_t count = 0;
    while (std::getline(lines, line)) {
        EXPECT_TRUE(line.starts_with(R"({"job":"a \"b\"",")")) << line;
        ++count;
    }
    EXPECT_EQ(count, sampleFindings().size() + 1);
}

}  // namespace
}  // namespace marrowpress
