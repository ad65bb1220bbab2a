#pragma once

#include <string>
#include <string_view>

namespace marrowpress {

/// A file without a name, in memory.
class MemoryFile {
public:
    /// @throws std::system_error
    explicit MemoryFile(const char* name);
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile();

    int descriptor() const noexcept { return descriptor_; }
    /// Puts `text` into it, and its position to the beginning.
    void fill(const std::string& text) const;
    std::string text() const;

private:
    int descriptor_;
};

/// Writes `text` to a descriptor. What cannot be told has no reader any more.
void tell(int descriptor, std::string_view text);

}  // namespace marrowpress
