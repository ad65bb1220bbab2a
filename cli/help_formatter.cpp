#include "cli/help_formatter.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <boost/algorithm/string/replace.hpp>
#include <charconv>
#include <cstdlib>
#include <sstream>

#include "cli/options.h"

namespace marrowpress {
namespace {

constexpr std::size_t kLeastWidth = 40;

/// The number that COLUMNS holds; 0 when it holds none.
std::size_t columnsOfEnvironment() {
    const char* const value = std::getenv("COLUMNS");
    const std::string_view text = value ? value : "";
    std::size_t columns = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), columns);
    return error == std::errc() && end == text.data() + text.size() ? columns : 0;
}

/// What stands behind an option's name.
std::string placeholder(const CLI::Option& option) {
    const std::string name = option.get_positional() ? "" : option.get_type_name();
    return name.empty() ? "" : " " + name;
}

std::string namesOf(const CLI::Option& option) {
    if (option.get_positional()) {
        return option.get_name(true);
    }
    const std::string name = option.get_snames().empty() ? "" : "-" + option.get_snames().front();
    const std::string longName = "--" + option.get_lnames().front();
    return name.empty() ? longName : name + ", " + longName;
}

/// No more than one empty line at a time, and none at the end.
std::string withoutEmptyLines(const std::string& text) {
    std::string thinned;
    for (const char character : text) {
        if (character != '\n' || !thinned.ends_with("\n\n")) {
            thinned += character;
        }
    }
    while (thinned.ends_with("\n\n")) {
        thinned.pop_back();
    }
    return thinned;
}

/// The characters of `text`: the bytes that begin one.
std::size_t lengthOf(std::string_view text) {
    return std::count_if(text.begin(), text.end(), [](char character) {
        return (static_cast<unsigned char>(character) & 0xC0) != 0x80;
    });
}

std::string describe(const CLI::Option& option) {
    const std::string& text = option.get_description();
    if (option.get_required()) {
        return option.get_positional() ? text : text + "; required";
    }
    const std::string usual = option.get_default_str();
    return usual.empty() ? text : text + "; " + usual + " unless given";
}

}  // namespace

std::size_t helpWidth(int descriptor) {
    if (isatty(descriptor) == 0) {
        return kUsualHelpWidth;
    }
    winsize size{};
    if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        return size.ws_col;
    }
    const std::size_t columns = columnsOfEnvironment();
    return columns > 0 ? columns : kUsualHelpWidth;
}

std::string wrapped(std::string_view text, std::size_t width, std::size_t indent,
                    std::size_t used) {
    std::istringstream words{std::string(text)};
    std::string lines;
    std::size_t column = used;
    bool isFirstOfLine = true;
    for (std::string word; words >> word;) {
        const std::size_t length = lengthOf(word);
        if (!isFirstOfLine && column + 1 + length > width) {
            lines += "\n" + std::string(indent, ' ');
            column = indent;
            isFirstOfLine = true;
        }
        if (!isFirstOfLine) {
            lines += ' ';
            ++column;
        }
        lines += word;
        column += length;
        isFirstOfLine = false;
    }
    return lines;
}

HelpFormatter::HelpFormatter(std::size_t width)
    : width_(std::max(width, kLeastWidth)), nameWidth_(std::min<std::size_t>(26, width_ / 3)) {
    label("SUBCOMMAND", "COMMAND");
    label("Positionals", "Arguments");
}

std::string HelpFormatter::make_help(const CLI::App* app, std::string name,
                                     CLI::AppFormatMode mode) const {
    return withoutEmptyLines(CLI::Formatter::make_help(app, std::move(name), mode));
}

std::string HelpFormatter::make_usage(const CLI::App* app, std::string name) const {
    // The library writes the command's own name.
    std::string usage = CLI::Formatter::make_usage(app, std::move(name));
    boost::algorithm::replace_first(usage, app->get_name(), shownCommand(app->get_name()));
    return paragraphs("\n" + usage);
}

std::string HelpFormatter::make_description(const CLI::App* app) const {
    return paragraphs(app->get_description() + "\n");
}

std::string HelpFormatter::make_footer(const CLI::App* app) const {
    return paragraphs(app->get_footer());
}

std::string HelpFormatter::make_subcommand(const CLI::App* command) const {
    return entry(shownCommand(command->get_name()), command->get_description());
}

std::string HelpFormatter::make_option(const CLI::Option* option, bool /*isPositional*/) const {
    return entry(namesOf(*option) + placeholder(*option), describe(*option));
}

std::string HelpFormatter::entry(const std::string& name, const std::string& description) const {
    std::string text = "  " + name;
    if (text.size() + 2 > nameWidth_) {
        text += "\n" + std::string(nameWidth_, ' ');
    } else {
        text.resize(nameWidth_, ' ');
    }
    return text + wrapped(description, width_, nameWidth_, nameWidth_) + "\n";
}

std::string HelpFormatter::paragraphs(const std::string& text) const {
    std::istringstream in(text);
    std::string wrappedText;
    for (std::string line; std::getline(in, line);) {
        wrappedText += line.starts_with(' ') ? line : wrapped(line, width_, 0, 0);
        wrappedText += '\n';
    }
    return wrappedText;
}

}  // namespace marrowpress
