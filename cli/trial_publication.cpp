#include "cli/trial_publication.h"

#include <array>
#include <filesystem>
#include <ostream>
#include <string_view>

#include "cli/document_grammars.h"
#include "cli/file_replacement.h"
#include "cli/options.h"
#include "cli/profile_set.h"
#include "cli/publish_paths.h"
#include "cli/run_display.h"
#include "cli/scratch_folder.h"
#include "cli/scratch_run.h"
#include "findings/document_types.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

struct OtherType {
    std::string_view root;
    std::string_view publicId;
};

/// Beside those that have a root element of their own and are in all catalogs of DITA.
constexpr std::array kOtherTypes{
    OtherType{"map", "-//OASIS//DTD DITA Base Map//EN"},
    OtherType{"topic", "-//OASIS//DTD DITA Base Topic//EN"},
    OtherType{"map", "-//OASIS//DTD DITA Classification Map//EN"},
    OtherType{"task", "-//OASIS//DTD DITA General Task//EN"},
    OtherType{"task", "-//OASIS//DTD DITA Machinery Task//EN"},
    OtherType{"glossentry", "-//OASIS//DTD DITA Glossary//EN"},
    OtherType{"learningAssessment", "-//OASIS//DTD DITA Learning Assessment//EN"},
    OtherType{"learningContent", "-//OASIS//DTD DITA Learning Content//EN"},
    OtherType{"learningOverview", "-//OASIS//DTD DITA Learning Overview//EN"},
    OtherType{"learningPlan", "-//OASIS//DTD DITA Learning Plan//EN"},
    OtherType{"learningSummary", "-//OASIS//DTD DITA Learning Summary//EN"},
    OtherType{"learningMap", "-//OASIS//DTD DITA Learning Map//EN"},
    OtherType{"learningBookmap", "-//OASIS//DTD DITA Learning BookMap//EN"},
};

constexpr std::string_view kTroubleshooting = "troubleshooting";

constexpr std::array kEncodings{"UTF-8",        "UTF-16",       "US-ASCII",  "ISO-8859-1",
                                "ISO-8859-2",   "ISO-8859-15",  "KOI8-R",    "windows-1250",
                                "windows-1251", "windows-1252", "Shift_JIS", "EUC-JP",
                                "GB18030",      "Big5"};

std::vector<TriedType> standardTypes() {
    std::vector<TriedType> types;
    for (const RootType& type : rootTypes()) {
        types.push_back({std::string(type.root),
                         std::string(type.publicId),
                         type.root != kTroubleshooting,
                         {}});
    }
    for (const OtherType& type : kOtherTypes) {
        types.push_back({std::string(type.root), std::string(type.publicId), true, {}});
    }
    return types;
}

/// `text`, which is ASCII, in UTF-16 with a byte order mark.
std::string inUtf16(std::string_view text) {
    std::string bytes = "\xFF\xFE";
    for (const char character : text) {
        bytes += character;
        bytes += '\0';
    }
    return bytes;
}

/// The files of the trial.
class TrialMap {
public:
    explicit TrialMap(const fs::path& folder) : folder_(folder) {}

    void add(const std::string& name, std::string_view text);
    /// Writes the map over all that were added.
    fs::path write() const;

private:
    const fs::path& folder_;
    std::string references_;
};

void TrialMap::add(const std::string& name, std::string_view text) {
    replaceFile(folder_ / name, text);
    // Classes as a DTD would give them: the map has to do without.
    references_ += "<topicref class=\"- map/topicref \" href=\"" + name + "\"" +
                   (name.ends_with(".ditamap") ? " format=\"ditamap\"" : "") + "/>\n";
}

fs::path TrialMap::write() const {
    fs::path map = folder_ / "trial.ditamap";
    replaceFile(map, "<map class=\"- map/map \">\n" + references_ + "</map>\n");
    return map;
}

std::string nameOf(const TriedType& type, std::size_t number) {
    const bool isMapType = isMap(type.root, {});
    return "type-" + std::to_string(number) + (isMapType ? ".ditamap" : ".dita");
}

/// Its DTD stands in no file beside it: a catalog has to know it.
std::string documentOf(const TriedType& type) {
    return "<!DOCTYPE " + type.root + " PUBLIC \"" + type.publicId + "\" \"nowhere.dtd\">\n<" +
           type.root + " id=\"t\"><title>T</title></" + type.root + ">\n";
}

std::string nameOf(const TriedEncoding& encoding) {
    return encoding.name + ".dita";
}

std::string documentOf(const TriedEncoding& encoding) {
    const std::string text =
        "<?xml version=\"1.0\" encoding=\"" + encoding.name + "\"?>\n" +
        "<topic class=\"- topic/topic \" id=\"t\"><title class=\"- topic/title \">T</title>"
        "</topic>\n";
    return encoding.name == "UTF-16" ? inUtf16(text) : text;
}

DocumentGrammars runTrial(const fs::path& map, const std::vector<std::string>& catalogs) {
    RunOptions options;
    options.map = map.string();
    options.catalogs = catalogs;
    options.diagnostics.format = DiagnosticsFormat::kNone;
    // The trial speaks for itself.
    options.diagnostics.isQuiet = true;
    std::ostream nowhere(nullptr);
    RunDisplay display(options.diagnostics, nowhere);
    DocumentGrammars grammars;
    RunTotal total;
    runInScratch({options,
                  resolvePublishPaths(options),
                  ProfileSet({}, false),
                  /*hasFindings=*/false,
                  [&grammars](const Observation& met) { grammars.observe(met); },
                  {}},
                 display, total);
    return grammars;
}

}  // namespace

Trial tryPublication(const std::vector<std::string>& catalogs) {
    const ScratchFolder folder;
    TrialMap map(folder.path());
    Trial trial{standardTypes(), {}};
    for (const char* const name : kEncodings) {
        trial.encodings.push_back({name, false});
    }
    for (std::size_t index = 0; index < trial.types.size(); ++index) {
        map.add(nameOf(trial.types[index], index), documentOf(trial.types[index]));
    }
    for (const TriedEncoding& encoding : trial.encodings) {
        map.add(nameOf(encoding), documentOf(encoding));
    }
    const DocumentGrammars grammars = runTrial(map.write(), catalogs);
    for (std::size_t index = 0; index < trial.types.size(); ++index) {
        TriedType& type = trial.types[index];
        type.dtd = grammars.useOf((folder.path() / nameOf(type, index)).string()).dtd;
    }
    for (TriedEncoding& encoding : trial.encodings) {
        const std::string path = (folder.path() / nameOf(encoding)).string();
        encoding.canBeRead = grammars.useOf(path).documentCount > 0;
    }
    return trial;
}

}  // namespace marrowpress
