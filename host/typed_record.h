#pragma once

#include <boost/json/array.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "marrowpress/typed_values.h"

namespace marrowpress {

/// A copy of one `HostTypedValue` that owns its texts. The empty alternative
/// stands for a type that is none of `HostValueType`.
struct TypedValue {
    std::uint32_t type;
    std::variant<std::monostate, std::int32_t, std::string, std::vector<std::string>,
                 std::vector<std::int32_t>>
        value;

    friend bool operator==(const TypedValue&, const TypedValue&) = default;
};

using TypedValues = std::vector<TypedValue>;

/// Copies `list`, which keeps its blocks. A null text counts as an empty one.
TypedValues copyTypedValues(const HostTypedValueList& list);

/// A list of one value of type `kString`; its blocks are the caller's.
///
/// @throws std::bad_alloc
HostTypedValueList makeStringReply(std::string_view text);

/// A copy of `text` from `malloc`, NUL-terminated, the caller's.
///
/// @throws std::bad_alloc
char* copyToMalloc(std::string_view text);

/// The status that an answer starts with; empty when its first value is no integer.
std::optional<std::int32_t> statusOf(const TypedValues& values);

/// `[{"type":1,"value":0},...]`; bytes that are no UTF-8 become U+FFFD.
boost::json::array toJson(const TypedValues& values);

}  // namespace marrowpress
