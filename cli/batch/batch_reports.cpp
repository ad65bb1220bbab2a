#include "cli/batch/batch_reports.h"

#include <filesystem>
#include <functional>
#include <memory>
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

}  // namespace

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
        replaceFile(fs::path(*reports.pageFolder) / "index.html",
                    batchIndexPage(plan, indexes, results, *reports.pageFolder));
    }
}

}  // namespace marrowpress
