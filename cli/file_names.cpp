#include "cli/file_names.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "cli/html.h"

namespace marrowpress {
namespace {

/// Where the last `count` parts of the path begin; 0 when it has not more.
std::size_t startOfLast(std::string_view path, std::size_t count) {
    std::size_t end = path.size();
    for (std::size_t part = 0; part < count; ++part) {
        const std::size_t slash = end == 0 ? std::string_view::npos : path.rfind('/', end - 1);
        if (slash == std::string_view::npos) {
            return 0;
        }
        end = slash;
    }
    return end + 1;
}

/// At level 0 the name without its ending, at each further one a part more of the path.
std::string candidate(std::string_view path, std::size_t level) {
    const std::string_view name = path.substr(startOfLast(path, std::max<std::size_t>(level, 1)));
    const std::size_t dot = name.rfind('.');
    const bool isCut = level == 0 && dot != std::string_view::npos && dot > 0;
    return htmlName(isCut ? name.substr(0, dot) : name);
}

std::size_t lastLevel(const std::vector<std::string>& paths) {
    std::size_t most = 1;
    for (const std::string& path : paths) {
        most = std::max(most, static_cast<std::size_t>(std::count(path.begin(), path.end(), '/')));
    }
    return most + 1;
}

}  // namespace

std::vector<std::string> shortNames(const std::vector<std::string>& paths) {
    std::vector<std::string> names(paths.size());
    std::unordered_set<std::string> taken;
    std::vector<std::size_t> pending(paths.size());
    for (std::size_t index = 0; index < pending.size(); ++index) {
        pending[index] = index;
    }
    const std::size_t last = lastLevel(paths);
    for (std::size_t level = 0; level <= last && !pending.empty(); ++level) {
        std::unordered_map<std::string, std::size_t> counts;
        for (const std::size_t index : pending) {
            names[index] = candidate(paths[index], level);
            ++counts[names[index]];
        }
        std::erase_if(pending, [&](std::size_t index) {
            return counts[names[index]] == 1 && taken.insert(names[index]).second;
        });
    }
    // Paths that differ in bytes that cannot be shown.
    for (const std::size_t index : pending) {
        std::size_t number = 2;
        const std::string name = names[index];
        while (!taken.insert(names[index]).second) {
            names[index] = name + "~" + std::to_string(number++);
        }
    }
    return names;
}

}  // namespace marrowpress
