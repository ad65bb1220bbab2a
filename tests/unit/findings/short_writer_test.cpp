#include "findings/short_writer.h"

#include <gtest/gtest.h>

#include <locale>
#include <sstream>

#include "tests/support/golden_text.h"
#include "tests/support/sample_findings.h"

namespace marrowpress {
namespace {

TEST(ShortWriterTest, WritesAllFormsOfFindingsAsALine) {
    std::ostringstream out;
    writeShort(out, sampleFindings(), sampleSummary(), {std::string(kSampleFolder), {}, false});
    EXPECT_EQ(out.str(), goldenText("short.txt", out.str()));
    std::istringstream in(out.str());
    std::size_t lines = 0;
    for (std::string line; std::getline(in, line);) {
        ++lines;
    }
    EXPECT_EQ(lines, sampleFindings().size() + 1);
}

TEST(ShortWriterTest, WithoutFindingsThereIsTheSummary) {
    std::ostringstream out;
    writeShort(out, {}, {}, {});
    EXPECT_EQ(out.str(), "0 errors, 0 warnings; 0 topics, 0.0 s\n");
}

TEST(ShortWriterTest, NumbersAreThoseOfEveryLocale) {
    struct Grouped : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
        char do_decimal_point() const override { return ','; }
    };
    std::ostringstream out;
    out.imbue(std::locale(std::locale::classic(), new Grouped));
    Finding finding;
    finding.id = "MP105";
    finding.text = "text";
    finding.place = {"/a.dita", 12345, 6789};
    FindingSummary summary;
    summary.topics = 10000;
    summary.seconds = 1234.5;
    writeShort(out, {finding}, summary, {});
    EXPECT_EQ(out.str(),
              "/a.dita:12345:6789: error: text [MP105]\n"
              "0 errors, 0 warnings; 10000 topics, 1234.5 s\n");
}

}  // namespace
}  // namespace marrowpress
