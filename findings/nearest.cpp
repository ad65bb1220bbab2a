#include "findings/nearest.h"

#include <algorithm>

namespace marrowpress {
namespace {

/// A row of the table that the distance is reckoned in.
using Row = std::vector<std::size_t>;

char lowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

/// With the letters of ASCII in lower case.
std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char character) { return lowerCase(character); });
    return lower;
}

/// The characters of `text`, as the bytes of each.
std::vector<std::string_view> charactersOf(std::string_view text) {
    std::vector<std::string_view> characters;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = at + 1;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
            ++end;
        }
        characters.push_back(text.substr(at, end - at));
        at = end;
    }
    return characters;
}

std::size_t distanceOf(const std::vector<std::string_view>& left,
                       const std::vector<std::string_view>& right, std::size_t limit) {
    const std::size_t gap =
        left.size() > right.size() ? left.size() - right.size() : right.size() - left.size();
    if (gap > limit) {
        return limit + 1;
    }
    Row beforeLast(right.size() + 1);
    Row last(right.size() + 1);
    Row row(right.size() + 1);
    for (std::size_t j = 0; j <= right.size(); ++j) {
        last[j] = j;
    }
    for (std::size_t i = 1; i <= left.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
            const bool isExchanged =
                i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
            if (isExchanged) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        // No later row has less than the least of two that follow each other.
        if (std::min(*std::min_element(last.begin(), last.end()),
                     *std::min_element(row.begin(), row.end())) > limit) {
            return limit + 1;
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return std::min(last.back(), limit + 1);
}

}  // namespace

std::size_t editDistance(std::string_view left, std::string_view right, std::size_t limit) {
    return distanceOf(charactersOf(left), charactersOf(right), limit);
}

std::optional<std::string> nearestName(std::string_view name,
                                       const std::vector<std::string>& names) {
    const std::string lower = lowerCase(name);
    const std::vector<std::string_view> characters = charactersOf(lower);
    // A long name is a path or a text, and one that differs in much of it is another.
    constexpr std::size_t kMost = 6;
    const std::size_t limit = std::min(characters.size() / 3, kMost);

    const std::string* nearest = nullptr;
    std::size_t least = limit + 1;
    for (const std::string& candidate : names) {
        if (candidate == name || least == 0) {
            continue;
        }
        const std::string lowerCandidate = lowerCase(candidate);
        const std::size_t distance = distanceOf(characters, charactersOf(lowerCandidate), least);
        if (distance < least) {
            least = distance;
            nearest = &candidate;
        }
    }
    return nearest ? std::optional(*nearest) : std::nullopt;
}

}  // namespace marrowpress
