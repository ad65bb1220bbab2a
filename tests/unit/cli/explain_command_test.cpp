#include "cli/explain_command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "findings/catalogue.h"
#include "tests/support/chosen_language.h"

namespace marrowpress {
namespace {

constexpr std::size_t kWidth = 60;

/// What goes to standard output; the test fails when anything else happens.
std::string explain(const std::optional<std::string>& id) {
    std::ostringstream out;
    std::ostringstream err;
    ExplainOptions options;
    options.id = id;
    EXPECT_EQ(runExplain(options, kWidth, {out, err}), ExitCode::kSuccess);
    EXPECT_EQ(err.str(), "");
    return out.str();
}

TEST(ExplainCommandTest, TellsWhatAFindingMeans) {
    const ChosenLanguage english(Language::kEnglish);
    EXPECT_EQ(explain("MP213"),
              "MP213  error: Path is cut\n"
              "\n"
              "A folder or a file has \"#\" or a backslash in its name.\n"
              "References into it are read up to that character only, and\n"
              "so lead elsewhere or nowhere.\n"
              "\n"
              "Example:\n"
              "  <topicref href=\"c%23/introduction.dita\"/>\n"
              "\n"
              "What helps: Rename the folder or the file.\n");
}

TEST(ExplainCommandTest, SpeaksGermanToo) {
    const std::string text = explain("MP213");
    EXPECT_TRUE(text.starts_with("MP213  Fehler: Pfad wird abgeschnitten\n\nEin Ordner")) << text;
    EXPECT_NE(text.find("\nBeispiel:\n  <topicref"), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with("\nAbhilfe: Benennen Sie den Ordner oder die Datei um.\n")) << text;
}

TEST(ExplainCommandTest, LeavesTheLinesOfAnExampleAsTheyAre) {
    for (const std::string& id : findingIds()) {
        const std::string text = explain(id);
        std::istringstream example(explanationOf(id)->example);
        for (std::string line; std::getline(example, line);) {
            EXPECT_NE(text.find(line.empty() ? "\n\n" : "\n  " + line + "\n"), std::string::npos)
                << text;
        }
    }
}

TEST(ExplainCommandTest, ListsAllIds) {
    const ChosenLanguage english(Language::kEnglish);
    const std::string text = explain(std::nullopt);
    EXPECT_TRUE(text.starts_with("MP105  error: Key not defined\nMP106  error: ")) << text;
    EXPECT_NE(text.find("\nMP215  note: Has no effect here\n"), std::string::npos) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), findingIds().size());
}

TEST(ExplainCommandTest, FailsWhenNobodyCanReadIt) {
    std::ostringstream out;
    std::ostringstream err;
    out.setstate(std::ios::badbit);
    EXPECT_EQ(runExplain({}, kWidth, {out, err}), ExitCode::kRunFailed);
    EXPECT_EQ(err.str(), "marrowpress: cannot write to standard output\n");
}

}  // namespace
}  // namespace marrowpress
