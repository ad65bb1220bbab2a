#include "runs/dependency_list.h"

#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

#include "findings/profile.h"
#include "findings/run_facts.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

DependencyKind kindOf(std::uint32_t code) {
    switch (static_cast<ReferenceKind>(code)) {
        case ReferenceKind::kMap:
            return DependencyKind::kMap;
        case ReferenceKind::kKeyDefinition:
            return DependencyKind::kKeyDefinition;
        case ReferenceKind::kConref:
            return DependencyKind::kConref;
        case ReferenceKind::kLink:
            return DependencyKind::kLink;
        case ReferenceKind::kImage:
            return DependencyKind::kImage;
        case ReferenceKind::kTopic:
            break;
    }
    return DependencyKind::kTopic;
}

DependencyState stateOnDisk(const std::string& path) {
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    if (status.type() == fs::file_type::not_found) {
        return DependencyState::kAbsent;
    }
    const bool isReadable = fs::is_regular_file(status) && access(path.c_str(), R_OK) == 0;
    return isReadable ? DependencyState::kRead : DependencyState::kUnreadable;
}

}  // namespace

DependencyList::DependencyList(const fs::path& map) {
    fileOf(map.string(), DependencyKind::kMap, {});
}

void DependencyList::observe(const Observation& observation) {
    switch (observation.kind) {
        case ObservationKind::kFileReference:
            addReference(observation);
            break;
        case ObservationKind::kEntity:
            addEdge({observation.detail,
                     observation.target,
                     DependencyKind::kDtd,
                     {observation.detail, 0, 0}});
            break;
        case ObservationKind::kDocumentRead:
            addDocument(observation, DependencyState::kRead);
            break;
        case ObservationKind::kDocumentUnread:
            addDocument(observation, DependencyState::kUnreadable);
            break;
        default:
            break;
    }
}

void DependencyList::addCatalog(const std::string& path) {
    fileOf(fs::path(path).lexically_normal().string(), DependencyKind::kCatalog, {});
}

void DependencyList::addProfiles(const std::vector<fs::path>& paths) {
    for (const fs::path& path : paths) {
        fileOf(path.string(), DependencyKind::kProfile, {});
    }
}

/// The file at `path`, which is added when it is not known yet.
Dependency& DependencyList::fileOf(const std::string& path, DependencyKind kind,
                                   const FindingPlace& from) {
    const auto [entry, isNew] = index_.try_emplace(path, files_.size());
    if (isNew) {
        files_.push_back({path, kind, DependencyState::kRead, from});
    }
    return files_[entry->second];
}

void DependencyList::addReference(const Observation& observation) {
    const FindingPlace place = placeOf(observation.steps[0].place);
    addEdge({place.file, observation.target, kindOf(observation.code), place});
}

void DependencyList::addEdge(DependencyEdge edge) {
    std::string pair = edge.from;
    pair.append("\n").append(edge.to).append("\n").append(
        std::to_string(static_cast<int>(edge.kind)));
    if (edge.from != edge.to && seenEdges_.insert(std::move(pair)).second) {
        edges_.push_back(std::move(edge));
    }
}

void DependencyList::addDocument(const Observation& observation, DependencyState state) {
    const FindingPlace place = placeOf(observation.steps[0].place);
    // A profile may be a private copy.
    if (place.file.empty() && observation.element == kProfileRoot) {
        return;
    }
    // One that could not be read may be there at a later try.
    opened_.insert_or_assign(observation.target, state);
}

void DependencyList::finish() {
    // A definition alone looks for nothing: its file counts once somebody uses the key.
    std::unordered_set<std::string> wanted;
    for (const DependencyEdge& edge : edges_) {
        if (edge.kind != DependencyKind::kKeyDefinition || opened_.contains(edge.to)) {
            wanted.insert(edge.to);
        }
    }
    std::erase_if(edges_,
                  [&wanted](const DependencyEdge& edge) { return !wanted.contains(edge.to); });
    for (const DependencyEdge& edge : edges_) {
        fileOf(edge.to, edge.kind, edge.place);
    }
    for (Dependency& file : files_) {
        const auto opened = opened_.find(file.file);
        const bool isRead = opened != opened_.end() && opened->second == DependencyState::kRead;
        if (!isRead) {
            file.state = stateOnDisk(file.file);
        }
        if (opened != opened_.end() && !isRead && file.state == DependencyState::kRead) {
            file.state = DependencyState::kUnreadable;
        }
    }
}

const Dependency* DependencyList::find(const std::string& path) const {
    const auto known = index_.find(path);
    return known == index_.end() ? nullptr : &files_[known->second];
}

std::vector<const Dependency*> DependencyList::filesLeadingTo(const std::string& path) const {
    std::unordered_map<std::string_view, std::vector<const DependencyEdge*>> edgesTo;
    for (const DependencyEdge& edge : edges_) {
        edgesTo[edge.to].push_back(&edge);
    }
    std::vector<const Dependency*> found;
    std::unordered_set<std::string_view> seen{path};
    std::vector<std::string_view> pending{path};
    for (std::size_t next = 0; next < pending.size(); ++next) {
        for (const DependencyEdge* const edge : edgesTo[pending[next]]) {
            const bool isFollowed = next == 0 || edge->kind != DependencyKind::kLink;
            const Dependency* const file = find(edge->from);
            if (isFollowed && file && seen.insert(file->file).second) {
                found.push_back(file);
                pending.push_back(file->file);
            }
        }
    }
    return found;
}

}  // namespace marrowpress
