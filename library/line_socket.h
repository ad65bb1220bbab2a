#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace marrowpress {

/// One end of a pair of connected sockets, over which lines go.
class LineSocket {
public:
    /// Takes the descriptor over.
    explicit LineSocket(int descriptor) noexcept : descriptor_(descriptor) {}
    LineSocket(const LineSocket&) = delete;
    LineSocket& operator=(const LineSocket&) = delete;
    ~LineSocket();

    int descriptor() const noexcept { return descriptor_; }

    /// Writes `line`, which has no line end, and one. False when the other end is gone; it raises
    /// no signal.
    bool send(const std::string& line) const;

    /// The next line without its end; empty when none has come within the time, or will come.
    std::optional<std::string> receive(std::chrono::milliseconds atMost);

    /// Whether the other end is gone, and each line has been received.
    bool isAtEnd() const noexcept { return isClosed_ && received_.empty(); }

private:
    bool waitFor(std::chrono::milliseconds atMost) const;
    std::optional<std::string> takeLine();

    int descriptor_;
    bool isClosed_ = false;
    std::string received_;
    std::size_t searched_ = 0;  ///< So far there is no line end.
};

}  // namespace marrowpress
