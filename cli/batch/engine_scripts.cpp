#include "cli/batch/engine_scripts.h"

#include <algorithm>
#include <boost/algorithm/string/replace.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>
#include <filesystem>
#include <string_view>

#include "cli/make_rule.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// More jobs than these no matrix of GitHub has.
constexpr std::size_t kLargestMatrix = 256;

/// As a path in a build statement of ninja.
std::string ninjaPath(std::string path) {
    for (const char* const character : {"$", " ", ":"}) {
        boost::replace_all(path, character, std::string("$") + character);
    }
    return path;
}

/// As part of a command that make or ninja hands to a shell.
std::string dollarsDoubled(std::string command) {
    boost::replace_all(command, "$", "$$");
    return command;
}

/// What no command can have: comments repeat it, and GNU parallel puts something in its place.
constexpr const char* kNotInCommands = "\r\n";
constexpr const char* kNotInParallel = "\r\n{";
/// What make takes for something else in a name, however it is escaped.
constexpr const char* kNotInMake = "\r\n%;=|";
/// What ends a name in a build statement of ninja, and in a depfile that it reads.
constexpr const char* kNotInNinja = "\r\n|";
constexpr const char* kNotInDepfile = "\r\n;|*?&'\"<>^`";

bool hasAny(const std::string& path, const char* characters) {
    return path.find_first_of(characters) != std::string::npos;
}

bool canMakeName(const std::string& path) {
    return !hasAny(path, kNotInMake) && !path.ends_with('&') && !path.ends_with('\\');
}

bool canEngineName(Engine engine, const std::string& path) {
    switch (engine) {
        case Engine::kMake:
            return canMakeName(path);
        case Engine::kNinja:
            return !hasAny(path, kNotInNinja);
        default:
            return true;
    }
}

std::string yamlText(const std::string& text) {
    // A text of JSON is one of YAML.
    return boost::json::serialize(boost::json::value(text));
}

std::string resultOf(const EngineScript& script, const Job& job) {
    return (fs::path(script.results) / (job.id + ".json")).string();
}

std::string runCommand(const EngineScript& script, const std::string& more) {
    return shellWord(script.program) + " batch run " + shellWord(script.planFile) + " --results " +
           shellWord(script.results) + " --diagnostics short " + more;
}

/// Goes where texts of results name files from.
std::string changeFolder(const EngineScript& script) {
    return "cd " + shellWord(script.folder) + " && ";
}

std::string jobCommand(const EngineScript& script, std::size_t index) {
    const std::string result = resultOf(script, script.plan.jobs[index]);
    // A job with findings has a result, too, but is to be made again: as if it were very old.
    return changeFolder(script) +
           runCommand(script, "--index " + std::to_string(index) + " --depfile " +
                                  shellWord(result + ".d")) +
           " || { code=$?; touch -c -t 197001020000 " + shellWord(result) + "; exit $code; }";
}

std::string mergeComment(const EngineScript& script) {
    return "# Then: " + shellWord(script.program) + " batch merge " + shellWord(script.results) +
           " --plan " + shellWord(script.planFile) + "\n";
}

/// Each behind a blank.
template <class Name>
std::string namesOf(const std::vector<std::string>& files, const Name& nameOf) {
    std::string names;
    for (const std::string& file : files) {
        names.append(" ").append(nameOf(file));
    }
    return names;
}

std::string ninjaText(const EngineScript& script) {
    std::string text =
        "# For ninja: ninja -k 0 -f FILE. A job runs again when a file that it has read "
        "changes.\n" +
        mergeComment(script) + "ninja_required_version = 1.8\n\nrule job\n  command = $call\n" +
        "  depfile = $out.d\n  description = $id\n\n";
    if (!script.planCommand.empty()) {
        text += "rule plan\n  command = " + dollarsDoubled(script.planCommand) +
                "\n  restat = 1\n  generator = 1\n\nbuild " + ninjaPath(script.planFile) +
                ": plan" + namesOf(script.planSources, ninjaPath) + "\n\n";
        // One that is gone is no error here: whoever makes the plan says what is wrong.
        for (const std::string& source : script.planSources) {
            text.append("build ").append(ninjaPath(source)).append(": phony\n");
        }
        text += "\n";
    }
    for (std::size_t index = 0; index < script.plan.jobs.size(); ++index) {
        const Job& job = script.plan.jobs[index];
        text.append("build ").append(ninjaPath(resultOf(script, job))).append(": job | ");
        text.append(ninjaPath(script.planFile)).append("\n  call = ");
        text.append(dollarsDoubled(jobCommand(script, index))).append("\n  id = ");
        text.append(dollarsDoubled(job.id)).append("\n");
    }
    return text;
}

/// One that is gone is no error then: whoever makes the plan says what is wrong.
std::string emptyRules(const std::vector<std::string>& files) {
    std::string rules;
    for (const std::string& file : files) {
        rules.append("\n").append(makeName(file)).append(":\n");
    }
    return rules;
}

/// A plan that comes out as it was keeps its time, so that no job runs again: a mark says when it
/// was made last. It is included, so that make begins anew behind it, and sees the plan as it is
/// then.
std::string makePlanText(const EngineScript& script) {
    const std::string mark = script.planFile + ".made";
    const std::string command = "\n\t" + dollarsDoubled(script.planCommand) + "\n";
    return makeName(script.planFile) + ":" + command + makeName(mark) + ":" +
           namesOf(script.planSources, makeName) + command + "\ttouch " +
           dollarsDoubled(shellWord(mark)) + emptyRules(script.planSources) + "\ninclude " +
           makeIncludeName(mark) + "\n\n";
}

std::string makeText(const EngineScript& script) {
    std::string text =
        "# For make: make --keep-going -f FILE. A job runs again when a file that it has read "
        "changes.\n" +
        mergeComment(script) + ".PHONY: all\nall:\n\n";
    const std::string plan = makeName(script.planFile);
    if (!script.planCommand.empty()) {
        text += makePlanText(script);
    }
    for (std::size_t index = 0; index < script.plan.jobs.size(); ++index) {
        const std::string result = makeName(resultOf(script, script.plan.jobs[index]));
        text.append("all: ").append(result).append("\n").append(result).append(": ");
        text.append(plan).append("\n\t").append(dollarsDoubled(jobCommand(script, index)));
        text.append("\n-include ");
        text.append(makeIncludeName(resultOf(script, script.plan.jobs[index]))).append(".d\n");
    }
    return text;
}

std::string lastIndex(const EngineScript& script) {
    return std::to_string(script.plan.jobs.size() - 1);
}

std::string parallelText(const EngineScript& script) {
    const std::string log = shellWord((fs::path(script.results) / "parallel.log").string());
    return "#!/bin/sh\n# For GNU parallel: sh FILE. Its exit status is the number of failed jobs, "
           "and the log has the\n# code of each; sh FILE --retry-failed runs only those again.\n" +
           mergeComment(script) + changeFolder(script) + "mkdir -p " + shellWord(script.results) +
           " || exit 1\nif [ \"$1\" = --retry-failed ]; then\n    exec parallel --retry-failed "
           "--joblog " +
           log + "\nfi\nseq 0 " + lastIndex(script) + " | exec parallel --joblog " + log +
           " --memfree 256M \"$@\" " + shellWord(runCommand(script, "--index {}")) + "\n";
}

std::string slurmText(const EngineScript& script) {
    return "#!/bin/sh\n#SBATCH --job-name=marrowpress\n#SBATCH --array=0-" + lastIndex(script) +
           "\n#SBATCH --requeue\n# For Slurm: sbatch FILE. Each task is a job of the plan.\n" +
           mergeComment(script) + changeFolder(script) + "exec " +
           runCommand(script, "--index env") + "\n";
}

/// As a word of a container's command, in which Kubernetes reads `$(NAME)` as a variable.
std::string containerWord(const std::string& word) {
    return yamlText(dollarsDoubled(word));
}

/// The folder that has all that the jobs read and write, as far as the plan tells. A volume's place
/// may have no colon, so it is the one above such a folder.
fs::path commonFolder(const EngineScript& script) {
    fs::path common = fs::path(script.planFile).parent_path();
    const auto include = [&common](const fs::path& path) {
        const auto [end, ignored] =
            std::mismatch(common.begin(), common.end(), path.begin(), path.end());
        fs::path shorter;
        for (auto part = common.begin(); part != end; ++part) {
            shorter /= *part;
        }
        common = shorter;
    };
    include(script.results);
    for (const Job& job : script.plan.jobs) {
        include(job.options.map);
        include(job.options.output);
        for (const std::string& filter : job.options.filters) {
            include(filter);
        }
    }
    while (common.string().find(':') != std::string::npos) {
        common = common.parent_path();
    }
    return common;
}

std::string kubernetesText(const EngineScript& script) {
    const std::string count = std::to_string(script.plan.jobs.size());
    const std::string folder = yamlText(commonFolder(script).string());
    std::string arguments;
    for (const std::string& argument :
         {std::string("marrowpress"), std::string("batch"), std::string("run"), script.planFile,
          std::string("--results"), script.results, std::string("--index"), std::string("env")}) {
        arguments += (arguments.empty() ? "" : ", ") + containerWord(argument);
    }
    return "# For Kubernetes: kubectl apply -f FILE. Each completion index is a job of the plan. "
           "Put\n"
           "# your image's name and your volume in the places of these.\n" +
           mergeComment(script) +
           "apiVersion: batch/v1\nkind: Job\nmetadata:\n  name: marrowpress\nspec:\n"
           "  completionMode: Indexed\n  completions: " +
           count + "\n  parallelism: 4\n  backoffLimitPerIndex: 0\n  maxFailedIndexes: " + count +
           "\n  template:\n    spec:\n      restartPolicy: Never\n      containers:\n"
           "        - name: marrowpress\n          image: marrowpress\n          command: [" +
           arguments + "]\n          workingDir: " + yamlText(script.folder) +
           "\n          volumeMounts:\n            - name: files\n"
           "              mountPath: " +
           folder +
           "\n      volumes:\n        - name: files\n          hostPath:\n            path: " +
           folder + "\n";
}

std::string githubText(const EngineScript& script) {
    const std::size_t parts = std::min(script.plan.jobs.size(), kLargestMatrix);
    std::string numbers;
    for (std::size_t part = 1; part <= parts; ++part) {
        numbers += (part == 1 ? "" : ", ") + std::to_string(part);
    }
    return "# For GitHub: a workflow whose matrix runs the plan part by part, on a machine that "
           "has the\n"
           "# plan and its files.\n" +
           mergeComment(script) +
           "name: marrowpress\non: workflow_dispatch\njobs:\n  publish:\n    runs-on: self-hosted\n"
           "    defaults:\n      run:\n        working-directory: " +
           yamlText(script.folder) +
           "\n"
           "    strategy:\n      fail-fast: false\n      matrix:\n        part: [" +
           numbers + "]\n    steps:\n      - run: " +
           yamlText(runCommand(script, "--shard ${{ matrix.part }}/" + std::to_string(parts))) +
           "\n";
}

}  // namespace

std::string engineScript(const EngineScript& script) {
    switch (script.engine) {
        case Engine::kNinja:
            return ninjaText(script);
        case Engine::kMake:
            return makeText(script);
        case Engine::kParallel:
            return parallelText(script);
        case Engine::kSlurm:
            return slurmText(script);
        case Engine::kKubernetes:
            return kubernetesText(script);
        case Engine::kGithub:
            break;
    }
    return githubText(script);
}

std::optional<std::string> findUnnameable(const EngineScript& script) {
    const char* const refused =
        script.engine == Engine::kParallel ? kNotInParallel : kNotInCommands;
    std::vector<std::string> named = script.planSources;
    named.push_back(script.planFile);
    for (const std::string& path : named) {
        if (hasAny(path, refused) || !canEngineName(script.engine, path)) {
            return path;
        }
    }
    for (const std::string& path : {script.program, script.results, script.folder}) {
        if (hasAny(path, refused)) {
            return path;
        }
    }
    for (const Job& job : script.plan.jobs) {
        const std::string result = resultOf(script, job);
        if (!canEngineName(script.engine, result) ||
            (script.engine == Engine::kNinja && hasAny(result, kNotInDepfile))) {
            return result;
        }
    }
    return std::nullopt;
}

std::string shellWord(const std::string& text) {
    constexpr std::string_view kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+./:=@%,";
    if (!text.empty() && text.find_first_not_of(kPlain) == std::string::npos) {
        return text;
    }
    return "'" + boost::replace_all_copy(text, "'", "'\\''") + "'";
}

}  // namespace marrowpress
