#include <cstddef>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/client_module.h"
#include "host/file_text.h"
#include "host/stand_in_host.h"
#include "host/typed_record.h"
#include "tests/harness/host_with_dtds.h"

// Loads the module, sends it a request and unloads it, again and again, and prints after each time
// what the process holds: load_module REQUEST DTDS TIMES. DTDS is a folder with "map.dtd" and
// "topic.dtd". A line holds the number of the load, the resident memory in KB, the count of
// descriptors, and the count of the module's mappings that are left.

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// The number behind `label` in the process's status, in KB.
std::size_t residentKilobytes() {
    std::ifstream status("/proc/self/status");
    constexpr std::string_view kLabel = "VmRSS:";
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(kLabel)) {
            return std::stoul(line.substr(kLabel.size()));
        }
    }
    throw std::runtime_error("the process has no resident memory");
}

std::size_t countDescriptors() {
    std::size_t count = 0;
    for (fs::directory_iterator entry("/proc/self/fd"); entry != fs::directory_iterator();
         ++entry) {
        ++count;
    }
    return count;
}

std::size_t countMappings(const fs::path& file) {
    std::ifstream mappings("/proc/self/maps");
    std::size_t count = 0;
    for (std::string line; std::getline(mappings, line);) {
        count += line.ends_with(file.string()) ? 1 : 0;
    }
    return count;
}

/// Sends the request to a module that is loaded for it alone.
void sendOnce(const fs::path& path, const std::string& request, const fs::path& dtds) {
    const ClientModule module(path, ClientModule::AtEnd::kGoes);
    if (countMappings(path) == 0) {
        throw std::runtime_error("the module isn't loaded under its path");
    }
    StandInHost host(hostWithDtds(dtds));
    if (!host.attach(module.entry(), module.handle()) || !host.initialize()) {
        throw std::runtime_error("the module can't be started");
    }
    const std::optional<TypedValues> answer = host.send(request);
    if (!answer || statusOf(*answer) != 0) {
        throw std::runtime_error("the request failed");
    }
}

void run(const std::string& requestFile, const fs::path& dtds, std::size_t times) {
    const fs::path module = fs::canonical(defaultModulePath());
    const std::string request = readFile(requestFile);
    for (std::size_t load = 1; load <= times; ++load) {
        sendOnce(module, request, dtds);
        std::cout << load << ' ' << residentKilobytes() << ' ' << countDescriptors() << ' '
                  << countMappings(module) << std::endl;
    }
}

}  // namespace
}  // namespace marrowpress

int main(int argc, char** argv) try {
    if (argc != 4) {
        std::cerr << "usage: load_module REQUEST DTDS TIMES\n";
        return 2;
    }
    marrowpress::run(argv[1], argv[2], std::stoul(argv[3]));
    return EXIT_SUCCESS;
} catch (const std::exception& fault) {
    std::cerr << "load_module: " << fault.what() << '\n';
    return EXIT_FAILURE;
}
