#include "cli/make_rule.h"

#include <filesystem>
#include <string_view>
#include <system_error>

#include "findings/shown_path.h"

namespace marrowpress {
namespace {

bool canBeNamed(const std::string& name) {
    return name.find_first_of("\r\n;|") == std::string::npos;
}

/// A backslash counts as one, unless one of `special` follows.
std::string withBackslashes(const std::string& name, std::string_view special) {
    std::string text;
    std::size_t backslashes = 0;
    for (const char character : name) {
        if (special.find(character) != std::string_view::npos) {
            text.append(backslashes + 1, '\\');
        } else if (character == '$') {
            text += '$';
        }
        backslashes = character == '\\' ? backslashes + 1 : 0;
        text += character;
    }
    return text;
}

}  // namespace

std::string makeName(const std::string& name) {
    return withBackslashes(name, " \t#:");
}

std::string makeIncludeName(const std::string& name) {
    return withBackslashes(name, " \t#");
}

std::string makeRule(const std::string& target, const std::vector<std::string>& prerequisites) {
    std::string rule = makeName(target) + ":";
    std::string phonies;
    for (const std::string& prerequisite : prerequisites) {
        if (canBeNamed(prerequisite)) {
            rule += " \\\n  " + makeName(prerequisite);
            phonies += "\n" + makeName(prerequisite) + ":\n";
        }
    }
    return rule + "\n" + phonies;
}

std::vector<std::string> prerequisitesOf(const DependencyList& list,
                                         const std::string& currentFolder) {
    std::vector<std::string> names;
    for (const Dependency& file : list.files()) {
        std::error_code ignored;
        if (file.state != DependencyState::kAbsent &&
            std::filesystem::is_regular_file(file.file, ignored)) {
            names.push_back(pathInside(file.file, currentFolder).value_or(file.file));
        }
    }
    return names;
}

}  // namespace marrowpress
