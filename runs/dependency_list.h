#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "findings/finding.h"
#include "marrowpress/observer.h"

namespace marrowpress {

enum class DependencyKind : std::uint8_t {
    kMap,
    kTopic,
    kKeyDefinition,
    kConref,
    kLink,
    kImage,
    kDtd,  ///< Or another external entity.
    kCatalog,
    kProfile,
};

enum class DependencyState : std::uint8_t {
    kRead,  ///< Or there to be read, where only its name comes into the output.
    kAbsent,
    kUnreadable,
};

/// A reference from one file to another.
struct DependencyEdge {
    std::string from;
    std::string to;
    DependencyKind kind;
    FindingPlace place;  ///< No line for that of an entity.
};

/// A file that a run has read, or has looked for.
struct Dependency {
    std::string file;  ///< Absolute.
    DependencyKind kind = DependencyKind::kTopic;
    DependencyState state = DependencyState::kRead;
    FindingPlace from;  ///< The first reference to it; no file for what the request names.
};

/// The files that a run depends on, as it tells of them.
class DependencyList {
public:
    /// @param map  Absolute, as it is in the request.
    explicit DependencyList(const std::filesystem::path& map);

    void observe(const Observation& observation);

    // What the command names, and no document.

    void addCatalog(const std::string& path);
    void addProfiles(const std::vector<std::filesystem::path>& paths);

    /// To be called once, when the run is over. Looks which of the files are there that the run
    /// has not opened.
    void finish();

    /// In the order in which they were met.
    const std::vector<Dependency>& files() const noexcept { return files_; }
    /// Each once for each pair of files and kind, between files of the list.
    const std::vector<DependencyEdge>& edges() const noexcept { return edges_; }

    /// Null for a file that is not in the list.
    const Dependency* find(const std::string& path) const;

    /// The files that lead to `path`, the nearest first. A link is followed from its target only:
    /// what a topic holds does not come to where a link to it stands.
    std::vector<const Dependency*> filesLeadingTo(const std::string& path) const;

private:
    Dependency& fileOf(const std::string& path, DependencyKind kind, const FindingPlace& from);
    void addEdge(DependencyEdge edge);
    void addReference(const Observation& observation);
    void addDocument(const Observation& observation, DependencyState state);

    std::vector<Dependency> files_;
    std::unordered_map<std::string, std::size_t> index_;
    std::vector<DependencyEdge> edges_;
    std::unordered_set<std::string> seenEdges_;
    /// Opened by the run, and with what outcome.
    std::unordered_map<std::string, DependencyState> opened_;
};

}  // namespace marrowpress
