#include "findings/baseline.h"

#include <utility>

#include "findings/identity.h"

namespace marrowpress {
namespace {

/// Its own place and all others.
std::vector<FindingPlace> allPlaces(const Finding& finding) {
    std::vector<FindingPlace> places{finding.place};
    places.insert(places.end(), finding.places.begin(), finding.places.end());
    return places;
}

void setPlaces(Finding& finding, std::vector<FindingPlace> places) {
    if (places.front() != finding.place) {
        finding.via.clear();
    }
    finding.place = std::move(places.front());
    places.erase(places.begin());
    finding.places = std::move(places);
}

}  // namespace

void Baseline::add(const Finding& recorded) {
    if (recorded.isArtefact) {
        return;
    }
    for (const FindingPlace& place : allPlaces(recorded)) {
        ++counts_[identityOf(recorded, place, folder_)];
    }
}

NewFindings Baseline::newOf(std::vector<Finding> findings, std::string_view folder) const {
    NewFindings result;
    std::unordered_map<std::string, std::size_t> left = counts_;
    for (Finding& finding : findings) {
        if (finding.isArtefact) {
            result.findings.push_back(std::move(finding));
            continue;
        }
        std::vector<FindingPlace> newPlaces;
        for (FindingPlace& place : allPlaces(finding)) {
            const auto recorded = left.find(identityOf(finding, place, folder));
            if (recorded != left.end() && recorded->second > 0) {
                --recorded->second;
                ++result.knownPlaces;
            } else {
                newPlaces.push_back(std::move(place));
            }
        }
        if (!newPlaces.empty()) {
            setPlaces(finding, std::move(newPlaces));
            result.findings.push_back(std::move(finding));
        }
    }
    return result;
}

}  // namespace marrowpress
