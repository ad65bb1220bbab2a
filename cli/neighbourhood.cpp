#include "cli/neighbourhood.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include "cli/place_order.h"

namespace marrowpress {
namespace {

bool isWrittenByAuthors(DependencyKind kind) {
    return kind != DependencyKind::kDtd && kind != DependencyKind::kCatalog &&
           kind != DependencyKind::kProfile;
}

NeighbourKind neighbourKindOf(DependencyKind kind) {
    switch (kind) {
        case DependencyKind::kMap:
            return NeighbourKind::kMap;
        case DependencyKind::kKeyDefinition:
            return NeighbourKind::kKeyDefinition;
        case DependencyKind::kConref:
            return NeighbourKind::kConref;
        case DependencyKind::kLink:
            return NeighbourKind::kLink;
        case DependencyKind::kImage:
            return NeighbourKind::kImage;
        default:
            return NeighbourKind::kTopic;
    }
}

std::string withoutFragment(const std::string& target) {
    return target.substr(0, target.find('#'));
}

std::set<FindingPlace, PlaceOrder> placesOfDefinitions(const KeyList& keys) {
    std::set<FindingPlace, PlaceOrder> places;
    for (const ListedKey& key : keys.keys()) {
        for (const KeyDefinition& definition : key.definitions) {
            places.insert(definition.place);
        }
    }
    return places;
}

}  // namespace

Neighbourhood::Neighbourhood(const DependencyList& dependencies, const KeyList& keys) {
    addFiles(dependencies);
    addEdges(dependencies, keys);
    addKeyUses(keys);
    sortNeighbours();
}

std::optional<std::size_t> Neighbourhood::find(const std::string& path) const {
    const auto known = index_.find(path);
    return known == index_.end() ? std::nullopt : std::optional(known->second);
}

void Neighbourhood::addFiles(const DependencyList& dependencies) {
    for (const Dependency& file : dependencies.files()) {
        if (isWrittenByAuthors(file.kind)) {
            files_.push_back({file.file, file.state, {}, {}});
        }
    }
    std::sort(files_.begin(), files_.end(),
              [](const FileNode& left, const FileNode& right) { return left.path < right.path; });
    for (std::size_t number = 0; number < files_.size(); ++number) {
        index_.emplace(files_[number].path, number);
    }
}

void Neighbourhood::addEdges(const DependencyList& dependencies, const KeyList& keys) {
    // A link that somebody has by a key is told at the definition; it is not the map that links.
    const std::set<FindingPlace, PlaceOrder> definitions = placesOfDefinitions(keys);
    for (const DependencyEdge& edge : dependencies.edges()) {
        const bool isOfUser =
            edge.kind == DependencyKind::kLink || edge.kind == DependencyKind::kImage;
        const auto from = find(edge.from);
        const auto to = find(edge.to);
        if (from && to && isWrittenByAuthors(edge.kind) &&
            !(isOfUser && definitions.contains(edge.place))) {
            addEdge(*from, *to, neighbourKindOf(edge.kind));
        }
    }
}

/// Of two files of which one refers to the other anyway, a key says nothing new.
void Neighbourhood::addKeyUses(const KeyList& keys) {
    for (const ListedKey& key : keys.keys()) {
        const KeyDefinition* const definition = key.effective();
        const auto to = definition ? find(withoutFragment(definition->target)) : std::nullopt;
        for (std::size_t use = 0; to && use < key.uses.size(); ++use) {
            const auto from = find(key.uses[use].file);
            if (from && !pairs_.contains(*from * files_.size() + *to)) {
                addEdge(*from, *to, NeighbourKind::kKeyUse);
            }
        }
    }
}

void Neighbourhood::addEdge(std::size_t from, std::size_t to, NeighbourKind kind) {
    if (from != to) {
        files_[from].outgoing.push_back({to, kind});
        files_[to].incoming.push_back({from, kind});
        pairs_.insert(from * files_.size() + to);
    }
}

void Neighbourhood::sortNeighbours() {
    const auto comesBefore = [](const Neighbour& left, const Neighbour& right) {
        return std::tie(left.kind, left.file) < std::tie(right.kind, right.file);
    };
    for (FileNode& file : files_) {
        std::sort(file.outgoing.begin(), file.outgoing.end(), comesBefore);
        std::sort(file.incoming.begin(), file.incoming.end(), comesBefore);
    }
}

}  // namespace marrowpress
