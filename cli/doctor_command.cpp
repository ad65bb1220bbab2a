#include "cli/doctor_command.h"

#include <langinfo.h>

#include <clocale>
#include <filesystem>
#include <ostream>
#include <system_error>

#include "cli/doctor_report.h"
#include "cli/document_grammars.h"
#include "cli/output_folder.h"
#include "cli/scratch_folder.h"
#include "cli/survey.h"
#include "cli/trial_publication.h"
#include "host/catalog_resolver.h"
#include "runs/public_ids.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDoctor = "doctor";

/// The name of the character set that the environment asks for. The process has none of its own.
std::string environmentCharset() {
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (!locale) {
        return "?";
    }
    std::string name = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    return name;
}

std::vector<CheckedPlace> checkCatalogs(const std::vector<std::string>& named) {
    std::vector<CheckedPlace> catalogs;
    for (const std::string& catalog : catalogsInUse(named)) {
        const std::string path = catalogPath(catalog).string();
        std::string fault = findCatalogFault(catalog).value_or("");
        const std::string naming = path + ": ";
        catalogs.push_back({path, fault.starts_with(naming) ? fault.substr(naming.size()) : fault});
    }
    return catalogs;
}

CheckedPlace currentFolder() {
    const fs::path folder = fs::current_path();
    const std::error_code error = findWriteError(folder);
    return {folder.string(), error ? error.message() : std::string()};
}

CheckedPlace passingFolder() {
    try {
        return {ScratchFolder().path().parent_path().string(), {}};
    } catch (const ScratchError& failure) {
        return {{}, failure.what()};
    }
}

void addSurroundings(DoctorReport& report, const CheckedPlace& passing) {
    report.addFolders(currentFolder(), passing);
    report.addCharset(environmentCharset());
}

ExitCode give(const DoctorReport& report, const Streams& streams) {
    const bool isWritten = writeResult(streams, report.text());
    return isWritten && report.isSound() ? ExitCode::kSuccess : ExitCode::kRunFailed;
}

ExitCode examineMachine(const DoctorOptions& options, const Streams& streams) {
    if (const std::optional<std::string> fault = findCatalogOptionFault(options.catalogs)) {
        streams.err << usageErrorText(kDoctor, *fault);
        return ExitCode::kWrongUsage;
    }
    DoctorReport report;
    report.addCatalogs(checkCatalogs(options.catalogs));
    const CheckedPlace passing = passingFolder();
    if (passing.fault.empty()) {
        const Trial trial = tryPublication(options.catalogs);
        report.addTypes(trial.types);
        report.addEncodings(trial.encodings);
    }
    addSurroundings(report, passing);
    return give(report, streams);
}

ExitCode examineMap(const DoctorOptions& options, const Streams& streams) {
    DocumentGrammars grammars;
    const auto giveResult = [&](const Streams& taker) {
        DoctorReport report;
        report.addCatalogs(checkCatalogs(options.catalogs));
        report.addUses(grammars.uses(), fs::current_path().string());
        addSurroundings(report, passingFolder());
        return give(report, taker);
    };
    return runSurvey({kDoctor,
                      options,
                      [&grammars](const Observation& met) { grammars.observe(met); },
                      {},
                      giveResult},
                     streams);
}

}  // namespace

ExitCode runDoctor(const DoctorOptions& options, const Streams& streams) {
    return options.map.empty() ? examineMachine(options, streams) : examineMap(options, streams);
}

}  // namespace marrowpress
