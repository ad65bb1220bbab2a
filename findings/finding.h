#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace marrowpress {

enum class Severity : std::uint8_t { kNote, kWarning, kError };

/// A start tag in a source file, or the file as a whole.
struct FindingPlace {
    std::string file;          ///< Absolute, as bytes; empty when not even the file is known.
    std::uint32_t line = 0;    ///< From 1; 0 for the file as a whole.
    std::uint32_t column = 0;  ///< From 1, in UTF-16 code units; 0 for the file as a whole.

    friend bool operator==(const FindingPlace&, const FindingPlace&) = default;
    friend auto operator<=>(const FindingPlace&, const FindingPlace&) = default;
};

/// A reference by which the content came into the output.
struct FindingStep {
    FindingPlace place;
    std::string what;  ///< The attribute and its value: "conref b.dita#t/p".

    friend bool operator==(const FindingStep&, const FindingStep&) = default;
};

/// Something that whoever publishes has to know, at the place where it has to be changed.
struct Finding {
    std::string id;  ///< "MP105"
    Severity severity = Severity::kError;
    std::string text;  ///< One sentence, without a full stop, in the language of the run.
    FindingPlace place;
    std::string element;  ///< Tag name; empty when no element is at fault.
    std::string target;   ///< The key, the path with its fragment, the name that it is about.
    std::string hint;     ///< What to do; may be empty.
    std::vector<FindingStep> via;         ///< The way to the root map, innermost first.
    std::vector<FindingPlace> places;     ///< Further ones, each once.
    std::vector<std::string> profiles;    ///< The DITAVAL files under which it shows.
    bool isPerFile = false;               ///< Folds only with those of the same file.
    bool isArtefact = false;              ///< Says nothing true of the publication; never counts.
    std::optional<std::string> hostText;  ///< The line of the application's console, as it came.
};

/// A run that ends with it hasn't done what it was asked for.
inline constexpr int kExitOfFailedRun = 1;

/// What a run came to.
struct FindingSummary {
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t notes = 0;
    std::size_t topics = 0;  ///< In the output.
    std::size_t files = 0;   ///< Those with findings.
    double seconds = 0;
    int exit = 0;
    std::size_t dropped = 0;  ///< Findings that were met when no more were kept.
};

}  // namespace marrowpress
