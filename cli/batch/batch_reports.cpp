#include "cli/batch/batch_reports.h"

#include <boost/json/serialize.hpp>
#include <filesystem>
#include <functional>
#include <ostream>
#include <utility>

#include "cli/batch/batch_index_page.h"
#include "cli/file_replacement.h"
#include "findings/catalogue.h"
#include "findings/fold.h"
#include "findings/junit_writer.h"
#include "findings/sarif_writer.h"
#include "findings/translated_words.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Calls `take` with each result that is there, in the plan's order.
void forEachResult(const Plan& plan, const std::vector<std::size_t>& indexes,
                   const ResultFolder& results, const std::function<void(RunResult)>& take) {
    for (const std::size_t index : indexes) {
        if (std::optional<RunResult> result = results.find(plan.jobs[index].id)) {
            take(std::move(*result));
        }
    }
}

/// The results as they stand in their files.
void writeSummary(std::ostream& out, const Plan& plan, const std::vector<std::size_t>& indexes,
                  const ResultFolder& results, int exit) {
    out << "{\"exit\":" << exit << ",\"jobs\":[";
    const char* separator = "\n";
    forEachResult(plan, indexes, results, [&](const RunResult& result) {
        out << separator << results.textOf(result.id);
        separator = ",";
    });
    out << "]}\n";
}

void writeBatchSarif(std::ostream& out, const Plan& plan, const std::vector<std::size_t>& indexes,
                     const ResultFolder& results, int exit) {
    // A topic that several maps share has its faults in each: they are told once.
    FindingList all;
    forEachResult(plan, indexes, results, [&](RunResult result) {
        for (Finding& finding : result.findings) {
            finding.isPerFile = true;
            all.add(std::move(finding));
        }
    });
    const std::size_t dropped = all.dropped();
    const std::vector<Finding> findings = all.take();
    FindingSummary summary = summarize(findings);
    summary.dropped = dropped;
    summary.exit = exit;
    writeSarif(out, findings, summary,
               {MARROWPRESS_VERSION, fs::current_path().string(),
                [](std::string_view id) { return findingTitle(id); }});
}

void writeBatchJunit(std::ostream& out, const Plan& plan, const std::vector<std::size_t>& indexes,
                     const ResultFolder& results) {
    JunitSuites suites(out, {fs::current_path().string(), translatedWords()});
    for (const std::size_t index : indexes) {
        const Job& job = plan.jobs[index];
        if (const std::optional<RunResult> result = results.find(job.id)) {
            suites.add(job.id, job.options.map, result->findings, summaryOf(*result));
        } else {
            FindingSummary none;
            none.exit = kExitOfFailedRun;
            suites.add(job.id, job.options.map, {}, none);
        }
    }
    suites.end();
}

}  // namespace

void writeBatchReports(const BatchReports& reports, const Plan& plan,
                       const std::vector<std::size_t>& indexes, const ResultFolder& results,
                       int exit) {
    if (reports.summary) {
        replaceFile(*reports.summary,
                    [&](std::ostream& out) { writeSummary(out, plan, indexes, results, exit); });
    }
    if (reports.sarif) {
        replaceFile(*reports.sarif,
                    [&](std::ostream& out) { writeBatchSarif(out, plan, indexes, results, exit); });
    }
    if (reports.junit) {
        replaceFile(*reports.junit,
                    [&](std::ostream& out) { writeBatchJunit(out, plan, indexes, results); });
    }
    if (reports.pageFolder) {
        replaceFile(fs::path(*reports.pageFolder) / "index.html",
                    batchIndexPage(plan, indexes, results, *reports.pageFolder));
    }
}

}  // namespace marrowpress
