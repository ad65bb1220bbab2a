#include "findings/finding_lines.h"

#include <gtest/gtest.h>

#include "tests/support/sample_findings.h"

namespace marrowpress {
namespace {

Finding finding(FindingPlace place) {
    Finding result;
    result.id = "MP105";
    result.text = "text";
    result.place = std::move(place);
    return result;
}

LineOptions inGuide() {
    return {"/guide", {}, false};
}

TEST(PlaceTextTest, LeavesOutWhatIsNotKnown) {
    EXPECT_EQ(placeText({"/guide/b.dita", 9, 3}, "/guide"), "b.dita:9:3");
    EXPECT_EQ(placeText({"/guide/b.dita", 9, 0}, "/guide"), "b.dita:9");
    EXPECT_EQ(placeText({"/guide/b.dita", 0, 0}, "/guide"), "b.dita");
    EXPECT_EQ(placeText({"", 0, 0}, "/guide"), "marrowpress");
    EXPECT_EQ(placeText({"/guide/a\nb.dita", 1, 2}, "/guide"), "a\\nb.dita:1:2");
}

TEST(FindingLineTest, NamesPlaceSeverityTextAndId) {
    Finding some = finding({"/guide/b.dita", 9, 3});
    EXPECT_EQ(findingLine(some, inGuide()), "b.dita:9:3: error: text [MP105]");
    some.severity = Severity::kWarning;
    EXPECT_EQ(findingLine(some, inGuide()), "b.dita:9:3: warning: text [MP105]");
    some.severity = Severity::kNote;
    EXPECT_EQ(findingLine(some, inGuide()), "b.dita:9:3: note: text [MP105]");
    EXPECT_EQ(findingLine(finding({}), inGuide()), "marrowpress: error: text [MP105]");
}

TEST(FindingLineTest, IsOneLineWhateverTheTextIs) {
    Finding some = finding({"/guide/b.dita", 9, 3});
    some.text = "a\r\nb\x1B[m \xFC";
    EXPECT_EQ(findingLine(some, inGuide()), "b.dita:9:3: error: a\\r\\nb\\x1B[m \\xFC [MP105]");
}

TEST(FindingLineTest, AnArtefactIsMarked) {
    Finding some = finding({"/guide/b.dita", 9, 3});
    some.isArtefact = true;
    EXPECT_EQ(findingLine(some, inGuide()), "b.dita:9:3: error: text [MP105] (artefact)");
}

TEST(FindingLineTest, ItsWordsAreThoseOfTheLanguage) {
    LineOptions options = inGuide();
    options.words.error = "Fehler";
    EXPECT_EQ(findingLine(finding({}), options), "marrowpress: Fehler: text [MP105]");
}

TEST(FindingLineTest, EachSeverityHasAColour) {
    LineOptions options = inGuide();
    options.isColoured = true;
    Finding some = finding({"/guide/b.dita", 9, 3});
    EXPECT_EQ(findingLine(some, options),
              "\x1B[1mb.dita:9:3:\x1B[0m \x1B[1;31merror:\x1B[0m text [MP105]");
    some.severity = Severity::kWarning;
    EXPECT_NE(findingLine(some, options).find("\x1B[1;35mwarning:\x1B[0m"), std::string::npos);
    some.severity = Severity::kNote;
    EXPECT_NE(findingLine(some, options).find("\x1B[1;36mnote:\x1B[0m"), std::string::npos);
}

TEST(LastLinesTest, CountsWhatThereIs) {
    struct Case {
        FindingSummary summary;
        const char* line;
    };
    const Case cases[] = {
        {{2, 5, 0, 412, 3, 1.8, 3, 0}, "2 errors, 5 warnings in 3 files; 412 topics, 1.8 s\n"},
        {{1, 1, 1, 1, 1, 0, 3, 0}, "1 error, 1 warning, 1 note in 1 file; 1 topic, 0.0 s\n"},
        {{0, 0, 0, 12, 0, 0.24, 0, 0}, "0 errors, 0 warnings; 12 topics, 0.2 s\n"},
        {{0, 0, 3, 12, 2, 0.26, 0, 0},
         "0 errors, 0 warnings, 3 notes in 2 files; 12 topics, "
         "0.3 s\n"},
        {{1, 0, 0, 0, 0, 12345.0, 1, 0}, "1 error, 0 warnings; 0 topics, 12345.0 s\n"},
        {{1, 0, 0, 1, 1, 1, 3, 77}, "and 77 more\n1 error, 0 warnings in 1 file; 1 topic, 1.0 s\n"},
    };
    for (const Case& sample : cases) {
        EXPECT_EQ(lastLines(sample.summary, {}), sample.line);
    }
}

TEST(LastLinesTest, ItsWordsAreThoseOfTheLanguage) {
    Words words;
    words.errors = {"Fehler", "Fehler"};
    words.warnings = {"Warnung", "Warnungen"};
    words.files = {"Datei", "Dateien"};
    words.topics = {"Thema", "Themen"};
    EXPECT_EQ(lastLines({2, 1, 0, 412, 3, 1.8, 3, 0}, words),
              "2 Fehler, 1 Warnung in 3 Dateien; 412 Themen, 1.8 s\n");
}

TEST(FixedTextTest, HasAPointAndTheDecimals) {
    EXPECT_EQ(fixedText(1.849, 1), "1.8");
    EXPECT_EQ(fixedText(0, 3), "0.000");
    EXPECT_EQ(fixedText(1234567.25, 1), "1234567.2");
}

TEST(TextWithHintTest, TheHintStandsInBrackets) {
    Finding some = finding({});
    EXPECT_EQ(textWithHint(some), "text");
    some.hint = "did you mean `x`?";
    EXPECT_EQ(textWithHint(some), "text (did you mean `x`?)");
}

}  // namespace
}  // namespace marrowpress
