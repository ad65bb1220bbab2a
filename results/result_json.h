#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "results/run_result.h"

/// Results as JSON; docs/schemas/result.schema.json describes them.
namespace marrowpress {

/// The form that is written, and the newest that is read.
inline constexpr int kResultFormat = 1;

/// The file holds no result: it is cut off, something else, or of a newer version.
class ResultError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// One object, with a line for each finding and each file. All that may differ from one run of a
/// request to the next is in its last member, "run", which begins a line.
std::string resultText(const RunResult& result);

/// @throws ResultError that says what is wrong.
RunResult parseResult(std::string_view text);

/// @throws ResultError, also when the file cannot be read.
RunResult readResult(const std::filesystem::path& path);

}  // namespace marrowpress
