#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace marrowpress {

/// What a file holds, in short. In lower-case hexadecimal digits.
struct FileDigest {
    std::string sha256;
    std::string xxh128;  ///< XXH3 with 128 bits: no proof against malice, and soon made.

    friend bool operator==(const FileDigest&, const FileDigest&) = default;
};

/// Empty for what is no regular file, and for one that cannot be read.
std::optional<FileDigest> digestOf(const std::filesystem::path& path);

/// That of `digestOf`, alone.
std::optional<std::string> quickDigestOf(const std::filesystem::path& path);

std::string sha256Of(std::string_view bytes);

}  // namespace marrowpress
