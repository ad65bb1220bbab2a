#pragma once

#include <cstddef>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/batch/job.h"

namespace marrowpress {

/// A file of jobs is wrong. What it says is "FILE:LINE: sentence".
class JobFileError : public std::runtime_error {
public:
    JobFileError(const std::string& file, std::size_t line, const std::string& sentence)
        : std::runtime_error(file + ":" + std::to_string(line) + ": " + sentence) {}
    explicit JobFileError(const std::string& text) : std::runtime_error(text) {}
};

/// Reads JSON Lines of `{"id": "...", "request": {...}, "tags": [...]}`; blank lines are passed
/// over. A request is what the application sends. Lines of a plan may have "filters", in the place
/// of the request's one profile, and "transtype".
///
/// @param file       Names it in faults.
/// @param firstLine  The number of the first line.
/// @throws JobFileError
std::vector<Job> readJobLines(std::istream& in, const std::string& file, std::size_t firstLine = 1);

}  // namespace marrowpress
