#include "tests/support/golden_text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace marrowpress {

std::string goldenText(std::string_view name, const std::string& actual) {
    const std::filesystem::path path = std::filesystem::path(MARROWPRESS_GOLDEN_TEXTS) / name;
    const char* const update = std::getenv("MARROWPRESS_UPDATE_GOLDEN");
    if (update && std::string(update) == "1") {
        std::ofstream(path, std::ios::binary) << actual;
    }
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.is_open()) << "there is no " << path;
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace marrowpress
