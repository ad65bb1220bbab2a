#include "cli/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <ostream>
#include <string>

#include "findings/characters.h"

namespace marrowpress {
namespace {

constexpr std::chrono::milliseconds kInterval{50};
constexpr const char* kEraseToEnd = "\x1B[K";

/// The value of an environment variable, empty when there is none.
std::string_view environment(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : std::string_view();
}

/// As much of `text` as fits, with nothing in it that would move the cursor.
std::string cutTo(std::size_t columns, std::string_view text) {
    std::string line;
    std::size_t used = 0;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        const std::string shown = shownCharacter(character);
        used += cellsOf(shown);
        if (used > columns) {
            break;
        }
        line += shown;
        text.remove_prefix(character.bytes.size());
    }
    return line;
}

}  // namespace

bool isTerminal(int descriptor) {
    return isatty(descriptor) == 1 && environment("TERM") != "dumb";
}

bool isColoredByItself(int descriptor) {
    return isTerminal(descriptor) && environment("NO_COLOR").empty();
}

std::size_t terminalWidth(int descriptor) {
    constexpr std::size_t kUsualWidth = 80;
    winsize size{};
    if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        return size.ws_col;
    }
    const std::string_view columns = environment("COLUMNS");
    const char* const end = columns.data() + columns.size();
    std::size_t width = 0;
    const auto [rest, error] = std::from_chars(columns.data(), end, width);
    return error == std::errc() && rest == end && width > 0 ? width : kUsualWidth;
}

LiveLine::LiveLine(std::ostream& out, int descriptor)
    : out_(out), descriptor_(descriptor), isEnabled_(isTerminal(descriptor)) {}

LiveLine::~LiveLine() {
    clear();
}

void LiveLine::show(std::string_view text) {
    if (isDue()) {
        showAtOnce(text);
    }
}

void LiveLine::showAtOnce(std::string_view text) {
    if (!isEnabled_) {
        return;
    }
    // The last column stays free: some terminals go on to the next line behind it.
    out_ << '\r' << cutTo(terminalWidth(descriptor_) - 1, text) << kEraseToEnd << std::flush;
    isShown_ = true;
    next_ = Clock::now() + kInterval;
}

void LiveLine::clear() {
    if (isShown_) {
        out_ << '\r' << kEraseToEnd << std::flush;
        isShown_ = false;
    }
}

}  // namespace marrowpress
