#include "results/file_digest.h"

#include <nettle/sha2.h>
#include <sys/stat.h>
#include <xxhash.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <memory>
#include <new>
#include <span>
#include <system_error>
#include <vector>

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

/// Gives all that the file holds to `take`, a piece at a time; false when that fails.
template <typename Take>
bool readPieces(const fs::path& path, Take take) {
    // What is no regular file may never come to its end.
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored)) {
        return false;
    }
    std::ifstream in(path, std::ios::binary);
    constexpr std::size_t kPiece = std::size_t{256} * 1024;
    const std::uintmax_t size = fs::file_size(path, ignored);
    // One more byte than there is, so that the end is seen at once.
    std::vector<char> piece(std::min<std::uintmax_t>(kPiece, ignored ? kPiece : size + 1));
    while (in.read(piece.data(), static_cast<std::streamsize>(piece.size())) || in.gcount() > 0) {
        take(std::span(reinterpret_cast<const std::uint8_t*>(piece.data()),
                       static_cast<std::size_t>(in.gcount())));
    }
    return in.eof() && !in.bad();
}

}  // namespace

std::optional<FileDigest> digestOf(const fs::path& path) {
    Sha256 sha256;
    Xxh128 xxh128;
    const bool isRead = readPieces(path, [&](std::span<const std::uint8_t> piece) {
        sha256.add(piece);
        xxh128.add(piece);
    });
    if (!isRead) {
        return std::nullopt;
    }
    return FileDigest{sha256.finish(), xxh128.finish()};
}

std::optional<std::string> quickDigestOf(const fs::path& path) {
    Xxh128 xxh128;
    const bool isRead =
        readPieces(path, [&](std::span<const std::uint8_t> piece) { xxh128.add(piece); });
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
