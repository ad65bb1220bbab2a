#include "cli/page_findings.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <tuple>

#include "cli/html.h"
#include "cli/page_search.h"
#include "findings/catalogue.h"
#include "findings/characters.h"
#include "findings/finding_lines.h"
#include "findings/language.h"
#include "findings/severity.h"
#include "findings/shown_path.h"
#include "findings/source_excerpt.h"
#include "findings/source_lines.h"
#include "findings/translated_words.h"
#include "findings/wording.h"

namespace marrowpress {
namespace {

constexpr std::size_t kMostOfCause = 100;
constexpr std::size_t kMostPlaces = 20;
constexpr std::size_t kSourceWidth = 160;
/// Further lines than that begin closed.
constexpr std::size_t kMostOpenLines = 2;

struct Cause {
    std::string id;
    Severity severity = Severity::kNote;  ///< The worst.
    std::vector<const Finding*> findings;
};

std::vector<Cause> causesOf(const std::vector<Finding>& findings) {
    std::map<std::string, Cause> byId;
    for (const Finding& finding : findings) {
        Cause& cause = byId[finding.id];
        cause.id = finding.id;
        cause.severity = std::max(cause.severity, finding.severity);
        cause.findings.push_back(&finding);
    }
    std::vector<Cause> causes;
    for (auto& [id, cause] : byId) {
        std::stable_sort(cause.findings.begin(), cause.findings.end(),
                         [](const Finding* left, const Finding* right) {
                             return left->severity > right->severity;
                         });
        causes.push_back(std::move(cause));
    }
    std::stable_sort(causes.begin(), causes.end(), [](const Cause& left, const Cause& right) {
        return left.severity > right.severity;
    });
    return causes;
}

std::string severityMark(Severity severity) {
    return "<strong class=" + std::string(severityName(severity)) + ">" +
           htmlText(severityWord(severity)) + "</strong>";
}

/// Where the caret stands in the line above it.
std::size_t offsetOfCaret(const SourceExcerpt& excerpt) {
    std::size_t offset = 0;
    std::size_t below = 0;
    while (offset < excerpt.line.size() && below + 1 < excerpt.caret.size()) {
        const Character character = firstCharacter(std::string_view(excerpt.line).substr(offset));
        below += character.bytes == "\t" ? 1 : cellsOf(character.bytes);
        offset += character.bytes.size();
    }
    return offset;
}

/// How much of `text` is the start tag that it begins with, else its first character.
std::size_t markedSize(std::string_view text) {
    if (text.starts_with('<')) {
        const std::size_t end = text.find('>');
        return end == std::string_view::npos ? text.size() : end + 1;
    }
    return text.empty() ? 0 : firstCharacter(text).bytes.size();
}

/// The source line with what is at fault marked; empty when it cannot be read.
std::string source(const FindingPlace& place, SourceLines& lines) {
    const auto line = place.line == 0 ? std::nullopt : lines.line(place.file, place.line);
    if (!line) {
        return {};
    }
    const SourceExcerpt excerpt = excerptOf(*line, place.column, kSourceWidth);
    const std::string_view shown = excerpt.line;
    std::string html = "<pre><span>" + std::to_string(place.line) + "</span>";
    if (excerpt.caret.empty()) {
        return html + htmlOfShown(shown) + "</pre>";
    }
    const std::size_t begin = offsetOfCaret(excerpt);
    const std::size_t size = markedSize(shown.substr(begin));
    const std::size_t indent = std::min(shown.find_first_not_of(" \t"), begin);
    return html + htmlOfShown(shown.substr(indent, begin - indent)) + "<mark>" +
           htmlOfShown(shown.substr(begin, size)) + "</mark>" +
           htmlOfShown(shown.substr(begin + size)) + "</pre>";
}

/// The part of the page that shows findings.
class FindingsWriter {
public:
    explicit FindingsWriter(const PageFiles& files) : files_(files), words_(translatedWords()) {}

    std::string cause(const Cause& cause) {
        std::string html = "<section class=cause aria-labelledby=" + cause.id +
                           "><h3 id=" + cause.id + ">" + severityMark(cause.severity) + " " +
                           htmlText(findingTitle(cause.id)) + " <small>" + htmlText(cause.id) +
                           " · " + std::to_string(cause.findings.size()) + "</small></h3>\n" +
                           explanation(cause.id) + "<ol>\n";
        const std::size_t shown = std::min(cause.findings.size(), kMostOfCause);
        for (std::size_t index = 0; index < shown; ++index) {
            html += finding(*cause.findings[index]);
        }
        html += "</ol>\n";
        if (shown < cause.findings.size()) {
            html += "<p>" + htmlText(moreText(cause.findings.size() - shown, words_)) + "</p>\n";
        }
        return html + "</section>\n";
    }

private:
    static std::string explanation(const std::string& id) {
        const std::optional<Explanation> known = explanationOf(id);
        if (!known) {
            return {};
        }
        return "<details><summary>" + htmlText(translated("Was das heißt und was hilft")) +
               "</summary><p>" + htmlText(known->meaning) + "</p><p>" + htmlText(known->remedy) +
               "</p></details>\n";
    }

    std::string finding(const Finding& finding) {
        std::string html = "<li class=" + std::string(severityName(finding.severity)) + "><p>" +
                           htmlText(finding.text);
        if (finding.isArtefact) {
            html += " <em>" + htmlText(words_.artefact) + "</em>";
        }
        html += "</p>" + files_.linked(finding.place) + source(finding.place, lines_);
        if (!finding.hint.empty()) {
            html += "<p><b>" + htmlText(words_.hint) + ":</b> " + htmlText(finding.hint) + "</p>";
        }
        return html + further(finding) + "\n";
    }

    /// The way to the map, further places and profiles.
    std::string further(const Finding& finding) const {
        std::vector<std::string> lines;
        for (const FindingStep& step : finding.via) {
            lines.push_back(htmlText(words_.via) + " " +
                            (step.place.file.empty() ? "" : files_.linked(step.place) + " ") +
                            "<code>" + htmlText(step.what) + "</code>");
        }
        const std::size_t shown = std::min(finding.places.size(), kMostPlaces);
        for (std::size_t index = 0; index < shown; ++index) {
            lines.push_back(htmlText(words_.also) + " " + files_.linked(finding.places[index]));
        }
        if (shown < finding.places.size()) {
            lines.push_back(htmlText(moreText(finding.places.size() - shown, words_)));
        }
        return foldedList(lines);
    }

    static std::string foldedList(const std::vector<std::string>& lines) {
        if (lines.empty()) {
            return {};
        }
        std::string html = "<ul>";
        for (const std::string& line : lines) {
            html += "<li>" + line;
        }
        html += "</ul>";
        return lines.size() <= kMostOpenLines
                   ? html
                   : "<details><summary>" +
                         htmlText(translated("Weg zur Map und weitere Stellen")) + "</summary>" +
                         html + "</details>";
    }

    const PageFiles& files_;
    Words words_;
    SourceLines lines_;
};

std::vector<SearchChoice> choicesOf(const std::vector<Cause>& causes) {
    std::vector<SearchChoice> choices;
    for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kNote}) {
        const bool isThere = std::any_of(causes.begin(), causes.end(), [&](const Cause& cause) {
            return std::any_of(
                cause.findings.begin(), cause.findings.end(),
                [&](const Finding* finding) { return finding->severity == severity; });
        });
        if (isThere) {
            choices.emplace_back(severityName(severity), severityWord(severity));
        }
    }
    return choices;
}

}  // namespace

std::string findingsPart(const std::vector<Finding>& findings, const PageFiles& files) {
    std::string html =
        "<section id=findings aria-labelledby=findings-title>\n<h2 id=findings-title>" +
        htmlText(translated("Meldungen")) + "</h2>\n";
    if (findings.empty()) {
        return html + "<p>" + htmlText(translated("Es gibt keine Meldungen.")) +
               "</p>\n</section>\n";
    }
    const std::vector<Cause> causes = causesOf(findings);
    html += searchForm("findings", translated("Meldungen suchen"), choicesOf(causes));
    FindingsWriter writer(files);
    for (const Cause& cause : causes) {
        html += writer.cause(cause);
    }
    return html + "</section>\n";
}

}  // namespace marrowpress
