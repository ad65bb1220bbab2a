#include "cli/diagnostics_arguments.h"

#include <array>
#include <iterator>
#include <utility>

#include "findings/catalogue.h"
#include "findings/nearest.h"

namespace marrowpress {
namespace {

constexpr const char* kGroup = "Findings";
constexpr const char* kTerminal = "Terminal";

const Choices<DiagnosticsFormat> kFormats{{"human", DiagnosticsFormat::kHuman},
                                          {"short", DiagnosticsFormat::kShort},
                                          {"json", DiagnosticsFormat::kJson},
                                          {"none", DiagnosticsFormat::kNone}};
const Choices<Language> kLanguages{
    {"de", Language::kGerman}, {"en", Language::kEnglish}, {"auto", Language::kAuto}};
const Choices<FailOn> kFailOn(std::begin(kFailOnWords), std::end(kFailOnWords));
const Choices<ColorChoice> kColors{
    {"auto", ColorChoice::kAuto}, {"always", ColorChoice::kAlways}, {"never", ColorChoice::kNever}};
const Choices<Severity> kSeverities{
    {"error", Severity::kError}, {"warning", Severity::kWarning}, {"note", Severity::kNote}};

std::optional<Severity> severityOf(const std::string& name) {
    for (const auto& [known, severity] : kSeverities) {
        if (known == name) {
            return severity;
        }
    }
    return std::nullopt;
}

std::vector<std::string> severityNames() {
    std::vector<std::string> names;
    for (const auto& [name, severity] : kSeverities) {
        names.push_back(name);
    }
    return names;
}

/// Reads "ID=LEVEL" into `target`; the sentence about what is wrong with it, if anything is.
std::optional<std::string> takeSeverity(const std::string& text,
                                        std::map<std::string, Severity>& target) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) {
        return "`" + text + "` has no level; write it as MP208=error";
    }
    const std::string id = text.substr(0, equals);
    if (!defaultSeverity(id)) {
        return unknownIdText(id);
    }
    const std::string level = text.substr(equals + 1);
    const std::optional<Severity> severity = severityOf(level);
    if (!severity) {
        return unknownValueText("level", level, severityNames());
    }
    target[id] = *severity;
    return std::nullopt;
}

void addFiles(CommandArguments& arguments, DiagnosticsOptions& target) {
    arguments
        .addText("--diagnostics-file", target.file,
                 "Write the findings to FILE, in the format of --diagnostics, instead of to "
                 "standard error",
                 "FILE")
        .group(kGroup);
    arguments
        .addText("--sarif", target.sarif, "Write the findings to FILE as SARIF 2.1.0, too", "FILE")
        .group(kGroup);
    arguments
        .addText("--junit", target.junit, "Write the findings to FILE as JUnit XML, too", "FILE")
        .group(kGroup);
}

void addFailOn(CommandArguments& arguments, DiagnosticsOptions& target) {
    arguments
        .addChoice("--fail-on", "level", target.failOn, kFailOn,
                   "From which severity on findings end the command with 3: error, warning or "
                   "never",
                   "LEVEL")
        .group(kGroup);
}

void addSeverities(CommandArguments& arguments, DiagnosticsOptions& target) {
    arguments
        .addList(
            "--severity",
            [&target](const std::string& text) { return takeSeverity(text, target.severities); },
            "Give findings of that id another severity, such as MP208=error: error, warning or "
            "note; may be given several times",
            "ID=LEVEL")
        .group(kGroup);
}

void addCounting(CommandArguments& arguments, DiagnosticsOptions& target) {
    addSeverities(arguments, target);
    arguments
        .addText("--baseline", target.baseline,
                 "Count only what is not among the findings in FILE, which an earlier run wrote "
                 "with --diagnostics json",
                 "FILE")
        .group(kGroup);
    arguments
        .addFlag("--all", target.showsAll,
                 "Show lines of the run that say nothing true of the publication, too; they never "
                 "count")
        .group(kGroup);
}

}  // namespace

void addTerminal(CommandArguments& arguments, DiagnosticsOptions& target) {
    arguments.addFlag("-q,--quiet", target.isQuiet, "Show nothing but findings").group(kTerminal);
    arguments
        .addChoice("--color", "choice", target.color, kColors,
                   "Colours: auto (on a terminal, unless NO_COLOR is set), always or never", "WHEN")
        .group(kTerminal);
    arguments
        .addFlag("--no-progress", target.hasNoProgress, "Show no line that says how far the run is")
        .group(kTerminal);
}

void addLanguage(CommandArguments& arguments, Language& target) {
    arguments
        .addChoice("--lang", "language", target, kLanguages,
                   "The language of findings: de, en, or auto (German where LC_ALL, LC_MESSAGES or "
                   "LANG say so, else English)",
                   "LANGUAGE")
        .group(kGroup);
}

void addDiagnosticsFormat(CommandArguments& arguments, DiagnosticsOptions& target) {
    arguments
        .addChoice("--diagnostics", "format", target.format, kFormats,
                   "How findings are shown: human (with the source line and a hint), short (a line "
                   "each), json (an object a line), or none (nobody looks for any)",
                   "FORMAT")
        .group(kGroup);
}

void addBatchDiagnostics(CommandArguments& arguments, DiagnosticsOptions& target) {
    addDiagnosticsFormat(arguments, target);
    addLanguage(arguments, target.language);
    addFailOn(arguments, target);
    addSeverities(arguments, target);
}

void addDiagnostics(CommandArguments& arguments, DiagnosticsOptions& target, FindingsCount count) {
    addDiagnosticsFormat(arguments, target);
    addFiles(arguments, target);
    addLanguage(arguments, target.language);
    if (count == FindingsCount::kForExitCode) {
        addFailOn(arguments, target);
    } else {
        target.failOn = FailOn::kNever;
    }
    addCounting(arguments, target);
    arguments
        .addFlag("-v,--verbose", target.isVerbose,
                 "Show a line for each step, also where standard error is no terminal")
        .group(kTerminal);
    addTerminal(arguments, target);
}

void addMeasures(CommandArguments& arguments, DiagnosticsOptions& target) {
    constexpr const char* kMeasures = "Measures";
    arguments
        .addText("--timings", target.timings,
                 "Write what took how long to FILE, as trace events that browsers and Perfetto "
                 "show",
                 "FILE")
        .group(kMeasures);
    arguments
        .addFlag("--stats", target.showsStatistics,
                 "Show counts, times and memory behind the findings")
        .group(kMeasures);
}

void addReport(CommandArguments& arguments, DiagnosticsOptions& target) {
    arguments
        .addText("--report", target.report,
                 "Write a page of HTML to FILE, too: the findings with their source lines, the map "
                 "as a tree, what the profile leaves out, keys, and who refers to whom",
                 "FILE")
        .group(kGroup);
}

std::optional<std::string> findDiagnosticsFault(const DiagnosticsOptions& options) {
    if (options.isVerbose && options.isQuiet) {
        return "--quiet: --verbose asks for the contrary";
    }
    if (options.showsStatistics && options.format == DiagnosticsFormat::kJson && !options.file) {
        return "--stats: standard error holds JSON; send it elsewhere with --diagnostics-file";
    }
    if (options.format != DiagnosticsFormat::kNone) {
        return std::nullopt;
    }
    const std::array needing{
        std::pair("--diagnostics-file", &options.file), std::pair("--sarif", &options.sarif),
        std::pair("--junit", &options.junit), std::pair("--baseline", &options.baseline),
        std::pair("--report", &options.report)};
    for (const auto& [name, file] : needing) {
        if (*file) {
            return std::string(name) + ": with --diagnostics none there are no findings";
        }
    }
    return std::nullopt;
}

std::string unknownIdText(const std::string& id) {
    const std::optional<std::string> nearest = nearestName(id, findingIds());
    return "unknown id `" + id + "`; " +
           (nearest ? "did you mean `" + *nearest + "`?" : "`marrowpress explain` lists all");
}

}  // namespace marrowpress
