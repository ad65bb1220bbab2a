#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace marrowpress {

/// A file of a request's run.
struct RequestFile {
    std::string name;            ///< For people: the request's key for it, as `"ditamap"`.
    std::filesystem::path path;  ///< Absolute.
    bool isMade;                 ///< The run makes it, and does not only read it.
};

/// The files that the publish request `text` names, and those that its run makes in passing, as the
/// client reads the paths. Whether they are there is not asked. Empty for a text that is no JSON;
/// the names of a flat book's components are known to the run alone.
///
/// @throws std::filesystem::filesystem_error when there is no current directory.
std::vector<RequestFile> filesOfRequest(const std::string& text);

}  // namespace marrowpress
