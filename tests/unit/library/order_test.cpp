#include "library/order.h"

#include <gtest/gtest.h>

#include "library/failure.h"

namespace marrowpress {
namespace {

/// What is wrong; "" when nothing is.
std::string orderFault(const char* request, const mp_options* options) {
    try {
        readOrder(request, options);
        return "";
    } catch (const LibraryFailure& failure) {
        EXPECT_EQ(failure.code(), MP_INVALID);
        return failure.what();
    }
}

class OrderTest : public testing::Test {
protected:
    OrderTest() { options.size = sizeof(options); }

    std::string fault() const { return orderFault("{}", &options); }

    mp_options options{};
};

TEST_F(OrderTest, NeedsARequestAndNothingElse) {
    EXPECT_EQ(orderFault("{}", nullptr), "");
    EXPECT_EQ(fault(), "");
    EXPECT_EQ(orderFault(nullptr, &options), "request is null");
    EXPECT_EQ(orderFault("\xE4", &options), "request is not UTF-8");
}

TEST_F(OrderTest, OptionsOfAnotherVersionAreReadAsFarAsBothKnowThem) {
    struct Newer {
        mp_options known{};
        std::uint64_t unknown = 0;
    } newer;
    newer.known.flags = MP_CHECK;
    newer.known.time_limit = 7;
    newer.known.size = sizeof(newer);
    EXPECT_EQ(readOrder("{}", &newer.known).timeLimit, 7U);
    newer.unknown = 1;
    EXPECT_EQ(orderFault("{}", &newer.known), "options ask for what only a newer version knows");
    newer.known.size = offsetof(mp_options, time_limit);
    EXPECT_EQ(readOrder("{}", &newer.known).timeLimit, 0U);
    EXPECT_EQ(readOrder("{}", &newer.known).flags, static_cast<std::uint32_t>(MP_CHECK));
    for (const std::size_t size : {std::size_t{0}, std::size_t{8}, SIZE_MAX}) {
        options.size = size;
        EXPECT_NE(fault(), "") << size;
    }
}

TEST_F(OrderTest, WhatIsUnknownIsRefused) {
    options.flags = 1U << 31;
    EXPECT_EQ(fault(), "options.flags has bits that are unknown");
    options.flags = MP_NO_FINDINGS | MP_KEYS;
    EXPECT_NE(fault(), "");
    options.flags = MP_NO_FINDINGS;
    EXPECT_EQ(fault(), "");
    options.language = 9;
    EXPECT_EQ(fault(), "options.language is 9, which is none");
}

TEST_F(OrderTest, CatalogsAreTexts) {
    const char* catalogs[] = {"/a.xml", nullptr};
    options.catalogs = catalogs;
    options.catalog_count = 1;
    EXPECT_EQ(readOrder("{}", &options).catalogs, std::vector<std::string>{"/a.xml"});
    options.catalog_count = 2;
    EXPECT_EQ(fault(), "options.catalogs[1] is null");
    catalogs[1] = "\xFF";
    EXPECT_EQ(fault(), "options.catalogs[1] is not UTF-8");
    options.catalogs = nullptr;
    EXPECT_EQ(fault(), "options.catalogs is null");
}

TEST_F(OrderTest, OpenDocumentsAreAskedForUntilThereAreNoMore) {
    std::vector<mp_document> documents{{7, 1, "/a.dita"}, {8, 0, "/b.dita"}};
    options.document_user = &documents;
    options.open_document = [](void* user, std::size_t index, mp_document* document) {
        const auto& all = *static_cast<std::vector<mp_document>*>(user);
        if (index < all.size()) {
            *document = all[index];
        }
        return index < all.size() ? 1 : 0;
    };
    EXPECT_EQ(readOrder("{}", &options).documents,
              (std::vector<OpenDocument>{{7, "/a.dita", 1}, {8, "/b.dita", 0}}));
    documents[1].id = 7;
    EXPECT_EQ(fault(), "open document 1: the id 7 is 0 or taken");
    documents[1] = {9, 0, nullptr};
    EXPECT_EQ(fault(), "open document 1: its path is null");
}

TEST_F(OrderTest, AnEntityIsWhatTheCallbackWrites) {
    options.resolve_entity = [](void*, const char* publicId, char* path, std::size_t size) {
        if (std::string(publicId) != "known") {
            return 0;
        }
        // A callback that forgets the NUL is no way out of the block.
        std::fill(path, path + size, 'x');
        return 1;
    };
    const Order order = readOrder("{}", &options);
    EXPECT_EQ(order.resolvePublicId("other"), std::nullopt);
    ASSERT_TRUE(order.resolvePublicId("known"));
    EXPECT_LT(order.resolvePublicId("known")->size(), 5000U);
}

}  // namespace
}  // namespace marrowpress
