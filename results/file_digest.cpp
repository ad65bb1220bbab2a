#include "results/file_digest.h"

#include <nettle/sha2.h>
#include <unistd.h>
#include <xxhash.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <vector>

#include "findings/regular_file.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

std::string hexOf(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    constexpr unsigned kHalf = 4;
    constexpr unsigned kLow = 0xF;
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const unsigned byte : bytes) {
        text += kDigits[byte >> kHalf];
        text += kDigits[byte & kLow];
    }
    return text;
}

class Sha256 {
public:
    Sha256() { sha256_init(&state_); }

    void add(std::span<const std::uint8_t> bytes) {
        sha256_update(&state_, bytes.size(), bytes.data());
    }

    std::string finish() {
        std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
        sha256_digest(&state_, digest.size(), digest.data());
        return hexOf(digest);
    }

private:
    sha256_ctx state_{};
};

class Xxh128 {
public:
    Xxh128() : state_(XXH3_createState()) {
        if (!state_ || XXH3_128bits_reset(state_.get()) != XXH_OK) {
            throw std::bad_alloc();
        }
    }

    void add(std::span<const std::uint8_t> bytes) {
        XXH3_128bits_update(state_.get(), bytes.data(), bytes.size());
    }

    std::string finish() {
        XXH128_canonical_t canonical;
        XXH128_canonicalFromHash(&canonical, XXH3_128bits_digest(state_.get()));
        return hexOf(canonical.digest);
    }

private:
    struct Free {
        void operator()(XXH3_state_t* state) const noexcept { XXH3_freeState(state); }
    };

    std::unique_ptr<XXH3_state_t, Free> state_;
};

/// Gives all that the file holds to `take`, a piece at a time.
///
/// @return  Its stamp from afterwards; empty for what is no regular file, which may never come to
/// its end, and when it cannot be read.
template <typename Take>
std::optional<FileStamp> readPieces(const fs::path& path, Take take) {
    const RegularFile file(path.string());
    const std::optional<FileStamp> stamp = stampOf(file.descriptor());
    if (!stamp) {
        return std::nullopt;
    }
    constexpr std::uint64_t kPiece = std::uint64_t{256} * 1024;
    std::vector<std::uint8_t> piece(std::min(kPiece, stamp->size + 1));
    ssize_t size = 0;
    while ((size = read(file.descriptor(), piece.data(), piece.size())) != 0) {
        if (size > 0) {
            take(std::span(piece.data(), static_cast<std::size_t>(size)));
        } else if (errno != EINTR) {
            return std::nullopt;
        }
    }
    return stampOf(file.descriptor());
}

}  // namespace

std::optional<FileDigest> digestOf(const fs::path& path) {
    Sha256 sha256;
    Xxh128 xxh128;
    const std::optional<FileStamp> stamp =
        readPieces(path, [&](std::span<const std::uint8_t> piece) {
            sha256.add(piece);
            xxh128.add(piece);
        });
    if (!stamp) {
        return std::nullopt;
    }
    return FileDigest{*stamp, sha256.finish(), xxh128.finish()};
}

std::optional<std::string> quickDigestOf(const fs::path& path) {
    Xxh128 xxh128;
    const bool isRead = readPieces(path, [&](std::span<const std::uint8_t> piece) {
                            xxh128.add(piece);
                        }).has_value();
    return isRead ? std::optional(xxh128.finish()) : std::nullopt;
}

std::string sha256Of(std::string_view bytes) {
    Sha256 sha256;
    sha256.add(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
    return sha256.finish();
}

TextDigest quickDigestOfText(std::string_view text) {
    const XXH128_hash_t digest = XXH3_128bits(text.data(), text.size());
    return {digest.high64, digest.low64};
}

}  // namespace marrowpress
