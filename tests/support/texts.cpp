#include "tests/support/texts.h"

#include <algorithm>
#include <regex>

namespace marrowpress {

std::string replacedAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t place = text.find(from); place != std::string::npos;
         place = text.find(from, place + to.size())) {
        text.replace(place, from.size(), to);
    }
    return text;
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string all;
    for (std::size_t copy = 0; copy < count; ++copy) {
        all += text;
    }
    return all;
}

std::string IdNames::named(const std::string& text) {
    static const std::regex kId(
        "id[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
    std::string result;
    auto behind = text.cbegin();
    for (std::sregex_iterator match(text.begin(), text.end(), kId), end; match != end; ++match) {
        auto place = std::find(ids_.begin(), ids_.end(), match->str());
        if (place == ids_.end()) {
            place = ids_.insert(place, match->str());
        }
        result.append(behind, (*match)[0].first);
        result += "id-" + std::to_string(place - ids_.begin() + 1);
        behind = (*match)[0].second;
    }
    return result.append(behind, text.cend());
}

}  // namespace marrowpress
