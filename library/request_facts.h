#pragma once

#include <filesystem>
#include <string>

namespace marrowpress {

/// What the library has to know of a request; what the request lacks is empty. Paths are absolute.
struct RequestFacts {
    std::filesystem::path map;
    std::filesystem::path output;  ///< The composite, or the folder of a flat book.
    std::filesystem::path filter;
    bool isFlatBook = false;
    bool isAtOneLocation = false;

    /// Into which the run writes.
    std::filesystem::path folder() const { return isFlatBook ? output : output.parent_path(); }
};

/// Of a text that is no request there are none: the client says so.
RequestFacts factsOf(const std::string& request);

/// `request` with everything that it writes in `folder`. A text that is no request stays as it is.
std::string movedInto(const std::filesystem::path& folder, const std::string& request);

}  // namespace marrowpress
