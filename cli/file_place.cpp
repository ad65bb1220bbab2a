#include "cli/file_place.h"

#include <system_error>

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// As many as the system follows.
constexpr int kMostLinks = 40;

fs::path withoutLinksBefore(const fs::path& path) {
    std::error_code error;
    const fs::path folder = fs::weakly_canonical(path.parent_path(), error);
    return error ? path.lexically_normal() : folder / path.filename();
}

}  // namespace

fs::path placeOf(const fs::path& path) {
    fs::path place = withoutLinksBefore(fs::absolute(path));
    for (int links = 0; links < kMostLinks; ++links) {
        std::error_code error;
        const fs::path target = fs::read_symlink(place, error);
        if (error) {
            return place;
        }
        place = withoutLinksBefore(place.parent_path() / target);
    }
    return place;
}

bool haveOnePlace(const fs::path& left, const fs::path& right) {
    std::error_code ignored;
    return fs::equivalent(left, right, ignored) || placeOf(left) == placeOf(right);
}

}  // namespace marrowpress
