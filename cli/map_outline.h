#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "cli/exclusion_list.h"
#include "cli/map_source.h"
#include "cli/place_order.h"
#include "findings/finding.h"
#include "marrowpress/observer.h"

namespace marrowpress {

/// What became of a reference of a map.
enum class OutlineState {
    kTopic,       ///< Its topic is in the publication.
    kMap,         ///< Its map's references follow below it.
    kHeading,     ///< It refers to nothing.
    kExcluded,    ///< The profile leaves it out, or what it stands in.
    kResource,    ///< It is there for its keys or content alone.
    kNotPrinted,  ///< The map keeps it out of print.
    kMissing,     ///< Its file cannot be read.
    kNotTaken,    ///< Anything else: a picture, a web site, a part that is not there.
};

/// A line of the outline.
struct OutlineEntry {
    OutlineState state = OutlineState::kTopic;
    std::size_t depth = 0;
    std::string file;   ///< Absolute; empty for a heading and for what is not on this machine.
    std::string id;     ///< Of the topic in the file; empty for the first one.
    std::string label;  ///< What the map itself calls it; may be empty.
    FindingPlace place;
    const ExcludedElement* excluded = nullptr;  ///< Null unless the profile names it itself.
};

/// A map and those in it as one tree, with what the run made of each reference.
class MapOutline {
public:
    static constexpr std::size_t kMostEntries = 20'000;

    /// @param map         Absolute.
    /// @param exclusions  Must outlive this object, and be finished before it.
    MapOutline(const std::filesystem::path& map, bool isForPrint, const ExclusionList& exclusions);

    void observe(const Observation& observation);

    /// To be called once, when the run is over. Reads the maps.
    void finish();

    /// Each in front of those below it.
    const std::vector<OutlineEntry>& entries() const noexcept { return entries_; }
    /// Whether there were more entries than are kept.
    bool isCut() const noexcept { return isCut_; }

private:
    /// What is known of the elements around one.
    struct Around {
        std::size_t depth;       ///< In the file.
        std::size_t entryDepth;  ///< Of an entry inside.
        bool isExcluded;
        bool isResource;
        bool isNotPrinted;
        bool isOutside;  ///< Nothing in it is part of the tree.
    };
    using PlaceTable = std::map<FindingPlace, std::string, PlaceOrder>;

    void observeTopic(const Observation& observation);
    void observeReference(const Observation& observation);
    const std::vector<MapElement>& elementsOf(const std::string& map);
    void addMap(const std::string& map, std::size_t depth);
    void addElement(const std::vector<MapElement>& elements, std::size_t index,
                    std::vector<Around>& around);
    OutlineState stateOf(const MapElement& element, const Around& around) const;
    OutlineState stateOfUntaken(const MapElement& element) const;
    OutlineEntry entryOf(const std::vector<MapElement>& elements, std::size_t index,
                         OutlineState state) const;
    std::string fileOf(const MapElement& element) const;
    void addCopies(const MapElement& element, std::size_t depth);
    void addRest();
    void add(OutlineEntry entry);

    std::string map_;
    bool isForPrint_;
    const ExclusionList& exclusions_;
    PlaceTable topics_;   ///< Files of topics in the publication.
    PlaceTable maps_;     ///< Files of maps that were looked for.
    PlaceTable targets_;  ///< Files that were looked for otherwise.
    std::unordered_set<std::string> unread_;
    /// Topics that a content reference has brought, by its place.
    std::multimap<FindingPlace, FindingPlace, PlaceOrder> copies_;
    std::set<FindingPlace, PlaceOrder> added_;
    std::map<std::string, std::vector<MapElement>> sources_;
    std::vector<std::string> openMaps_;
    std::vector<OutlineEntry> entries_;
    bool isCut_ = false;
};

}  // namespace marrowpress
