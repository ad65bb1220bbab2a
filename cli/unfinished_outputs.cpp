#include "cli/unfinished_outputs.h"

#include "marrowpress/output_names.h"

namespace marrowpress {
namespace {

std::string asideOf(const std::string& path) {
    return path + std::string(kAsideSuffix);
}

}  // namespace

UnfinishedOutputs::UnfinishedOutputs(const std::vector<NamedPath>& outputs) {
    for (const NamedPath& output : outputs) {
        add(output.path.string(), Removal::kNewFile);
    }
}

void UnfinishedOutputs::observe(const Observation& observation) {
    const std::string path = observation.target;
    if (observation.kind == ObservationKind::kComponent) {
        add(path, Removal::kFile);
        add(asideOf(path), Removal::kFile);
    } else if (observation.kind == ObservationKind::kOutputWritten) {
        removals_.erase(path);
        removals_.erase(asideOf(path));
    }
}

void UnfinishedOutputs::add(const std::string& path, Removal removal) {
    removals_.try_emplace(path, path, removal);
}

}  // namespace marrowpress
