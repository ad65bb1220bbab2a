#pragma once

#include <chrono>
#include <cstddef>
#include <iosfwd>
#include <string_view>

namespace marrowpress {

/// Whether the descriptor leads to a terminal on which a line can be redrawn and coloured.
bool isTerminal(int descriptor);

/// Whether what goes to the descriptor has colours when nobody says so: on such a terminal, unless
/// the environment variable NO_COLOR holds something.
bool isColoredByItself(int descriptor);

/// The columns of the terminal that the descriptor leads to, by its own word or that of the
/// environment variable COLUMNS; 80 when nobody says.
std::size_t terminalWidth(int descriptor);

/// One line at the end of what a terminal shows, for what goes on just now. Does nothing where
/// there is no terminal.
class LiveLine {
public:
    /// `out` writes to the descriptor; it must outlive this object.
    LiveLine(std::ostream& out, int descriptor);
    LiveLine(const LiveLine&) = delete;
    LiveLine& operator=(const LiveLine&) = delete;
    ~LiveLine();

    /// Shows `text`, in UTF-8 as far as it is, in the place of the last one, cut to the terminal's
    /// width. What comes too soon behind the last one isn't shown: a slow terminal would hold up
    /// the run.
    void show(std::string_view text);

    /// Whether `show` would show anything just now.
    bool isDue() const { return isEnabled_ && Clock::now() >= next_; }

    /// Shows `text` in any case: one that is to stay for a while.
    void showAtOnce(std::string_view text);

    /// Takes the line away. To be called before anything else is written to the terminal.
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    std::ostream& out_;
    int descriptor_;
    bool isEnabled_;
    bool isShown_ = false;
    Clock::time_point next_;
};

}  // namespace marrowpress
