#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// The values that clients of the host hand to each other: the answer to a
/// publish request, and the reply of another client.
///
/// All texts are UTF-8 and NUL-terminated. Every block that a list points to
/// comes from `malloc`, one by one, and belongs to whoever holds the list: the
/// receiver releases it with `releaseTypedValues`.
namespace marrowpress {

enum class HostValueType : std::uint32_t {
    kInteger = 1,
    kString = 3,
    kStringList = 6,
    kIntegerList = 15,
};

/// An empty list has the count 0 and a null pointer.
struct HostStringList {
    std::uint32_t count;
    std::uint32_t reserved;
    char** strings;
};

/// An empty list has the count 0 and a null pointer.
struct HostIntegerList {
    std::uint32_t count;
    std::uint32_t reserved;
    std::int32_t* integers;
};

/// One value; `type` tells which member of `value` counts. Bytes that a type
/// doesn't use are zero.
struct HostTypedValue {
    HostValueType type;
    std::uint32_t reserved;
    union {
        std::int32_t integer;
        char* string;
        HostStringList strings;
        HostIntegerList integers;
    } value;
};

static_assert(sizeof(void*) != 8 || sizeof(HostTypedValue) == 24, "the wire layout is fixed");
static_assert(offsetof(HostTypedValue, value) == 8, "the wire layout is fixed");

struct HostTypedValueList {
    std::uint32_t count;
    HostTypedValue* values;
};

/// Releases every block of `list` and leaves it empty.
inline void releaseTypedValues(HostTypedValueList& list) noexcept {
    for (std::uint32_t index = 0; index < list.count; ++index) {
        HostTypedValue& entry = list.values[index];
        switch (entry.type) {
            case HostValueType::kInteger:
                break;
            case HostValueType::kString:
                std::free(entry.value.string);
                break;
            case HostValueType::kStringList:
                for (std::uint32_t text = 0; text < entry.value.strings.count; ++text) {
                    std::free(entry.value.strings.strings[text]);
                }
                std::free(entry.value.strings.strings);
                break;
            case HostValueType::kIntegerList:
                std::free(entry.value.integers.integers);
                break;
        }
    }
    std::free(list.values);
    list = {0, nullptr};
}

/// Owner of a typed value list that came from the host or is on its way there.
class HostTypedValues {
public:
    HostTypedValues() = default;
    explicit HostTypedValues(HostTypedValueList list) noexcept : list_(list) {}
    HostTypedValues(HostTypedValues&& other) noexcept : list_(other.release()) {}
    HostTypedValues& operator=(HostTypedValues&& other) noexcept {
        if (this != &other) {
            releaseTypedValues(list_);
            list_ = other.release();
        }
        return *this;
    }
    ~HostTypedValues() { releaseTypedValues(list_); }

    const HostTypedValueList& list() const noexcept { return list_; }
    HostTypedValueList& list() noexcept { return list_; }

    /// Gives the blocks away.
    HostTypedValueList release() noexcept {
        const HostTypedValueList given = list_;
        list_ = {0, nullptr};
        return given;
    }

private:
    HostTypedValueList list_{0, nullptr};
};

}  // namespace marrowpress
