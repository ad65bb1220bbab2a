#include "findings/github_writer.h"

#include <ostream>
#include <string>

#include "findings/finding_lines.h"
#include "findings/shown_path.h"
#include "host/utf8.h"

namespace marrowpress {
namespace {

constexpr std::string_view kEscapedInTexts = "%\r\n";
constexpr std::string_view kEscapedInProperties = "%\r\n:,";

/// `text` with the characters of `special` as the runner reads them back.
std::string escaped(std::string_view text, std::string_view special) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string result;
    for (const char character : toValidUtf8(text)) {
        if (special.find(character) == std::string_view::npos) {
            result += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        result += {'%', kDigits[byte / 16], kDigits[byte % 16]};
    }
    return result;
}

std::string_view commandOf(Severity severity) {
    return severity == Severity::kError     ? "error"
           : severity == Severity::kWarning ? "warning"
                                            : "notice";
}

std::string propertiesOf(const Finding& finding, std::string_view currentFolder) {
    std::string properties;
    const FindingPlace& place = finding.place;
    if (!place.file.empty()) {
        const std::string file = pathInside(place.file, currentFolder).value_or(place.file);
        properties += "file=" + escaped(file, kEscapedInProperties) + ',';
    }
    if (place.line > 0) {
        properties += "line=" + std::to_string(place.line) + ',';
    }
    if (place.column > 0) {
        properties += "col=" + std::to_string(place.column) + ',';
    }
    return properties + "title=" + escaped(finding.id, kEscapedInProperties);
}

}  // namespace

void writeGithub(std::ostream& out, const std::vector<Finding>& findings,
                 std::string_view currentFolder) {
    for (const Finding& finding : findings) {
        if (finding.isArtefact) {
            continue;
        }
        out << "::" << commandOf(finding.severity) << ' ' << propertiesOf(finding, currentFolder)
            << "::" << escaped(textWithHint(finding), kEscapedInTexts) << '\n';
    }
}

}  // namespace marrowpress
