#include "host/trace.h"

#include <boost/json/serialize.hpp>
#include <ostream>

#include "host/utf8.h"

namespace marrowpress {
namespace {

boost::json::string text(std::string_view raw) {
    return boost::json::string(toValidUtf8(raw));
}

}  // namespace

void Trace::enableUnicode(std::uint32_t on) {
    write({{"op", "HostEnableUnicode"}, {"on", on}});
}

void Trace::registerNotification(std::uint32_t notification, std::uint32_t state,
                                 std::int32_t result) {
    write({{"op", "HostRegisterNotification"},
           {"notification", notification},
           {"state", state},
           {"result", result}});
}

void Trace::getIntProp(std::uint32_t object, std::uint32_t property, std::int32_t result) {
    write(
        {{"op", "HostGetIntProp"}, {"object", object}, {"property", property}, {"result", result}});
}

void Trace::getIdProp(std::uint32_t object, std::uint32_t property, std::uint32_t result) {
    write(
        {{"op", "HostGetIdProp"}, {"object", object}, {"property", property}, {"result", result}});
}

void Trace::getStringProp(std::uint32_t object, std::uint32_t property,
                          const std::optional<std::string>& result) {
    boost::json::value shown = nullptr;
    if (result) {
        shown = text(*result);
    }
    write({{"op", "HostGetStringProp"},
           {"object", object},
           {"property", property},
           {"result", std::move(shown)}});
}

void Trace::reportProgress(std::int32_t kind, std::string_view line, std::int32_t number) {
    write({{"op", "HostReportProgress"}, {"kind", kind}, {"text", text(line)}, {"number", number}});
}

void Trace::consoleWrite(std::string_view line) {
    write({{"op", "HostConsoleWrite"}, {"text", text(line)}});
}

void Trace::callClient(std::string_view client, std::string_view command, std::int32_t result) {
    write({{"op", "HostCallClient"},
           {"client", text(client)},
           {"command", text(command)},
           {"result", result}});
}

void Trace::callClientTyped(std::string_view client, std::string_view command,
                            const TypedValues& reply) {
    write({{"op", "HostCallClientTyped"},
           {"client", text(client)},
           {"command", text(command)},
           {"reply", toJson(reply)}});
}

void Trace::returnTypedValue(const TypedValues& values) {
    write({{"op", "HostReturnTypedValue"}, {"values", toJson(values)}});
}

void Trace::write(const boost::json::object& line) {
    out_ << boost::json::serialize(line) << '\n' << std::flush;
}

}  // namespace marrowpress
