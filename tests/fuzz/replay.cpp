#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Gives each file of the folders to a fuzzer. A finding ends the process; so do folders without
/// any file.
int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::cout << entry.path().filename().string() << std::endl;
            std::ifstream stream(entry.path(), std::ios::binary);
            const std::string text{std::istreambuf_iterator<char>(stream), {}};
            if (!stream) {
                std::cerr << argv[0] << ": " << entry.path() << " can't be read\n";
                return 1;
            }
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
            ++count;
        }
    }
    std::cout << count << " inputs\n";
    return count > 0 ? 0 : 1;
}
