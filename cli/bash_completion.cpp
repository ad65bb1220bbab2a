#include "cli/bash_completion.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <string_view>

#include "cli/options.h"

namespace marrowpress {
namespace {

/// How the values of an option are found where they are no fixed words.
struct Search {
    std::string_view option;
    std::string_view call;  ///< Of a function in the script.
};

constexpr Search kSearches[] = {
    {"--filter", "_marrowpress_files ditaval"},
    {"--each-filter", "_marrowpress_files ditaval"},
    {"--catalog", "_marrowpress_files xml"},
    {"--explain", "_marrowpress_keys"},
};

constexpr std::string_view kAnyFile = "_marrowpress_files";

/// In the script, `word` is what is being completed.
constexpr std::string_view kFunctions = R"bash(# Completion of marrowpress for bash.

# Folders, and files with this ending, or all files.
_marrowpress_files() {
    local -a found
    mapfile -t found < <(compgen -d -- "$word"; compgen -f -X "${1:+!*.$1}" -- "$word")
    COMPREPLY=("${found[@]}")
    compopt -o filenames 2>/dev/null
}

_marrowpress_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$word")
}

# The keys of the map that the command line names.
_marrowpress_keys() {
    local argument map
    for argument in "${COMP_WORDS[@]}"; do
        [[ $argument == *.ditamap ]] && map=$argument
    done
    [[ $map ]] || return
    map=${map//[\"\'\\]/}
    _marrowpress_words "$("${COMP_WORDS[0]/#\~/$HOME}" completion bash --keys-of "${map/#\~/$HOME}" 2>/dev/null)"
}

_marrowpress() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    # "--format=flatbook" comes in three parts.
    if [[ $word == = ]]; then
        word=
    elif [[ $previous == = ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
)bash";

constexpr std::string_view kEnd = R"bash(}

complete -F _marrowpress marrowpress
)bash";

/// All names of an option, with their dashes.
std::vector<std::string> spellingsOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) {
        names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    return names;
}

std::string wordsCall(const std::vector<std::string>& words) {
    return "_marrowpress_words '" + boost::algorithm::join(words, " ") + "'";
}

bool takesValue(const CLI::Option& option) {
    return option.get_items_expected_max() > 0;
}

/// The call that completes the value of an option.
std::string valueCall(const Command& command, const CLI::Option& option) {
    const std::vector<std::string> choices = command.choicesOf(option);
    if (!choices.empty()) {
        return wordsCall(choices);
    }
    const auto* const search = std::find_if(
        std::begin(kSearches), std::end(kSearches),
        [&option](const Search& known) { return option.check_name(std::string(known.option)); });
    return std::string(search == std::end(kSearches) ? kAnyFile : search->call);
}

/// The call for arguments without a name; empty when there are none.
std::string argumentCall(const Command& command) {
    for (const CLI::Option* const option : command.app().get_options()) {
        if (!option->get_positional()) {
            continue;
        }
        const std::vector<std::string> choices = command.choicesOf(*option);
        if (!choices.empty()) {
            return wordsCall(choices);
        }
        return option->get_name() == "MAP" ? "_marrowpress_files ditamap" : std::string(kAnyFile);
    }
    return {};
}

std::string caseLine(const std::string& pattern, const std::string& call) {
    return "        " + pattern + ") " + call + "; return ;;\n";
}

/// What completes the words behind the name of `command`.
std::string commandPart(const Command& command) {
    std::vector<std::string> options;
    std::string cases;
    for (const CLI::Option* const option : command.app().get_options()) {
        const std::vector<std::string> names = spellingsOf(*option);
        options.insert(options.end(), names.begin(), names.end());
        if (!names.empty() && takesValue(*option)) {
            cases += caseLine(boost::algorithm::join(names, "|"), valueCall(command, *option));
        }
    }
    std::string part = "    " + command.name() + ")\n";
    if (!cases.empty()) {
        part += "        case $previous in\n" + cases + "        esac\n";
    }
    part += "        [[ $word == -* ]] && { " + wordsCall(options) + "; return; }\n";
    const std::string call = argumentCall(command);
    return part + (call.empty() ? "" : "        " + call + "\n") + "        ;;\n";
}

}  // namespace

std::string bashCompletion(const std::vector<std::unique_ptr<Command>>& commands) {
    std::vector<std::string> names;
    std::vector<std::string> partNames;
    std::string cases;
    for (const std::unique_ptr<Command>& command : commands) {
        if (command->isHidden()) {
            continue;
        }
        if (command->isPart()) {
            partNames.push_back(command->name().substr(command->name().find('-') + 1));
        } else {
            names.push_back(command->name());
        }
        cases += commandPart(*command);
    }
    std::string script(kFunctions);
    script += "    if ((COMP_CWORD == 1)); then\n        " + wordsCall(names) +
              "\n        return\n    fi\n    local command=${COMP_WORDS[1]}\n"
              "    if [[ $command == batch ]]; then\n"
              "        case ${COMP_WORDS[2]} in\n        " +
              boost::algorithm::join(partNames, "|") +
              ")\n            ((COMP_CWORD > 2)) && command+=-${COMP_WORDS[2]} ;;\n"
              "        esac\n    fi\n    case $command in\n" +
              cases + "    esac\n";
    // What a file of jobs may be is open; the parts are words.
    script +=
        "    if [[ $command == batch ]] && ((COMP_CWORD == 2)) && [[ $word != -* ]]; then\n"
        "        mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -W '" +
        boost::algorithm::join(partNames, " ") + "' -- \"$word\")\n    fi\n";
    return script.append(kEnd);
}

}  // namespace marrowpress
