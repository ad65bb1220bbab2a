#pragma once

#include <string>
#include <vector>

namespace marrowpress {

/// One of DITA's own document types, and what a run makes of it.
struct TriedType {
    std::string root;
    std::string publicId;
    /// Whether the DTDs of DITA 1.2 have it, which come with Debian.
    bool isCommon = true;
    std::string dtd;  ///< Absolute; empty when none was found.
};

/// A character encoding, by its name in an XML declaration.
struct TriedEncoding {
    std::string name;
    bool canBeRead = false;
};

/// What this machine can publish: a small map of our own, with a document of each type and one in
/// each of the usual encodings, goes through the client.
struct Trial {
    std::vector<TriedType> types;
    std::vector<TriedEncoding> encodings;
};

/// @param catalogs  Empty: the default ones.
/// @throws ScratchError and FileFailure when there is no place for its files, and what `runRequest`
/// throws.
Trial tryPublication(const std::vector<std::string>& catalogs);

}  // namespace marrowpress
