#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "support/text.h"

namespace marrowpress {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::string pattern =
        (fs::canonical(fs::temp_directory_path()) / "marrowpress-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        throw std::runtime_error("no temporary folder can be made");
    }
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code error;
    fs::remove_all(path_, error);
}

std::string TemporaryFolder::file(std::string_view name) const {
    return (path_ / name).string();
}

std::u16string TemporaryFolder::file16(std::string_view name) const {
    return toUtf16(file(name));
}

std::string TemporaryFolder::write(std::string_view name, std::string_view text) const {
    const fs::path target = path_ / name;
    fs::create_directories(target.parent_path());
    std::ofstream stream(target, std::ios::binary);
    stream << text;
    stream.close();
    EXPECT_TRUE(stream) << target << " can't be written";
    return target.string();
}

std::string TemporaryFolder::read(std::string_view name) const {
    std::ifstream stream(path_ / name, std::ios::binary);
    EXPECT_TRUE(stream) << name << " can't be read";
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

bool TemporaryFolder::exists(std::string_view name) const {
    return fs::exists(fs::symlink_status(path_ / name));
}

}  // namespace marrowpress
