#include "findings/junit_writer.h"

#include <algorithm>
#include <ostream>
#include <unordered_map>

#include "findings/characters.h"
#include "findings/shown_path.h"
#include "findings/xml_writer.h"

namespace marrowpress {
namespace {

constexpr int kDecimals = 3;
constexpr const char* kSuite = "marrowpress";

/// A file and what was found in it.
struct TestCase {
    std::string file;
    std::vector<const Finding*> errors;
    std::vector<const Finding*> others;
};

/// The files with findings, in the order in which they were met.
class TestCases {
public:
    explicit TestCases(const JunitOptions& options) : options_(options) {}

    void add(const Finding& finding) {
        const std::string& file = finding.place.file;
        TestCase& testCase = caseOf(file.empty() ? options_.map : file);
        const bool isError = finding.severity == Severity::kError;
        (isError ? testCase.errors : testCase.others).push_back(&finding);
    }

    /// The reference holds until another case is added.
    TestCase& caseOf(const std::string& file) {
        const auto [entry, isNew] = indexes_.emplace(file, cases_.size());
        if (isNew) {
            cases_.push_back({file, {}, {}});
        }
        return cases_[entry->second];
    }

    const std::vector<TestCase>& all() const noexcept { return cases_; }

private:
    const JunitOptions& options_;
    std::vector<TestCase> cases_;
    std::unordered_map<std::string, std::size_t> indexes_;
};

std::size_t failuresOf(const TestCases& cases) {
    return static_cast<std::size_t>(
        std::count_if(cases.all().begin(), cases.all().end(),
                      [](const TestCase& testCase) { return !testCase.errors.empty(); }));
}

/// A line for each finding, and one for its hint.
std::string linesOf(const std::vector<const Finding*>& findings, const LineOptions& options) {
    std::string lines;
    for (const Finding* const finding : findings) {
        lines += findingLine(*finding, options) + '\n';
        if (!finding->hint.empty()) {
            lines += "  " + options.words.hint + ": " + shownText(finding->hint) + '\n';
        }
    }
    return lines;
}

class JunitWriter {
public:
    JunitWriter(std::ostream& out, const JunitOptions& options)
        : xml_(out), options_(options), lineOptions_{options.currentFolder, options.words} {}

    void write(const TestCases& cases, const FindingSummary& summary) {
        const std::size_t failures = failuresOf(cases);
        hasFailedSilently_ = summary.exit == kExitOfFailedRun && failures == 0;
        xml_.startElement("testsuites");
        xml_.startElement("testsuite");
        xml_.attribute("name", kSuite);
        xml_.attribute("tests", std::to_string(cases.all().size()));
        xml_.attribute("failures", std::to_string(failures));
        xml_.attribute("errors", hasFailedSilently_ ? "1" : "0");
        xml_.attribute("time", fixedText(summary.seconds, kDecimals));
        for (const TestCase& testCase : cases.all()) {
            writeCase(testCase, summary);
        }
        xml_.endElement();
        xml_.endElement();
        xml_.endDocument();
    }

private:
    void writeCase(const TestCase& testCase, const FindingSummary& summary) {
        xml_.startElement("testcase");
        xml_.attribute("name",
                       pathInside(testCase.file, options_.currentFolder).value_or(testCase.file));
        xml_.attribute("classname", kSuite);
        xml_.attribute("time", fixedText(0, kDecimals));
        if (!testCase.errors.empty()) {
            writeFailure(testCase.errors);
        }
        if (hasFailedSilently_ && testCase.file == options_.map) {
            xml_.startElement("error");
            xml_.attribute("message", "exit " + std::to_string(summary.exit));
            xml_.endElement();
        }
        if (!testCase.others.empty()) {
            xml_.startElement("system-out");
            xml_.text(linesOf(testCase.others, lineOptions_));
            xml_.endElement();
        }
        xml_.endElement();
    }

    /// One for all errors of a file: most readers take a test case to fail once.
    void writeFailure(const std::vector<const Finding*>& errors) {
        const Finding& first = *errors.front();
        xml_.startElement("failure");
        xml_.attribute("message", textWithHint(first));
        xml_.attribute("type", first.id);
        xml_.text(linesOf(errors, lineOptions_));
        xml_.endElement();
    }

    XmlWriter xml_;
    const JunitOptions& options_;
    LineOptions lineOptions_;
    bool hasFailedSilently_ = false;
};

}  // namespace

void writeJunit(std::ostream& out, const std::vector<Finding>& findings,
                const FindingSummary& summary, const JunitOptions& options) {
    TestCases cases(options);
    for (const Finding& finding : findings) {
        if (!finding.isArtefact) {
            cases.add(finding);
        }
    }
    if (cases.all().empty() || (summary.exit == kExitOfFailedRun && failuresOf(cases) == 0)) {
        cases.caseOf(options.map);
    }
    JunitWriter(out, options).write(cases, summary);
}

}  // namespace marrowpress
