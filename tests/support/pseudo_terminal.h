#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <string>

namespace marrowpress {

/// A terminal that nobody sits at. What is written to it can be read, byte by byte.
class PseudoTerminal {
public:
    PseudoTerminal() {
        termios settings{};
        cfmakeraw(&settings);
        winsize size{};
        std::array<char, 100> name;
        EXPECT_EQ(openpty(&screen_, &terminal_, name.data(), &settings, &size), 0);
        path_ = name.data();
        // No program that is started by a test holds it open.
        fcntl(screen_, F_SETFD, FD_CLOEXEC);
        fcntl(terminal_, F_SETFD, FD_CLOEXEC);
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;
    ~PseudoTerminal() {
        close(screen_);
        close(terminal_);
    }

    /// Open as long as this object lives.
    int descriptor() const noexcept { return terminal_; }

    /// The file that stands for it.
    const std::string& path() const noexcept { return path_; }

    void setWidth(unsigned short columns) const {
        winsize size{};
        size.ws_col = columns;
        size.ws_row = 24;
        EXPECT_EQ(ioctl(terminal_, TIOCSWINSZ, &size), 0);
    }

    /// What has come to it since the last time. Who else writes to it has ended, or writes little:
    /// it holds some 4,000 bytes until they are read.
    std::string shown() const {
        // The system takes its time; a mark behind all of it tells when all is there.
        constexpr char kMark = '\x04';
        EXPECT_EQ(write(terminal_, &kMark, 1), 1);
        std::string text;
        for (char byte = 0; read(screen_, &byte, 1) == 1 && byte != kMark;) {
            text += byte;
        }
        return text;
    }

private:
    int screen_ = -1;
    int terminal_ = -1;
    std::string path_;
};

}  // namespace marrowpress
