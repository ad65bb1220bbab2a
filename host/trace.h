#pragma once

#include <boost/json/object.hpp>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string_view>

#include "host/typed_record.h"

namespace marrowpress {

/// Writes one line of JSON for each host operation, in the order of the calls:
///
///     {"op":"HostGetIdProp","object":0,"property":53,"result":7}
///
/// Texts are written as the client handed them over; a byte that is no UTF-8 becomes U+FFFD. Each
/// line is flushed, so that the trace of a process that dies ends with its last operation.
class Trace {
public:
    /// `out` must outlive the trace. Its state tells whether everything was written.
    explicit Trace(std::ostream& out) : out_(out) {}

    void enableUnicode(std::uint32_t on);
    void registerNotification(std::uint32_t notification, std::uint32_t state, std::int32_t result);
    void getIntProp(std::uint32_t object, std::uint32_t property, std::int32_t result);
    void getIdProp(std::uint32_t object, std::uint32_t property, std::uint32_t result);
    void getStringProp(std::uint32_t object, std::uint32_t property,
                       const std::optional<std::string>& result);
    void reportProgress(std::int32_t kind, std::string_view line, std::int32_t number);
    void consoleWrite(std::string_view line);
    void callClient(std::string_view client, std::string_view command, std::int32_t result);
    void callClientTyped(std::string_view client, std::string_view command,
                         const TypedValues& reply);
    void returnTypedValue(const TypedValues& values);

private:
    void write(const boost::json::object& line);

    std::ostream& out_;
};

}  // namespace marrowpress
