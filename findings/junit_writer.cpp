#include "findings/junit_writer.h"

#include <algorithm>
#include <ostream>
#include <unordered_map>
#include <utility>

#include "findings/characters.h"
#include "findings/shown_path.h"

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
    /// @param map  Bears what has no file.
    explicit TestCases(const std::string& map) : map_(map) {}

    void add(const Finding& finding) {
        const std::string& file = finding.place.file;
        TestCase& testCase = caseOf(file.empty() ? map_ : file);
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
    const std::string& map_;
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

/// One for all errors of a file: most readers take a test case to fail once.
void writeFailure(XmlWriter& xml, const std::vector<const Finding*>& errors,
                  const LineOptions& options) {
    const Finding& first = *errors.front();
    xml.startElement("failure");
    xml.attribute("message", textWithHint(first));
    xml.attribute("type", first.id);
    xml.text(linesOf(errors, options));
    xml.endElement();
}

}  // namespace

JunitSuites::JunitSuites(std::ostream& out, LineOptions options)
    : xml_(out), options_(std::move(options)) {
    xml_.startElement("testsuites");
}

void JunitSuites::add(const std::string& name, const std::string& map,
                      const std::vector<Finding>& findings, const FindingSummary& summary) {
    TestCases cases(map);
    for (const Finding& finding : findings) {
        if (!finding.isArtefact) {
            cases.add(finding);
        }
    }
    const std::size_t failures = failuresOf(cases);
    const bool hasFailedSilently = summary.exit == kExitOfFailedRun && failures == 0;
    if (cases.all().empty() || hasFailedSilently) {
        cases.caseOf(map);
    }
    xml_.startElement("testsuite");
    xml_.attribute("name", name);
    xml_.attribute("tests", std::to_string(cases.all().size()));
    xml_.attribute("failures", std::to_string(failures));
    xml_.attribute("errors", hasFailedSilently ? "1" : "0");
    xml_.attribute("time", fixedText(summary.seconds, kDecimals));
    for (const TestCase& testCase : cases.all()) {
        xml_.startElement("testcase");
        xml_.attribute("name",
                       pathInside(testCase.file, options_.currentFolder).value_or(testCase.file));
        xml_.attribute("classname", name);
        xml_.attribute("time", fixedText(0, kDecimals));
        if (!testCase.errors.empty()) {
            writeFailure(xml_, testCase.errors, options_);
        }
        if (hasFailedSilently && testCase.file == map) {
            xml_.startElement("error");
            xml_.attribute("message", "exit " + std::to_string(summary.exit));
            xml_.endElement();
        }
        if (!testCase.others.empty()) {
            xml_.startElement("system-out");
            xml_.text(linesOf(testCase.others, options_));
            xml_.endElement();
        }
        xml_.endElement();
    }
    xml_.endElement();
}

void JunitSuites::end() {
    xml_.endElement();
    xml_.endDocument();
}

void writeJunit(std::ostream& out, const std::vector<Finding>& findings,
                const FindingSummary& summary, const JunitOptions& options) {
    JunitSuites suites(out, {options.currentFolder, options.words});
    suites.add(kSuite, options.map, findings, summary);
    suites.end();
}

}  // namespace marrowpress
