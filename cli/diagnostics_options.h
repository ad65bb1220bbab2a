#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "findings/finding.h"
#include "findings/language.h"

namespace marrowpress {

/// How findings are shown.
enum class DiagnosticsFormat : std::uint8_t {
    kHuman,  ///< With the source line and a hint.
    kShort,  ///< A line each.
    kJson,   ///< An object each, one a line.
    kNone,   ///< There are none: nobody looks for them.
};

/// From which severity on findings turn the exit code.
enum class FailOn : std::uint8_t { kError, kWarning, kNever };

/// As people, plans and results name them.
inline constexpr std::pair<const char*, FailOn> kFailOnWords[] = {
    {"error", FailOn::kError}, {"warning", FailOn::kWarning}, {"never", FailOn::kNever}};

constexpr const char* wordOf(FailOn failOn) {
    for (const auto& [word, known] : kFailOnWords) {
        if (known == failOn) {
            return word;
        }
    }
    return "";
}

enum class ColorChoice : std::uint8_t {
    kAuto,  ///< On a terminal, unless NO_COLOR is set.
    kAlways,
    kNever,
};

/// What is done with the findings of a run, and what is shown while it lasts. Paths stand as they
/// were given.
struct DiagnosticsOptions {
    DiagnosticsFormat format = DiagnosticsFormat::kHuman;
    std::optional<std::string> file;  ///< Takes the place of standard error for the findings.
    std::optional<std::string> sarif;
    std::optional<std::string> junit;
    std::optional<std::string> timings;  ///< Gets the timeline of the run.
    bool showsStatistics = false;
    std::optional<std::string> report;  ///< A page with the findings and what the run met.
    Language language = Language::kAuto;
    FailOn failOn = FailOn::kError;
    std::map<std::string, Severity> severities;  ///< By id, in the place of the usual ones.
    std::optional<std::string> baseline;         ///< Findings of an earlier run, as JSON.
    bool showsAll = false;                       ///< Those that say nothing of the result, too.
    bool isVerbose = false;                      ///< Progress lines, where there is no terminal.
    bool isQuiet = false;                        ///< Nothing but findings.
    ColorChoice color = ColorChoice::kAuto;
    bool hasNoProgress = false;
};

}  // namespace marrowpress
