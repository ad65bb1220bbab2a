#include "cli/findings_text.h"

#include <unistd.h>

#include <filesystem>
#include <ostream>

#include "cli/terminal.h"
#include "findings/human_writer.h"
#include "findings/json_writer.h"
#include "findings/short_writer.h"
#include "findings/translated_words.h"

namespace marrowpress {

void writeFindings(std::ostream& out, const std::vector<Finding>& findings,
                   const FindingSummary& summary, const DiagnosticsOptions& options,
                   const FindingsTarget& target) {
    HumanOptions lines;
    lines.currentFolder = std::filesystem::current_path().string();
    lines.words = translatedWords();
    lines.isColoured = options.color == ColorChoice::kAlways ||
                       (options.color == ColorChoice::kAuto && target.isTerminal &&
                        isColoredByItself(STDERR_FILENO));
    lines.width = target.isTerminal ? terminalWidth(STDERR_FILENO) : lines.width;
    switch (options.format) {
        case DiagnosticsFormat::kHuman:
            writeHuman(out, findings, summary, lines);
            break;
        case DiagnosticsFormat::kShort:
            writeShort(out, findings, summary, lines);
            break;
        case DiagnosticsFormat::kJson:
            writeJson(out, findings, summary, target.job);
            break;
        case DiagnosticsFormat::kNone:
            break;
    }
}

}  // namespace marrowpress
