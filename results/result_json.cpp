#include "results/result_json.h"

#include <boost/json/array.hpp>
#include <boost/json/monotonic_resource.hpp>
#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value_from.hpp>
#include <boost/json/value_to.hpp>
#include <system_error>
#include <utility>

#include "findings/finding_lines.h"
#include "findings/json_reader.h"
#include "findings/json_values.h"
#include "findings/json_writer.h"
#include "host/file_text.h"

namespace marrowpress {
namespace {

namespace json = boost::json;

template <typename Number>
json::value numberOrNull(const std::optional<Number>& number) {
    return number ? json::value(*number) : json::value();
}

json::value textOrNull(const std::optional<std::string>& text) {
    return text ? json::value(*text) : json::value();
}

json::object dependencyMember(const ResultDependency& file) {
    return {{"file", jsonText(file.file)},
            {"kind", file.kind},
            {"state", file.state},
            {"from", file.from.file.empty() ? json::value() : json::value(jsonPlace(file.from))},
            {"sha256", textOrNull(file.sha256)}};
}

json::object outputMember(const ResultOutput& output) {
    return {{"path", jsonText(output.path)}, {"sha256", textOrNull(output.sha256)}};
}

/// Short, since there is one for each file of each result.
json::value knownFileMember(const std::optional<KnownFile>& file) {
    if (!file) {
        return nullptr;
    }
    const FileStamp& stamp = file->stamp;
    return json::array{stamp.size,  stamp.modified, stamp.changed,
                       stamp.inode, stamp.device,   file->xxh128};
}

void addMember(std::string& text, std::string_view name, const json::value& value) {
    text.append("\"").append(name).append("\":").append(json::serialize(value)).append(",\n");
}

void addRaw(std::string& text, std::string_view name, const std::string& value) {
    text.append("\"").append(name).append("\":").append(value.empty() ? "{}" : value).append(",\n");
}

/// An item a line.
template <typename Item, typename Convert>
void addItems(std::string& text, std::string_view name, const std::vector<Item>& items,
              Convert convert) {
    text.append("\"").append(name).append("\":[");
    const char* separator = "\n";
    for (const Item& item : items) {
        text.append(separator).append(json::serialize(convert(item)));
        separator = ",\n";
    }
    text.append("]");
}

/// By hand, because Boost writes 1.8 as 1.8E0.
void addRun(std::string& text, const ResultRun& run) {
    constexpr int kDigits = 3;
    text.append("\"run\":{");
    addMember(text, "plan", jsonTextOrNull(run.plan));
    addMember(text, "started", jsonTextOrNull(run.started));
    addRaw(text, "seconds", fixedText(run.seconds, kDigits));
    addRaw(text, "cpuSeconds", fixedText(run.cpuSeconds, kDigits));
    addMember(text, "memory", run.memory);
    addMember(text, "tries", run.tries);
    addMember(text, "memoryShort", run.isMemoryShort);
    addMember(text, "begin", run.begin);
    addMember(text, "end", run.end);
    if (!run.reports.empty()) {
        addMember(text, "reports", json::value_from(run.reports));
    }
    if (!run.folder.empty()) {
        addMember(text, "folder", jsonText(run.folder));
    }
    if (!run.places.empty()) {
        json::object places;
        for (const auto& [path, file] : run.places) {
            places[jsonText(path).get_string()] = knownFileMember(file);
        }
        addMember(text, "places", places);
    }
    addItems(text, "files", run.files, knownFileMember);
    text.append("}");
}

[[noreturn]] void throwWrong(std::string_view name, const char* what) {
    throw ResultError('"' + std::string(name) + "\" is " + what);
}

const json::value& memberOf(const json::object& object, std::string_view name) {
    const json::value* const member = object.if_contains(name);
    if (member == nullptr) {
        throwWrong(name, "missing");
    }
    return *member;
}

/// Empty for null.
std::string textIn(const json::object& object, std::string_view name) {
    const json::value& member = memberOf(object, name);
    if (member.is_null()) {
        return {};
    }
    if (!member.is_string()) {
        throwWrong(name, "no string");
    }
    return std::string(member.get_string());
}

std::optional<std::string> optionalTextIn(const json::object& object, std::string_view name) {
    std::string text = textIn(object, name);
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

template <typename Number>
Number numberOf(const json::value& value, std::string_view name) {
    boost::system::error_code error;
    const auto number = value.to_number<Number>(error);
    if (error) {
        throwWrong(name, "no such number");
    }
    return number;
}

template <typename Number>
Number numberIn(const json::object& object, std::string_view name) {
    return numberOf<Number>(memberOf(object, name), name);
}

template <typename Number>
std::optional<Number> optionalNumberIn(const json::object& object, std::string_view name) {
    const json::value& member = memberOf(object, name);
    return member.is_null() ? std::nullopt : std::optional(numberOf<Number>(member, name));
}

const json::object& objectIn(const json::object& object, std::string_view name) {
    const json::value& member = memberOf(object, name);
    if (!member.is_object()) {
        throwWrong(name, "no object");
    }
    return member.get_object();
}

/// The items of an array, each of them made by `convert`.
template <typename Convert>
auto itemsIn(const json::object& object, std::string_view name, Convert convert) {
    const json::value& member = memberOf(object, name);
    if (!member.is_array()) {
        throwWrong(name, "no array");
    }
    std::vector<decltype(convert(json::value()))> items;
    items.reserve(member.get_array().size());
    for (const json::value& item : member.get_array()) {
        items.push_back(convert(item));
    }
    return items;
}

const json::object& itemObject(const json::value& item, std::string_view name) {
    if (!item.is_object()) {
        throwWrong(name, "no array of objects");
    }
    return item.get_object();
}

ResultDependency dependencyOf(const json::value& item) {
    const json::object& object = itemObject(item, "dependencies");
    ResultDependency file;
    file.file = textIn(object, "file");
    file.kind = textIn(object, "kind");
    file.state = textIn(object, "state");
    if (const json::object* const from = memberOf(object, "from").if_object()) {
        file.from = {textIn(*from, "file"),
                     optionalNumberIn<std::uint32_t>(*from, "line").value_or(0),
                     optionalNumberIn<std::uint32_t>(*from, "column").value_or(0)};
    }
    file.sha256 = optionalTextIn(object, "sha256");
    return file;
}

ResultOutput outputOf(const json::value& item) {
    const json::object& object = itemObject(item, "outputs");
    return {textIn(object, "path"), optionalTextIn(object, "sha256")};
}

std::optional<KnownFile> knownFileOf(const json::value& item) {
    constexpr std::size_t kParts = 6;
    if (item.is_null()) {
        return std::nullopt;
    }
    if (!item.is_array() || item.get_array().size() != kParts ||
        !item.get_array().back().is_string()) {
        throwWrong("files", "no array of stamps");
    }
    const json::array& parts = item.get_array();
    const FileStamp stamp{
        numberOf<std::uint64_t>(parts[0], "files"), numberOf<std::int64_t>(parts[1], "files"),
        numberOf<std::int64_t>(parts[2], "files"), numberOf<std::uint64_t>(parts[3], "files"),
        numberOf<std::uint64_t>(parts[4], "files")};
    return KnownFile{stamp, std::string(parts.back().get_string())};
}

double secondsIn(const json::object& object, std::string_view name) {
    constexpr double kLongest = 1e9;  // 30 years; all milliseconds below are written exactly.
    const auto seconds = numberIn<double>(object, name);
    if (!(seconds >= 0 && seconds <= kLongest)) {
        throwWrong(name, "no such number");
    }
    return seconds;
}

ResultRun runOf(const json::object& object) {
    ResultRun run;
    run.plan = textIn(object, "plan");
    run.started = textIn(object, "started");
    run.seconds = secondsIn(object, "seconds");
    run.cpuSeconds = secondsIn(object, "cpuSeconds");
    run.memory = numberIn<std::uint64_t>(object, "memory");
    run.tries = numberIn<unsigned>(object, "tries");
    run.isMemoryShort = memberOf(object, "memoryShort") == json::value(true);
    run.begin = numberIn<std::int64_t>(object, "begin");
    run.end = numberIn<std::int64_t>(object, "end");
    run.files = itemsIn(object, "files", knownFileOf);
    if (object.contains("reports")) {
        const json::object& reports = objectIn(object, "reports");
        for (const auto& [path, digest] : reports) {
            run.reports[path] = textIn(reports, path);
        }
    }
    if (object.contains("folder")) {
        run.folder = textIn(object, "folder");
    }
    if (object.contains("places")) {
        for (const auto& [path, file] : objectIn(object, "places")) {
            run.places[path] = knownFileOf(file);
        }
    }
    return run;
}

ResultState stateIn(const json::object& object) {
    const std::string name = textIn(object, "state");
    for (const ResultState state :
         {ResultState::kClean, ResultState::kFindings, ResultState::kFailed}) {
        if (name == stateName(state)) {
            return state;
        }
    }
    throwWrong("state", "none of clean, findings and failed");
}

RunResult resultOf(const json::object& object) {
    const int format = numberIn<int>(object, "format");
    if (format > kResultFormat) {
        throw ResultError("it is of a newer version");
    }
    RunResult result;
    result.id = textIn(object, "id");
    result.state = stateIn(object);
    result.exit = numberIn<int>(object, "exit");
    result.signal = optionalNumberIn<int>(object, "signal");
    result.phase = textIn(object, "phase");
    result.status = optionalNumberIn<std::int32_t>(object, "status");
    result.request = json::serialize(objectIn(object, "request"));
    result.options = json::serialize(objectIn(object, "options"));
    result.findings = itemsIn(object, "findings", [](const json::value& item) {
        return parseFinding(itemObject(item, "findings"));
    });
    result.topics = numberIn<std::size_t>(object, "topics");
    result.dropped = numberIn<std::size_t>(object, "dropped");
    result.dependencies = itemsIn(object, "dependencies", dependencyOf);
    result.outputs = itemsIn(object, "outputs", outputOf);
    if (object.contains("text")) {
        result.text = textIn(object, "text");
    }
    result.versions = json::serialize(objectIn(object, "versions"));
    result.run = runOf(objectIn(object, "run"));
    if (result.run.files.size() != result.dependencies.size() + result.outputs.size()) {
        throw ResultError("\"files\" are not those of the run");
    }
    return result;
}

}  // namespace

std::string resultText(const RunResult& result) {
    std::string text = "{";
    addMember(text, "format", kResultFormat);
    addMember(text, "id", jsonText(result.id));
    addMember(text, "state", stateName(result.state));
    addMember(text, "exit", result.exit);
    addMember(text, "signal", numberOrNull(result.signal));
    addMember(text, "phase", jsonTextOrNull(result.phase));
    addMember(text, "status", numberOrNull(result.status));
    addRaw(text, "request", result.request);
    addRaw(text, "options", result.options);
    addItems(text, "findings", result.findings, findingObject);
    text += ",\n";
    addMember(text, "topics", result.topics);
    addMember(text, "dropped", result.dropped);
    addItems(text, "dependencies", result.dependencies, dependencyMember);
    text += ",\n";
    addItems(text, "outputs", result.outputs, outputMember);
    text += ",\n";
    if (result.text) {
        addMember(text, "text", jsonText(*result.text));
    }
    addRaw(text, "versions", result.versions);
    addRun(text, result.run);
    return text + "}\n";
}

RunResult parseResult(std::string_view text) {
    json::monotonic_resource memory;
    boost::system::error_code error;
    const json::value value = json::parse({text.data(), text.size()}, error, &memory);
    if (error || !value.is_object()) {
        throw ResultError("it is no JSON object, or is cut off");
    }
    try {
        return resultOf(value.get_object());
    } catch (const ResultError&) {
        throw;
    } catch (const std::runtime_error& fault) {
        throw ResultError(fault.what());
    }
}

RunResult readResult(const std::filesystem::path& path) {
    std::string text;
    try {
        text = readFile(path.string());
    } catch (const std::system_error&) {
        throw ResultError("it cannot be read");
    }
    return parseResult(text);
}

}  // namespace marrowpress
