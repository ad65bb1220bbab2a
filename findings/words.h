#pragma once

#include <cstddef>
#include <string>

namespace marrowpress {

/// The name of what is counted, for one of it and for any other number.
struct CountedNoun {
    std::string one;
    std::string many;
};

/// What the formats for people say besides the findings' own texts, in the language of the run.
struct Words {
    std::string error = "error";
    std::string warning = "warning";
    std::string note = "note";
    std::string hint = "hint";
    std::string via = "via";
    std::string also = "also at";
    std::string profile = "profile";
    std::string artefact = "artefact";
    std::string more = "and {0} more";  ///< "{0}" is the number.
    std::string in = "in";              ///< "2 errors in 1 file"
    CountedNoun errors{"error", "errors"};
    CountedNoun warnings{"warning", "warnings"};
    CountedNoun notes{"note", "notes"};
    CountedNoun files{"file", "files"};
    CountedNoun topics{"topic", "topics"};
};

/// "1 file", "0 files".
std::string counted(std::size_t count, const CountedNoun& noun);

/// "and 4 more"
std::string moreText(std::size_t count, const Words& words);

}  // namespace marrowpress
