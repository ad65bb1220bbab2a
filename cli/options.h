#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace marrowpress {

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

/// `marrowpress publish`: publishes one map. Paths stand as they were given.
struct PublishOptions {
    std::string map;
    std::string output;  ///< A file for a composite, a folder for a flat book.
    OutputFormat format = OutputFormat::kComposite;
    bool isAtOneLocation = false;  ///< Flat book: all components in the output's folder.
    std::optional<std::string> filter;
    std::vector<std::string> catalogs;  ///< Empty: the default catalogs.
    bool isForPrint = false;
    std::string compositeDtd = "ditabase.dtd";
    std::string keySpaceDtd = "map.dtd";
};

/// What `--help` or `--version` asks for.
struct Information {
    std::string text;
};

/// One or more lines that say which argument is wrong, and where help is.
struct UsageError {
    std::string text;
};

using Options = std::variant<HostOptions, PublishOptions, Information, UsageError>;

/// Reads the arguments behind the program's name. No file is looked at.
Options parseOptions(const std::vector<std::string>& arguments);

/// The text of a usage error of `command`: the fault, and the pointer to its help.
std::string usageErrorText(const std::string& command, const std::string& fault);

}  // namespace marrowpress
