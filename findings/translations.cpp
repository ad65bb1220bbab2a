#include "findings/translations.h"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>

namespace marrowpress {
namespace {

/// A file of this machine's byte order begins with it.
constexpr std::uint32_t kMagic = 0x950412DE;
constexpr std::size_t kCountAt = 8;
constexpr std::size_t kTextsAt = 12;
constexpr std::size_t kTranslationsAt = 16;
constexpr std::size_t kEntrySize = 8;

/// The number at `at`; 0 behind the end.
std::uint32_t numberAt(std::string_view file, std::size_t at) {
    std::uint32_t number = 0;
    if (at <= file.size() && file.size() - at >= sizeof(number)) {
        std::memcpy(&number, file.data() + at, sizeof(number));
    }
    return number;
}

/// The text that the entry at `at` of a table tells of: its length, and where it stands.
std::string_view textOf(std::string_view file, std::size_t at) {
    const std::size_t start = numberAt(file, at + sizeof(std::uint32_t));
    return start <= file.size() ? file.substr(start, numberAt(file, at)) : std::string_view();
}

}  // namespace

Translations::Translations(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    const std::string file(std::istreambuf_iterator<char>(in), {});
    if (numberAt(file, 0) != kMagic) {
        return;
    }
    const std::size_t texts = numberAt(file, kTextsAt);
    const std::size_t translations = numberAt(file, kTranslationsAt);
    for (std::size_t index = 0; index < numberAt(file, kCountAt); ++index) {
        const std::string_view text = textOf(file, texts + index * kEntrySize);
        const std::string_view forms = textOf(file, translations + index * kEntrySize);
        // Both forms of a text stand in one, with a NUL between them.
        const std::size_t end = forms.find('\0');
        const std::string one(forms.substr(0, end));
        byText_.insert_or_assign(
            std::string(text.substr(0, text.find('\0'))),
            Forms{one, end == std::string_view::npos ? one : std::string(forms.substr(end + 1))});
    }
}

std::string Translations::find(std::string_view text, std::size_t count,
                               std::string_view many) const {
    const auto found = byText_.find(std::string(text));
    if (found == byText_.end()) {
        return std::string(count == 1 || many.empty() ? text : many);
    }
    return count == 1 ? found->second.one : found->second.many;
}

}  // namespace marrowpress
