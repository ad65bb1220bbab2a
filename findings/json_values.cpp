#include "findings/json_values.h"

#include "host/utf8.h"

namespace marrowpress {

boost::json::value jsonText(std::string_view raw) {
    return boost::json::string(toValidUtf8(raw));
}

boost::json::value jsonTextOrNull(std::string_view raw) {
    return raw.empty() ? boost::json::value() : jsonText(raw);
}

boost::json::value jsonNumberOrNull(std::uint32_t number) {
    return number == 0 ? boost::json::value() : boost::json::value(number);
}

boost::json::object jsonPlace(const FindingPlace& place) {
    return {{"file", jsonTextOrNull(place.file)},
            {"line", jsonNumberOrNull(place.line)},
            {"column", jsonNumberOrNull(place.column)}};
}

boost::json::object jsonStep(const FindingStep& step) {
    boost::json::object object = jsonPlace(step.place);
    object["what"] = jsonText(step.what);
    return object;
}

}  // namespace marrowpress
