#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "results/file_stamp.h"

namespace marrowpress {

/// What a file holds, in short. In lower-case hexadecimal digits.
struct FileDigest {
    /// From after it was read, since one that was changed just before may have been another when
    /// whoever asks has read it: that is to be seen.
    FileStamp stamp;
    std::string sha256;
    std::string xxh128;  ///< XXH3 with 128 bits: no proof against malice, and soon made.

    friend bool operator==(const FileDigest&, const FileDigest&) = default;
};

/// Empty for what is no regular file, and for one that cannot be read.
std::optional<FileDigest> digestOf(const std::filesystem::path& path);

/// That of `digestOf`, alone.
std::optional<std::string> quickDigestOf(const std::filesystem::path& path);

std::string sha256Of(std::string_view bytes);

/// Stands for a text where very many are kept: nobody has met two that share one.
struct TextDigest {
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    friend bool operator==(const TextDigest&, const TextDigest&) = default;
};

/// XXH3 with 128 bits.
TextDigest quickDigestOfText(std::string_view text);

}  // namespace marrowpress
