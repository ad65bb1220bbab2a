#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value_from.hpp>
#include <boost/json/value_to.hpp>
#include <utility>

#include "findings/json_values.h"
#include "library/result.h"

namespace marrowpress {
namespace {

namespace json = boost::json;

TypedValue valueFromJson(const json::value& given) {
    const json::value& value = given.at("value");
    TypedValue typed{given.at("type").to_number<std::uint32_t>(), {}};
    switch (static_cast<HostValueType>(typed.type)) {
        case HostValueType::kInteger:
            typed.value = value.to_number<std::int32_t>();
            break;
        case HostValueType::kString:
            typed.value = json::value_to<std::string>(value);
            break;
        case HostValueType::kStringList:
            typed.value = json::value_to<std::vector<std::string>>(value);
            break;
        case HostValueType::kIntegerList:
            typed.value = json::value_to<std::vector<std::int32_t>>(value);
            break;
        default:
            break;
    }
    return typed;
}

std::string textAt(const json::value& object, const char* name) {
    return json::value_to<std::string>(object.at(name));
}

}  // namespace

ResultData failedResult(int code, std::string error) {
    ResultData data;
    data.code = code;
    data.error = std::move(error);
    return data;
}

std::string toJsonLine(const ResultData& data) {
    return json::serialize(
        json::object{{"code", data.code},
                     {"error", jsonText(data.error)},
                     {"signal", data.signal},
                     {"status", data.status ? json::value(*data.status) : json::value()},
                     {"values", toJson(data.values)},
                     {"findings", data.findings},
                     {"dependencies", data.dependencies},
                     {"keys", data.keys},
                     {"outputs", jsonArray(data.outputs, jsonText)}});
}

ResultData resultFromJson(const std::string& line) {
    const json::value object = json::parse(line);
    ResultData data = failedResult(object.at("code").to_number<int>(), textAt(object, "error"));
    data.signal = object.at("signal").to_number<int>();
    if (object.at("status").is_int64()) {
        data.status = object.at("status").to_number<std::int32_t>();
    }
    for (const json::value& value : object.at("values").as_array()) {
        data.values.push_back(valueFromJson(value));
    }
    data.findings = textAt(object, "findings");
    data.dependencies = textAt(object, "dependencies");
    data.keys = textAt(object, "keys");
    data.outputs = json::value_to<std::vector<std::string>>(object.at("outputs"));
    return data;
}

}  // namespace marrowpress
