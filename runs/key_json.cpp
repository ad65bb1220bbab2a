#include "runs/key_json.h"

#include <boost/json/serialize.hpp>

#include "findings/json_values.h"

namespace marrowpress {
namespace {

boost::json::object definitionObject(const KeyDefinition& definition) {
    boost::json::object object = jsonPlace(definition.place);
    object["state"] = nameOf(definition.state);
    object["element"] = jsonTextOrNull(definition.element);
    object["target"] = jsonTextOrNull(definition.target);
    object["text"] = jsonTextOrNull(definition.text);
    object["keyref"] = jsonTextOrNull(definition.keyref);
    object["via"] = jsonArray(definition.via, jsonStep);
    return object;
}

boost::json::object keyObject(const KeyList& list, const ListedKey& key) {
    static const KeyDefinition kNone;
    const KeyDefinition& leading = key.leading() ? *key.leading() : kNone;
    boost::json::object object{{"key", jsonText(key.name)}, {"state", nameOf(key.use())}};
    for (const auto& [name, value] : jsonPlace(leading.place)) {
        object[name] = value;
    }
    object["target"] = jsonTextOrNull(leading.target);
    object["text"] = jsonTextOrNull(leading.text);
    object["chain"] = jsonArray(list.chainOf(key), jsonText);
    object["uses"] = jsonArray(key.uses, jsonPlace);
    object["definitions"] = jsonArray(key.definitions, definitionObject);
    return object;
}

}  // namespace

const char* nameOf(KeyState state) {
    switch (state) {
        case KeyState::kEffective:
            return "effective";
        case KeyState::kShadowed:
            return "shadowed";
        case KeyState::kExcluded:
            return "excluded";
        case KeyState::kLost:
            break;
    }
    return "lost";
}

std::string keyJson(const KeyList& list, const std::vector<const ListedKey*>& keys) {
    std::string text;
    for (const ListedKey* const key : keys) {
        text += boost::json::serialize(keyObject(list, *key)) + "\n";
    }
    return text;
}

}  // namespace marrowpress
