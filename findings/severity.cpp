#include "findings/severity.h"

namespace marrowpress {

std::string_view severityName(Severity severity) {
    switch (severity) {
        case Severity::kError:
            return "error";
        case Severity::kWarning:
            return "warning";
        case Severity::kNote:
            break;
    }
    return "note";
}

std::optional<Severity> severityOf(std::string_view name) {
    for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kNote}) {
        if (severityName(severity) == name) {
            return severity;
        }
    }
    return std::nullopt;
}

}  // namespace marrowpress
