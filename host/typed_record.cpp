#include "host/typed_record.h"

#include <boost/json/object.hpp>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "host/utf8.h"

namespace marrowpress {
namespace {

std::string textOrEmpty(const char* text) {
    return text ? text : "";
}

TypedValue copyTypedValue(const HostTypedValue& source) {
    TypedValue copy{static_cast<std::uint32_t>(source.type), {}};
    switch (source.type) {
        case HostValueType::kInteger:
            copy.value = source.value.integer;
            break;
        case HostValueType::kString:
            copy.value = textOrEmpty(source.value.string);
            break;
        case HostValueType::kStringList: {
            const HostStringList& list = source.value.strings;
            std::vector<std::string> texts;
            for (std::uint32_t index = 0; list.strings && index < list.count; ++index) {
                texts.push_back(textOrEmpty(list.strings[index]));
            }
            copy.value = std::move(texts);
            break;
        }
        case HostValueType::kIntegerList: {
            const HostIntegerList& list = source.value.integers;
            std::vector<std::int32_t> integers;
            if (list.integers) {
                integers.assign(list.integers, list.integers + list.count);
            }
            copy.value = std::move(integers);
            break;
        }
    }
    return copy;
}

struct ValueToJson {
    boost::json::value operator()(std::monostate) const { return nullptr; }
    boost::json::value operator()(std::int32_t integer) const { return integer; }
    boost::json::value operator()(const std::string& text) const {
        return boost::json::string(toValidUtf8(text));
    }
    boost::json::value operator()(const std::vector<std::string>& texts) const {
        boost::json::array array;
        for (const std::string& text : texts) {
            array.push_back((*this)(text));
        }
        return array;
    }
    boost::json::value operator()(const std::vector<std::int32_t>& integers) const {
        return boost::json::array(integers.begin(), integers.end());
    }
};

struct FreeBlock {
    void operator()(void* block) const noexcept { std::free(block); }
};

}  // namespace

TypedValues copyTypedValues(const HostTypedValueList& list) {
    TypedValues values;
    for (std::uint32_t index = 0; list.values && index < list.count; ++index) {
        values.push_back(copyTypedValue(list.values[index]));
    }
    return values;
}

char* copyToMalloc(std::string_view text) {
    auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (!copy) {
        throw std::bad_alloc();
    }
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

HostTypedValueList makeStringReply(std::string_view text) {
    std::unique_ptr<HostTypedValue, FreeBlock> value(
        static_cast<HostTypedValue*>(std::calloc(1, sizeof(HostTypedValue))));
    if (!value) {
        throw std::bad_alloc();
    }
    value->type = HostValueType::kString;
    value->value.string = copyToMalloc(text);
    return {1, value.release()};
}

std::optional<std::int32_t> statusOf(const TypedValues& values) {
    if (values.empty()) {
        return std::nullopt;
    }
    const auto* const status = std::get_if<std::int32_t>(&values.front().value);
    return status ? std::optional(*status) : std::nullopt;
}

boost::json::array toJson(const TypedValues& values) {
    boost::json::array array;
    for (const TypedValue& entry : values) {
        array.push_back(boost::json::object{{"type", entry.type},
                                            {"value", std::visit(ValueToJson(), entry.value)}});
    }
    return array;
}

}  // namespace marrowpress
