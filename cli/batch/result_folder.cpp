#include "cli/batch/result_folder.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "cli/file_failure.h"
#include "cli/file_replacement.h"
#include "host/file_text.h"
#include "results/result_json.h"

namespace marrowpress {

namespace fs = std::filesystem;

ResultFolder::ResultFolder(const fs::path& folder, Warning warn)
    : folder_(fs::absolute(folder).lexically_normal()), warn_(std::move(warn)) {}

fs::path ResultFolder::pathOf(const std::string& id) const {
    return folder_ / (id + ".json");
}

std::optional<RunResult> ResultFolder::find(const std::string& id) const {
    if (const auto known = overruling_.find(id); known != overruling_.end()) {
        return known->second;
    }
    const fs::path path = pathOf(id);
    std::error_code ignored;
    if (!fs::exists(path, ignored)) {
        return std::nullopt;
    }
    try {
        RunResult result = readResult(path);
        if (result.id == id) {
            return result;
        }
        warnOnce(id, "it is the result of `" + result.id + "`");
    } catch (const ResultError& fault) {
        warnOnce(id, fault.what());
    }
    return std::nullopt;
}

void ResultFolder::warnOnce(const std::string& id, const std::string& what) const {
    if (warned_.insert(id).second) {
        warn_(pathOf(id).string() + " counts as absent: " + what);
    }
}

std::string ResultFolder::textOf(const std::string& id) const {
    if (const auto known = overruling_.find(id); known != overruling_.end()) {
        return resultText(known->second);
    }
    try {
        return readFile(pathOf(id).string());
    } catch (const std::system_error&) {
        return {};
    }
}

void ResultFolder::make() const {
    std::error_code error;
    fs::create_directories(folder_, error);
    if (error) {
        throw FileFailure(FileAction::kWrite, folder_.string(), error.message());
    }
}

void ResultFolder::put(const RunResult& result) const {
    make();
    replaceFile(pathOf(result.id), resultText(result));
}

void ResultFolder::overrule(RunResult result) {
    const std::string id = result.id;
    overruling_.insert_or_assign(id, std::move(result));
}

void ResultFolder::remove(const std::string& id) const {
    // Never a folder, not even an empty one.
    if (unlink(pathOf(id).c_str()) != 0 && errno != ENOENT) {
        throw FileFailure(FileAction::kWrite, pathOf(id).string(),
                          std::generic_category().message(errno));
    }
}

}  // namespace marrowpress
