#include "cli/page_keys.h"

#include <algorithm>
#include <vector>

#include "cli/html.h"
#include "cli/page_search.h"
#include "findings/language.h"
#include "findings/shown_path.h"

namespace marrowpress {
namespace {

constexpr std::size_t kMostUses = 5;
constexpr std::size_t kMostText = 120;

std::string wordOf(KeyUse use) {
    switch (use) {
        case KeyUse::kUsed:
            return translated("benutzt");
        case KeyUse::kUnused:
            return translated("unbenutzt");
        case KeyUse::kUndefined:
            return translated("nicht definiert");
        case KeyUse::kExcluded:
            break;
    }
    return translated("ausgeschlossen");
}

std::string wordOf(KeyState state) {
    switch (state) {
        case KeyState::kEffective:
            return translated("gilt");
        case KeyState::kShadowed:
            return translated("verdeckt");
        case KeyState::kExcluded:
            return translated("ausgeschlossen");
        case KeyState::kLost:
            break;
    }
    return translated("verloren");
}

std::string cutText(const std::string& text) {
    if (text.size() <= kMostText) {
        return text;
    }
    std::size_t end = kMostText;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return text.substr(0, end) + "...";
}

/// What a definition leads to, and its text.
std::string meaning(const KeyDefinition& definition, const PageFiles& files) {
    std::string html;
    if (!definition.target.empty()) {
        const std::string path = definition.target.substr(0, definition.target.find('#'));
        html = files.linked(path, htmlText(shownPath(definition.target, files.currentFolder())));
    }
    if (!definition.text.empty()) {
        html += (html.empty() ? "<q>" : " <q>") + htmlText(cutText(definition.text)) + "</q>";
    }
    return html;
}

/// The definitions, the one that says what the key is first.
std::string definitionCell(const ListedKey& key, const PageFiles& files) {
    const KeyDefinition* const leading = key.leading();
    if (!leading) {
        return {};
    }
    std::string html = files.briefLinked(leading->place);
    if (key.definitions.size() < 2) {
        return html;
    }
    html +=
        "<details><summary>" +
        htmlText(translatedCount("{0} Definition", "{0} Definitionen", key.definitions.size())) +
        "</summary><ol>";
    for (const KeyDefinition& definition : key.definitions) {
        html += "<li>" + files.briefLinked(definition.place) + " <em>" +
                htmlText(wordOf(definition.state)) + "</em> " + meaning(definition, files);
    }
    return html + "</ol></details>";
}

std::string chainText(const KeyList& keys, const ListedKey& key) {
    std::string html;
    for (const std::string& next : keys.chainOf(key)) {
        html += (html.empty() ? "" : " → ") + htmlText(next);
    }
    return html;
}

std::string usesCell(const ListedKey& key, const PageFiles& files) {
    if (key.uses.empty()) {
        return "0";
    }
    std::string html = "<details><summary>" + std::to_string(key.uses.size()) + "</summary>";
    const std::size_t shown = std::min(key.uses.size(), kMostUses);
    for (std::size_t index = 0; index < shown; ++index) {
        html += (index == 0 ? "" : ", ") + files.brief(key.uses[index]);
    }
    if (shown < key.uses.size()) {
        html += " " +
                htmlText(translated("und {0} weitere", {std::to_string(key.uses.size() - shown)}));
    }
    return html + "</details>";
}

std::string keyRow(const KeyList& keys, const ListedKey& key, const PageFiles& files) {
    const KeyDefinition* const leading = key.leading();
    const std::string use = nameOf(key.use());
    return "<tr class=" + use + "><th>" + htmlText(key.name) + "<td>" +
           htmlText(wordOf(key.use())) + "<td>" + definitionCell(key, files) + "<td>" +
           (leading ? meaning(*leading, files) : "") + "<td>" + chainText(keys, key) + "<td>" +
           usesCell(key, files) + "\n";
}

std::vector<SearchChoice> choicesOf(const KeyList& keys) {
    std::vector<SearchChoice> choices;
    for (const KeyUse use :
         {KeyUse::kUsed, KeyUse::kUnused, KeyUse::kUndefined, KeyUse::kExcluded}) {
        const bool isThere = std::any_of(keys.keys().begin(), keys.keys().end(),
                                         [use](const ListedKey& key) { return key.use() == use; });
        if (isThere) {
            choices.emplace_back(nameOf(use), wordOf(use));
        }
    }
    return choices;
}

std::string columnHeads() {
    std::string html;
    for (const std::string& name :
         {translated("Schlüssel"), translated("Zustand"), translated("Definition"),
          translated("steht für"), translated("führt weiter zu"), translated("Verwendungen")}) {
        html += "<th scope=col>" + htmlText(name);
    }
    return html;
}

}  // namespace

std::string keysPart(const KeyList& keys, const PageFiles& files) {
    std::string html = "<section id=keys aria-labelledby=keys-title>\n<h2 id=keys-title>" +
                       htmlText(translated("Schlüssel")) + "</h2>\n";
    if (keys.keys().empty()) {
        return html + "<p>" + htmlText(translated("Es gibt keine Schlüssel.")) +
               "</p>\n</section>\n";
    }
    html += searchForm("keys", translated("Schlüssel suchen"), choicesOf(keys)) +
            "<div class=scroll role=group tabindex=0 aria-labelledby=keys-title>"
            "<table>\n<thead><tr>" +
            columnHeads() + "\n<tbody>\n";
    for (const ListedKey& key : keys.keys()) {
        html += keyRow(keys, key, files);
    }
    return html + "</table></div>\n</section>\n";
}

}  // namespace marrowpress
