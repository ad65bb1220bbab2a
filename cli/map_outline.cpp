#include "cli/map_outline.h"

#include <algorithm>
#include <array>
#include <utility>

#include "findings/run_facts.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kDeepestMap = 200;

bool isReference(const MapElement& element) {
    return !element.attribute("href").empty() || !element.attribute("keyref").empty();
}

bool hasContentReference(const MapElement& element) {
    return !element.attribute("conref").empty() || !element.attribute("conkeyref").empty();
}

bool isDefinition(const MapElement& element) {
    return element.tagName == "keydef" || (!element.attribute("keys").empty() &&
                                           element.attribute("processing-role") == "resource-only");
}

/// Whether references inside are none of the tree.
bool isOutside(const MapElement& element) {
    constexpr std::array<std::string_view, 6> kNames{"topicmeta", "bookmeta",  "reltable",
                                                     "title",     "booktitle", "metadata"};
    return std::find(kNames.begin(), kNames.end(), element.tagName) != kNames.end();
}

bool isWebAddress(std::string_view href) {
    return href.find("://") != std::string_view::npos || href.starts_with("mailto:");
}

/// What the map calls it: the attribute, else the element in its `topicmeta`.
std::string labelOf(const std::vector<MapElement>& elements, std::size_t index) {
    const MapElement& element = elements[index];
    if (!element.attribute("navtitle").empty()) {
        return std::string(element.attribute("navtitle"));
    }
    for (std::size_t next = index + 1;
         next < elements.size() && elements[next].depth > element.depth &&
         elements[next].depth <= element.depth + 2;
         ++next) {
        const bool isInMeta = elements[next].depth == element.depth + 2;
        if (isInMeta && elements[next].tagName == "navtitle") {
            return elements[next].text;
        }
        if (!isInMeta && elements[next].tagName != "topicmeta") {
            break;
        }
    }
    return {};
}

std::string idIn(std::string_view href) {
    const std::size_t hash = href.find('#');
    const std::string_view fragment =
        hash == std::string_view::npos ? std::string_view() : href.substr(hash + 1);
    return std::string(fragment.substr(0, fragment.find('/')));
}

}  // namespace

MapOutline::MapOutline(const fs::path& map, bool isForPrint, const ExclusionList& exclusions)
    : map_(map.string()), isForPrint_(isForPrint), exclusions_(exclusions) {}

void MapOutline::observe(const Observation& observation) {
    switch (observation.kind) {
        case ObservationKind::kTopic:
            observeTopic(observation);
            break;
        case ObservationKind::kFileReference:
            observeReference(observation);
            break;
        case ObservationKind::kDocumentRead:
            unread_.erase(observation.target);
            break;
        case ObservationKind::kDocumentUnread:
            unread_.insert(observation.target);
            break;
        default:
            break;
    }
}

void MapOutline::observeTopic(const Observation& observation) {
    const FindingPlace place = placeOf(observation.steps[0].place);
    const bool isNew = topics_.try_emplace(place, observation.target).second;
    if (isNew && observation.stepCount > 1) {
        copies_.emplace(placeOf(observation.steps[1].place), place);
    }
}

/// Those of maps alone: all others are many.
void MapOutline::observeReference(const Observation& observation) {
    const auto kind = static_cast<ReferenceKind>(observation.code);
    if (kind == ReferenceKind::kMap) {
        maps_.try_emplace(placeOf(observation.steps[0].place), observation.target);
    } else if (kind == ReferenceKind::kTopic) {
        targets_.try_emplace(placeOf(observation.steps[0].place), observation.target);
    }
}

void MapOutline::finish() {
    addMap(map_, 0);
    addRest();
    sources_.clear();
}

const std::vector<MapElement>& MapOutline::elementsOf(const std::string& map) {
    const auto known = sources_.find(map);
    return known == sources_.end() ? sources_.emplace(map, readMapElements(map)).first->second
                                   : known->second;
}

void MapOutline::addMap(const std::string& map, std::size_t depth) {
    const bool isOpen = std::find(openMaps_.begin(), openMaps_.end(), map) != openMaps_.end();
    if (isOpen || openMaps_.size() >= kDeepestMap) {
        return;
    }
    openMaps_.push_back(map);
    const std::vector<MapElement>& elements = elementsOf(map);
    std::vector<Around> around;
    for (std::size_t index = 0; index < elements.size() && !isCut_; ++index) {
        while (!around.empty() && around.back().depth >= elements[index].depth) {
            around.pop_back();
        }
        if (around.empty()) {
            around.push_back({elements[index].depth, depth, false, false, false, false});
        } else {
            addElement(elements, index, around);
        }
    }
    openMaps_.pop_back();
}

void MapOutline::addElement(const std::vector<MapElement>& elements, std::size_t index,
                            std::vector<Around>& around) {
    const MapElement& element = elements[index];
    Around inside = around.back();
    inside.depth = element.depth;
    inside.isOutside = inside.isOutside || isOutside(element);
    inside.isExcluded = inside.isExcluded || exclusions_.find(element.place);
    inside.isResource =
        inside.isResource || element.attribute("processing-role") == "resource-only";
    inside.isNotPrinted =
        inside.isNotPrinted || (isForPrint_ && element.attribute("print") == "no");
    if (!inside.isOutside && !isDefinition(element)) {
        const OutlineState state = stateOf(element, inside);
        OutlineEntry entry = entryOf(elements, index, state);
        if (!entry.label.empty() || !entry.file.empty()) {
            entry.depth = inside.entryDepth++;
            add(std::move(entry));
            if (state == OutlineState::kMap) {
                addMap(maps_.at(element.place), inside.entryDepth);
            }
        }
        if (hasContentReference(element)) {
            addCopies(element, inside.entryDepth);
        }
    }
    around.push_back(inside);
}

OutlineState MapOutline::stateOf(const MapElement& element, const Around& around) const {
    if (around.isExcluded) {
        return OutlineState::kExcluded;
    }
    if (topics_.contains(element.place)) {
        return OutlineState::kTopic;
    }
    const auto map = maps_.find(element.place);
    if (map != maps_.end()) {
        return unread_.contains(map->second) ? OutlineState::kMissing : OutlineState::kMap;
    }
    if (!isReference(element)) {
        return OutlineState::kHeading;
    }
    if (around.isResource) {
        return OutlineState::kResource;
    }
    return around.isNotPrinted ? OutlineState::kNotPrinted : stateOfUntaken(element);
}

OutlineState MapOutline::stateOfUntaken(const MapElement& element) const {
    const auto target = targets_.find(element.place);
    std::error_code ignored;
    const bool isMissing = target != targets_.end() && (unread_.contains(target->second) ||
                                                        !fs::exists(target->second, ignored));
    return isMissing ? OutlineState::kMissing : OutlineState::kNotTaken;
}

OutlineEntry MapOutline::entryOf(const std::vector<MapElement>& elements, std::size_t index,
                                 OutlineState state) const {
    const MapElement& element = elements[index];
    OutlineEntry entry{state,
                       0,
                       fileOf(element),
                       idIn(element.attribute("href")),
                       labelOf(elements, index),
                       element.place,
                       exclusions_.find(element.place)};
    if (entry.label.empty() && entry.file.empty() && isReference(element)) {
        const std::string_view href = element.attribute("href");
        entry.label = href.empty() ? std::string(element.attribute("keyref")) : std::string(href);
    }
    // What falls without being a reference, such as a group, has to have some name.
    if (entry.label.empty() && entry.file.empty() && entry.excluded) {
        entry.label = "<" + element.tagName + ">";
    }
    return entry;
}

/// As the run has it, else as the map writes it.
std::string MapOutline::fileOf(const MapElement& element) const {
    for (const PlaceTable* const table : {&topics_, &maps_, &targets_}) {
        const auto known = table->find(element.place);
        if (known != table->end()) {
            return known->second;
        }
    }
    const std::string_view href = element.attribute("href");
    const std::string_view path = href.substr(0, href.find('#'));
    if (path.empty() || isWebAddress(path)) {
        return {};
    }
    return (fs::path(element.place.file).parent_path() / path).lexically_normal().string();
}

/// The topics that the content reference of `element` has brought.
void MapOutline::addCopies(const MapElement& element, std::size_t depth) {
    const auto [begin, end] = copies_.equal_range(element.place);
    for (auto copy = begin; copy != end; ++copy) {
        add({OutlineState::kTopic, depth, topics_.at(copy->second), {}, {}, copy->second, nullptr});
    }
}

/// Topics whose references stand in no map that could be read as it is.
void MapOutline::addRest() {
    for (const auto& [place, file] : topics_) {
        if (!added_.contains(place)) {
            add({OutlineState::kTopic, 0, file, {}, {}, place, nullptr});
        }
    }
}

void MapOutline::add(OutlineEntry entry) {
    if (entries_.size() >= kMostEntries) {
        isCut_ = true;
        return;
    }
    added_.insert(entry.place);
    entries_.push_back(std::move(entry));
}

}  // namespace marrowpress
