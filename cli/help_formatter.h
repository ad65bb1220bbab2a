#pragma once

#include <CLI/CLI.hpp>
#include <cstddef>
#include <string>
#include <string_view>

namespace marrowpress {

/// The columns of a help text where nothing says how many there are.
inline constexpr std::size_t kUsualHelpWidth = 80;

/// The columns of the terminal that the descriptor leads to, by its own word or that of COLUMNS;
/// those of `kUsualHelpWidth` when it is no terminal, or nobody knows.
std::size_t helpWidth(int descriptor);

/// `text` in lines of `width` columns at most, with `indent` blanks in front of each but the first,
/// for which `used` columns are taken already. Breaks at blanks only, and ends without a line end.
/// UTF-8; each character counts as one column.
std::string wrapped(std::string_view text, std::size_t width, std::size_t indent, std::size_t used);

/// Writes help texts that fit into a terminal: names on the left, and beside them what they are
/// for. In a footer, lines that begin with a blank are examples and stay as they are.
class HelpFormatter final : public CLI::Formatter {
public:
    /// A width that leaves no room for words is taken for a wider one.
    explicit HelpFormatter(std::size_t width);

    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override;
    std::string make_usage(const CLI::App* app, std::string name) const override;
    std::string make_description(const CLI::App* app) const override;
    std::string make_footer(const CLI::App* app) const override;
    std::string make_subcommand(const CLI::App* command) const override;
    std::string make_option(const CLI::Option* option, bool isPositional) const override;

private:
    std::string entry(const std::string& name, const std::string& description) const;
    std::string paragraphs(const std::string& text) const;

    std::size_t width_;
    std::size_t nameWidth_;  ///< Up to where descriptions begin.
};

}  // namespace marrowpress
