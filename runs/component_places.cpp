#include "runs/component_places.h"

#include <system_error>
#include <utility>

#include "findings/catalogue.h"
#include "findings/run_facts.h"
#include "findings/shown_path.h"
#include "findings/wording.h"
#include "marrowpress/output_names.h"
#include "runs/written_composite.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr const char* kId = "MP211";

bool isForeign(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored) && !isWrittenComposite(path);
}

/// Moves the file at `path` to a free name beside it; empty when that cannot be done.
std::string moveAside(const fs::path& path) {
    constexpr int kMostNames = 1000;
    for (int number = 1; number <= kMostNames; ++number) {
        fs::path kept = path;
        kept += ".kept-" + std::to_string(number);
        std::error_code error;
        if (fs::exists(fs::symlink_status(kept, error))) {
            continue;
        }
        fs::rename(path, kept, error);
        return error ? std::string() : kept.string();
    }
    return {};
}

}  // namespace

void ComponentPlaces::observe(const Observation& observation) {
    if (observation.kind != ObservationKind::kComponent) {
        return;
    }
    Component component{intendedPath(observation).string(), observation.detail, {}, {}, {}};
    component.element = observation.element;
    if (observation.stepCount > 0) {
        component.reference = placeOf(observation.steps[0].place);
    }
    const std::size_t index = components_.size();
    const auto [first, isNew] = firstAt_.emplace(component.path, index);
    if (isNew) {
        lookAt(component);
    } else if (component.source.empty() || component.source != components_[first->second].source) {
        clashes_.emplace_back(first->second, index);
    }
    components_.push_back(std::move(component));
}

/// Where the component would stand if it were written as it was asked for.
fs::path ComponentPlaces::intendedPath(const Observation& component) const {
    const fs::path path = component.target;
    const fs::path source = component.detail;
    if (!source.empty() && !places_.isAtOneLocation) {
        return source.parent_path() / path.filename();
    }
    return places_.intended / path.lexically_relative(places_.written);
}

void ComponentPlaces::lookAt(const Component& component) {
    if (!fs::path(component.path).is_absolute() || !isForeign(component.path)) {
        return;
    }
    foreign_.push_back(
        {component, places_.isOnlyLookedAt ? std::string() : moveAside(component.path)});
}

std::vector<std::string> ComponentPlaces::paths() const {
    std::vector<std::string> paths;
    for (const auto& [path, index] : firstAt_) {
        if (fs::path(path).is_absolute()) {
            paths.push_back(path);
        }
    }
    return paths;
}

void ComponentPlaces::addFindings(FindingCollector& collector) const {
    const std::string& folder = collector.context().currentFolder;
    const auto findingAt = [&](const Component& component) {
        Finding finding;
        finding.id = kId;
        finding.severity = *defaultSeverity(kId);
        finding.place = component.reference;
        finding.element = component.element;
        finding.target = component.path;
        finding.profiles = collector.context().profiles;
        return finding;
    };
    for (const auto& [first, second] : clashes_) {
        const Component& earlier = components_[first];
        const Component& later = components_[second];
        Finding finding = findingAt(later);
        finding.places = {earlier.reference};
        finding.text =
            sameComponentText(shownPath(later.path, folder), shownPath(earlier.source, folder),
                              shownPath(later.source, folder));
        finding.hint = sameComponentHint();
        collector.add(std::move(finding));
    }
    for (const Foreign& foreign : foreign_) {
        Finding finding = findingAt(foreign.component);
        finding.text = foreignFileText(shownPath(foreign.component.path, folder));
        if (!foreign.kept.empty()) {
            finding.hint = foreignFileKeptHint(shownPath(foreign.kept, folder));
        }
        collector.add(std::move(finding));
    }
}

}  // namespace marrowpress
