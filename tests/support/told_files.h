#pragma once

#include <string>

#include "runs/dependency_list.h"
#include "tests/support/observations.h"

namespace marrowpress {

/// Tells a list of files what a run would tell it. Places are in column 3.
class ToldFiles {
public:
    void refer(ReferenceKind kind, const std::string& from, std::uint32_t line,
               const std::string& to) {
        const ObservedStep step{{from.c_str(), line, 3}, "", ""};
        Observation met = observationOf(ObservationKind::kFileReference, to.c_str());
        met.code = static_cast<std::uint32_t>(kind);
        met.steps = &step;
        list.observe(met);
    }

    void open(const std::string& path, ObservationKind kind = ObservationKind::kDocumentRead,
              const char* root = "topic") {
        Observation met = observationOf(kind, path.c_str());
        met.element = root;
        list.observe(met);
    }

    void name(const std::string& from, const std::string& entity) {
        Observation met = observationOf(ObservationKind::kEntity, entity.c_str());
        met.detail = from.c_str();
        list.observe(met);
    }

    DependencyList list{"/w/m.ditamap"};
};

}  // namespace marrowpress
