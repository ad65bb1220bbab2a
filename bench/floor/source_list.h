#pragma once

#include <istream>
#include <string>
#include <unordered_map>
#include <vector>

/// What the floor works on, in the order in which a publication met it. All texts are UTF-8.
namespace marrowpress::bench {

struct Source {
    std::string path;
    /// Whether its root is taken into the output.
    bool isTopic = false;
};

struct SourceList {
    std::vector<Source> sources;
    /// The files of public identifiers, as a catalog gave them.
    std::unordered_map<std::string, std::string> filesByPublicId;
};

/// Reads lines of fields with a tab between them:
///
///     public    IDENTIFIER  FILE
///     document  FILE                parsed, and no more
///     topic     FILE                parsed and taken in
///
/// @throws std::runtime_error for any other line.
SourceList readSourceList(std::istream& lines);

}  // namespace marrowpress::bench
