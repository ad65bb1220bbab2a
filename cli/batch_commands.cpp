#include "cli/batch_commands.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "cli/diagnostics_arguments.h"
#include "cli/watch/watch_arguments.h"

namespace marrowpress {
namespace {

constexpr const char* kBatchExample =
    "  marrowpress batch project.xml --output out -j auto\n"
    "  marrowpress batch project.xml --output out --resume\n";

constexpr const char* kBatchCheckExample = "  marrowpress batch check project.xml\n";

constexpr const char* kPlanExample =
    "  marrowpress batch plan project.xml --output out --plan plan.jsonl\n"
    "  marrowpress batch run plan.jsonl --index 0\n"
    "  marrowpress batch merge marrowpress-results --plan plan.jsonl\n";

/// The whole number from `least` on that `text` is; empty for anything else.
std::optional<long> wholeNumber(const std::string& text, long least) {
    long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    return isNumber && number >= least ? std::optional(number) : std::nullopt;
}

/// What the parts of `batch` have in common.
class BatchPart : public Command {
protected:
    BatchPart(CLI::App& program, BatchAction action, const std::string& name,
              const std::string& description, const std::string& footer)
        : Command(program, name, description, footer) {
        options_.action = action;
        if (action != BatchAction::kPublish) {
            setGroup("Parts of batch");
        }
    }

    void addFile(const std::string& description) {
        arguments().addText("FILE", options_.file, description, "FILE").required();
    }

    void addJobFile() {
        addFile(
            "A DITA-OT project file (XML or JSON), or JSON Lines of {\"id\", \"request\", "
            "\"tags\"}; - is standard input");
    }

    /// What decides what the jobs are.
    void addJobs() {
        addJobFile();
        arguments().addText("-o,--output", options_.outputFolder,
                            "The folder from which the outputs of a project file count; else the "
                            "current one",
                            "DIR");
        arguments().addList(
            "--as", [this](const std::string& value) { return takeFormat(value); },
            "Publish deliverables of another transtype, too, as composite or flatbook: "
            "html5=composite; may be given several times",
            "TYPE=FORMAT");
        addSelection();
    }

    void addSelection() {
        arguments().addList("--select", options_.idPatterns,
                            "Take only jobs whose id matches GLOB; may be given several times",
                            "GLOB");
        arguments().addList("--tag", options_.tags,
                            "Take only jobs with this tag; may be given several times", "TAG");
    }

    /// What decides what the jobs' results are, besides files.
    void addResultOptions() {
        arguments().addList("--catalog", options_.catalogs,
                            "An OASIS XML catalog that says where DTDs stand, as for publish",
                            "FILE");
        addBatchDiagnostics(arguments(), options_.diagnostics);
        if (options_.action != BatchAction::kPlan && options_.action != BatchAction::kEmit) {
            addTerminal(arguments(), options_.diagnostics);
        }
    }

    void addResults() {
        arguments().addText("--results", options_.results,
                            "The folder of the results, a file ID.json for each job", "DIR");
    }

    void addReports() {
        arguments().addText("--summary", options_.reports.summary,
                            "Write one JSON object with all results to FILE", "FILE");
        arguments().addText("--sarif", options_.reports.sarif,
                            "Write all findings to FILE as SARIF", "FILE");
        arguments().addText("--junit", options_.reports.junit,
                            "Write all findings to FILE as JUnit, a suite for each job", "FILE");
        addPages();
    }

    void addPages() {
        arguments().addText("--report", options_.reports.pageFolder,
                            "Write a page for each job to DIR, and index.html over them", "DIR");
    }

    /// How jobs are run.
    void addRunning() {
        addResults();
        arguments().addList(
            "-j,--jobs", [this](const std::string& value) { return takeWidth(value); },
            "How many jobs run at one time; auto for as many as cores and memory allow, which is "
            "what happens without it",
            "N");
        arguments().addList(
            "--timeout", [this](const std::string& value) { return takeLongest(value); },
            "End a job that takes longer", "SECONDS");
        arguments().addFlag("--nice", options_.isNice, "Give way to other programs");
    }

    /// How a batch goes on after another one.
    void addRepeating() {
        arguments().addFlag("--keep-going", keepsGoing_,
                            "Run the other jobs when one has failed, which happens anyway");
        arguments().addFlag("--fail-fast", options_.failsFast,
                            "Start no more jobs when one has failed; findings are no failure");
        arguments().addFlag("--resume", options_.resumes,
                            "Pass over each job whose last result is up to date, failed or not");
        arguments().addFlag("--retry-failed", options_.retriesFailed,
                            "As --resume, but run failed jobs again");
        arguments().addFlag("--dry-run", options_.isDryRun,
                            "Only show the requests, the outputs, and which of them would be "
                            "replaced");
    }

    BatchOptions options_;

private:
    Options finish() override {
        if (keepsGoing_ && options_.failsFast) {
            return wrongUsage("--keep-going, --fail-fast: only one of them can be");
        }
        if (options_.action == BatchAction::kWatch && options_.file == kStandardOutput) {
            return wrongUsage("FILE: standard input (-) cannot be watched");
        }
        if (!options_.index.empty() && !options_.shard.empty()) {
            return wrongUsage("--index, --shard: only one of them can be");
        }
        return options_;
    }

    std::optional<std::string> takeFormat(const std::string& value) {
        const std::size_t equals = value.find('=');
        const std::string format = equals == std::string::npos ? "" : value.substr(equals + 1);
        if (equals == 0 || (format != "composite" && format != "flatbook")) {
            return "this is to be TYPE=composite or TYPE=flatbook: " + value;
        }
        options_.formats[value.substr(0, equals)] = format;
        return std::nullopt;
    }

    std::optional<std::string> takeWidth(const std::string& value) {
        const std::optional<long> number = wholeNumber(value, 1);
        if (!number && value != "auto") {
            return "neither a number from 1 on nor auto: " + value;
        }
        options_.width = static_cast<std::size_t>(number.value_or(0));
        return std::nullopt;
    }

    std::optional<std::string> takeLongest(const std::string& value) {
        const std::optional<long> number = wholeNumber(value, 1);
        if (!number) {
            return "no number of seconds from 1 on: " + value;
        }
        options_.longest = std::chrono::seconds(*number);
        return std::nullopt;
    }

    bool keepsGoing_ = false;
};

class BatchPublishCommand final : public BatchPart {
public:
    explicit BatchPublishCommand(CLI::App& program)
        : BatchPart(program, BatchAction::kPublish, "batch",
                    "Publish many deliverables, each in a process of its own",
                    footerText(kBatchExample,
                               "The table of the jobs goes to standard output; what goes on, and "
                               "findings, go to standard error.")) {
        addJobs();
        addRunning();
        addRepeating();
        arguments().addFlag("--serialize", options_.serializes,
                            "Allow a job to read what another one writes, and run it afterwards");
        addResultOptions();
        addReports();
    }
};

class BatchCheckCommand final : public BatchPart {
public:
    explicit BatchCheckCommand(CLI::App& program)
        : BatchPart(program, BatchAction::kCheck, "batch-check",
                    "Look for what is wrong with many deliverables, of any transtype",
                    footerText(kBatchCheckExample, "No output is written.")) {
        addJobs();
        addRunning();
        addRepeating();
        addResultOptions();
        addReports();
    }
};

class BatchListCommand final : public BatchPart {
public:
    explicit BatchListCommand(CLI::App& program)
        : BatchPart(program, BatchAction::kList, "batch-list", "Show the jobs of a file",
                    footerText("  marrowpress batch list project.xml\n", "")) {
        addJobs();
    }
};

class BatchPlanCommand final : public BatchPart {
public:
    explicit BatchPlanCommand(CLI::App& program)
        : BatchPart(program, BatchAction::kPlan, "batch-plan",
                    "Write down the jobs of a file, for other engines to run",
                    footerText(kPlanExample,
                               "A plan holds all that its jobs need to be told, with absolute "
                               "paths.")) {
        addJobs();
        arguments()
            .addText("--plan", options_.plan, "The plan's file; - is standard output", "FILE")
            .required();
        arguments().addFlag("--check", options_.isPlanForCheck,
                            "Plan to check the deliverables, of any transtype, and not to publish "
                            "them");
        addResultOptions();
    }
};

class BatchRunCommand final : public BatchPart {
public:
    explicit BatchRunCommand(CLI::App& program)
        : BatchPart(program, BatchAction::kRun, "batch-run", "Run jobs of a plan",
                    footerText(kPlanExample, "")) {
        addFile("The plan");
        arguments().addText("--index", options_.index,
                            "Run this job only: its number from 0 on, or env for what an engine's "
                            "variable says (SLURM_ARRAY_TASK_ID, JOB_COMPLETION_INDEX, "
                            "PARALLEL_SEQ, CI_NODE_INDEX)",
                            "N");
        arguments().addText("--shard", options_.shard, "Run part I of N, with I from 1 to N",
                            "I/N");
        addSelection();
        addRunning();
        addRepeating();
        addPages();
        arguments().addText("--depfile", options_.depfile,
                            "With --index: write a rule for make and ninja to FILE: the job's "
                            "result, and the files that it depends on",
                            "FILE");
        addDiagnosticsFormat(arguments(), options_.diagnostics);
        addTerminal(arguments(), options_.diagnostics);
    }
};

class BatchMergeCommand final : public BatchPart {
public:
    explicit BatchMergeCommand(CLI::App& program)
        : BatchPart(program, BatchAction::kMerge, "batch-merge",
                    "Put the results of a plan's jobs together, whoever ran them",
                    footerText(kPlanExample, "A job without a result counts as failed.")) {
        arguments().addText("DIR", options_.file, "The folder of the results", "DIR").required();
        arguments()
            .addText("--plan", options_.plan, "The plan that the results are of", "FILE")
            .required();
        arguments().addFlag("--serialize", options_.serializes,
                            "A job may have read what another one writes, since it ran afterwards");
        addReports();
    }
};

class BatchEmitCommand final : public BatchPart {
public:
    explicit BatchEmitCommand(CLI::App& program)
        : BatchPart(
              program, BatchAction::kEmit, "batch-emit",
              "Show a script by which another engine runs the jobs of a plan",
              footerText("  marrowpress batch emit ninja project.xml --output out >build.ninja\n"
                         "  marrowpress batch emit slurm plan.jsonl >night.sh\n",
                         "Only ninja and make make the plan themselves; for the others FILE "
                         "is one.")) {
        const Choices<Engine> engines{
            {"ninja", Engine::kNinja},           {"make", Engine::kMake},
            {"parallel", Engine::kParallel},     {"slurm", Engine::kSlurm},
            {"kubernetes", Engine::kKubernetes}, {"github", Engine::kGithub}};
        arguments()
            .addChoice("ENGINE", "engine", options_.engine, engines,
                       "ninja, make, parallel (GNU parallel), slurm (a job array), kubernetes (an "
                       "Indexed Job) or github (a workflow with a matrix)",
                       "ENGINE")
            .required();
        addJobs();
        addResults();
        addResultOptions();
    }
};

class BatchWatchCommand final : public BatchPart {
public:
    explicit BatchWatchCommand(CLI::App& program)
        : BatchPart(program, BatchAction::kWatch, "batch-watch",
                    "Publish many deliverables, and again those whose sources change",
                    footerText("  marrowpress batch watch project.xml --output out\n",
                               "Jobs whose last results are up to date are not run. Ctrl-C ends "
                               "the watch.")) {
        addJobs();
        addRunning();
        addPolling(arguments(), options_.polls);
        addResultOptions();
        addReports();
    }
};

class WorkerCommand final : public Command {
public:
    explicit WorkerCommand(CLI::App& program)
        : Command(program, "job", "Run one job of a batch", "") {
        setGroup("");
        arguments().addList(
            "--batch", [this](const std::string& value) { return takeBatch(value); },
            "The process of the batch", "PID");
        arguments().addFlag("--check", options_.isCheck, "Check, and do not publish");
        arguments().addFlag("--in-place", options_.isInPlace,
                            "Make a composite where it is to stand");
        arguments().addList("--catalog", options_.catalogs, "As for publish", "FILE");
        addDiagnostics(arguments(), options_.diagnostics);
        addReport(arguments(), options_.diagnostics);
    }

private:
    Options finish() override { return options_; }

    std::optional<std::string> takeBatch(const std::string& value) {
        options_.batch = static_cast<int>(wholeNumber(value, 1).value_or(0));
        return options_.batch == 0 ? std::optional("no process: " + value) : std::nullopt;
    }

    WorkerOptions options_;
};

}  // namespace

void addBatchCommands(CLI::App& program, std::vector<std::unique_ptr<Command>>& commands) {
    commands.push_back(std::make_unique<BatchPublishCommand>(program));
    commands.push_back(std::make_unique<BatchCheckCommand>(program));
    commands.push_back(std::make_unique<BatchListCommand>(program));
    commands.push_back(std::make_unique<BatchPlanCommand>(program));
    commands.push_back(std::make_unique<BatchRunCommand>(program));
    commands.push_back(std::make_unique<BatchMergeCommand>(program));
    commands.push_back(std::make_unique<BatchEmitCommand>(program));
    commands.push_back(std::make_unique<BatchWatchCommand>(program));
    commands.push_back(std::make_unique<WorkerCommand>(program));
}

std::vector<std::string> withJoinedName(std::vector<std::string> arguments) {
    constexpr std::string_view kParts[] = {"check", "list", "plan", "run",
                                           "merge", "emit", "watch"};
    // "batch help" and "help batch check" are asked alike.
    const std::size_t at = !arguments.empty() && arguments.front() == "help" ? 1 : 0;
    if (arguments.size() > at + 1 && arguments[at] == "batch" &&
        std::find(std::begin(kParts), std::end(kParts), arguments[at + 1]) != std::end(kParts)) {
        arguments[at] += "-" + arguments[at + 1];
        arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(at) + 1);
    }
    return arguments;
}

}  // namespace marrowpress
