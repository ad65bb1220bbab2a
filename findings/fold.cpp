#include "findings/fold.h"

#include <algorithm>
#include <boost/container_hash/hash.hpp>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace marrowpress {
namespace {

constexpr std::size_t kShareOfArtefacts = 2;
constexpr std::size_t kFirstCapacity = 16;

std::size_t hashOf(const Finding& finding) {
    std::size_t hash = 0;
    boost::hash_combine(hash, finding.id);
    boost::hash_combine(hash, finding.target);
    boost::hash_combine(hash, static_cast<int>(finding.severity));
    boost::hash_combine(hash, finding.isArtefact);
    if (finding.isPerFile) {
        boost::hash_combine(hash, finding.place.file);
    }
    return hash;
}

std::size_t hashOf(std::uint32_t index, const FindingPlace& place) {
    std::size_t hash = 0;
    boost::hash_combine(hash, index);
    boost::hash_combine(hash, place.file);
    boost::hash_combine(hash, place.line);
    boost::hash_combine(hash, place.column);
    return hash;
}

bool isSame(const Finding& left, const Finding& right) {
    return left.id == right.id && left.severity == right.severity && left.target == right.target &&
           left.isArtefact == right.isArtefact &&
           (!left.isPerFile || left.place.file == right.place.file);
}

bool hasRoom(std::size_t kept, std::size_t keptArtefacts, bool isArtefact, std::size_t most) {
    return kept < most && (!isArtefact || keptArtefacts < most / kShareOfArtefacts);
}

template <typename Value>
void takeWhereEmpty(Value& value, Value& other) {
    if (value.empty()) {
        value = std::move(other);
    }
}

/// Gives back what texts that were put together have to spare.
void shrink(Finding& finding) {
    for (std::string* text : {&finding.text, &finding.element, &finding.target, &finding.hint}) {
        text->shrink_to_fit();
    }
    finding.via.shrink_to_fit();
    for (FindingStep& step : finding.via) {
        step.what.shrink_to_fit();
    }
}

void addProfiles(std::vector<std::string>& profiles, std::vector<std::string>& others) {
    for (std::string& other : others) {
        if (std::find(profiles.begin(), profiles.end(), other) == profiles.end()) {
            profiles.push_back(std::move(other));
        }
    }
}

}  // namespace

void FindingList::add(Finding finding) {
    const std::size_t hash = hashOf(finding);
    if (const auto index = find(hash, finding)) {
        fold(*index, std::move(finding));
    } else if (hasRoom(kept_.findings, keptArtefacts_.findings, finding.isArtefact,
                       kMostFindings)) {
        keep(hash, std::move(finding));
    } else {
        drop(finding);
    }
}

void FindingList::addDropped(const FindingList& other) {
    dropped_ += other.dropped_;
    // An empty one is less than each severity.
    worstDropped_ = std::max(worstDropped_, other.worstDropped_);
}

std::vector<Finding> FindingList::take() {
    return std::exchange(*this, FindingList()).findings_;
}

std::optional<std::uint32_t> FindingList::find(std::size_t hash, const Finding& finding) const {
    const auto [first, last] = findingsByHash_.equal_range(hash);
    const auto found = std::find_if(first, last, [&](const auto& candidate) {
        return isSame(findings_[candidate.second], finding);
    });
    return found == last ? std::nullopt : std::optional(found->second);
}

void FindingList::keep(std::size_t hash, Finding finding) {
    ++kept_.findings;
    keptArtefacts_.findings += finding.isArtefact ? 1 : 0;
    const auto index = static_cast<std::uint32_t>(findings_.size());
    findingsByHash_.emplace(hash, index);
    const std::vector<FindingPlace> places = std::exchange(finding.places, {});
    shrink(finding);
    if (findings_.size() == findings_.capacity()) {
        findings_.reserve(std::min(findings_.size() * 2 + kFirstCapacity, kMostFindings));
    }
    findings_.push_back(std::move(finding));
    for (const FindingPlace& place : places) {
        addPlace(index, place);
    }
}

void FindingList::drop(const Finding& finding) {
    if (!finding.isArtefact) {
        ++dropped_;
        worstDropped_ = std::max(worstDropped_.value_or(finding.severity), finding.severity);
    }
}

void FindingList::fold(std::uint32_t index, Finding finding) {
    addPlace(index, std::move(finding.place));
    for (FindingPlace& place : finding.places) {
        addPlace(index, std::move(place));
    }
    Finding& kept = findings_[index];
    addProfiles(kept.profiles, finding.profiles);
    takeWhereEmpty(kept.via, finding.via);
    takeWhereEmpty(kept.hint, finding.hint);
    if (!kept.hostText) {
        kept.hostText = std::move(finding.hostText);
    }
}

void FindingList::addPlace(std::uint32_t index, FindingPlace place) {
    Finding& finding = findings_[index];
    const std::size_t hash = hashOf(index, place);
    if (place.file.empty() || place == finding.place || hasPlace(hash, index, place)) {
        return;
    }
    if (!hasRoom(kept_.places, keptArtefacts_.places, finding.isArtefact, kMostPlaces)) {
        dropped_ += finding.isArtefact ? 0 : 1;
        return;
    }
    ++kept_.places;
    keptArtefacts_.places += finding.isArtefact ? 1 : 0;
    placesByHash_.emplace(hash,
                          PlaceIndex{index, static_cast<std::uint32_t>(finding.places.size())});
    finding.places.push_back(std::move(place));
}

bool FindingList::hasPlace(std::size_t hash, std::uint32_t index, const FindingPlace& place) const {
    const auto [first, last] = placesByHash_.equal_range(hash);
    return std::any_of(first, last, [&](const auto& candidate) {
        const auto [finding, position] = candidate.second;
        return finding == index && findings_[finding].places[position] == place;
    });
}

FindingSummary summarize(const std::vector<Finding>& findings) {
    FindingSummary summary;
    std::unordered_set<std::string_view> files;
    for (const Finding& finding : findings) {
        if (finding.isArtefact) {
            continue;
        }
        std::size_t& count = finding.severity == Severity::kError     ? summary.errors
                             : finding.severity == Severity::kWarning ? summary.warnings
                                                                      : summary.notes;
        ++count;
        if (!finding.place.file.empty()) {
            files.insert(finding.place.file);
        }
    }
    summary.files = files.size();
    return summary;
}

}  // namespace marrowpress
