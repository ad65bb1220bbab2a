#include "cli/page_files.h"

#include <utility>

#include "cli/document_titles.h"
#include "cli/file_names.h"
#include "cli/html.h"
#include "cli/page_search.h"
#include "findings/finding_lines.h"
#include "findings/language.h"
#include "findings/shown_path.h"

namespace marrowpress {
namespace {

std::vector<std::string> namesOf(const Neighbourhood& neighbourhood) {
    std::vector<std::string> paths;
    for (const FileNode& file : neighbourhood.files()) {
        paths.push_back(file.path);
    }
    return shortNames(paths);
}

std::size_t bytesOfIncoming(const Neighbourhood& neighbourhood,
                            const std::vector<std::string>& names) {
    std::size_t bytes = 0;
    for (const FileNode& file : neighbourhood.files()) {
        for (const Neighbour& neighbour : file.incoming) {
            bytes += names[neighbour.file].size();
        }
    }
    return bytes;
}

std::string stateNote(DependencyState state) {
    switch (state) {
        case DependencyState::kRead:
            return {};
        case DependencyState::kAbsent:
            return " <em>" + htmlText(translated("fehlt")) + "</em>";
        case DependencyState::kUnreadable:
            break;
    }
    return " <em>" + htmlText(translated("nicht lesbar")) + "</em>";
}

}  // namespace

std::vector<std::string> outgoingWords() {
    return {translated("nimmt Map auf"),
            translated("nimmt auf"),
            translated("hat Schlüssel zu"),
            translated("holt Inhalt aus"),
            translated("linkt zu"),
            translated("zeigt Bild"),
            translated("führt über Schlüssel zu")};
}

std::vector<std::string> incomingWords() {
    return {translated("Map in"),
            translated("aufgenommen von"),
            translated("Schlüssel dazu in"),
            translated("gibt Inhalt an"),
            translated("Link von"),
            translated("Bild in"),
            translated("über Schlüssel von")};
}

PageFiles::PageFiles(const Neighbourhood& neighbourhood, const ExclusionList& exclusions,
                     const std::unordered_set<std::string>& documents, std::string currentFolder)
    : neighbourhood_(neighbourhood),
      currentFolder_(std::move(currentFolder)),
      names_(namesOf(neighbourhood)),
      showsIncoming_(bytesOfIncoming(neighbourhood, names_) <= kMostIncomingBytes) {
    titles_.reserve(names_.size());
    for (const FileNode& file : neighbourhood.files()) {
        titles_.push_back(documents.contains(file.path)
                              ? titleOfDocument(file.path, {}, exclusions.in(file.path))
                              : std::string());
    }
}

const std::string& PageFiles::title(const std::string& path) const {
    static const std::string kNone;
    const auto number = neighbourhood_.find(path);
    return number ? titles_[*number] : kNone;
}

std::string PageFiles::linked(const std::string& path, const std::string& html) const {
    const auto number = neighbourhood_.find(path);
    return number ? "<a href=#f:" + names_[*number] + ">" + html + "</a>" : html;
}

std::string PageFiles::linked(const FindingPlace& place) const {
    return "<code>" + linked(place.file, htmlOfShown(placeText(place, currentFolder_))) + "</code>";
}

std::string PageFiles::brief(const FindingPlace& place) const {
    const auto number = neighbourhood_.find(place.file);
    const std::string name =
        number ? names_[*number] : htmlText(shownPath(place.file, currentFolder_));
    return place.line == 0 ? name : name + ":" + std::to_string(place.line);
}

std::string PageFiles::briefLinked(const FindingPlace& place) const {
    return linked(place.file, brief(place));
}

std::string PageFiles::part() const {
    std::string html = "<section id=files aria-labelledby=files-title>\n<h2 id=files-title>" +
                       htmlText(translated("Dateien und ihre Nachbarn")) + "</h2>\n<p>" +
                       htmlText(translated("Jeder Eintrag sagt, worauf die Datei verweist und wer "
                                           "auf sie verweist.")) +
                       "</p>\n";
    if (!showsIncoming_) {
        html += "<p class=scriptless>" +
                htmlText(translated("Wer auf eine Datei verweist, steht ohne Skript bei denen, die "
                                    "verweisen: Suchen Sie auf der Seite nach ihrem Namen.")) +
                "</p>\n";
    }
    html += searchForm("files", translated("Dateien suchen")) + "<div class=files>\n";
    for (std::size_t number = 0; number < names_.size(); ++number) {
        html += entry(number);
    }
    return html + "</div>\n</section>\n";
}

/// Whoever reads this for all files has less to load where tags end by themselves.
std::string PageFiles::entry(std::size_t number) const {
    const FileNode& file = neighbourhood_.files()[number];
    std::string html = "<details id=f:" + names_[number] + "><summary>" + summary(number) +
                       "</summary>" + neighbours(file.outgoing, false);
    if (showsIncoming_) {
        html += neighbours(file.incoming, true);
    }
    return html + "</details>\n";
}

std::string PageFiles::summary(std::size_t number) const {
    const FileNode& file = neighbourhood_.files()[number];
    const std::string path = htmlText(shownPath(file.path, currentFolder_));
    const bool isTitled = names_.size() <= kMostTitledFiles;
    const std::string title = isTitled ? htmlText(titles_[number]) : std::string();
    return (title.empty() ? "" : title + " ") + "<code>" + path + "</code>" + stateNote(file.state);
}

std::string PageFiles::neighbours(const std::vector<Neighbour>& neighbours, bool isIncoming) const {
    static const std::vector<std::string> kNoWords;
    const std::vector<std::string> words = neighbours.empty() ? kNoWords
                                           : isIncoming       ? incomingWords()
                                                              : outgoingWords();
    std::string html;
    const Neighbour* last = nullptr;
    for (const Neighbour& neighbour : neighbours) {
        if (!last || last->kind != neighbour.kind) {
            html += "<dt>" + htmlText(words[static_cast<std::size_t>(neighbour.kind)]) + "<dd>";
        } else {
            html += ", ";
        }
        html += names_[neighbour.file];
        last = &neighbour;
    }
    return html.empty() ? html : (isIncoming ? "<dl class=in>" : "<dl>") + html + "</dl>";
}

}  // namespace marrowpress
