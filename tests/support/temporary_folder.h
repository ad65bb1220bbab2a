#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace marrowpress {

/// A fresh folder for one test, removed with all that is in it at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    /// Absolute, without symbolic links.
    const std::filesystem::path& path() const noexcept { return path_; }

    /// The absolute path of `name`, as UTF-8 text and as UTF-16 text.
    std::string file(std::string_view name) const;
    std::u16string file16(std::string_view name) const;

    /// Writes a file, makes the folders that it needs, and gives its path.
    std::string write(std::string_view name, std::string_view text) const;

    /// The whole text of a file; a test fails when it can't be read.
    std::string read(std::string_view name) const;

    bool exists(std::string_view name) const;

private:
    std::filesystem::path path_;
};

}  // namespace marrowpress
