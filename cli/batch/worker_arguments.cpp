#include "cli/batch/worker_arguments.h"

#include <unistd.h>

#include <filesystem>

#include "findings/severity.h"

namespace marrowpress {
namespace {

const char* wordFor(FailOn failOn) {
    switch (failOn) {
        case FailOn::kError:
            return "error";
        case FailOn::kWarning:
            return "warning";
        case FailOn::kNever:
            break;
    }
    return "never";
}

}  // namespace

std::vector<std::string> workerArguments(const Plan& plan, const BatchSetting& setting,
                                         const Job& job, bool isInPlace) {
    const DiagnosticsOptions& diagnostics = plan.diagnostics;
    std::vector<std::string> arguments{"job", "--batch", std::to_string(getpid())};
    const auto add = [&arguments](const char* option, const std::string& value) {
        arguments.insert(arguments.end(), {option, value});
    };
    if (plan.isCheck) {
        arguments.emplace_back("--check");
    }
    if (isInPlace) {
        arguments.emplace_back("--in-place");
    }
    for (const std::string& catalog : plan.catalogs) {
        add("--catalog", catalog);
    }
    add("--diagnostics", diagnostics.format == DiagnosticsFormat::kNone ? "none" : "human");
    add("--fail-on", wordFor(diagnostics.failOn));
    for (const auto& [id, severity] : diagnostics.severities) {
        add("--severity", id + "=" + std::string(severityName(severity)));
    }
    add("--lang", diagnostics.language == Language::kGerman ? "de" : "en");
    if (setting.pageFolder) {
        add("--report", (std::filesystem::path(*setting.pageFolder) / (job.id + ".html")).string());
    }
    if (setting.depfile) {
        add("--depfile", *setting.depfile);
    }
    return arguments;
}

}  // namespace marrowpress
