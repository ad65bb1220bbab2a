#include "findings/shown_path.h"

#include <filesystem>

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

}  // namespace

std::string relativePath(std::string_view path, std::string_view folder) {
    const fs::path whole(path);
    if (!whole.is_absolute() || folder.empty()) {
        return std::string(path);
    }
    return whole.lexically_normal()
        .lexically_relative(fs::path(folder).lexically_normal())
        .string();
}

std::optional<std::string> pathInside(std::string_view path, std::string_view folder) {
    if (!fs::path(path).is_absolute() || folder.empty()) {
        return std::nullopt;
    }
    std::string relative = relativePath(path, folder);
    const bool isOutside = relative == "." || relative == ".." || relative.starts_with("../");
    return isOutside ? std::nullopt : std::optional(std::move(relative));
}

std::string shownPath(std::string_view path, std::string_view currentFolder) {
    std::string relative = relativePath(path, currentFolder);
    return relative.size() < path.size() ? relative : std::string(path);
}

}  // namespace marrowpress
