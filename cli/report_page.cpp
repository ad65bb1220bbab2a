#include "cli/report_page.h"

#include <boost/algorithm/string/join.hpp>
#include "cli/html.h"
#include "cli/page_findings.h"
#include "cli/page_keys.h"
#include "cli/page_map.h"
#include "cli/page_template.h"
#include "cli/page_texts.h"
#include "findings/language.h"
#include "findings/shown_path.h"
#include "findings/wording.h"

namespace marrowpress {
namespace {

std::string fileName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

/// The title of the map, else its name.
std::string heading(const ReportContent& content) {
    const std::string& title = content.files.title(content.map);
    return title.empty() ? fileName(content.map) : title;
}

std::string verdict(const ReportContent& content) {
    const FindingSummary& summary = content.summary;
    if (summary.exit == kExitOfFailedRun) {
        return content.isCheck ? translated("Die Map lässt sich nicht veröffentlichen")
                               : translated("Die Veröffentlichung ist nicht vollständig");
    }
    if (summary.errors > 0) {
        return content.isCheck ? translated("Die Map lässt sich veröffentlichen, mit Fehlern")
                               : translated("Die Veröffentlichung ist vollständig, mit Fehlern");
    }
    return content.isCheck ? translated("Die Map lässt sich veröffentlichen")
                           : translated("Die Veröffentlichung ist vollständig");
}

const char* verdictClass(const FindingSummary& summary) {
    if (summary.exit == kExitOfFailedRun || summary.errors > 0) {
        return "error";
    }
    return summary.warnings > 0 ? "warning" : "good";
}

std::string counts(const FindingSummary& summary) {
    std::string text = errorCountText(summary.errors) + ", " + warningCountText(summary.warnings) +
                       ", " + noteCountText(summary.notes) + "; " + topicCountText(summary.topics);
    if (summary.dropped > 0) {
        text += "; " + translated("und {0} weitere", {std::to_string(summary.dropped)});
    }
    return text;
}

std::string fact(const std::string& name, const std::string& path, const ReportContent& content) {
    return "<dt>" + htmlText(name) + "<dd><code>" +
           htmlText(shownPath(path, content.files.currentFolder())) + "</code>";
}

std::string facts(const ReportContent& content) {
    std::string html = fact(translated("Map"), content.map, content);
    if (!content.output.empty()) {
        html += fact(translated("Ausgabe"), content.output, content);
    }
    for (const std::string& profile : content.profiles) {
        html += fact(translated("Profil"), profile, content);
    }
    return html;
}

std::string contentsLink(const char* part, const std::string& name, std::size_t count) {
    return "<a href=#" + std::string(part) + ">" + htmlText(name) + " <small>" +
           std::to_string(count) + "</small></a>\n";
}

std::string contentsLinks(const ReportContent& content) {
    return contentsLink("findings", translated("Meldungen"), content.findings.size()) +
           contentsLink("map", translated("Map"), content.outline.entries().size()) +
           contentsLink("excluded", translated("Ausgeschlossen"),
                        content.exclusions.elements().size() + content.exclusions.dropped()) +
           contentsLink("keys", translated("Schlüssel"), content.keys.keys().size()) +
           contentsLink("files", translated("Dateien"), content.files.size());
}

}  // namespace

std::string reportPage(const ReportContent& content) {
    const std::string title = htmlText(heading(content));
    return filledTemplate(
        kPageTemplate,
        {{"language", htmlText(translated("de"))},
         {"title", title},
         {"command", htmlText(content.isCheck ? translated("Prüfbericht") : translated("Bericht"))},
         {"style", std::string(kPageStyle)},
         {"script", std::string(kPageScript)},
         {"skip", htmlText(translated("Zum Inhalt"))},
         {"contents", htmlText(translated("Teile des Berichts"))},
         {"links", contentsLinks(content)},
         {"verdict", htmlText(verdict(content))},
         {"verdict-class", verdictClass(content.summary)},
         {"counts", htmlText(counts(content.summary))},
         {"facts", facts(content)},
         {"outgoing", htmlText(boost::algorithm::join(outgoingWords(), "|"))},
         {"incoming", htmlText(boost::algorithm::join(incomingWords(), "|"))},
         {"shown", htmlText(translated("{0} von {1}"))},
         {"more", htmlText(translated("und {0} weitere"))},
         {"drawing", htmlText(translated("Nachbarn von {0}"))},
         {"keyboard",
          htmlText(translated("Tasten: / sucht im Teil, in dem Sie lesen; Esc leert die "
                              "Suche."))},
         {"findings", findingsPart(content.findings, content.files)},
         {"map", mapPart(content.outline, content.files)},
         {"excluded", exclusionsPart(content.exclusions, content.files)},
         {"keys", keysPart(content.keys, content.files)},
         {"files", content.files.part()}});
}

}  // namespace marrowpress
