#include "library/line_socket.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace marrowpress {

LineSocket::~LineSocket() {
    close(descriptor_);
}

bool LineSocket::send(const std::string& line) const {
    const std::string whole = line + "\n";
    std::size_t sent = 0;
    while (sent < whole.size()) {
        const ssize_t count =
            ::send(descriptor_, whole.data() + sent, whole.size() - sent, MSG_NOSIGNAL);
        if (count < 0 && errno != EINTR) {
            return false;
        }
        sent += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
}

std::optional<std::string> LineSocket::receive(std::chrono::milliseconds atMost) {
    while (true) {
        if (std::optional<std::string> line = takeLine()) {
            return line;
        }
        if (isClosed_ || !waitFor(atMost)) {
            return std::nullopt;
        }
        std::array<char, 1 << 16> bytes;
        const ssize_t count = ::recv(descriptor_, bytes.data(), bytes.size(), 0);
        if (count > 0) {
            received_.append(bytes.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            isClosed_ = true;
            // What has no end was cut off.
            received_.resize(received_.rfind('\n') + 1);
        }
    }
}

bool LineSocket::waitFor(std::chrono::milliseconds atMost) const {
    pollfd polled{descriptor_, POLLIN, 0};
    return poll(&polled, 1, static_cast<int>(atMost.count())) > 0;
}

std::optional<std::string> LineSocket::takeLine() {
    const std::size_t end = received_.find('\n', searched_);
    if (end == std::string::npos) {
        searched_ = received_.size();
        return std::nullopt;
    }
    std::string line = received_.substr(0, end);
    received_.erase(0, end + 1);
    searched_ = 0;
    return line;
}

}  // namespace marrowpress
