#include "marrowpress/typed_values.h"

#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>
#include <cstddef>

#include "host/typed_record.h"

namespace marrowpress {
namespace {

std::string printedValues(const HostTypedValues& values) {
    return boost::json::serialize(toJson(copyTypedValues(values.list())));
}

TEST(HostTypedValueTest, HasTheLayoutOfTheWire) {
    EXPECT_EQ(sizeof(HostTypedValue), 24U);
    EXPECT_EQ(offsetof(HostTypedValue, type), 0U);
    EXPECT_EQ(sizeof(HostTypedValue::type), 4U);
    EXPECT_EQ(offsetof(HostTypedValue, reserved), 4U);
    EXPECT_EQ(sizeof(HostTypedValue::reserved), 4U);
    EXPECT_EQ(offsetof(HostTypedValue, value), 8U);
    EXPECT_EQ(sizeof(HostTypedValue::value), 16U);
    EXPECT_EQ(offsetof(HostStringList, count), 0U);
    EXPECT_EQ(offsetof(HostStringList, reserved), 4U);
    EXPECT_EQ(offsetof(HostStringList, strings), 8U);
    EXPECT_EQ(offsetof(HostIntegerList, count), 0U);
    EXPECT_EQ(offsetof(HostIntegerList, reserved), 4U);
    EXPECT_EQ(offsetof(HostIntegerList, integers), 8U);
    EXPECT_EQ(offsetof(HostTypedValueList, count), 0U);
    EXPECT_EQ(sizeof(HostTypedValueList::count), 4U);
    EXPECT_EQ(offsetof(HostTypedValueList, values), sizeof(void*));
    EXPECT_EQ(sizeof(HostTypedValueList), 2 * sizeof(void*));
}

TEST(HostTypedValueTest, HasTheNumbersOfTheWire) {
    EXPECT_EQ(static_cast<std::uint32_t>(HostValueType::kInteger), 1U);
    EXPECT_EQ(static_cast<std::uint32_t>(HostValueType::kString), 3U);
    EXPECT_EQ(static_cast<std::uint32_t>(HostValueType::kStringList), 6U);
    EXPECT_EQ(static_cast<std::uint32_t>(HostValueType::kIntegerList), 15U);
}

TEST(ReleaseTypedValuesTest, LeavesAnEmptyList) {
    HostTypedValueList list = makeStringReply("x");
    releaseTypedValues(list);
    EXPECT_EQ(list.count, 0U);
    EXPECT_EQ(list.values, nullptr);
    releaseTypedValues(list);
    EXPECT_EQ(list.count, 0U);
}

TEST(HostTypedValuesTest, IsEmptyAtFirst) {
    const HostTypedValues values;
    EXPECT_EQ(values.list().count, 0U);
    EXPECT_EQ(values.list().values, nullptr);
}

TEST(HostTypedValuesTest, MovesLeaveTheSourceEmpty) {
    HostTypedValues first(makeStringReply("x"));
    HostTypedValues second(std::move(first));
    // NOLINTNEXTLINE(bugprone-use-after-move): what is left behind is what is asked about.
    EXPECT_EQ(first.list().count, 0U);
    EXPECT_EQ(printedValues(second), R"([{"type":3,"value":"x"}])");
    HostTypedValues third(makeStringReply("old"));
    third = std::move(second);
    // NOLINTNEXTLINE(bugprone-use-after-move): as above.
    EXPECT_EQ(second.list().values, nullptr);
    EXPECT_EQ(printedValues(third), R"([{"type":3,"value":"x"}])");
}

TEST(HostTypedValuesTest, ReleasedBlocksBelongToTheReceiver) {
    HostTypedValues values(makeStringReply("x"));
    const HostTypedValues receiver(values.release());
    EXPECT_EQ(values.list().count, 0U);
    EXPECT_EQ(receiver.list().count, 1U);
}

}  // namespace
}  // namespace marrowpress
