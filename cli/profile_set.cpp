#include "cli/profile_set.h"

#include <fstream>
#include <utility>
#include <variant>

#include "cli/input_faults.h"
#include "findings/profile_merge.h"
#include "findings/wording.h"
#include "runs/profile_findings.h"

namespace marrowpress {
namespace {

/// A file that is done without, though the client never sees that it is missing.
Finding unusableFinding(const NamedPath& file, const ProfileFault& fault) {
    const std::string path = file.path.string();
    Finding finding;
    finding.id = "MP106";
    finding.severity = Severity::kWarning;
    finding.place = fault.place;
    finding.place.file = path;
    finding.target = path;
    finding.text = cannotReadText(file.shown, fault.reason);
    finding.hint = withoutFilterHint();
    finding.profiles = {path};
    return finding;
}

}  // namespace

ProfileSet::ProfileSet(const std::vector<NamedPath>& files, bool isOptional) {
    for (const NamedPath& file : files) {
        names_.push_back(file.path.string());
        read(file, isOptional);
    }
    if (files.size() == 1) {
        file_ = files.front().path;
        unusable_.clear();  // the client tells of it
        if (!profiles_.empty()) {
            rules_ = profiles_.front().rules;
        }
    } else if (!fault_ && !files.empty()) {
        merge();
    }
}

void ProfileSet::read(const NamedPath& file, bool isOptional) {
    std::variant<Profile, ProfileFault> read = readProfile(file.path.string());
    if (const auto* const failure = std::get_if<ProfileFault>(&read)) {
        if (isOptional) {
            unusable_.push_back(unusableFinding(file, *failure));
        } else if (!fault_) {
            fault_ = profileFaultText(file.argument, file.shown, *failure);
        }
        return;
    }
    auto& profile = std::get<Profile>(read);
    if (!isOptional && !fault_) {
        fault_ = findProfileRootFault(file.argument, file.shown, profile);
    }
    profiles_.push_back(std::move(profile));
}

void ProfileSet::merge() {
    if (profiles_.empty()) {
        return;
    }
    MergedProfile merged = mergeProfiles(profiles_);
    rules_ = std::move(merged.rules);
    scratch_ = std::make_unique<ScratchFolder>();
    file_ = scratch_->path() / "filters.ditaval";
    std::ofstream out(*file_, std::ios::binary);
    out << merged.text;
    out.close();
    if (!out) {
        throw ScratchError("cannot write " + file_->string());
    }
}

void ProfileSet::addFindings(FindingCollector& collector) const {
    for (const Finding& finding : unusable_) {
        collector.add(finding);
    }
    addProfileFindings(profiles_, rules_, collector);
}

}  // namespace marrowpress
