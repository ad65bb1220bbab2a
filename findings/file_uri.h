#pragma once

#include <string>
#include <string_view>

namespace marrowpress {

/// `path` as a relative URI: each byte that has a meaning of its own there, or none, is
/// percent-encoded, and "/" stays.
std::string uriPath(std::string_view path);

/// The URI of the absolute `path`: "file:///docs/a%20b.dita".
std::string fileUri(std::string_view path);

}  // namespace marrowpress
