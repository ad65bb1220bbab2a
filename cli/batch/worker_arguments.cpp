#include "cli/batch/worker_arguments.h"

#include <unistd.h>

#include <filesystem>

#include "findings/severity.h"

namespace marrowpress {

std::vector<std::string> planArguments(const Plan& plan) {
    const DiagnosticsOptions& diagnostics = plan.diagnostics;
    std::vector<std::string> arguments;
    const auto add = [&arguments](const char* option, const std::string& value) {
        arguments.insert(arguments.end(), {option, value});
    };
    for (const std::string& catalog : plan.catalogs) {
        add("--catalog", catalog);
    }
    add("--diagnostics", diagnostics.format == DiagnosticsFormat::kNone ? "none" : "human");
    add("--fail-on", wordOf(diagnostics.failOn));
    for (const auto& [id, severity] : diagnostics.severities) {
        add("--severity", id + "=" + std::string(severityName(severity)));
    }
    add("--lang", diagnostics.language == Language::kGerman ? "de" : "en");
    return arguments;
}

std::vector<std::string> workerArguments(const Plan& plan, const BatchSetting& setting,
                                         const Job& job, bool isInPlace) {
    std::vector<std::string> arguments{"job", "--batch", std::to_string(getpid())};
    if (plan.isCheck) {
        arguments.emplace_back("--check");
    }
    if (isInPlace) {
        arguments.emplace_back("--in-place");
    }
    for (const std::string& argument : planArguments(plan)) {
        arguments.push_back(argument);
    }
    if (setting.pageFolder) {
        arguments.emplace_back("--report");
        arguments.push_back(pageOf(setting, job.id));
    }
    return arguments;
}

std::string pageOf(const BatchSetting& setting, const std::string& id) {
    return setting.pageFolder
               ? (std::filesystem::path(*setting.pageFolder) / (id + ".html")).string()
               : std::string();
}

}  // namespace marrowpress
