#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "cli/batch_options.h"
#include "cli/diagnostics_options.h"

namespace marrowpress {

/// The name under which the program is called.
inline constexpr const char* kProgramName = "marrowpress";

/// The output of a composite that goes to standard output.
inline constexpr const char* kStandardOutput = "-";

/// `marrowpress host`: sends requests as they are.
struct HostOptions {
    std::vector<std::string> requests;  ///< Files, or "-" for standard input at most once.
    std::vector<std::string> catalogs;  ///< Empty: the default catalogs.
    bool hasXmlUtilities = true;
    std::optional<std::string> openDocuments;
    std::optional<std::string> trace;
};

enum class OutputFormat {
    kComposite,  ///< one document that holds all topics
    kFlatBook,   ///< one document for each first-level reference of the map
};

/// What is to be made of a map. Paths stand as they were given.
struct RunOptions {
    std::string map;
    std::string output;  ///< A file for a composite, a folder for a flat book.
    OutputFormat format = OutputFormat::kComposite;
    bool isAtOneLocation = false;       ///< Flat book: all components in the output's folder.
    std::vector<std::string> filters;   ///< An earlier one's rules go before those of a later one.
    bool allowsMissingFilter = false;   ///< A filter that cannot be read is done without.
    std::vector<std::string> catalogs;  ///< Empty: the default catalogs.
    bool isForPrint = false;
    bool isOnlyIfChanged = false;  ///< No run where the last one still holds.
    std::optional<std::string>
        result;  ///< Where the last run's result is, and the next one's goes.
    DiagnosticsOptions diagnostics;
};

inline bool isFlatBook(const RunOptions& options) {
    return options.format == OutputFormat::kFlatBook;
}

/// `marrowpress publish`: publishes one map. The output of a composite may be "-", which is
/// standard output.
struct PublishOptions : RunOptions {
    std::string compositeDtd = "ditabase.dtd";
    std::string keySpaceDtd = "map.dtd";
    bool isRelative = false;  ///< Local references lead on from the output that holds them.
    std::optional<std::string> mediaFolder;  ///< For copies; seen from the output's folder.
    std::optional<std::string> depfile;      ///< Gets the rule of the output.
};

/// `marrowpress watch`: publishes one map whenever something changes.
struct WatchOptions : PublishOptions {
    bool polls = false;                ///< Without events of the system.
    std::vector<std::string> command;  ///< Run when something was published; may be empty.
};

/// `marrowpress check`: looks for what is wrong with one map. The output is only looked at, and is
/// empty when none was named.
struct CheckOptions : RunOptions {
    std::vector<std::string> eachFilters;  ///< One run for each.
};

enum class KeyFormat {
    kTable,
    kCsv,
    kJson,  ///< An object a line.
};

/// `marrowpress keys`: tells the keys of one map. There is no output.
struct KeysOptions : RunOptions {
    KeyFormat keyFormat = KeyFormat::kTable;
    std::optional<std::string> explained;  ///< The only key that is wanted.
};

enum class DependencyFormat {
    kList,
    kJson,  ///< An object a line.
    kMake,
};

/// `marrowpress deps`: tells the files that the publication of one map depends on. The output is
/// the target of a rule for make, and is empty when none was named.
struct DepsOptions : RunOptions {
    DependencyFormat dependencyFormat = DependencyFormat::kList;
    bool showsEdges = false;             ///< Who refers to whom.
    std::optional<std::string> reverse;  ///< Only what leads to this file.
};

/// `marrowpress doctor`: tells what is missing for publishing. The map may be empty, and then this
/// is about the machine as a whole.
struct DoctorOptions : RunOptions {};

/// `marrowpress explain`: tells what findings mean.
struct ExplainOptions {
    std::optional<std::string> id;  ///< One that is known; without it, all are listed.
    Language language = Language::kAuto;
};

/// `marrowpress completion`: what a shell needs to complete command lines.
struct CompletionOptions {
    std::optional<std::string> map;  ///< Whose keys are wanted, and no script.
};

/// `marrowpress job`: how a batch runs one of its jobs. People have no use for it.
struct WorkerOptions {
    int batch = 0;  ///< Its process.
    bool isCheck = false;
    bool isInPlace = false;  ///< A composite, too, is made where it is to stand.
    std::vector<std::string> catalogs;
    DiagnosticsOptions diagnostics;
};

/// What `help` or `version` asks for.
struct Information {
    std::string text;
};

/// One or more lines that say which argument is wrong, and where help is.
struct UsageError {
    std::string text;
};

using Options = std::variant<HostOptions, PublishOptions, WatchOptions, CheckOptions, KeysOptions,
                             DepsOptions, DoctorOptions, BatchOptions, WorkerOptions,
                             ExplainOptions, CompletionOptions, Information, UsageError>;

/// A command's name as people write it: the parts of `batch` are two words, "batch check" for
/// "batch-check".
std::string shownCommand(const std::string& name);

/// The text of a usage error of `command`: the fault, and the pointer to its help.
std::string usageErrorText(const std::string& command, const std::string& fault);

}  // namespace marrowpress
