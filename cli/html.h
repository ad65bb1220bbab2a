#pragma once

#include <string>
#include <string_view>

/// Texts from outside in a page of HTML.
namespace marrowpress {

/// `text` as one line of valid UTF-8, as `shownText` makes it, with nothing in it that would end
/// the text, or the quotes around a value.
std::string htmlText(std::string_view text);

/// As `htmlText`, of a text that is fit to be shown already: a source line with its tabs.
std::string htmlOfShown(std::string_view shown);

/// `text` as part of an id and of a reference to it: valid UTF-8 without blanks, commas, and what
/// would need quotes.
std::string htmlName(std::string_view text);

}  // namespace marrowpress
