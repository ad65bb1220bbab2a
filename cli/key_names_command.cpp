#include "cli/key_names_command.h"

#include <chrono>
#include <filesystem>

#include "findings/map_keys.h"

namespace marrowpress {
namespace {

/// Of the 50 ms in which an answer seems to come at once; the rest is for the start of a process.
constexpr std::chrono::milliseconds kPatience{30};

}  // namespace

ExitCode runKeyNames(const std::string& map, const Streams& streams) {
    std::string text;
    for (const std::string& name : keyNamesOf(std::filesystem::absolute(map).string(), kPatience)) {
        text += name + "\n";
    }
    return writeResult(streams, text) ? ExitCode::kSuccess : ExitCode::kRunFailed;
}

}  // namespace marrowpress
