#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "marrowpress/output_names.h"

namespace marrowpress {
namespace {

constexpr const char* kProgram = "marrowpress";

constexpr const char* kPublishExample =
    "Example:\n"
    "  build/release/bin/marrowpress publish examples/drill-guide/drill-guide.ditamap \\\n"
    "      -f composite -o drill-guide.dita\n";

constexpr const char* kFlatBookExample =
    "  mkdir -p out/book\n"
    "  build/release/bin/marrowpress publish examples/drill-guide/drill-guide.ditamap \\\n"
    "      -f flatbook -o out/book --one-location\n";

constexpr const char* kHostExample =
    "Example:\n"
    "  printf '%s' '{\"type\":\"PublishComp\",\"params\":{\"ditaVal\":\"\",\"usePrint\":false,\n"
    "  \"ditamap\":\"examples/drill-guide/drill-guide.ditamap\",\"output\":\"drill-guide.dita\",\n"
    "  \"compositeDocDtd\":\"ditabase.dtd\",\"keyspaceDocDtd\":\"map.dtd\"}}' |\n"
    "      build/release/bin/marrowpress host -\n";

constexpr const char* kExitCodes =
    "Exit status: 0 when all went well, 1 when a run failed, 2 for wrong usage.\n";

/// The arguments as the parser takes them: off the back.
///
/// For a list of values it reads "[a,b]" as two of them. With "./" in front, the argument is the
/// same file and no list; all that `host` takes are files.
std::vector<std::string> toParserOrder(const std::vector<std::string>& arguments) {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    if (reversed.empty() || reversed.back() != "host") {
        return reversed;
    }
    for (std::string& argument : reversed) {
        if (argument.starts_with('[') && argument.ends_with(']')) {
            argument.insert(0, "./");
        }
    }
    return reversed;
}

std::string rejectEmpty(const std::string& value) {
    return value.empty() ? "is empty" : "";
}

/// The commands' options as the parser fills them, before they are checked as a whole.
class Parser {
public:
    Parser() {
        app_.require_subcommand(1);
        app_.set_version_flag("--version", std::string("marrowpress ") + MARROWPRESS_VERSION);
        app_.footer(std::string("\n") + kPublishExample + "\n" + kExitCodes +
                    "`marrowpress COMMAND --help` shows a command's options.");
        addHost();
        addPublish();
    }

    Options parse(const std::vector<std::string>& arguments) {
        try {
            app_.parse(toParserOrder(arguments));
            return publishCommand_->parsed() ? finishPublish() : finishHost();
        } catch (const CLI::CallForVersion& version) {
            return Information{std::string(version.what()) + "\n"};
        } catch (const CLI::CallForHelp&) {
            return Information{app_.help()};
        } catch (const CLI::ParseError& error) {
            return wrongUsage(describe(error));
        }
    }

private:
    static CLI::Option* addText(CLI::App& command, const std::string& name, std::string& target,
                                const std::string& description, const std::string& placeholder) {
        return command.add_option(name, target, description)
            ->type_name(placeholder)
            ->check(CLI::Validator(rejectEmpty, ""));
    }

    static CLI::Option* addList(CLI::App& command, const std::string& name,
                                std::vector<std::string>& target, const std::string& description,
                                const std::string& placeholder) {
        return command
            .add_option_function<std::vector<std::string>>(
                name, [&target](const std::vector<std::string>& values) { target = values; },
                description)
            ->type_name(placeholder)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
            ->check(CLI::Validator(rejectEmpty, ""));
    }

    static void addCatalog(CLI::App& command, std::vector<std::string>& target) {
        addList(command, "--catalog", target,
                "An OASIS XML catalog that says where DTDs stand, as a path or a file: URI; may be "
                "given several times, in the order of asking. Without it: the files in "
                "XML_CATALOG_FILES, else the system's catalog and that of the package dita-ot",
                "FILE")
            ->expected(1)
            ->allow_extra_args(false);
    }

    void addHost() {
        hostCommand_ = app_.add_subcommand("host", "Send publish requests to the client module");
        addList(*hostCommand_, "REQUEST", host_.requests,
                "Files with one JSON request each, or - for standard input", "FILE")
            ->required()
            ->option_text("...");
        addCatalog(*hostCommand_, host_.catalogs);
        hostCommand_
            ->add_flag("--no-xml-utilities", hasNoXmlUtilities_,
                       "Do without the client that finds DTDs")
            ->disable_flag_override();
        openDocumentsOption_ = addText(*hostCommand_, "--open-documents", openDocuments_,
                                       "The session's open documents: a JSON array of "
                                       "{\"id\": 7, \"path\": \"/abs/a.dita\", \"flag\": 1}",
                                       "FILE");
        traceOption_ = addText(*hostCommand_, "--trace", trace_,
                               "Write each host operation as one line of JSON; empties FILE, "
                               "which may be none that is read",
                               "FILE");
        hostCommand_->footer(std::string("\n") + kHostExample +
                             "\nStandard output gets one line of JSON for each request.\n" +
                             kExitCodes);
    }

    void addPublish() {
        publishCommand_ = app_.add_subcommand("publish", "Publish a DITA map");
        addText(*publishCommand_, "MAP", publish_.map, "The DITA map", "FILE")
            ->required()
            ->option_text(" ");
        addText(
            *publishCommand_, "-f,--format", format_,
            "What to make of the map: composite (one document that holds all topics) or flatbook "
            "(one document for each first-level reference of the map)",
            "FORMAT")
            ->required();
        addText(*publishCommand_, "-o,--output", publish_.output,
                std::string("composite: the file to write. Replaces a composite of an earlier run, "
                            "and what stands beside it as OUT")
                    .append(kAsideSuffix)
                    .append(" and ")
                    .append(kKeySpaceDocName)
                    .append(", no other file. flatbook: a folder that is there already; it takes "
                            "the components that have no source. Replaces files of the components' "
                            "names"),
                "OUT")
            ->required();
        publishCommand_
            ->add_flag("--one-location", publish_.isAtOneLocation,
                       "flatbook: put every component into OUT, not beside its source")
            ->disable_flag_override();
        filterOption_ = addText(*publishCommand_, "--filter", filter_,
                                "A DITAVAL file that says what to leave out", "FILE");
        addCatalog(*publishCommand_, publish_.catalogs);
        publishCommand_
            ->add_flag("--print", publish_.isForPrint,
                       "Leave out what the map marks with print=\"no\"")
            ->disable_flag_override();
        addText(*publishCommand_, "--composite-dtd", publish_.compositeDtd,
                "System identifier in the doctype of the composite or the components", "ID")
            ->capture_default_str();
        addText(*publishCommand_, "--keyspace-dtd", publish_.keySpaceDtd,
                "System identifier in the key space document's doctype", "ID")
            ->capture_default_str();
        publishCommand_->footer(
            std::string("\n") + kPublishExample + "\n" + kFlatBookExample +
            "\nProgress and reports go to standard error, the paths of the written files to "
            "standard output.\n" +
            kExitCodes);
    }

    Options finishHost() {
        if (std::count(host_.requests.begin(), host_.requests.end(), "-") > 1) {
            return wrongUsage("REQUEST: standard input (-) is there more than once");
        }
        host_.hasXmlUtilities = !hasNoXmlUtilities_;
        if (openDocumentsOption_->count() > 0) {
            host_.openDocuments = openDocuments_;
        }
        if (traceOption_->count() > 0) {
            host_.trace = trace_;
        }
        return host_;
    }

    Options finishPublish() {
        if (format_ == "flatbook") {
            publish_.format = OutputFormat::kFlatBook;
        } else if (format_ != "composite") {
            return wrongUsage("--format: unknown format \"" + format_ +
                              "\"; known: composite, flatbook");
        } else if (publish_.isAtOneLocation) {
            return wrongUsage("--one-location: a composite is one file; this is for flatbook only");
        }
        if (filterOption_->count() > 0) {
            publish_.filter = filter_;
        }
        return publish_;
    }

    /// The parser's own words, but where they leave out which argument is meant.
    std::string describe(const CLI::ParseError& error) const {
        const std::vector<std::string> rest = app_.remaining();
        if (!app_.get_subcommands().empty() || rest.empty()) {
            return error.what();
        }
        return "unknown argument \"" + rest.front() + "\"; commands: host, publish";
    }

    UsageError wrongUsage(const std::string& fault) const {
        const auto commands = app_.get_subcommands();
        return {usageErrorText(commands.empty() ? "" : commands.front()->get_name(), fault)};
    }

    CLI::App app_{"Publishes DITA maps through the Marrowpress client module.", kProgram};
    CLI::App* hostCommand_ = nullptr;
    CLI::App* publishCommand_ = nullptr;
    HostOptions host_;
    PublishOptions publish_;
    bool hasNoXmlUtilities_ = false;
    std::string openDocuments_;
    std::string trace_;
    std::string format_;
    std::string filter_;
    CLI::Option* openDocumentsOption_ = nullptr;
    CLI::Option* traceOption_ = nullptr;
    CLI::Option* filterOption_ = nullptr;
};

}  // namespace

Options parseOptions(const std::vector<std::string>& arguments) {
    return Parser().parse(arguments);
}

std::string usageErrorText(const std::string& command, const std::string& fault) {
    const std::string name = command.empty() ? kProgram : std::string(kProgram) + " " + command;
    return name + ": " + fault + "\nRun `" + name + " --help` for help.\n";
}

}  // namespace marrowpress
