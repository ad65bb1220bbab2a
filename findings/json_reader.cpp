#include "findings/json_reader.h"

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <istream>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "findings/severity.h"

namespace marrowpress {
namespace {

namespace json = boost::json;

[[noreturn]] void throwWrong(const std::string& name, const char* what) {
    throw std::runtime_error('"' + name + "\" is " + what);
}

/// The member, null where it is missing or JSON's null.
const json::value* memberOf(const json::object& object, const std::string& name) {
    const json::value* const member = object.if_contains(name);
    return member == nullptr || member->is_null() ? nullptr : member;
}

std::optional<std::string> textOf(const json::object& object, const std::string& name) {
    const json::value* const member = memberOf(object, name);
    if (member == nullptr) {
        return std::nullopt;
    }
    if (!member->is_string()) {
        throwWrong(name, "no string");
    }
    return std::string(member->get_string());
}

template <typename Number>
Number numberOf(const json::object& object, const std::string& name) {
    const json::value* const member = memberOf(object, name);
    if (member == nullptr) {
        return 0;
    }
    boost::system::error_code error;
    const auto number = member->to_number<Number>(error);
    if (error) {
        throwWrong(name, "no such number");
    }
    return number;
}

bool flagOf(const json::object& object, const std::string& name) {
    const json::value* const member = memberOf(object, name);
    if (member != nullptr && !member->is_bool()) {
        throwWrong(name, "neither true nor false");
    }
    return member != nullptr && member->get_bool();
}

FindingPlace placeMember(const json::object& object) {
    return {textOf(object, "file").value_or(""), numberOf<std::uint32_t>(object, "line"),
            numberOf<std::uint32_t>(object, "column")};
}

FindingStep stepMember(const json::object& object) {
    return {placeMember(object), textOf(object, "what").value_or("")};
}

/// The items of an array, each of them made by `convert`; none where there is no such member.
template <typename Convert>
auto itemsOf(const json::object& object, const std::string& name, Convert convert) {
    std::vector<decltype(convert(json::value()))> items;
    if (const json::value* const member = memberOf(object, name)) {
        if (!member->is_array()) {
            throwWrong(name, "no array");
        }
        for (const json::value& item : member->get_array()) {
            items.push_back(convert(item));
        }
    }
    return items;
}

/// `itemsOf` an array of objects.
template <typename Convert>
auto objectsOf(const json::object& object, const std::string& name, Convert convert) {
    return itemsOf(object, name, [&name, convert](const json::value& item) {
        if (!item.is_object()) {
            throwWrong(name, "no array of objects");
        }
        return convert(item.get_object());
    });
}

std::vector<std::string> textsOf(const json::object& object, const std::string& name) {
    return itemsOf(object, name, [&name](const json::value& item) {
        if (!item.is_string()) {
            throwWrong(name, "no array of strings");
        }
        return std::string(item.get_string());
    });
}

std::string idOf(const json::object& object) {
    const std::optional<std::string> id = textOf(object, "id");
    if (!id) {
        throwWrong("id", "missing");
    }
    return *id;
}

Severity severityMember(const json::object& object) {
    const std::optional<std::string> name = textOf(object, "severity");
    if (!name) {
        throwWrong("severity", "missing");
    }
    const std::optional<Severity> severity = severityOf(*name);
    if (!severity) {
        throwWrong("severity", "none of error, warning and note");
    }
    return *severity;
}

FindingSummary summaryOf(const json::value& value) {
    if (!value.is_object()) {
        throwWrong("summary", "no object");
    }
    const json::object& object = value.get_object();
    FindingSummary summary;
    summary.errors = numberOf<std::size_t>(object, "errors");
    summary.warnings = numberOf<std::size_t>(object, "warnings");
    summary.notes = numberOf<std::size_t>(object, "notes");
    summary.topics = numberOf<std::size_t>(object, "topics");
    summary.files = numberOf<std::size_t>(object, "files");
    summary.seconds = numberOf<double>(object, "seconds");
    summary.exit = numberOf<int>(object, "exit");
    summary.dropped = numberOf<std::size_t>(object, "dropped");
    return summary;
}

json::object objectIn(const std::string& line) {
    boost::system::error_code error;
    json::value value = json::parse(line, error);
    if (error) {
        throw std::runtime_error("this is no JSON");
    }
    if (!value.is_object()) {
        throw std::runtime_error("this is no JSON object");
    }
    return std::move(value.get_object());
}

bool isBlank(const std::string& line) {
    return line.find_first_not_of(" \t\r") == std::string::npos;
}

}  // namespace

Finding parseFinding(const json::object& object) {
    Finding finding;
    finding.id = idOf(object);
    finding.severity = severityMember(object);
    finding.text = textOf(object, "text").value_or("");
    finding.place = placeMember(object);
    finding.element = textOf(object, "element").value_or("");
    finding.target = textOf(object, "target").value_or("");
    finding.hint = textOf(object, "hint").value_or("");
    finding.via = objectsOf(object, "via", stepMember);
    finding.places = objectsOf(object, "places", placeMember);
    finding.profiles = textsOf(object, "profile");
    finding.isArtefact = flagOf(object, "artefact");
    finding.hostText = textOf(object, "hostText");
    return finding;
}

std::optional<FindingSummary> readJson(std::istream& in, const std::function<void(Finding)>& take) {
    std::optional<FindingSummary> summary;
    std::string line;
    std::size_t number = 0;
    while (std::getline(in, line)) {
        ++number;
        if (isBlank(line)) {
            continue;
        }
        try {
            const json::object object = objectIn(line);
            if (const json::value* const recorded = object.if_contains("summary")) {
                summary = summaryOf(*recorded);
            } else {
                take(parseFinding(object));
            }
        } catch (const std::runtime_error& fault) {
            throw std::runtime_error("line " + std::to_string(number) + ": " + fault.what());
        }
    }
    if (in.bad()) {
        throw std::runtime_error("line " + std::to_string(number + 1) + ": it can't be read");
    }
    return summary;
}

}  // namespace marrowpress
