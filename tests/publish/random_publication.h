#pragma once

#include <cstdint>
#include <string>

namespace marrowpress {

class TemporaryFolder;

/// Writes a publication that depends on `seed` alone, as `PublicationCase` reads it, into `folder`:
/// maps in maps, keys and chains of them, content references into other files, into maps and into
/// their own, ranges, parts of files, conditional text with names in common, documents that are
/// invalid, ill-formed or have a subset of their own, and DTDs that are broken.
void writeRandomPublication(std::uint32_t seed, const TemporaryFolder& folder);

}  // namespace marrowpress
