#include "findings/catalogue.h"

#include <algorithm>
#include <array>

namespace marrowpress {
namespace {

struct Entry {
    const char* id;
    Severity severity;
};

constexpr std::array kEntries{
    Entry{"MP105", Severity::kError},   Entry{"MP106", Severity::kError},
    Entry{"MP107", Severity::kError},   Entry{"MP108", Severity::kError},
    Entry{"MP109", Severity::kError},   Entry{"MP110", Severity::kWarning},
    Entry{"MP111", Severity::kError},   Entry{"MP201", Severity::kWarning},
    Entry{"MP202", Severity::kWarning}, Entry{"MP203", Severity::kError},
    Entry{"MP204", Severity::kError},   Entry{"MP205", Severity::kError},
    Entry{"MP206", Severity::kError},   Entry{"MP207", Severity::kWarning},
    Entry{"MP208", Severity::kWarning}, Entry{"MP209", Severity::kWarning},
    Entry{"MP210", Severity::kWarning}, Entry{"MP211", Severity::kError},
    Entry{"MP212", Severity::kError},   Entry{"MP213", Severity::kError},
    Entry{"MP214", Severity::kWarning}, Entry{"MP215", Severity::kNote},
    Entry{"MP216", Severity::kWarning}, Entry{"MP217", Severity::kWarning},
    Entry{"MP218", Severity::kError},
};

}  // namespace

const std::vector<std::string>& findingIds() {
    static const std::vector<std::string> ids = [] {
        std::vector<std::string> all;
        for (const Entry& entry : kEntries) {
            all.emplace_back(entry.id);
        }
        return all;
    }();
    return ids;
}

std::optional<Severity> defaultSeverity(std::string_view id) {
    const auto* const found = std::find_if(kEntries.begin(), kEntries.end(),
                                           [id](const Entry& entry) { return entry.id == id; });
    return found == kEntries.end() ? std::nullopt : std::optional(found->severity);
}

}  // namespace marrowpress
