#include "cli/trace_events.h"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <filesystem>

#include "findings/json_values.h"

namespace marrowpress {
namespace {

/// There is one of each.
constexpr int kProcess = 1;
constexpr int kThread = 1;

boost::json::object eventOf(const TimedPart& part) {
    boost::json::object event{{"cat", "phase"},
                              {"name", jsonText(part.name)},
                              {"ph", "X"},
                              {"pid", kProcess},
                              {"tid", kThread},
                              {"ts", part.begin.count()},
                              {"dur", part.duration.count()}};
    if (part.kind == TimedKind::kDocument) {
        event["cat"] = "document";
        event["name"] = jsonText(std::filesystem::path(part.name).filename().string());
        event["args"] = boost::json::object{{"file", jsonText(part.name)}};
    }
    return event;
}

}  // namespace

std::string traceEvents(const RunClock& clock, const std::string& title) {
    boost::json::array events;
    events.push_back({{"name", "process_name"},
                      {"ph", "M"},
                      {"pid", kProcess},
                      {"args", boost::json::object{{"name", jsonText(title)}}}});
    for (const TimedPart& part : clock.parts()) {
        events.push_back(eventOf(part));
    }
    return boost::json::serialize(
               boost::json::object{{"displayTimeUnit", "ms"}, {"traceEvents", events}}) +
           "\n";
}

}  // namespace marrowpress
