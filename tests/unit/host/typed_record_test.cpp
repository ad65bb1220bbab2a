#include "host/typed_record.h"

#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

namespace marrowpress {
namespace {

using Texts = std::vector<std::string>;
using Integers = std::vector<std::int32_t>;

HostTypedValue recordOf(HostValueType type) {
    HostTypedValue record{};
    record.type = type;
    return record;
}

TEST(CopyTypedValuesTest, CopiesEachType) {
    std::string text = "\xC3\xA4";
    std::string other = "b";
    char* texts[] = {text.data(), nullptr, other.data()};
    std::int32_t integers[] = {7, -1};
    HostTypedValue records[] = {recordOf(HostValueType::kInteger), recordOf(HostValueType::kString),
                                recordOf(HostValueType::kStringList),
                                recordOf(HostValueType::kIntegerList)};
    records[0].value.integer = -43;
    records[1].value.string = text.data();
    records[2].value.strings = {3, 0, texts};
    records[3].value.integers = {2, 0, integers};
    EXPECT_EQ(copyTypedValues({4, records}), (TypedValues{{1, -43},
                                                          {3, std::string("\xC3\xA4")},
                                                          {6, Texts{"\xC3\xA4", "", "b"}},
                                                          {15, Integers{7, -1}}}));
}

TEST(CopyTypedValuesTest, TakesNullForNothing) {
    HostTypedValue records[] = {recordOf(HostValueType::kString),
                                recordOf(HostValueType::kStringList),
                                recordOf(HostValueType::kIntegerList)};
    EXPECT_EQ(copyTypedValues({3, records}),
              (TypedValues{{3, std::string()}, {6, Texts{}}, {15, Integers{}}}));
    // A count says nothing without a pointer.
    records[1].value.strings.count = 2;
    records[2].value.integers.count = 2;
    EXPECT_EQ(copyTypedValues({3, records}),
              (TypedValues{{3, std::string()}, {6, Texts{}}, {15, Integers{}}}));
    EXPECT_EQ(copyTypedValues({0, nullptr}), TypedValues());
    EXPECT_EQ(copyTypedValues({2, nullptr}), TypedValues());
}

TEST(CopyTypedValuesTest, KeepsTheNumberOfAnUnknownType) {
    HostTypedValue record = recordOf(static_cast<HostValueType>(2));
    record.value.integer = 9;
    EXPECT_EQ(copyTypedValues({1, &record}), (TypedValues{{2, std::monostate()}}));
}

TEST(StringReplyTest, IsOneValueOfTheCallers) {
    const HostTypedValues reply(makeStringReply("a\xC3\xA4"));
    EXPECT_EQ(reply.list().values[0].reserved, 0U);
    EXPECT_EQ(copyTypedValues(reply.list()), (TypedValues{{3, std::string("a\xC3\xA4")}}));
    EXPECT_EQ(copyTypedValues(HostTypedValues(makeStringReply("")).list()),
              (TypedValues{{3, std::string()}}));
}

TEST(CopyToMallocTest, EndsTheCopy) {
    const std::string_view part = std::string_view("text and more").substr(0, 4);
    char* const copy = copyToMalloc(part);
    EXPECT_STREQ(copy, "text");
    std::free(copy);
}

TEST(StatusOfTest, IsTheFirstValueIfThatIsAnInteger) {
    EXPECT_EQ(statusOf({{1, -42}, {1, 0}}), -42);
    EXPECT_EQ(statusOf({{1, 0}}), 0);
    EXPECT_EQ(statusOf({}), std::nullopt);
    EXPECT_EQ(statusOf({{3, std::string("0")}, {1, 0}}), std::nullopt);
    EXPECT_EQ(statusOf({{1, std::monostate()}}), std::nullopt);
}

TEST(TypedValuesToJsonTest, NamesTypeAndValue) {
    const TypedValues values{{1, -43},
                             {3, std::string("a\"\xFF")},
                             {6, Texts{"/a", ""}},
                             {15, Integers{}},
                             {2, std::monostate()}};
    EXPECT_EQ(boost::json::serialize(toJson(values)),
              R"([{"type":1,"value":-43},{"type":3,"value":"a\")"
              "\xEF\xBF\xBD"
              R"("},{"type":6,"value":["/a",""]},{"type":15,"value":[]},)"
              R"({"type":2,"value":null}])");
    EXPECT_EQ(boost::json::serialize(toJson({})), "[]");
}

}  // namespace
}  // namespace marrowpress
