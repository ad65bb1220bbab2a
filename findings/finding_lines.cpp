#include "findings/finding_lines.h"

#include <array>
#include <charconv>

#include "findings/characters.h"
#include "findings/shown_path.h"

namespace marrowpress {
namespace {

constexpr std::string_view kNobodysPlace = "marrowpress";
constexpr std::string_view kBold = "\x1B[1m";

const std::string& wordOf(Severity severity, const Words& words) {
    return severity == Severity::kError     ? words.error
           : severity == Severity::kWarning ? words.warning
                                            : words.note;
}

std::string painted(const std::string& text, std::string_view colour, bool isColoured) {
    return isColoured ? std::string(colour) + text + std::string(kColourEnd) : text;
}

}  // namespace

std::string placeText(const FindingPlace& place, std::string_view currentFolder) {
    if (place.file.empty()) {
        return std::string(kNobodysPlace);
    }
    std::string text = shownText(shownPath(place.file, currentFolder));
    for (const std::uint32_t number : {place.line, place.column}) {
        if (number == 0) {
            break;
        }
        text += ':' + std::to_string(number);
    }
    return text;
}

std::string findingLine(const Finding& finding, const LineOptions& options) {
    const Words& words = options.words;
    std::string line =
        painted(placeText(finding.place, options.currentFolder) + ':', kBold, options.isColoured);
    line += ' ';
    line += painted(wordOf(finding.severity, words) + ':', colourOf(finding.severity),
                    options.isColoured);
    line += ' ' + shownText(finding.text) + " [" + shownText(finding.id) + ']';
    if (finding.isArtefact) {
        line += " (" + words.artefact + ')';
    }
    return line;
}

std::string lastLines(const FindingSummary& summary, const Words& words) {
    std::string lines;
    if (summary.dropped > 0) {
        lines += moreText(summary.dropped, words) + '\n';
    }
    lines += counted(summary.errors, words.errors) + ", ";
    lines += counted(summary.warnings, words.warnings);
    if (summary.notes > 0) {
        lines += ", " + counted(summary.notes, words.notes);
    }
    if (summary.files > 0) {
        lines += ' ' + words.in + ' ' + counted(summary.files, words.files);
    }
    lines += "; " + counted(summary.topics, words.topics) + ", ";
    lines += fixedText(summary.seconds, 1) + " s\n";
    return lines;
}

std::string fixedText(double value, int decimals) {
    std::array<char, 64> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::fixed, decimals);
    return std::string(text.data(), end.ptr);
}

std::string textWithHint(const Finding& finding) {
    return finding.hint.empty() ? finding.text : finding.text + " (" + finding.hint + ')';
}

std::string_view colourOf(Severity severity) {
    switch (severity) {
        case Severity::kError:
            return "\x1B[1;31m";
        case Severity::kWarning:
            return "\x1B[1;35m";
        case Severity::kNote:
            break;
    }
    return "\x1B[1;36m";
}

}  // namespace marrowpress
