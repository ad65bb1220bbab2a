#include "library/order_json.h"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value_from.hpp>
#include <boost/json/value_to.hpp>

namespace marrowpress {
namespace {

namespace json = boost::json;

json::array documentsToJson(const std::vector<OpenDocument>& documents) {
    json::array array;
    for (const OpenDocument& document : documents) {
        array.push_back(
            json::object{{"id", document.id}, {"path", document.path}, {"flag", document.flag}});
    }
    return array;
}

}  // namespace

std::string toJsonLine(const Order& order) {
    // Nobody else serves in the child.
    const std::uint32_t flags = order.flags & ~static_cast<std::uint32_t>(MP_WAIT);
    return json::serialize(json::object{{"request", order.request},
                                        {"flags", flags},
                                        {"language", static_cast<int>(order.language)},
                                        {"catalogs", json::value_from(order.catalogs)},
                                        {"documents", documentsToJson(order.documents)},
                                        {"memory", order.memoryLimit},
                                        {"progress", static_cast<bool>(order.onProgress)},
                                        {"resolve", static_cast<bool>(order.resolvePublicId)}});
}

SentOrder orderFromJson(const std::string& line) {
    const json::value object = json::parse(line);
    SentOrder sent;
    Order& order = sent.order;
    order.request = json::value_to<std::string>(object.at("request"));
    order.flags = object.at("flags").to_number<std::uint32_t>();
    order.language = static_cast<Language>(object.at("language").to_number<std::uint8_t>());
    order.catalogs = json::value_to<std::vector<std::string>>(object.at("catalogs"));
    for (const json::value& document : object.at("documents").as_array()) {
        order.documents.push_back({document.at("id").to_number<std::uint32_t>(),
                                   json::value_to<std::string>(document.at("path")),
                                   document.at("flag").to_number<std::int32_t>()});
    }
    order.memoryLimit = object.at("memory").to_number<std::uint64_t>();
    sent.wantsProgress = object.at("progress").as_bool();
    sent.canResolve = object.at("resolve").as_bool();
    return sent;
}

}  // namespace marrowpress
