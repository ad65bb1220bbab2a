#include "cli/explain_command.h"

#include <sstream>
#include <string>

#include "cli/help_formatter.h"
#include "findings/catalogue.h"
#include "findings/language.h"
#include "findings/wording.h"

namespace marrowpress {
namespace {

constexpr const char* kIndent = "  ";

std::string indented(const std::string& text) {
    std::istringstream in(text);
    std::string lines;
    for (std::string line; std::getline(in, line);) {
        lines += line.empty() ? "\n" : kIndent + line + "\n";
    }
    return lines;
}

std::string paragraph(const std::string& text, std::size_t width) {
    return wrapped(text, width, 0, 0) + "\n";
}

std::string titleLine(const std::string& id) {
    return id + "  " + severityWord(*defaultSeverity(id)) + ": " + findingTitle(id);
}

std::string explanationText(const std::string& id, std::size_t width) {
    const Explanation explanation = *explanationOf(id);
    return titleLine(id) + "\n\n" + paragraph(explanation.meaning, width) + "\n" +
           translated("Beispiel:") + "\n" + indented(explanation.example) + "\n" +
           paragraph(translated("Abhilfe:") + " " + explanation.remedy, width);
}

std::string listText() {
    std::string text;
    for (const std::string& id : findingIds()) {
        text += titleLine(id) + "\n";
    }
    return text;
}

}  // namespace

ExitCode runExplain(const ExplainOptions& options, std::size_t width, const Streams& streams) {
    const std::string text = options.id ? explanationText(*options.id, width) : listText();
    return writeResult(streams, text) ? ExitCode::kSuccess : ExitCode::kRunFailed;
}

}  // namespace marrowpress
