#include "cli/batch/plan_texts.h"

#include <optional>
#include <system_error>

#include "cli/batch/engine_scripts.h"
#include "cli/batch/job_lines.h"
#include "cli/batch/job_source.h"
#include "cli/batch/worker_arguments.h"
#include "cli/options.h"
#include "cli/text_table.h"
#include "findings/shown_path.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

const char* formatName(const Job& job) {
    return isFlatBook(job.options) ? "flatbook" : "composite";
}

/// The arguments by which `batch plan` makes the same plan again.
std::string planCommand(const BatchOptions& options, const Plan& plan, const std::string& program,
                        const std::string& planFile) {
    // Requests have paths that count from the folder in which this command is called.
    std::string command = "cd " + shellWord(fs::current_path().string()) + " && " +
                          shellWord(program) + " batch plan " +
                          shellWord(fs::absolute(options.file).string()) + " --plan " +
                          shellWord(planFile) + " --output " +
                          shellWord(fs::absolute(options.outputFolder.value_or(".")).string());
    const auto add = [&command](const char* option, const std::string& value) {
        command.append(" ").append(option).append(" ").append(shellWord(value));
    };
    for (const auto& [transtype, format] : options.formats) {
        add("--as", std::string(transtype).append("=").append(format));
    }
    for (const std::string& pattern : options.idPatterns) {
        add("--select", pattern);
    }
    for (const std::string& tag : options.tags) {
        add("--tag", tag);
    }
    for (const std::string& argument : planArguments(plan)) {
        command.append(" ").append(shellWord(argument));
    }
    return command;
}

}  // namespace

std::string jobTableText(const Plan& plan, const std::vector<std::size_t>& indexes) {
    const std::string folder = fs::current_path().string();
    TextTable table({"JOB", "FORMAT", "MAP", "FILTERS", "OUTPUT"});
    for (const std::size_t index : indexes) {
        const Job& job = plan.jobs[index];
        std::string filters;
        for (const std::string& filter : job.options.filters) {
            filters += (filters.empty() ? "" : ", ") + shownPath(filter, folder);
        }
        table.add({job.id, job.transtype.empty() ? formatName(job) : job.transtype,
                   shownPath(job.options.map, folder), filters,
                   shownPath(job.options.output, folder)});
    }
    return table.text();
}

std::string dryRunText(const Plan& plan, const std::vector<std::size_t>& indexes) {
    const std::string folder = fs::current_path().string();
    std::string text;
    for (const std::size_t index : indexes) {
        const Job& job = plan.jobs[index];
        text += jobLine(job);
        std::error_code ignored;
        const bool isReplaced =
            !plan.isCheck && !isFlatBook(job.options) && fs::exists(job.options.output, ignored);
        if (!plan.isCheck) {
            text += "  " + shownPath(job.options.output, folder) +
                    (isReplaced ? " (is replaced)\n" : "\n");
        }
    }
    return text;
}

std::string engineScriptText(const BatchOptions& options, const Plan& plan,
                             const fs::path& results) {
    const bool isPlanThere = isPlanFile(options.file);
    const bool makesPlan = options.engine == Engine::kNinja || options.engine == Engine::kMake;
    if (!isPlanThere && (!makesPlan || options.file == kStandardOutput)) {
        throw BatchFault("FILE: " + options.file +
                         " is no plan; `marrowpress batch plan` makes one");
    }
    const std::string program = fs::read_symlink("/proc/self/exe").string();
    const std::string file = fs::absolute(options.file).lexically_normal().string();
    EngineScript script{options.engine,   plan, program, file,
                        results.string(), {},   {},      fs::current_path().string()};
    if (!isPlanThere) {
        script.planFile = (results / "plan.jsonl").string();
        script.planCommand = "mkdir -p " + shellWord(script.results) + " && " +
                             planCommand(options, plan, program, script.planFile);
        script.planSources = plan.jobs.front().sources;
        if (script.planSources.empty()) {
            script.planSources = {file};
        }
    }
    if (const std::optional<std::string> path = findUnnameable(script)) {
        throw BatchFault("no script for this engine can name " + *path +
                         "; choose another folder of results, or another id");
    }
    return engineScript(script);
}

}  // namespace marrowpress
