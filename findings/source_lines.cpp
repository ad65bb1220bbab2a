#include "findings/source_lines.h"

#include <filesystem>
#include <system_error>

#include "host/file_text.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostKeptBytes = 4'000'000;
constexpr std::size_t kLargestFile = 16'000'000;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The text of `file`, empty when there is none that could be shown.
std::string textOf(const std::string& file) {
    std::error_code error;
    // A pipe would never end.
    if (!fs::is_regular_file(file, error) || fs::file_size(file, error) > kLargestFile || error) {
        return {};
    }
    try {
        std::string text = readFile(file);
        // UTF-16, or no text at all.
        return text.find('\0') == std::string::npos ? text : std::string();
    } catch (const std::system_error&) {
        return {};
    }
}

/// Where each line of `text` starts, and one behind the last line.
std::vector<std::size_t> startsOf(std::string_view text) {
    std::vector<std::size_t> starts;
    for (std::size_t start = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
         start < text.size();) {
        starts.push_back(start);
        const std::size_t end = text.find_first_of("\r\n", start);
        if (end == std::string_view::npos) {
            break;
        }
        start = end + (text.substr(end, 2) == "\r\n" ? 2 : 1);
    }
    starts.push_back(text.size());
    return starts;
}

std::string_view withoutLineEnd(std::string_view line) {
    return line.substr(0, line.find_first_of("\r\n"));
}

}  // namespace

std::optional<std::string_view> SourceLines::line(const std::string& file, std::uint32_t number) {
    const Source& source = sourceOf(file);
    if (number == 0 || number >= source.starts.size()) {
        return std::nullopt;
    }
    const std::size_t start = source.starts[number - 1];
    const std::string_view text = source.text;
    return withoutLineEnd(text.substr(start, source.starts[number] - start));
}

const SourceLines::Source& SourceLines::sourceOf(const std::string& file) {
    if (const auto known = sources_.find(file); known != sources_.end()) {
        return known->second;
    }
    if (keptBytes_ > kMostKeptBytes) {
        sources_.clear();
        keptBytes_ = 0;
    }
    Source source{textOf(file), {}};
    source.starts = startsOf(source.text);
    keptBytes_ += source.text.size() + source.starts.size() * sizeof(std::size_t);
    return sources_.emplace(file, std::move(source)).first->second;
}

}  // namespace marrowpress
