#include "cli/key_formats.h"

#include <boost/algorithm/string/join.hpp>
#include <functional>
#include <string_view>

#include "cli/text_table.h"
#include "findings/finding_lines.h"
#include "findings/shown_path.h"
#include "host/utf8.h"
#include "runs/key_json.h"

namespace marrowpress {
namespace {

/// A line of a table or of CSV.
struct Row {
    const ListedKey& key;
    const KeyDefinition* definition;  ///< Null for a key that nobody defines.
    bool isOfKey;                     ///< Else of a further definition.
};

std::vector<Row> rowsOf(const std::vector<const ListedKey*>& keys) {
    std::vector<Row> rows;
    for (const ListedKey* const key : keys) {
        const KeyDefinition* const leading = key->leading();
        rows.push_back({*key, leading, true});
        for (const KeyDefinition& definition : key->definitions) {
            if (&definition != leading) {
                rows.push_back({*key, &definition, false});
            }
        }
    }
    return rows;
}

std::string stateOf(const Row& row) {
    return row.isOfKey ? nameOf(row.key.use()) : nameOf(row.definition->state);
}

std::string chainText(const KeyList& list, const Row& row) {
    return row.isOfKey ? boost::algorithm::join(list.chainOf(row.key), " > ")
                       : row.definition->keyref;
}

/// What the definition leads to, else its text.
std::string meaningOf(const KeyDefinition& definition, const std::string& currentFolder) {
    constexpr std::size_t kMostBytes = 60;
    if (!definition.target.empty()) {
        return shownPath(definition.target, currentFolder);
    }
    if (definition.text.size() <= kMostBytes) {
        return definition.text.empty() ? "" : '"' + definition.text + '"';
    }
    std::size_t end = kMostBytes;
    while (end > 0 && (static_cast<unsigned char>(definition.text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return '"' + definition.text.substr(0, end) + "...\"";
}

std::vector<std::string> tableCells(const KeyList& list, const Row& row,
                                    const std::string& currentFolder) {
    const std::vector<FindingPlace>& uses = row.key.uses;
    const std::string firstUse =
        row.isOfKey && !uses.empty() ? placeText(uses.front(), currentFolder) : "";
    return {row.key.name,
            stateOf(row),
            row.definition ? placeText(row.definition->place, currentFolder) : "",
            row.definition ? meaningOf(*row.definition, currentFolder) : "",
            chainText(list, row),
            row.isOfKey ? std::to_string(uses.size()) : "",
            row.isOfKey ? std::to_string(row.key.definitions.size()) : "",
            firstUse};
}

std::string plainPlace(const FindingPlace& place) {
    return place.file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

std::string numberText(std::uint32_t number) {
    return number == 0 ? "" : std::to_string(number);
}

std::vector<std::string> csvCells(const KeyList& list, const Row& row) {
    static const KeyDefinition kNone;
    const KeyDefinition& definition = row.definition ? *row.definition : kNone;
    std::vector<std::string> places;
    for (const FindingPlace& use : row.key.uses) {
        places.push_back(plainPlace(use));
    }
    return {row.key.name,
            stateOf(row),
            definition.place.file,
            numberText(definition.place.line),
            numberText(definition.place.column),
            definition.target,
            definition.text,
            chainText(list, row),
            row.isOfKey ? std::to_string(places.size()) : "",
            row.isOfKey ? std::to_string(row.key.definitions.size()) : "",
            row.isOfKey ? boost::algorithm::join(places, " ") : ""};
}

}  // namespace

std::string keyTable(const KeyList& list, const std::vector<const ListedKey*>& keys,
                     const std::string& currentFolder) {
    TextTable table(
        {"KEY", "STATE", "DEFINITION", "STANDS FOR", "CHAIN", "USES", "DEFINITIONS", "FIRST USE"});
    for (const Row& row : rowsOf(keys)) {
        table.add(tableCells(list, row, currentFolder));
    }
    return table.text();
}

std::string keyCsv(const KeyList& list, const std::vector<const ListedKey*>& keys) {
    std::string text = csvLine({"key", "state", "file", "line", "column", "target", "text", "chain",
                                "uses", "definitions", "places"});
    for (const Row& row : rowsOf(keys)) {
        text += csvLine(csvCells(list, row));
    }
    return toValidUtf8(text);
}

}  // namespace marrowpress
