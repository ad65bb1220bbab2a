#pragma once

#include <filesystem>
#include <system_error>

namespace marrowpress {

/// Makes a folder the current one while it lives.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::filesystem::path& folder) {
        std::filesystem::current_path(folder);
    }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;
    ~CurrentFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
    }

private:
    std::filesystem::path before_ = std::filesystem::current_path();
};

}  // namespace marrowpress
