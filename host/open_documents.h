#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace marrowpress {

/// A document that is open in the stand-in host's session.
struct OpenDocument {
    std::uint32_t id;   ///< Never 0, which is the session.
    std::string path;   ///< UTF-8.
    std::int32_t flag;  ///< Integer property 131.

    friend bool operator==(const OpenDocument&, const OpenDocument&) = default;
};

/// Reads a JSON array of `{"id": 7, "path": "/abs/a.dita", "flag": 1}`, in its order.
///
/// All three members are required and no other is allowed; ids differ from each other.
/// @throws std::runtime_error whose text says which entry is wrong and how.
std::vector<OpenDocument> parseOpenDocuments(std::string_view json);

/// The same from the file at `path`, which every error names.
///
/// @throws std::runtime_error
std::vector<OpenDocument> readOpenDocuments(const std::string& path);

}  // namespace marrowpress
