#include "cli/keys_command.h"

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "cli/key_explanation.h"
#include "cli/key_formats.h"
#include "cli/survey.h"
#include "findings/nearest.h"
#include "runs/key_json.h"

namespace marrowpress {
namespace {

constexpr const char* kName = "keys";

std::string unknownKeyText(const std::string& name, const KeyList& list) {
    const std::optional<std::string> nearest = nearestName(name, list.definedNames());
    return "--explain: unknown key `" + name + "`; " +
           (nearest ? "did you mean `" + *nearest + "`?"
                    : "nothing in the publication defines it, or refers to it");
}

std::string resultText(const KeysOptions& options, const KeyList& list,
                       const std::vector<const ListedKey*>& keys) {
    const std::string folder = std::filesystem::current_path().string();
    switch (options.keyFormat) {
        case KeyFormat::kCsv:
            return keyCsv(list, keys);
        case KeyFormat::kJson:
            return keyJson(list, keys);
        case KeyFormat::kTable:
            break;
    }
    return options.explained ? keyExplanation(list, *keys.front(), folder)
                             : keyTable(list, keys, folder);
}

ExitCode giveKeys(const KeysOptions& options, const KeyList& list, const Streams& streams) {
    std::vector<const ListedKey*> keys;
    for (const ListedKey& key : list.keys()) {
        if (!options.explained || key.name == *options.explained) {
            keys.push_back(&key);
        }
    }
    if (options.explained && keys.empty()) {
        streams.err << usageErrorText(kName, unknownKeyText(*options.explained, list));
        return ExitCode::kWrongUsage;
    }
    return writeResult(streams, resultText(options, list, keys)) ? ExitCode::kSuccess
                                                                 : ExitCode::kRunFailed;
}

/// What decides on the text besides the keys.
std::string wishOf(const KeysOptions& options) {
    return std::to_string(static_cast<int>(options.keyFormat)) + " from " +
           std::filesystem::current_path().string() +
           (options.explained ? " of " + *options.explained : "");
}

}  // namespace

ExitCode runKeys(const KeysOptions& options, const Streams& streams) {
    KeyList list;
    return runSurvey({kName,
                      options,
                      [&](const Observation& observation) { list.observe(observation); },
                      {},
                      [&](const Streams& taker) {
                          list.finish();
                          return giveKeys(options, list, taker);
                      },
                      wishOf(options),
                      [&] { list = KeyList(); }},
                     streams);
}

}  // namespace marrowpress
