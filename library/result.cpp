#include "library/result.h"

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <boost/json/value_to.hpp>
#include <sstream>
#include <string_view>
#include <utility>

#include "host/utf8.h"

namespace {

namespace json = boost::json;

std::string textIn(const json::object& object, const char* name) {
    const json::value* const value = object.if_contains(name);
    return value && value->is_string() ? std::string(std::string_view(value->as_string()))
                                       : std::string();
}

std::uint32_t numberIn(const json::object& object, const char* name) {
    const json::value* const value = object.if_contains(name);
    return value && value->is_int64() ? value->to_number<std::uint32_t>() : 0;
}

template <class Take>
void forEachLine(const std::string& text, Take take) {
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        take(line);
    }
}

}  // namespace

mp_result::mp_result(marrowpress::ResultData given) : data_(std::move(given)) {
    for (const marrowpress::TypedValue& value : data_.values) {
        addValue(value);
    }
    forEachLine(data_.findings, [this](const std::string& line) { addFinding(line); });
    forEachLine(data_.dependencies, [this](const std::string& line) { addDependency(line); });
    forEachLine(data_.keys, [this](const std::string& line) { keys_.push_back(keep(line)); });
}

const char* mp_result::keep(std::string text) {
    return texts_.emplace_back(std::move(text)).c_str();
}

void mp_result::addValue(const marrowpress::TypedValue& value) {
    mp_value view{};
    view.type = value.type;
    if (const auto* const integer = std::get_if<std::int32_t>(&value.value)) {
        view.integer = *integer;
    } else if (const auto* const text = std::get_if<std::string>(&value.value)) {
        view.text = keep(marrowpress::toValidUtf8(*text));
    } else if (const auto* const texts = std::get_if<std::vector<std::string>>(&value.value)) {
        std::vector<const char*>& list = lists_.emplace_back();
        for (const std::string& item : *texts) {
            list.push_back(keep(marrowpress::toValidUtf8(item)));
        }
        view.count = list.size();
        view.texts = list.data();
    } else if (const auto* const integers = std::get_if<std::vector<std::int32_t>>(&value.value)) {
        view.count = integers->size();
        view.integers = integers->data();
    }
    values_.push_back(view);
}

void mp_result::addFinding(const std::string& line) {
    const json::value parsed = json::parse(line);
    const json::object& object = parsed.as_object();
    findings_.push_back({keep(textIn(object, "id")), keep(textIn(object, "severity")),
                         keep(textIn(object, "text")), keep(textIn(object, "hint")),
                         keep(textIn(object, "file")), numberIn(object, "line"),
                         numberIn(object, "column"), keep(line)});
}

void mp_result::addDependency(const std::string& line) {
    const json::value parsed = json::parse(line);
    const json::object& object = parsed.as_object();
    const json::value& from = object.at("from");
    const json::object place = from.is_object() ? from.as_object() : json::object();
    dependencies_.push_back({keep(textIn(object, "file")), keep(textIn(object, "kind")),
                             keep(textIn(object, "state")), keep(textIn(place, "file")),
                             numberIn(place, "line"), numberIn(place, "column"), keep(line)});
}
