#include "cli/batch/batch_reports.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <set>
#include <system_error>
#include <utility>

#include "cli/batch/batch_index_page.h"
#include "cli/file_place.h"
#include "cli/file_replacement.h"
#include "cli/options.h"
#include "cli/report_files.h"
#include "findings/catalogue.h"
#include "findings/fold.h"
#include "findings/junit_writer.h"
#include "findings/sarif_writer.h"
#include "findings/translated_words.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// A file over all jobs.
class BatchReport {
public:
    BatchReport() = default;
    BatchReport(const BatchReport&) = delete;
    BatchReport& operator=(const BatchReport&) = delete;
    virtual ~BatchReport() = default;

    /// To be called for each job, in the plan's order.
    virtual void add(const Job& job, const std::optional<RunResult>& result) = 0;
    /// To be called behind the last one.
    virtual void end() = 0;
};

/// The results as they stand in their files.
class SummaryReport final : public BatchReport {
public:
    SummaryReport(std::ostream& out, const ResultFolder& results, int exit)
        : out_(out), results_(results) {
        out_ << "{\"exit\":" << exit << ",\"jobs\":[";
    }

    void add(const Job& job, const std::optional<RunResult>& result) override {
        const std::string text = result ? results_.textOf(job.id) : std::string();
        if (!text.empty()) {
            out_ << (isFirst_ ? "\n" : ",") << text;
            isFirst_ = false;
        }
    }

    void end() override { out_ << "]}\n"; }

private:
    std::ostream& out_;
    const ResultFolder& results_;
    bool isFirst_ = true;
};

class SarifReport final : public BatchReport {
public:
    SarifReport(std::ostream& out, int exit) : out_(out), exit_(exit) {}

    void add(const Job& /*job*/, const std::optional<RunResult>& result) override {
        if (!result) {
            return;
        }
        // A topic that several maps share has its faults in each: they are told once.
        for (Finding finding : result->findings) {
            finding.isPerFile = true;
            all_.add(std::move(finding));
        }
    }

    void end() override {
        const std::size_t dropped = all_.dropped();
        const std::vector<Finding> findings = all_.take();
        FindingSummary summary = summarize(findings);
        summary.dropped = dropped;
        summary.exit = exit_;
        writeSarif(out_, findings, summary,
                   {MARROWPRESS_VERSION, fs::current_path().string(),
                    [](std::string_view id) { return findingTitle(id); }});
    }

private:
    std::ostream& out_;
    int exit_;
    FindingList all_;
};

class JunitReport final : public BatchReport {
public:
    explicit JunitReport(std::ostream& out)
        : suites_(out, {fs::current_path().string(), translatedWords()}) {}

    void add(const Job& job, const std::optional<RunResult>& result) override {
        if (result) {
            suites_.add(job.id, job.options.map, result->findings, summaryOf(*result));
        } else {
            FindingSummary none;
            none.exit = kExitOfFailedRun;
            suites_.add(job.id, job.options.map, {}, none);
        }
    }

    void end() override { suites_.end(); }

private:
    JunitSuites suites_;
};

/// Makes the report that goes into a stream.
using MakeReport = std::function<std::unique_ptr<BatchReport>(std::ostream&)>;

struct ReportFile {
    std::string path;
    MakeReport make;
};

/// Opens the files, one within the other, and calls `fill` when all are open.
void writeTogether(const std::vector<ReportFile>& files, std::vector<BatchReport*>& opened,
                   const std::function<void()>& fill) {
    if (opened.size() == files.size()) {
        fill();
        return;
    }
    const ReportFile& file = files[opened.size()];
    replaceFile(file.path, [&](std::ostream& out) {
        const std::unique_ptr<BatchReport> report = file.make(out);
        opened.push_back(report.get());
        writeTogether(files, opened, fill);
    });
}

std::vector<ReportFile> filesOf(const BatchReports& reports, const ResultFolder& results,
                                int exit) {
    std::vector<ReportFile> files;
    if (reports.summary) {
        files.push_back({*reports.summary, [&results, exit](std::ostream& out) {
                             return std::make_unique<SummaryReport>(out, results, exit);
                         }});
    }
    if (reports.sarif) {
        files.push_back({*reports.sarif, [exit](std::ostream& out) {
                             return std::make_unique<SarifReport>(out, exit);
                         }});
    }
    if (reports.junit) {
        files.push_back(
            {*reports.junit, [](std::ostream& out) { return std::make_unique<JunitReport>(out); }});
    }
    return files;
}

std::vector<NamedPath> reportsOf(const BatchOptions& options) {
    std::vector<NamedPath> reports;
    const auto add = [&reports](const char* option, const std::optional<std::string>& file) {
        if (file) {
            reports.push_back(namedPath(option, *file));
        }
    };
    add("--summary", options.reports.summary);
    add("--sarif", options.reports.sarif);
    add("--junit", options.reports.junit);
    add("--depfile", options.depfile);
    if (options.action == BatchAction::kPlan && options.plan != kStandardOutput) {
        add("--plan", options.plan);
    }
    // Its folder is made when it is not there.
    std::error_code ignored;
    if (options.reports.pageFolder && fs::is_directory(*options.reports.pageFolder, ignored)) {
        add("--report", (fs::path(*options.reports.pageFolder) / kIndexPageName).string());
    }
    return reports;
}

/// The files of many jobs, without those that have a name of their own, and so are no report.
class FilesOfJobs {
public:
    explicit FilesOfJobs(const std::vector<NamedPath>& reports) {
        for (const NamedPath& report : reports) {
            names_.insert(report.path.filename());
            names_.insert(placeOf(report.path).filename());
        }
    }

    void add(std::vector<NamedPath>& files, const char* argument, const fs::path& path) {
        if (names_.contains(path.filename()) && known_.insert(path).second) {
            files.push_back(namedPath(argument, path.string()));
        }
    }

private:
    std::set<fs::path> names_;
    std::set<fs::path> known_;
};

/// The folder and those above it, as far as they are not there.
void addMissing(const fs::path& folder, std::set<fs::path>& folders) {
    std::error_code ignored;
    fs::path missing = folder.lexically_normal();
    while (!folders.contains(missing) && !fs::exists(missing, ignored)) {
        folders.insert(missing);
        missing = missing.parent_path();
    }
}

}  // namespace

std::optional<std::string> findBatchReportFault(const BatchOptions& options, const Plan& plan,
                                                const ResultFolder& results) {
    const std::vector<NamedPath> reports = reportsOf(options);
    const bool makesFolders =
        options.action != BatchAction::kPlan && options.action != BatchAction::kMerge;
    FilesOfJobs ofJobs(reports);
    RunFiles files;
    if (options.action == BatchAction::kMerge) {
        files.inputs.push_back(namedPath("--plan", options.plan));
    } else if (options.file != kStandardOutput) {
        files.inputs.push_back(namedPath("FILE", options.file));
    }
    if (plan.diagnostics.baseline) {
        files.inputs.push_back(namedPath("--baseline", *plan.diagnostics.baseline));
    }
    for (const Job& job : plan.jobs) {
        for (const std::string& source : job.sources) {
            ofJobs.add(files.inputs, "FILE", source);
        }
        ofJobs.add(files.inputs, "a map", job.options.map);
        for (const std::string& filter : job.options.filters) {
            ofJobs.add(files.inputs, "a filter", filter);
        }
        ofJobs.add(files.outputs, "an output", job.options.output);
        ofJobs.add(files.outputs, "a result", results.pathOf(job.id));
        if (makesFolders) {
            const fs::path output = fs::absolute(job.options.output);
            addMissing(isFlatBook(job.options) ? output : output.parent_path(), files.madeFolders);
        }
    }
    if (makesFolders) {
        addMissing(results.path(), files.madeFolders);
    }
    return findReportFault(reports, files);
}

void writeBatchReports(const BatchReports& reports, const Plan& plan,
                       const std::vector<std::size_t>& indexes, const ResultFolder& results,
                       int exit) {
    const std::vector<ReportFile> files = filesOf(reports, results, exit);
    std::vector<BatchReport*> opened;
    if (!files.empty()) {
        // To read the results takes longer than to write: once for all files.
        writeTogether(files, opened, [&] {
            for (const std::size_t index : indexes) {
                const Job& job = plan.jobs[index];
                const std::optional<RunResult> result = results.find(job.id);
                for (BatchReport* const report : opened) {
                    report->add(job, result);
                }
            }
            for (BatchReport* const report : opened) {
                report->end();
            }
        });
    }
    if (reports.pageFolder) {
        replaceFile(fs::path(*reports.pageFolder) / kIndexPageName,
                    batchIndexPage(plan, indexes, results, *reports.pageFolder));
    }
}

}  // namespace marrowpress
