#include "cli/findings_report.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "cli/findings_text.h"
#include "cli/run_display.h"
#include "findings/catalogue.h"
#include "findings/github_writer.h"
#include "findings/json_reader.h"
#include "findings/junit_writer.h"
#include "findings/sarif_writer.h"
#include "findings/translated_words.h"
#include "runs/unwritten_file.h"

namespace marrowpress {
namespace {

bool isOnGithub() {
    const char* const value = std::getenv("GITHUB_ACTIONS");
    return value && std::string_view(value) == "true";
}

bool fails(Severity severity, FailOn failOn) {
    switch (failOn) {
        case FailOn::kError:
            return severity == Severity::kError;
        case FailOn::kWarning:
            return severity != Severity::kNote;
        case FailOn::kNever:
            break;
    }
    return false;
}

/// Writes a file by `write`; the system's reason when that fails.
std::optional<std::string> writeFile(const std::string& path,
                                     const std::function<void(std::ostream&)>& write) {
    errno = 0;
    std::ofstream out(path, std::ios::binary);
    write(out);
    out.close();
    if (out) {
        return std::nullopt;
    }
    return errno == 0 ? std::string() : std::generic_category().message(errno);
}

}  // namespace

FindingsReport::FindingsReport(const DiagnosticsOptions& options, std::string map,
                               std::string currentFolder)
    : options_(options), map_(std::move(map)), currentFolder_(std::move(currentFolder)) {
    if (!options.baseline) {
        return;
    }
    std::ifstream in(*options.baseline, std::ios::binary);
    if (!in) {
        fault_ = "--baseline: cannot read " + *options.baseline;
        return;
    }
    baseline_ = std::make_unique<Baseline>(currentFolder_);
    try {
        readJson(in, [this](const Finding& finding) { baseline_->add(finding); });
    } catch (const std::runtime_error& failure) {
        fault_ = "--baseline: " + *options.baseline + ": " + failure.what();
    }
}

std::vector<NamedPath> FindingsReport::files() const {
    std::vector<NamedPath> named;
    const auto add = [&named](const char* argument, const std::optional<std::string>& path) {
        if (path) {
            named.push_back(namedPath(argument, *path));
        }
    };
    add("--diagnostics-file", options_.file);
    add("--sarif", options_.sarif);
    add("--junit", options_.junit);
    add("--timings", options_.timings);
    add("--report", options_.report);
    return named;
}

ExitCode FindingsReport::write(FindingList& list, std::size_t droppedFaults, std::size_t topics,
                               ExitCode runCode, std::ostream& err,
                               const FurtherWriting& further) const {
    // Nobody knows what faults the run itself could not keep: the worst is assumed.
    const std::optional<Severity> worstDropped =
        droppedFaults > 0 ? std::optional(Severity::kError) : list.worstDropped();
    const std::size_t dropped = list.dropped() + droppedFaults;
    std::vector<Finding> findings = list.take();
    if (!options_.showsAll) {
        std::erase_if(findings, [](const Finding& finding) { return finding.isArtefact; });
    }
    if (baseline_) {
        findings = baseline_->newOf(std::move(findings), currentFolder_).findings;
    }
    const auto summaryWith = [&](ExitCode code) {
        FindingSummary summary = summarize(findings);
        summary.topics = topics;
        summary.dropped = dropped;
        summary.seconds = std::chrono::duration<double>(Clock::now() - start_).count();
        summary.exit = static_cast<int>(code);
        return summary;
    };
    ExitCode code = codeOf(summarize(findings), worstDropped, runCode);
    for (Finding& unwritten : writeReports(findings, summaryWith(code), further.page)) {
        findings.push_back(std::move(unwritten));
        code = ExitCode::kRunFailed;
    }
    writeAnnotations(findings, err);
    if (!writeMain(findings, summaryWith(code), err)) {
        code = ExitCode::kRunFailed;
    }
    if (further.result) {
        further.result(findings, summaryWith(code));
    }
    return code;
}

ExitCode FindingsReport::codeOf(const FindingSummary& summary, std::optional<Severity> worstDropped,
                                ExitCode runCode) const {
    if (runCode != ExitCode::kSuccess) {
        return runCode;
    }
    const bool isAnyFailing =
        (summary.errors > 0 && fails(Severity::kError, options_.failOn)) ||
        (summary.warnings > 0 && fails(Severity::kWarning, options_.failOn)) ||
        (worstDropped && fails(*worstDropped, options_.failOn));
    return isAnyFailing ? ExitCode::kFindings : ExitCode::kSuccess;
}

bool FindingsReport::writeMain(const std::vector<Finding>& findings, const FindingSummary& summary,
                               std::ostream& err) const {
    if (options_.file) {
        const std::optional<std::string> failure =
            writeFile(*options_.file, [&](std::ostream& out) {
                writeFindings(out, findings, summary, options_, {/*isTerminal=*/false, {}});
            });
        if (failure) {
            err << "marrowpress: cannot write " << *options_.file << ": " << *failure << '\n';
        }
        return !failure;
    }
    writeFindings(err, findings, summary, options_, {/*isTerminal=*/true, {}});
    err << std::flush;
    return static_cast<bool>(err);
}

std::vector<Finding> FindingsReport::writeReports(const std::vector<Finding>& findings,
                                                  const FindingSummary& summary,
                                                  const FindingsWriting& writePage) const {
    std::vector<Finding> unwritten;
    const auto write = [&](const std::optional<std::string>& path,
                           const std::function<void(std::ostream&)>& writeReport) {
        if (!path) {
            return;
        }
        if (const std::optional<std::string> failure = writeFile(*path, writeReport)) {
            unwritten.push_back(unwrittenFinding(std::filesystem::absolute(*path).string(),
                                                 *failure, currentFolder_));
        }
    };
    write(options_.sarif, [&](std::ostream& out) {
        writeSarif(out, findings, summary,
                   {MARROWPRESS_VERSION, currentFolder_,
                    [](std::string_view id) { return findingTitle(id); }});
    });
    write(options_.junit, [&](std::ostream& out) {
        writeJunit(out, findings, summary, {map_, currentFolder_, translatedWords()});
    });
    if (writePage) {
        write(options_.report, [&](std::ostream& out) { writePage(out, findings, summary); });
    }
    return unwritten;
}

void FindingsReport::writeAnnotations(const std::vector<Finding>& findings,
                                      std::ostream& err) const {
    if (isOnGithub() && !isForTools(options_)) {
        writeGithub(err, findings, currentFolder_);
    }
}

}  // namespace marrowpress
