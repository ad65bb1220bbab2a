#pragma once

#include <string>
#include <string_view>

#include "findings/finding.h"
#include "findings/words.h"

/// The lines that the formats for people have in common. All are one line without its end, with
/// everything from outside escaped.
namespace marrowpress {

struct LineOptions {
    std::string currentFolder;  ///< Absolute; paths are relative to it where that is shorter.
    Words words;
    bool isColoured = false;  ///< With the escape sequences of a terminal.
};

/// "b.dita:9:3"; "b.dita" where only the file is known, and the command's name where nothing is.
std::string placeText(const FindingPlace& place, std::string_view currentFolder);

/// "b.dita:9:3: error: text [MP105]"; an artefact is marked behind its id.
std::string findingLine(const Finding& finding, const LineOptions& options);

/// "2 errors, 5 warnings in 3 files; 412 topics, 1.8 s"; in front of it, a line of its own, how
/// many were not kept, if any. Ends with a line end.
std::string lastLines(const FindingSummary& summary, const Words& words);

/// With a point and so many decimals, whatever the locale.
std::string fixedText(double value, int decimals);

/// The text, and the hint in brackets behind it, for formats that have no place for a hint.
std::string textWithHint(const Finding& finding);

/// The escape sequence that a severity's colour begins with, and the one that ends all colours.
std::string_view colourOf(Severity severity);
inline constexpr std::string_view kColourEnd = "\x1B[0m";

}  // namespace marrowpress
