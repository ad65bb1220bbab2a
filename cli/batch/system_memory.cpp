#include "cli/batch/system_memory.h"

#include <fstream>
#include <string>

namespace marrowpress {
namespace {

/// The number behind `name` in a file of lines such as "name 12" or "name: 12 kB"; 0 without one.
std::uint64_t numberIn(const std::string& path, const std::string& name) {
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        if (!line.starts_with(name)) {
            continue;
        }
        const std::size_t digits = line.find_first_of("0123456789", name.size());
        if (digits != std::string::npos) {
            return std::stoull(line.substr(digits));
        }
    }
    return 0;
}

/// The file of the control group in which this process is; empty where there is none.
std::string groupEventsPath() {
    std::ifstream file("/proc/self/cgroup");
    std::string line;
    while (std::getline(file, line)) {
        constexpr std::string_view kUnified = "0::";
        if (line.starts_with(kUnified)) {
            return "/sys/fs/cgroup" + line.substr(kUnified.size()) + "/memory.events";
        }
    }
    return {};
}

}  // namespace

std::uint64_t availableMemory() {
    constexpr std::uint64_t kKilobyte = 1024;
    return numberIn("/proc/meminfo", "MemAvailable:") * kKilobyte;
}

std::uint64_t memoryKillCount() {
    return numberIn("/proc/vmstat", "oom_kill ") + numberIn(groupEventsPath(), "oom_kill ");
}

}  // namespace marrowpress
