#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "findings/finding.h"

namespace marrowpress {

/// What is left of a run's findings when those of an earlier run are taken away.
struct NewFindings {
    std::vector<Finding> findings;
    std::size_t knownPlaces = 0;  ///< How many were taken away.
};

/// What an earlier run found, against which the findings of a later one are new or known.
class Baseline {
public:
    /// @param folder  What the paths of the earlier run are relative to, absolute.
    explicit Baseline(std::string folder) : folder_(std::move(folder)) {}

    /// Takes in a finding of the earlier run, unless it is an artefact.
    void add(const Finding& recorded);

    /// Takes away the places that are known: as many of an id, file, element and target as were
    /// recorded, the first ones met, whatever their lines and severity. A finding without a new
    /// place is gone. One whose own place is known has the first new one instead, and no `via`,
    /// which would lead from elsewhere. Artefacts stay.
    ///
    /// @param folder  What the paths of `findings` are relative to, absolute.
    NewFindings newOf(std::vector<Finding> findings, std::string_view folder) const;

private:
    std::string folder_;
    std::unordered_map<std::string, std::size_t> counts_;
};

}  // namespace marrowpress
