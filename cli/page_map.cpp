#include "cli/page_map.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "cli/document_titles.h"
#include "cli/html.h"
#include "cli/page_search.h"
#include "findings/finding_lines.h"
#include "findings/language.h"
#include "findings/shown_path.h"
#include "findings/wording.h"

namespace marrowpress {
namespace {

constexpr std::size_t kMostExclusions = 1000;
/// A tree of more lines begins closed.
constexpr std::size_t kMostOpenEntries = 400;

/// The class of a line that is not just a part of the publication.
const char* classOf(OutlineState state) {
    switch (state) {
        case OutlineState::kExcluded:
            return "excluded";
        case OutlineState::kResource:
            return "resource";
        case OutlineState::kNotPrinted:
            return "unprinted";
        case OutlineState::kMissing:
            return "missing";
        case OutlineState::kNotTaken:
            return "other";
        case OutlineState::kMap:
            return "map";
        default:
            return "";
    }
}

std::string wordOf(OutlineState state) {
    switch (state) {
        case OutlineState::kExcluded:
            return translated("ausgeschlossen");
        case OutlineState::kResource:
            return translated("nur Quelle für Schlüssel und Inhalte");
        case OutlineState::kNotPrinted:
            return translated("nicht im Druck");
        case OutlineState::kMissing:
            return translated("fehlt oder ist nicht lesbar");
        case OutlineState::kNotTaken:
            return translated("kein Thema dieser Veröffentlichung");
        case OutlineState::kMap:
            return translated("Map");
        default:
            return {};
    }
}

/// audience="expert"
std::string ruleText(const ExcludedElement& element) {
    if (element.attribute.empty()) {
        return {};
    }
    return element.value.empty() ? element.attribute
                                 : element.attribute + "=\"" + element.value + "\"";
}

/// The tree, line by line.
class TreeWriter {
public:
    TreeWriter(const MapOutline& outline, const PageFiles& files)
        : entries_(outline.entries()), files_(files), isOpen_(entries_.size() <= kMostOpenEntries) {
        countBelow();
    }

    std::string text() {
        std::string html;
        std::vector<std::size_t> open;
        for (std::size_t index = 0; index < entries_.size(); ++index) {
            while (!open.empty() && open.back() >= entries_[index].depth) {
                html += "</ul></details>";
                open.pop_back();
            }
            html += "\n" + line(entries_[index]);
            if (below_[index] > 0) {
                html += branch(entries_[index], below_[index]);
                open.push_back(entries_[index].depth);
            }
        }
        for (std::size_t level = 0; level < open.size(); ++level) {
            html += "</ul></details>";
        }
        return "<ul class=tree>" + html + "\n</ul>\n";
    }

private:
    void countBelow() {
        below_.assign(entries_.size(), 0);
        std::vector<std::size_t> above;
        for (std::size_t index = 0; index < entries_.size(); ++index) {
            while (!above.empty() && entries_[above.back()].depth >= entries_[index].depth) {
                above.pop_back();
            }
            for (const std::size_t entry : above) {
                ++below_[entry];
            }
            above.push_back(index);
        }
    }

    std::string branch(const OutlineEntry& entry, std::size_t below) const {
        const bool isOpen = isOpen_ || entry.depth == 0;
        return std::string(isOpen ? "<details open>" : "<details>") + "<summary>" +
               htmlText(translatedCount("{0} Eintrag darunter", "{0} Einträge darunter", below)) +
               "</summary><ul>";
    }

    std::string line(const OutlineEntry& entry) const {
        const std::string name = classOf(entry.state);
        std::string html = (name.empty() ? "<li>" : "<li class=" + name + ">") +
                           files_.linked(entry.file, htmlText(labelOf(entry)));
        const std::string word = wordOf(entry.state);
        if (!word.empty()) {
            html += " <em>" + htmlText(word) + "</em>";
        }
        if (entry.excluded && !entry.excluded->attribute.empty()) {
            html += " <code>" + htmlText(ruleText(*entry.excluded)) + "</code>";
        }
        return html;
    }

    std::string labelOf(const OutlineEntry& entry) const {
        const bool isInPublication =
            entry.state == OutlineState::kTopic || entry.state == OutlineState::kMap;
        const std::string& title = files_.title(entry.file);
        if (isInPublication && !title.empty()) {
            const std::string own =
                entry.id.empty() ? std::string() : titleOfDocument(entry.file, entry.id);
            return own.empty() ? title : own;
        }
        return entry.label.empty() ? shownPath(entry.file, files_.currentFolder()) : entry.label;
    }

    const std::vector<OutlineEntry>& entries_;
    const PageFiles& files_;
    bool isOpen_;
    std::vector<std::size_t> below_;  ///< How many entries are below each.
};

std::vector<SearchChoice> choicesOf(const MapOutline& outline) {
    constexpr std::array kStates{OutlineState::kExcluded, OutlineState::kResource,
                                 OutlineState::kNotPrinted, OutlineState::kMissing,
                                 OutlineState::kNotTaken};
    std::vector<SearchChoice> choices;
    for (const OutlineState state : kStates) {
        const bool isThere =
            std::any_of(outline.entries().begin(), outline.entries().end(),
                        [state](const OutlineEntry& entry) { return entry.state == state; });
        if (isThere) {
            choices.emplace_back(classOf(state), wordOf(state));
        }
    }
    return choices;
}

std::string exclusionRow(const ExcludedElement& element, const PageFiles& files) {
    const std::string target =
        element.target.empty() || element.target == element.place.file
            ? std::string()
            : files.linked(element.target.substr(0, element.target.find('#')),
                           htmlText(shownPath(element.target, files.currentFolder())));
    return "<tr><td>" + files.linked(element.place) + "<td><code>" + htmlText(element.element) +
           "</code><td><code>" + htmlText(ruleText(element)) + "</code><td><code>" + target +
           "</code>\n";
}

}  // namespace

std::string mapPart(const MapOutline& outline, const PageFiles& files) {
    std::string html = "<section id=map aria-labelledby=map-title>\n<h2 id=map-title>" +
                       htmlText(translated("Map")) + "</h2>\n" +
                       searchForm("map", translated("Map durchsuchen"), choicesOf(outline)) +
                       TreeWriter(outline, files).text();
    if (outline.isCut()) {
        html += "<p>" + htmlText(translated("Weitere Einträge stehen nicht auf dieser Seite.")) +
                "</p>\n";
    }
    return html + "</section>\n";
}

std::string exclusionsPart(const ExclusionList& exclusions, const PageFiles& files) {
    const std::vector<ExcludedElement>& elements = exclusions.elements();
    std::string html =
        "<section id=excluded aria-labelledby=excluded-title>\n<h2 id=excluded-title>" +
        htmlText(translated("Was das Profil ausschließt")) + "</h2>\n";
    if (elements.empty()) {
        return html + "<p>" + htmlText(translated("Das Profil schließt nichts aus.")) +
               "</p>\n</section>\n";
    }
    html += searchForm("excluded", translated("Ausgeschlossenes suchen")) +
            "<div class=scroll role=group tabindex=0 aria-labelledby=excluded-title>"
            "<table>\n<thead><tr><th scope=col>" +
            htmlText(translated("Stelle")) + "<th scope=col>" + htmlText(translated("Element")) +
            "<th scope=col>" + htmlText(translated("ausgeschlossen durch")) + "<th scope=col>" +
            htmlText(translated("verweist auf")) + "\n<tbody>\n";
    const std::size_t shown = std::min(elements.size(), kMostExclusions);
    for (std::size_t index = 0; index < shown; ++index) {
        html += exclusionRow(elements[index], files);
    }
    html += "</table></div>\n";
    const std::size_t more = elements.size() - shown + exclusions.dropped();
    if (more > 0) {
        html += "<p>" + htmlText(translated("und {0} weitere", {std::to_string(more)})) + "</p>\n";
    }
    return html + "</section>\n";
}

}  // namespace marrowpress
