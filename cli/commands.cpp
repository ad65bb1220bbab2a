#include "cli/commands.h"

#include <algorithm>
#include <optional>

#include "cli/batch_commands.h"
#include "cli/diagnostics_arguments.h"
#include "cli/version_text.h"
#include "cli/watch/watch_arguments.h"
#include "findings/catalogue.h"
#include "marrowpress/output_names.h"

namespace marrowpress {
namespace {

constexpr const char* kFlatBookExample =
    "  mkdir -p out/book\n"
    "  marrowpress publish \\\n"
    "      examples/drill-guide/drill-guide.ditamap -f flatbook -o out/book \\\n"
    "      --one-location\n";

constexpr const char* kWatchExample =
    "  mkdir -p out\n"
    "  marrowpress watch examples/drill-guide/drill-guide.ditamap \\\n"
    "      -o out/drill-guide.dita -- ls -l out\n";

constexpr const char* kCheckExample =
    "  marrowpress check examples/drill-guide/drill-guide.ditamap\n";

constexpr const char* kKeysExample =
    "  marrowpress keys examples/drill-guide/drill-guide.ditamap\n"
    "  marrowpress keys examples/drill-guide/drill-guide.ditamap \\\n"
    "      --explain product\n";

constexpr const char* kDepsExample =
    "  marrowpress deps examples/drill-guide/drill-guide.ditamap\n"
    "  marrowpress deps examples/drill-guide/drill-guide.ditamap \\\n"
    "      --reverse examples/drill-guide/topics/safety.dita\n";

constexpr const char* kDoctorExample =
    "  marrowpress doctor\n"
    "  marrowpress doctor examples/drill-guide/drill-guide.ditamap\n";

constexpr const char* kHostExample =
    "  printf '%s' '{\"type\":\"PublishComp\",\"params\":{\"ditaVal\":\"\",\"usePrint\":false,\n"
    "  \"ditamap\":\"examples/drill-guide/drill-guide.ditamap\",\n"
    "  \"output\":\"drill-guide.dita\",\"compositeDocDtd\":\"ditabase.dtd\",\n"
    "  \"keyspaceDocDtd\":\"map.dtd\"}}' |\n"
    "      marrowpress host -\n";

constexpr const char* kCompletionExample = "  source <(marrowpress completion bash)\n";

constexpr const char* kExplainExample = "  marrowpress explain MP105\n";

void addCatalog(CommandArguments& arguments, std::vector<std::string>& target) {
    arguments.addList("--catalog", target,
                      "An OASIS XML catalog that says where DTDs stand, as a path or a file: URI; "
                      "may be given several times, in the order of asking. Without it: the files "
                      "in XML_CATALOG_FILES, else the system's catalog and that of the package "
                      "dita-ot",
                      "FILE");
}

void addMap(CommandArguments& arguments, RunOptions& target) {
    arguments.addText("MAP", target.map, "The DITA map", "FILE").required();
}

CLI::Option& addFormat(CommandArguments& arguments, RunOptions& target) {
    const Choices<OutputFormat> formats{{"composite", OutputFormat::kComposite},
                                        {"flatbook", OutputFormat::kFlatBook}};
    return arguments.addChoice("-f,--format", "format", target.format, formats,
                               "What to make of the map: composite (one document that holds all "
                               "topics) or flatbook (one document for each first-level reference "
                               "of the map)",
                               "FORMAT");
}

void addOneLocation(CommandArguments& arguments, RunOptions& target) {
    arguments.addFlag("--one-location", target.isAtOneLocation,
                      "flatbook: put every component into OUT, not beside its source");
}

void addFilters(CommandArguments& arguments, RunOptions& target) {
    arguments.addList("--filter", target.filters,
                      "A DITAVAL file that says what to leave out; may be given several times, and "
                      "what an earlier file says goes before what a later one says",
                      "FILE");
    arguments.addFlag("--allow-missing-filter", target.allowsMissingFilter,
                      "Do without a filter that cannot be read");
}

void addPrint(CommandArguments& arguments, RunOptions& target) {
    arguments.addFlag("--print", target.isForPrint,
                      "Leave out what the map marks with print=\"no\"");
}

void addResult(CommandArguments& arguments, RunOptions& target, const std::string& description) {
    arguments.addText("--result", target.result, description, "FILE");
}

void addRepetition(CommandArguments& arguments, RunOptions& target) {
    arguments.addFlag("--if-changed", target.isOnlyIfChanged,
                      "Do nothing but show the last run's findings again when nothing has changed "
                      "since: the request, the files that it read or missed, its outputs");
    addResult(arguments, target,
              "Keep the run's result in FILE: its findings, the files that it depends on, "
              "its outputs. Without it --if-changed keeps one for itself");
}

/// The sentence about options that contradict each other; empty when none do.
std::optional<std::string> findContradiction(const RunOptions& options) {
    if (options.format == OutputFormat::kComposite && options.isAtOneLocation) {
        return "--one-location: a composite is one file; this is for flatbook only";
    }
    if (options.format == OutputFormat::kFlatBook && options.output == "-") {
        return "--output: a flat book is several files; standard output (-) takes a composite";
    }
    if (options.output == kStandardOutput && (options.isOnlyIfChanged || options.result)) {
        return "--output: what goes to standard output (-) is not there the next time";
    }
    return findDiagnosticsFault(options.diagnostics);
}

/// What decides on a publication, for all commands that make one.
///
/// @param elsewhere  What takes a composite besides a file.
void addPublication(CommandArguments& arguments, PublishOptions& target,
                    const std::string& elsewhere = {}) {
    const std::string description =
        std::string("composite: the file to write")
            .append(elsewhere)
            .append(". Replaces a composite of an earlier run, and what stands beside it as OUT")
            .append(kAsideSuffix)
            .append(" and ")
            .append(kKeySpaceDocName)
            .append(
                ", no other file. flatbook: a folder; it takes the components that have no "
                "source. Replaces components of earlier runs, and keeps other files of their "
                "names beside them. A folder that is not there is made");
    arguments.addText("-o,--output", target.output, description, "OUT").required();
    addOneLocation(arguments, target);
    addFilters(arguments, target);
    addCatalog(arguments, target.catalogs);
    addPrint(arguments, target);
    arguments.addText("--composite-dtd", target.compositeDtd,
                      "System identifier in the doctype of the composite or the components", "ID");
    arguments.addText("--keyspace-dtd", target.keySpaceDtd,
                      "System identifier in the key space document's doctype", "ID");
    arguments.addFlag("--relative", target.isRelative,
                      "Write references to local files as seen from the output that holds "
                      "them, not as absolute paths");
    arguments.addText("--copy-media", target.mediaFolder,
                      "Copy the images and media that are referenced into DIR, and refer to "
                      "them there; seen from the output's folder, and made when it is not "
                      "there. Replaces nothing. Implies --relative",
                      "DIR");
    arguments.addText("--depfile", target.depfile,
                      "Write a rule for make and ninja to FILE: OUT, as it is given here, "
                      "and the files that it depends on",
                      "FILE");
}

/// The sentence about options of a publication that contradict each other; empty when none do.
std::optional<std::string> finishPublication(PublishOptions& options) {
    if (std::optional<std::string> fault = findContradiction(options)) {
        return fault;
    }
    options.isRelative |= options.mediaFolder.has_value();
    if (options.depfile && options.output == kStandardOutput) {
        return "--depfile: standard output (-) is no file that a rule could name";
    }
    return std::nullopt;
}

class PublishCommand final : public Command {
public:
    explicit PublishCommand(CLI::App& program)
        : Command(program, "publish", "Publish a DITA map",
                  footerText(std::string(kPublishExample) + "\n" + kFlatBookExample,
                             "Progress, reports and findings go to standard error, the paths of "
                             "the written files to standard output.")) {
        addMap(arguments(), options_);
        addFormat(arguments(), options_).required();
        addPublication(arguments(), options_, ", or - for standard output");
        addRepetition(arguments(), options_);
        addDiagnostics(arguments(), options_.diagnostics);
        addMeasures(arguments(), options_.diagnostics);
        addReport(arguments(), options_.diagnostics);
    }

private:
    Options finish() override {
        const std::optional<std::string> fault = finishPublication(options_);
        return fault ? Options(wrongUsage(*fault)) : Options(options_);
    }

    PublishOptions options_;
};

class WatchCommand final : public Command {
public:
    explicit WatchCommand(CLI::App& program)
        : Command(program, "watch", "Publish a DITA map, and again whenever a source changes",
                  footerText(kWatchExample,
                             "What stands behind -- is run each time that something was "
                             "published. Ctrl-C ends the watch.")) {
        addMap(arguments(), options_);
        addFormat(arguments(), options_);
        addPublication(arguments(), options_);
        addResult(arguments(), options_, "Keep the last run's result in FILE");
        addPolling(arguments(), options_.polls);
        addDiagnostics(arguments(), options_.diagnostics);
        addMeasures(arguments(), options_.diagnostics);
        addReport(arguments(), options_.diagnostics);
    }

private:
    Options finish() override {
        if (options_.output == kStandardOutput) {
            return wrongUsage("--output: standard output (-) cannot be made anew");
        }
        const std::optional<std::string> fault = finishPublication(options_);
        return fault ? Options(wrongUsage(*fault)) : Options(options_);
    }

    WatchOptions options_;
};

class CheckCommand final : public Command {
public:
    explicit CheckCommand(CLI::App& program)
        : Command(program, "check", "Look for what is wrong with a DITA map; writes no output",
                  footerText(kCheckExample, "Findings go to standard error.")) {
        addMap(arguments(), options_);
        addFormat(arguments(), options_);
        arguments().addText("-o,--output", options_.output,
                            "Where the output would go; it is only looked at", "OUT");
        addOneLocation(arguments(), options_);
        addFilters(arguments(), options_);
        arguments().addList("--each-filter", options_.eachFilters,
                            "A DITAVAL file to check with in a run of its own; may be given "
                            "several times, and each finding says with which of them it shows",
                            "FILE");
        addCatalog(arguments(), options_.catalogs);
        addPrint(arguments(), options_);
        addRepetition(arguments(), options_);
        addDiagnostics(arguments(), options_.diagnostics);
        addMeasures(arguments(), options_.diagnostics);
        addReport(arguments(), options_.diagnostics);
    }

private:
    Options finish() override {
        if (const std::optional<std::string> fault = findContradiction(options_)) {
            return wrongUsage(*fault);
        }
        if (options_.diagnostics.report && !options_.eachFilters.empty()) {
            return wrongUsage(
                "--report: each of --each-filter makes another publication; a page "
                "shows one");
        }
        return options_;
    }

    CheckOptions options_;
};

/// A command that tells what a run has met. Findings count for nothing.
template <class Wish>
class SurveyCommand : public Command {
protected:
    using Command::Command;

    /// Adds what all of them take.
    void addRun() {
        addFilters(arguments(), options_);
        addCatalog(arguments(), options_.catalogs);
        addPrint(arguments(), options_);
        addDiagnostics(arguments(), options_.diagnostics, FindingsCount::kForNothing);
    }

    /// The sentence about options that make no sense together; empty when all do.
    virtual std::optional<std::string> findFault() const {
        return findDiagnosticsFault(options_.diagnostics);
    }

    Wish options_;

private:
    Options finish() override {
        if (const std::optional<std::string> fault = findFault()) {
            return wrongUsage(*fault);
        }
        return options_;
    }
};

class KeysCommand final : public SurveyCommand<KeysOptions> {
public:
    explicit KeysCommand(CLI::App& program)
        : SurveyCommand(
              program, "keys", "Tell the keys of a DITA map",
              footerText(kKeysExample,
                         "Keys go to standard output. Findings go to standard error, and count "
                         "for nothing.")) {
        addMap(arguments(), options_);
        const Choices<KeyFormat> formats{
            {"table", KeyFormat::kTable}, {"csv", KeyFormat::kCsv}, {"json", KeyFormat::kJson}};
        arguments().addChoice("-f,--format", "format", options_.keyFormat, formats,
                              "How keys are shown: table, csv, or json (an object a line)",
                              "FORMAT");
        addRepetition(arguments(), options_);
        arguments().addText("--explain", options_.explained,
                            "Show this key only: all definitions in the order in which they are "
                            "met, which of them counts, and why",
                            "NAME");
        addRun();
    }
};

class DepsCommand final : public SurveyCommand<DepsOptions> {
public:
    explicit DepsCommand(CLI::App& program)
        : SurveyCommand(
              program, "deps", "Tell the files that the publication of a DITA map depends on",
              footerText(kDepsExample,
                         "Files go to standard output. Findings go to standard error, and "
                         "count for nothing.")) {
        addMap(arguments(), options_);
        const Choices<DependencyFormat> formats{{"list", DependencyFormat::kList},
                                                {"json", DependencyFormat::kJson},
                                                {"make", DependencyFormat::kMake}};
        arguments().addChoice("-f,--format", "format", options_.dependencyFormat, formats,
                              "How files are shown: list, json (an object a line), or make (a rule "
                              "without absent files)",
                              "FORMAT");
        arguments().addFlag("--edges", options_.showsEdges,
                            "Show who refers to whom, and not the files");
        arguments().addText("--reverse", options_.reverse,
                            "Show only what leads to FILE, by any number of references", "FILE");
        arguments().addText("-o,--output", options_.output,
                            "make: the target of the rule; the map's name with .dita unless given",
                            "OUT");
        addRun();
    }

private:
    std::optional<std::string> findFault() const override {
        const bool isRule = options_.dependencyFormat == DependencyFormat::kMake;
        if (isRule && (options_.showsEdges || options_.reverse)) {
            return std::string(options_.showsEdges ? "--edges" : "--reverse") +
                   ": a rule for make names all files";
        }
        if (!isRule && !options_.output.empty()) {
            return "--output: this is for --format make only";
        }
        return SurveyCommand::findFault();
    }
};

class DoctorCommand final : public SurveyCommand<DoctorOptions> {
public:
    explicit DoctorCommand(CLI::App& program)
        : SurveyCommand(
              program, "doctor", "Tell what this machine lacks for publishing",
              footerText(kDoctorExample,
                         "Without a map a small one of its own is published, with each of "
                         "DITA's document types. Findings go to standard error, and count for "
                         "nothing.")) {
        arguments().addText("MAP", options_.map,
                            "A DITA map: what its documents need is told, and nothing else",
                            "FILE");
        addRun();
    }

private:
    std::optional<std::string> findFault() const override {
        const DiagnosticsOptions& diagnostics = options_.diagnostics;
        const bool isOfFindings = diagnostics.file || diagnostics.sarif || diagnostics.junit;
        if (options_.map.empty() && (isOfFindings || !options_.filters.empty())) {
            return std::string("MAP: ") +
                   (isOfFindings ? "there are findings of a map only"
                                 : "--filter is about its documents, and there is none");
        }
        return SurveyCommand::findFault();
    }
};

class HostCommand final : public Command {
public:
    explicit HostCommand(CLI::App& program)
        : Command(
              program, "host", "Send publish requests to the client module",
              footerText(kHostExample, "Standard output gets one line of JSON for each request.")) {
        arguments()
            .addList("REQUEST", options_.requests,
                     "Files with one JSON request each, or - for standard input", "FILE")
            .required()
            ->expected(CLI::detail::expected_max_vector_size);
        addCatalog(arguments(), options_.catalogs);
        arguments().addFlag("--no-xml-utilities", hasNoXmlUtilities_,
                            "Do without the client that finds DTDs");
        arguments().addText("--open-documents", options_.openDocuments,
                            "The session's open documents: a JSON array of "
                            "{\"id\":7,\"path\":\"/abs/a.dita\",\"flag\":1}",
                            "FILE");
        arguments().addText("--trace", options_.trace,
                            "Write each host operation as one line of JSON; empties FILE, which "
                            "may be none that is read",
                            "FILE");
    }

private:
    Options finish() override {
        if (std::count(options_.requests.begin(), options_.requests.end(), "-") > 1) {
            return wrongUsage("REQUEST: standard input (-) is there more than once");
        }
        options_.hasXmlUtilities = !hasNoXmlUtilities_;
        return options_;
    }

    HostOptions options_;
    bool hasNoXmlUtilities_ = false;
};

class ExplainCommand final : public Command {
public:
    explicit ExplainCommand(CLI::App& program)
        : Command(program, "explain", "Tell what a finding means, and what helps",
                  footerText(kExplainExample, "")) {
        const CLI::Option& finding = arguments().addText(
            "ID", options_.id, "The id of a finding, such as MP105; without it, all are listed",
            "ID");
        arguments().setChoices(finding, findingIds());
        addLanguage(arguments(), options_.language);
    }

private:
    Options finish() override {
        if (options_.id && !defaultSeverity(*options_.id)) {
            return wrongUsage(unknownIdText(*options_.id));
        }
        return options_;
    }

    ExplainOptions options_;
};

class CompletionCommand final : public Command {
public:
    explicit CompletionCommand(CLI::App& program)
        : Command(program, "completion", "Show a script that completes command lines",
                  footerText(kCompletionExample, "")) {
        const Choices<Shell> shells{{"bash", Shell::kBash}};
        arguments()
            .addChoice("SHELL", "shell", shell_, shells, "The shell: bash", "SHELL")
            .required();
        arguments().addText("--keys-of", options_.map,
                            "Show no script but the keys of MAP that a short look at its text "
                            "finds, one a line",
                            "MAP");
    }

private:
    enum class Shell { kBash };

    Options finish() override { return options_; }

    CompletionOptions options_;
    Shell shell_ = Shell::kBash;
};

class HelpCommand final : public Command {
public:
    explicit HelpCommand(CLI::App& program)
        : Command(program, "help", "Show this help, or that of a command", ""), program_(program) {
        arguments().addText("COMMAND", topic_, "The command", "COMMAND");
    }

private:
    Options finish() override {
        if (!topic_) {
            const CLI::AppFormatMode mode = CLI::AppFormatMode::Normal;
            return Information{program_.get_formatter()->make_help(&program_, kProgramName, mode)};
        }
        if (!hasCommand(program_, *topic_)) {
            return wrongUsage(unknownCommandText(program_, *topic_));
        }
        return Information{program_.get_subcommand(*topic_)->help(kProgramName)};
    }

    CLI::App& program_;
    std::optional<std::string> topic_;
};

class VersionCommand final : public Command {
public:
    explicit VersionCommand(CLI::App& program)
        : Command(program, "version", kVersionDescription, "") {}

private:
    Options finish() override { return Information{versionText()}; }
};

}  // namespace

std::vector<std::unique_ptr<Command>> makeCommands(CLI::App& program) {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(std::make_unique<PublishCommand>(program));
    commands.push_back(std::make_unique<WatchCommand>(program));
    commands.push_back(std::make_unique<CheckCommand>(program));
    commands.push_back(std::make_unique<KeysCommand>(program));
    commands.push_back(std::make_unique<DepsCommand>(program));
    commands.push_back(std::make_unique<DoctorCommand>(program));
    addBatchCommands(program, commands);
    commands.push_back(std::make_unique<ExplainCommand>(program));
    commands.push_back(std::make_unique<HostCommand>(program));
    commands.push_back(std::make_unique<CompletionCommand>(program));
    commands.push_back(std::make_unique<HelpCommand>(program));
    commands.push_back(std::make_unique<VersionCommand>(program));
    return commands;
}

std::string unknownCommandText(const CLI::App& program, const std::string& name) {
    return unknownValueText("command", name, commandNames(program));
}

bool hasCommand(const CLI::App& program, const std::string& name) {
    const std::vector<const CLI::App*> commands = program.get_subcommands(nullptr);
    return std::any_of(commands.begin(), commands.end(),
                       [&name](const CLI::App* command) { return command->get_name() == name; });
}

std::vector<std::string> commandNames(const CLI::App& program) {
    std::vector<std::string> names;
    for (const CLI::App* const command : program.get_subcommands(nullptr)) {
        if (command->get_group() == kCommandGroup) {
            names.push_back(command->get_name());
        }
    }
    return names;
}

}  // namespace marrowpress
