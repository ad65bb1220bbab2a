#pragma once

#include <optional>
#include <string>

namespace marrowpress {

/// A regular file, open for reading, or the reason why it is not. Nothing else is ever opened in
/// earnest: a pipe is not waited for.
class RegularFile {
public:
    explicit RegularFile(const std::string& path);
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;
    ~RegularFile();

    bool isOpen() const noexcept { return descriptor_ >= 0; }

    /// The system's reason, or "not a regular file"; empty for an open file.
    const std::string& fault() const noexcept { return fault_; }

    /// Of an open file; it stays this object's.
    int descriptor() const noexcept { return descriptor_; }

    /// The bytes from where the file stands to its end. Empty, with a fault from then on, when
    /// they cannot be read.
    std::optional<std::string> read();

private:
    void close() noexcept;

    int descriptor_;
    std::string fault_;
};

}  // namespace marrowpress
