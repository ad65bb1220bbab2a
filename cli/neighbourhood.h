#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "runs/dependency_list.h"
#include "runs/key_list.h"

namespace marrowpress {

/// How a file refers to another one.
enum class NeighbourKind {
    kMap,            ///< As a map to a map.
    kTopic,          ///< As a map to anything else.
    kKeyDefinition,  ///< For whoever uses its key.
    kConref,
    kLink,
    kImage,
    kKeyUse,  ///< By a key that stands for it.
};

inline constexpr std::size_t kNeighbourKinds = 7;

struct Neighbour {
    std::size_t file;  ///< Its number among the files.
    NeighbourKind kind;
};

/// A file of a publication.
struct FileNode {
    std::string path;  ///< Absolute.
    DependencyState state = DependencyState::kRead;
    std::vector<Neighbour> outgoing;  ///< Those that it refers to, by kind.
    std::vector<Neighbour> incoming;  ///< Those that refer to it, by kind.
};

/// The files of a publication that authors write, and who refers to whom. DTDs, catalogs and
/// profiles are left out.
class Neighbourhood {
public:
    /// @param dependencies, keys  Finished.
    Neighbourhood(const DependencyList& dependencies, const KeyList& keys);

    /// By path.
    const std::vector<FileNode>& files() const noexcept { return files_; }
    /// The number of the file; empty for one that is none of these.
    std::optional<std::size_t> find(const std::string& path) const;

private:
    void addFiles(const DependencyList& dependencies);
    void addEdges(const DependencyList& dependencies, const KeyList& keys);
    void addKeyUses(const KeyList& keys);
    void addEdge(std::size_t from, std::size_t to, NeighbourKind kind);
    void sortNeighbours();

    std::vector<FileNode> files_;
    std::unordered_map<std::string, std::size_t> index_;
    std::unordered_set<std::size_t> pairs_;
};

}  // namespace marrowpress
