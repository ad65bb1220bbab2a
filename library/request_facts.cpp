#include "library/request_facts.h"

#include <algorithm>
#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <optional>
#include <string_view>
#include <system_error>

namespace marrowpress {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

constexpr std::string_view kFlatBookType = "PublishFlatBook";
constexpr const char* kOneLocation = "generateQSComponentsAtOneLoc";

/// The request and its parameters; empty for a text that has none. The client reads up to a NUL,
/// and takes an escaped one for a fault of its own.
std::optional<json::object> parsedRequest(const std::string& text) {
    boost::system::error_code error;
    json::value value = json::parse(text, error);
    const bool isRequest = !error && value.is_object() && value.as_object().contains("type") &&
                           value.as_object()["type"].is_string() &&
                           value.as_object().contains("params") &&
                           value.as_object()["params"].is_object();
    return isRequest ? std::optional(std::move(value.as_object())) : std::nullopt;
}

bool isFlatBook(const json::object& request) {
    return std::string_view(request.at("type").as_string()).starts_with(kFlatBookType);
}

/// As the client reads a path; empty without one.
fs::path pathOf(const json::object& params, const char* name) {
    const json::value* const value = params.if_contains(name);
    if (!value || !value->is_string() || value->as_string().empty()) {
        return {};
    }
    std::string path(std::string_view(value->as_string()));
    std::replace(path.begin(), path.end(), '\\', '/');
    std::error_code ignored;
    return fs::absolute(path, ignored).lexically_normal();
}

}  // namespace

RequestFacts factsOf(const std::string& request) {
    const std::optional<json::object> parsed = parsedRequest(request);
    if (!parsed) {
        return {};
    }
    const json::object& params = parsed->at("params").as_object();
    const json::value* const oneLocation = params.if_contains(kOneLocation);
    RequestFacts facts;
    facts.isFlatBook = isFlatBook(*parsed);
    facts.isAtOneLocation = oneLocation && oneLocation->is_bool() && oneLocation->as_bool();
    facts.map = pathOf(params, "ditamap");
    facts.output = pathOf(params, facts.isFlatBook ? "outputDir" : "output");
    facts.filter = pathOf(params, "ditaVal");
    return facts;
}

std::string movedInto(const fs::path& folder, const std::string& request) {
    std::optional<json::object> parsed = parsedRequest(request);
    if (!parsed) {
        return request;
    }
    const bool isBook = isFlatBook(*parsed);
    json::object& params = (*parsed)["params"].as_object();
    if (isBook) {
        params["outputDir"] = folder.string();
        params[kOneLocation] = true;
    } else {
        params["output"] = (folder / "composite.dita").string();
    }
    return json::serialize(*parsed);
}

}  // namespace marrowpress
