#include "runs/written_composite.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include "marrowpress/output_names.h"

namespace marrowpress {
namespace {

/// Bytes of a file that are looked at: a component has all its conditions in front of its root.
constexpr std::size_t kStartSize = 262144;

std::string readStart(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string start(kStartSize, '\0');
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<std::size_t>(file.gcount()));
    return start;
}

bool isEmptyFile(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored) &&
           std::filesystem::file_size(path, ignored) == 0;
}

/// Takes `prefix` off the front of `rest`; false, with nothing taken, when it isn't there.
bool take(std::string_view& rest, std::string_view prefix) {
    if (!rest.starts_with(prefix)) {
        return false;
    }
    rest.remove_prefix(prefix.size());
    return true;
}

/// Takes everything up to the first `end`, and `end` itself; false when it isn't there.
bool takeThrough(std::string_view& rest, std::string_view end) {
    const std::size_t at = rest.find(end);
    if (at == std::string_view::npos) {
        return false;
    }
    rest.remove_prefix(at + end.size());
    return true;
}

bool takeDoctype(std::string_view& rest) {
    if (!take(rest, "<!DOCTYPE ") || !take(rest, kCompositeRootName) || !take(rest, " PUBLIC \"") ||
        !take(rest, kCompositePublicId) || !take(rest, "\"")) {
        return false;
    }
    if (take(rest, " \"") && !takeThrough(rest, "\"")) {
        return false;
    }
    return take(rest, ">");
}

/// Takes the conditions that a component has in front of its root.
bool takeConditions(std::string_view& rest) {
    while (take(rest, "<?Qs ")) {
        if (!takeThrough(rest, "?>")) {
            return false;
        }
    }
    return true;
}

/// Whether `text` begins with a random (version 4) UUID as the module writes it, and a quote.
bool startsWithUuid(std::string_view text) {
    constexpr std::string_view kShape = "xxxxxxxx-xxxx-4xxx-vxxx-xxxxxxxxxxxx\"";
    const auto fits = [](char shape, char character) {
        const bool isDigit = character >= '0' && character <= '9';
        if (shape == 'x') {
            return isDigit || (character >= 'a' && character <= 'f');
        }
        if (shape == 'v') {
            return std::string_view("89ab").find(character) != std::string_view::npos;
        }
        return character == shape;
    };
    return text.size() >= kShape.size() &&
           std::equal(kShape.begin(), kShape.end(), text.begin(), fits);
}

}  // namespace

bool isWrittenComposite(const std::filesystem::path& path) {
    if (isEmptyFile(path)) {
        return true;
    }
    const std::string start = readStart(path);
    std::string_view rest = start;
    if (take(rest, "<?xml ") && !takeThrough(rest, "?>")) {
        return false;
    }
    if (!takeDoctype(rest) || !takeConditions(rest)) {
        return false;
    }
    // Without any element: the profile has excluded even the root.
    if (rest.empty() || rest == "<dita/>") {
        return true;
    }
    return take(rest, R"(<dita><topic id="id)") && startsWithUuid(rest);
}

}  // namespace marrowpress
