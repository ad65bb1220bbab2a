#include "library/served_run.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

#include "findings/collector.h"
#include "findings/json_writer.h"
#include "findings/profile.h"
#include "host/catalog_resolver.h"
#include "host/local_xml_input.h"
#include "host/utf8.h"
#include "library/failure.h"
#include "library/request_facts.h"
#include "marrowpress/observer.h"
#include "marrowpress/publish_status.h"
#include "runs/component_places.h"
#include "runs/dependency_json.h"
#include "runs/folder_wait.h"
#include "runs/key_json.h"
#include "runs/map_run.h"
#include "runs/outside_fragments.h"
#include "runs/private_folder.h"
#include "runs/profile_findings.h"
#include "runs/public_ids.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Gives libxml2 back to whoever uses it besides.
class LibxmlLoan {
public:
    LibxmlLoan() = default;
    LibxmlLoan(const LibxmlLoan&) = delete;
    LibxmlLoan& operator=(const LibxmlLoan&) = delete;
    ~LibxmlLoan() {
        // A catalog may be another one at the next run, and is a file that that depends on.
        forgetCatalogs();
        endLibxmlRestrictions();
    }
};

template <class Item>
std::vector<const Item*> pointersTo(const std::vector<Item>& items) {
    std::vector<const Item*> pointers;
    pointers.reserve(items.size());
    for (const Item& item : items) {
        pointers.push_back(&item);
    }
    return pointers;
}

std::vector<Profile> profilesOf(const RequestFacts& facts) {
    std::vector<Profile> profiles;
    if (!facts.filter.empty()) {
        std::variant<Profile, ProfileFault> read = readProfile(facts.filter.string());
        if (auto* const profile = std::get_if<Profile>(&read)) {
            profiles.push_back(std::move(*profile));
        }
    }
    return profiles;
}

FindingContext contextOf(const Order& order, const RequestFacts& facts) {
    std::error_code ignored;
    FindingContext context{fs::current_path(ignored).string(),
                           {},
                           shownCatalogs(order.catalogs),
                           false,
                           findListedCatalogFault(order.catalogs)};
    if (!facts.filter.empty()) {
        context.profiles.push_back(facts.filter.string());
    }
    return context;
}

/// Whether the client module could not be loaded for want of memory: the loader tells it by words
/// alone.
bool isOfMemory(std::string_view text) {
    return text.find(std::generic_category().message(ENOMEM)) != std::string_view::npos ||
           text.find("failed to map segment") != std::string_view::npos;
}

/// One request, from its folder to its result.
class ServedRun {
public:
    explicit ServedRun(const Order& order);

    ResultData serve();

private:
    RunSetting setting();
    void watch(const Observation& observation);
    bool waitFor(const std::string& folder) const;
    RunOutcome send();
    void gatherFindings(const RunOutcome& outcome);
    void gatherLists();
    std::vector<std::string> writtenFiles(const RunOutcome& outcome) const;
    std::string faultOf(const RunOutcome& outcome) const;

    bool isObserved() const { return !order_.has(MP_NO_FINDINGS); }

    const Order& order_;
    const RequestFacts facts_;
    const bool isTrial_;  ///< Nobody wants the output.
    std::optional<PrivateFolder> folder_;
    FindingCollector collector_;
    ComponentPlaces components_;
    DependencyList dependencies_;
    KeyList keys_;
    ResultData data_;
};

ServedRun::ServedRun(const Order& order)
    : order_(order),
      facts_(factsOf(order.request)),
      isTrial_(order.has(MP_CHECK | MP_SURVEY)),
      folder_(isTrial_ ? std::make_optional<PrivateFolder>() : std::nullopt),
      collector_(contextOf(order, facts_), {}),
      components_({isTrial_ ? folder_->path() : facts_.output, facts_.output,
                   facts_.isAtOneLocation, isTrial_}),
      dependencies_(facts_.map) {}

RunSetting ServedRun::setting() {
    RunSetting setting;
    setting.request = isTrial_ ? movedInto(folder_->path(), order_.request) : order_.request;
    setting.catalogs = order_.catalogs;
    setting.openDocuments = order_.documents;
    setting.resolvePublicId = order_.resolvePublicId;
    setting.endsBeforeOutput = order_.has(MP_SURVEY);
    if (isObserved()) {
        setting.collector = &collector_;
        setting.watch = [this](const Observation& observation) {
            components_.observe(observation);
            watch(observation);
        };
    }
    if (order_.has(MP_DEPENDENCIES | MP_KEYS)) {
        setting.watchReferences = [this](const Observation& observation) { watch(observation); };
    }
    if (order_.has(MP_DEPENDENCIES)) {
        setting.onCatalog = [this](const std::string& path) { dependencies_.addCatalog(path); };
    }
    return setting;
}

void ServedRun::watch(const Observation& observation) {
    if (order_.has(MP_DEPENDENCIES)) {
        dependencies_.observe(observation);
    }
    if (order_.has(MP_KEYS)) {
        keys_.observe(observation);
    }
}

/// Another process may write into the folder, as others of a pool do.
bool ServedRun::waitFor(const std::string& folder) const {
    constexpr std::chrono::milliseconds kStep{100};
    while (!waitForFolder(folder, std::chrono::steady_clock::now() + kStep)) {
        if (order_.isCancelled()) {
            throw RunInterrupted();
        }
    }
    return true;
}

RunOutcome ServedRun::send() {
    RunSinks sinks;
    sinks.onProgress = order_.onProgress;
    sinks.isInterrupted = [this] { return order_.isCancelled(); };
    const RunSetting how = setting();
    const fs::path folder = facts_.folder();
    try {
        return isTrial_ ? runRequest(how, sinks)
                        : runInTurn(
                              folder.string(), [&] { return waitFor(folder.string()); },
                              [&] { return runRequest(how, sinks); });
    } catch (const RunInterrupted&) {
        throw LibraryFailure(MP_CANCELLED, mp_code_text(MP_CANCELLED));
    } catch (const std::system_error& failure) {
        throw LibraryFailure(
            failure.code() == std::errc::not_enough_memory ? MP_NO_MEMORY : MP_SYSTEM,
            failure.what());
    } catch (const std::runtime_error& failure) {
        throw LibraryFailure(isOfMemory(failure.what()) ? MP_NO_MEMORY : MP_UNAVAILABLE,
                             failure.what());
    }
}

ResultData ServedRun::serve() {
    const RunOutcome outcome = send();
    const std::string& reason = collector_.facts().failure();
    data_.status = outcome.status;
    data_.values = outcome.answer;
    data_.error = faultOf(outcome);
    if (!data_.error.empty() && !reason.empty()) {
        data_.error += ": " + reason;
    }
    data_.isMemoryShort = !outcome.status || reason == kNotEnoughMemory;
    if (data_.error.empty() && !isTrial_) {
        for (const std::string& path : writtenFiles(outcome)) {
            data_.outputs.push_back(toValidUtf8(path));
        }
    }
    if (isObserved()) {
        gatherFindings(outcome);
        gatherLists();
    }
    return std::move(data_);
}

std::vector<std::string> ServedRun::writtenFiles(const RunOutcome& outcome) const {
    return facts_.isFlatBook ? outcome.components.value_or(std::vector<std::string>())
                             : std::vector<std::string>{facts_.output.string()};
}

/// Why the result is not there, or not whole; empty when it is.
std::string ServedRun::faultOf(const RunOutcome& outcome) const {
    if (const std::optional<std::string> fault = findStatusFault(outcome)) {
        return *fault;
    }
    return outcome.hasUnwrittenDocument ? "a document could not be written" : std::string();
}

void ServedRun::gatherFindings(const RunOutcome& outcome) {
    collector_.finish();
    components_.addFindings(collector_);
    const std::vector<Profile> profiles = profilesOf(facts_);
    addProfileFindings(profiles,
                       profiles.empty() ? std::vector<ProfileRule>() : profiles.front().rules,
                       collector_);
    const std::string map = facts_.map.string();
    const std::string output = facts_.output.string();
    // A finding has to be about a file, and not every request names one.
    if (!map.empty() || !output.empty()) {
        addFailure(outcome, map, isTrial_ || output.empty() ? map : output, collector_);
    }

    std::vector<Finding> findings = collector_.list().take();
    std::erase_if(findings, [](const Finding& finding) { return finding.isArtefact; });
    OutsideFragments fragments(collector_.context().currentFolder, {});
    std::ostringstream out;
    for (Finding& finding : findings) {
        finding = isTrial_ ? fragments.lookedAt(std::move(finding)) : std::move(finding);
    }
    writeJson(out, findings, {});
    data_.findings = out.str();
    // The summary is the last line, and counts for a command alone.
    data_.findings.pop_back();
    data_.findings.resize(data_.findings.rfind('\n') + 1);
}

void ServedRun::gatherLists() {
    if (order_.has(MP_DEPENDENCIES)) {
        if (!facts_.filter.empty()) {
            dependencies_.addProfiles({facts_.filter});
        }
        dependencies_.finish();
        data_.dependencies = dependencyJson(pointersTo(dependencies_.files()));
    }
    if (order_.has(MP_KEYS)) {
        keys_.finish();
        data_.keys = keyJson(keys_, pointersTo(keys_.keys()));
    }
}

}  // namespace

ResultData serve(const Order& order) {
    const LibxmlLoan loan;
    try {
        return ServedRun(order).serve();
    } catch (const ScratchError& failure) {
        throw LibraryFailure(MP_SYSTEM, failure.what());
    }
}

}  // namespace marrowpress
