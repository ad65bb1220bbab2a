#include "publish/publish_result.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "host/typed_record.h"

namespace marrowpress {
namespace {

using Bytes = std::vector<unsigned char>;
using Ids = std::vector<std::int32_t>;
using Paths = std::vector<std::string>;

constexpr std::size_t kRecordSize = 24;

/// The bytes of the record at `index`, as the host sees them.
Bytes bytesOf(const HostTypedValues& values, std::size_t index) {
    Bytes bytes(kRecordSize);
    std::memcpy(bytes.data(),
                reinterpret_cast<const unsigned char*>(values.list().values) + index * kRecordSize,
                kRecordSize);
    return bytes;
}

template <class Value>
Value at(const Bytes& bytes, std::size_t offset) {
    Value value;
    std::memcpy(&value, bytes.data() + offset, sizeof(Value));
    return value;
}

TypedValues typedValues(const PublishResult& result) {
    return copyTypedValues(publishResultToTypedValues(result).list());
}

void add(PublishResult& result, const std::u16string& path, std::uint32_t state,
         std::uint32_t documentId) {
    result.usedHostDocuments[path] = {static_cast<OpenDocumentState>(state), documentId};
}

TEST(PublishResultTest, StartsWithoutFailureAndDocuments) {
    const PublishResult result(PublisherId::kNone);
    EXPECT_EQ(static_cast<std::uint32_t>(result.kind), 2U);
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.usedHostDocuments.empty());
}

TEST(PublishResultTest, EachKindHasItsNumber) {
    EXPECT_EQ(static_cast<std::uint32_t>(PublisherId::kComposite), 0U);
    EXPECT_EQ(static_cast<std::uint32_t>(PublisherId::kFlatBook), 1U);
    EXPECT_EQ(static_cast<std::uint32_t>(CompositeDocPublishResult(nullptr).kind), 0U);
}

TEST(PublishResultTest, NothingIsAppendedByDefault) {
    HostTypedValueList list{0, nullptr};
    PublishResult(PublisherId::kNone).appendExtraValues(list);
    CompositeDocPublishResult(nullptr).appendExtraValues(list);
    EXPECT_EQ(list.count, 0U);
    EXPECT_EQ(list.values, nullptr);
}

TEST(PublishResultToTypedValuesTest, WithoutDocumentsTheListsAreEmpty) {
    for (const std::int32_t status : {0, -42, -43}) {
        PublishResult result(PublisherId::kNone);
        result.status = status;
        EXPECT_EQ(typedValues(result),
                  (TypedValues{{1, status}, {6, Paths{}}, {15, Ids{}}, {15, Ids{}}}));
    }
}

TEST(PublishResultToTypedValuesTest, AStatusIsItsFourBytesAndZeroes) {
    PublishResult result(PublisherId::kNone);
    result.status = -43;
    Bytes expected(kRecordSize);
    expected[0] = 1;
    const std::int32_t status = -43;
    std::memcpy(expected.data() + 8, &status, sizeof(status));
    EXPECT_EQ(bytesOf(publishResultToTypedValues(result), 0), expected);
}

TEST(PublishResultToTypedValuesTest, AnEmptyListIsATypeAndZeroes) {
    const HostTypedValues values = publishResultToTypedValues(PublishResult(PublisherId::kNone));
    const unsigned char types[] = {1, 6, 15, 15};
    ASSERT_EQ(values.list().count, 4U);
    for (std::size_t index = 1; index < 4; ++index) {
        Bytes expected(kRecordSize);
        expected[0] = types[index];
        EXPECT_EQ(bytesOf(values, index), expected) << index;
    }
}

TEST(PublishResultToTypedValuesTest, AListIsACountAndAPointer) {
    PublishResult result(PublisherId::kComposite);
    add(result, u"/a.dita", 2, 7);
    add(result, u"/b.dita", 1, 8);
    const HostTypedValues values = publishResultToTypedValues(result);
    ASSERT_EQ(values.list().count, 4U);

    const Bytes paths = bytesOf(values, 1);
    EXPECT_EQ(at<std::uint32_t>(paths, 0), 6U);
    EXPECT_EQ(at<std::uint32_t>(paths, 4), 0U);
    EXPECT_EQ(at<std::uint32_t>(paths, 8), 1U);
    EXPECT_EQ(at<std::uint32_t>(paths, 12), 0U);
    EXPECT_STREQ(at<char**>(paths, 16)[0], "/a.dita");

    const Bytes flagged = bytesOf(values, 2);
    EXPECT_EQ(at<std::uint32_t>(flagged, 0), 15U);
    EXPECT_EQ(at<std::uint32_t>(flagged, 4), 0U);
    EXPECT_EQ(at<std::uint32_t>(flagged, 8), 1U);
    EXPECT_EQ(at<std::uint32_t>(flagged, 12), 0U);
    EXPECT_EQ(at<std::int32_t*>(flagged, 16)[0], 7);

    const Bytes others = bytesOf(values, 3);
    EXPECT_EQ(at<std::uint32_t>(others, 0), 15U);
    EXPECT_EQ(at<std::uint32_t>(others, 8), 1U);
    EXPECT_EQ(at<std::int32_t*>(others, 16)[0], 8);
}

TEST(PublishResultToTypedValuesTest, DocumentsAreDividedByTheirState) {
    PublishResult result(PublisherId::kComposite);
    add(result, u"/flagged.dita", 2, 7);
    add(result, u"/open.dita", 1, 8);
    EXPECT_EQ(typedValues(result),
              (TypedValues{{1, 0}, {6, Paths{"/flagged.dita"}}, {15, Ids{7}}, {15, Ids{8}}}));
}

TEST(PublishResultToTypedValuesTest, EachListCanBeEmptyByItself) {
    PublishResult flagged(PublisherId::kComposite);
    add(flagged, u"/a", 2, 7);
    EXPECT_EQ(typedValues(flagged),
              (TypedValues{{1, 0}, {6, Paths{"/a"}}, {15, Ids{7}}, {15, Ids{}}}));
    PublishResult open(PublisherId::kComposite);
    add(open, u"/a", 1, 7);
    EXPECT_EQ(typedValues(open), (TypedValues{{1, 0}, {6, Paths{}}, {15, Ids{}}, {15, Ids{7}}}));
}

TEST(PublishResultToTypedValuesTest, ListsFollowTheTableAndEachOther) {
    PublishResult result(PublisherId::kComposite);
    for (std::uint32_t id = 1; id <= 200; ++id) {
        add(result, u"/" + std::u16string(id, u'x'), id % 3 == 0 ? 1 : 2, id);
    }
    Paths paths;
    Ids flagged;
    Ids open;
    for (const auto& [path, record] : result.usedHostDocuments) {
        const auto id = static_cast<std::int32_t>(record.documentId);
        if (id % 3 == 0) {
            open.push_back(id);
        } else {
            paths.push_back("/" + std::string(record.documentId, 'x'));
            flagged.push_back(id);
        }
    }
    EXPECT_EQ(typedValues(result), (TypedValues{{1, 0}, {6, paths}, {15, flagged}, {15, open}}));
}

TEST(PublishResultToTypedValuesTest, LargeIdsKeepTheirBits) {
    PublishResult result(PublisherId::kComposite);
    add(result, u"/a", 2, 0x80000001U);
    add(result, u"/b", 1, 0xFFFFFFFFU);
    EXPECT_EQ(typedValues(result),
              (TypedValues{{1, 0}, {6, Paths{"/a"}}, {15, Ids{-2147483647}}, {15, Ids{-1}}}));
}

TEST(PublishResultToTypedValuesTest, PathsAreUtf8) {
    PublishResult result(PublisherId::kComposite);
    add(result, u"/\u00E4 \U0001F600.dita", 2, 7);
    EXPECT_EQ(typedValues(result)[1], (TypedValue{6, Paths{"/\xC3\xA4 \xF0\x9F\x98\x80.dita"}}));
}

/// A result with a value of its own.
class LongerResult final : public PublishResult {
public:
    LongerResult() : PublishResult(PublisherId::kNone) {}

    void appendExtraValues(HostTypedValueList& list) const override {
        countBefore = list.count;
        list.values[0].value.integer = 5;
    }

    mutable std::uint32_t countBefore = 0;
};

TEST(PublishResultToTypedValuesTest, AResultAddsItsOwnLast) {
    const LongerResult result;
    EXPECT_EQ(typedValues(result)[0], (TypedValue{1, 5}));
    EXPECT_EQ(result.countBefore, 4U);
}

}  // namespace
}  // namespace marrowpress
