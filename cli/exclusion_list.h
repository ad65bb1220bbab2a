#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "cli/place_order.h"
#include "findings/finding.h"
#include "marrowpress/observer.h"

namespace marrowpress {

/// An element that the profile leaves out.
struct ExcludedElement {
    FindingPlace place;
    std::string element;    ///< Tag name.
    std::string attribute;  ///< By which it falls; may be empty.
    std::string value;      ///< Of that attribute; empty where it cannot be read from the source.
    std::string target;     ///< The file that it refers to, absolute; may be empty.
};

/// What the profile leaves out, as a run tells of it: each start tag once, the outermost of those
/// that stand in each other.
class ExclusionList {
public:
    static constexpr std::size_t kMost = 20'000;

    void observe(const Observation& observation);

    /// To be called once, when the run is over. Reads the values from the sources.
    void finish();

    /// By file and place.
    const std::vector<ExcludedElement>& elements() const noexcept { return elements_; }
    /// Those of one file.
    std::span<const ExcludedElement> in(const std::string& file) const;
    /// Null for an element that stays.
    const ExcludedElement* find(const FindingPlace& place) const;
    /// How many were not kept.
    std::size_t dropped() const noexcept { return dropped_; }

private:
    std::vector<ExcludedElement> elements_;
    std::map<FindingPlace, std::size_t, PlaceOrder> index_;
    std::size_t dropped_ = 0;
};

}  // namespace marrowpress
