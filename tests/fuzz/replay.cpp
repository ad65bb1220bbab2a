#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "tests/fuzz/fuzzing.h"

namespace {

/// Gives each file of a folder to the fuzzer, and counts them.
std::size_t replay(const std::filesystem::path& folder) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::cout << entry.path().filename().string() << std::endl;
        std::ifstream stream(entry.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(stream), {}};
        marrowpress::require(stream.good(), "an input can be read", entry.path().string());
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
        ++count;
    }
    return count;
}

}  // namespace

/// Goes through the inputs in the folders that are named. A finding ends the process; so do folders
/// without any input.
int main(int argc, char** argv) try {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        count += replay(argv[i]);
    }
    std::cout << count << " inputs\n";
    return count > 0 ? 0 : 1;
} catch (const std::exception& failure) {
    std::cerr << argv[0] << ": " << failure.what() << '\n';
    return 1;
}
