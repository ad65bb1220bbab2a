#include "cli/page_search.h"

#include "cli/html.h"
#include "findings/language.h"

namespace marrowpress {
namespace {

std::string choiceOption(const std::string& value, const std::string& label) {
    return "<option value=\"" + htmlText(value) + "\">" + htmlText(label) + "</option>";
}

std::string choiceField(const std::vector<SearchChoice>& choices) {
    std::string options = choiceOption("", translated("alle"));
    for (const auto& [value, label] : choices) {
        options += choiceOption(value, label);
    }
    return "<label>" + htmlText(translated("Zeigen")) + " <select>" + options +
           "</select></label>\n";
}

}  // namespace

std::string searchForm(const std::string& part, const std::string& label,
                       const std::vector<SearchChoice>& choices) {
    return "<form class=search role=search aria-label=\"" + htmlText(label) +
           "\" data-part=" + part + " hidden>\n<label>" + htmlText(label) +
           " <input type=search autocomplete=off></label>\n" +
           (choices.empty() ? std::string() : choiceField(choices)) +
           "<output aria-live=polite></output>\n</form>\n";
}

}  // namespace marrowpress
