#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "findings/finding.h"

namespace marrowpress {

/// Findings in the order in which they were met, those about the same thing as one.
///
/// Same are findings of one id, severity and target; an artefact only with artefacts. The first
/// one's place and text stay. The places of all others stand once in `places`, which never holds
/// the finding's own. Their profiles are added, and their `via`, `hint` and `hostText` where there
/// was none.
///
/// What is kept is limited, so that no number of faults eats the memory. Artefacts get half of
/// either limit at most, and so never crowd out what counts.
class FindingList {
public:
    static constexpr std::size_t kMostFindings = 10'000;
    /// Further ones, of all findings together.
    static constexpr std::size_t kMostPlaces = 10'000;

    void add(Finding finding);

    /// Counts what `other` could not keep as dropped here.
    void addDropped(const FindingList& other);

    const std::vector<Finding>& findings() const noexcept { return findings_; }

    /// Gives the findings away; the list is empty then.
    std::vector<Finding> take();

    /// How often a finding or a place was met that could not be kept; artefacts don't count.
    std::size_t dropped() const noexcept { return dropped_; }

    /// The highest severity of a finding that could not be kept; empty when there is none.
    std::optional<Severity> worstDropped() const noexcept { return worstDropped_; }

private:
    struct Counts {
        std::size_t findings = 0;
        std::size_t places = 0;
    };

    /// Where a further place stands.
    struct PlaceIndex {
        std::uint32_t finding;
        std::uint32_t place;
    };

    std::optional<std::uint32_t> find(std::size_t hash, const Finding& finding) const;
    void keep(std::size_t hash, Finding finding);
    void drop(const Finding& finding);
    void fold(std::uint32_t index, Finding finding);
    void addPlace(std::uint32_t index, FindingPlace place);
    bool hasPlace(std::size_t hash, std::uint32_t index, const FindingPlace& place) const;

    std::vector<Finding> findings_;
    std::unordered_multimap<std::size_t, std::uint32_t> findingsByHash_;
    std::unordered_multimap<std::size_t, PlaceIndex> placesByHash_;
    Counts kept_;
    Counts keptArtefacts_;
    std::size_t dropped_ = 0;
    std::optional<Severity> worstDropped_;
};

/// The counts of errors, warnings, notes and of the files that they stand in. Artefacts are left
/// out; all that only the run knows stays 0.
FindingSummary summarize(const std::vector<Finding>& findings);

}  // namespace marrowpress
