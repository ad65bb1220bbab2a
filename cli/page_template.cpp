#include "cli/page_template.h"

#include <algorithm>

namespace marrowpress {

std::string filledTemplate(std::string_view pattern,
                           const std::vector<std::pair<std::string_view, std::string>>& texts) {
    constexpr std::string_view kOpening = "{{";
    constexpr std::string_view kClosing = "}}";
    std::string filled;
    while (true) {
        const std::size_t begin = pattern.find(kOpening);
        const std::size_t end =
            begin == std::string_view::npos ? begin : pattern.find(kClosing, begin);
        if (end == std::string_view::npos) {
            return filled.append(pattern);
        }
        const std::size_t nameBegin = begin + kOpening.size();
        const std::string_view name = pattern.substr(nameBegin, end - nameBegin);
        const auto known = std::find_if(texts.begin(), texts.end(),
                                        [name](const auto& text) { return text.first == name; });
        filled.append(pattern.substr(0, begin));
        const std::size_t behind = end + kClosing.size();
        filled.append(known == texts.end() ? pattern.substr(begin, behind - begin) : known->second);
        pattern.remove_prefix(behind);
    }
}

}  // namespace marrowpress
