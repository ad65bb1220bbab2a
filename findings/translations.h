#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>

namespace marrowpress {

/// The translations in a file that msgfmt has made, of a language that has two forms for counts:
/// one for 1, and one for all else.
///
/// Read here, since gettext finds them by the locale and the environment of the process, and a
/// library may change neither.
class Translations {
public:
    /// A file that cannot be read, or is no such file, has none.
    explicit Translations(const std::filesystem::path& path);

    /// The translation of `text`, in the form for `count`. A text without one stays as it is; so
    /// does `many`, which stands for it where `count` is not 1, unless it is empty.
    std::string find(std::string_view text, std::size_t count, std::string_view many = {}) const;

private:
    struct Forms {
        std::string one;
        std::string many;
    };

    std::unordered_map<std::string, Forms> byText_;
};

}  // namespace marrowpress
