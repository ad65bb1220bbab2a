#include "cli/batch/batch_index_page.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "cli/batch/job_results.h"
#include "cli/html.h"
#include "cli/page_texts.h"
#include "findings/finding_lines.h"
#include "findings/language.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr const char* kHead = R"(<meta charset="utf-8">
<meta name="generator" content="marrowpress">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; base-uri 'none'; form-action 'none'">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
)";

std::string stateWord(const std::optional<RunResult>& result) {
    if (!result) {
        return translated("nicht gelaufen");
    }
    switch (result->state) {
        case ResultState::kClean:
            return translated("sauber");
        case ResultState::kFindings:
            return translated("mit Befunden");
        case ResultState::kFailed:
            break;
    }
    return translated("gescheitert");
}

std::string cell(const std::string& html) {
    return "<td>" + html + "</td>";
}

std::string jobName(const std::string& id, const std::string& folder) {
    std::error_code ignored;
    const std::string page = id + ".html";
    std::string shown = htmlText(id);
    if (!fs::exists(fs::path(folder) / page, ignored)) {
        return shown;
    }
    return "<a href=\"" + htmlText("./" + page) + "\">" + shown + "</a>";
}

std::string rowOf(const Job& job, const std::optional<RunResult>& result,
                  const std::string& folder) {
    std::string row = "<tr>" + cell(jobName(job.id, folder)) + cell(htmlText(stateWord(result)));
    if (result) {
        const JobOutcome outcome = outcomeOf(*result);
        row += cell(std::to_string(outcome.errors)) + cell(std::to_string(outcome.warnings)) +
               cell(std::to_string(outcome.exit)) + cell(fixedText(outcome.seconds, 1));
    } else {
        row += cell("") + cell("") + cell("") + cell("");
    }
    return row + "</tr>\n";
}

}  // namespace

std::string batchIndexPage(const Plan& plan, const std::vector<std::size_t>& indexes,
                           const ResultFolder& results, const std::string& folder) {
    const bool isGerman = plan.diagnostics.language == Language::kGerman;
    const std::string title =
        htmlText(translatedCount("{0} Auftrag", "{0} Aufträge", indexes.size()));
    std::string page = std::string("<!DOCTYPE html>\n<html lang=\"") + (isGerman ? "de" : "en") +
                       "\">\n<head>\n" + kHead + "<title>" + title +
                       " – marrowpress batch</title>\n<style>\n" + std::string(kPageStyle) +
                       "</style>\n</head>\n<body>\n<header>\n<p>marrowpress batch</p>\n<h1>" +
                       title + "</h1>\n</header>\n<main>\n<table>\n<thead><tr>";
    for (const char* const heading :
         {toTranslate("Auftrag"), toTranslate("Zustand"), toTranslate("Fehler"),
          toTranslate("Warnungen"), toTranslate("Code"), toTranslate("Sekunden")}) {
        page += "<th scope=\"col\">" + htmlText(translated(heading)) + "</th>";
    }
    page += "</tr></thead>\n<tbody>\n";
    for (const std::size_t index : indexes) {
        const Job& job = plan.jobs[index];
        page += rowOf(job, results.find(job.id), folder);
    }
    return page + "</tbody>\n</table>\n</main>\n</body>\n</html>\n";
}

}  // namespace marrowpress
