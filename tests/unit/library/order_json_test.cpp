#include "library/order_json.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(OrderJsonTest, GoesToAChildWithoutItsCallbacks) {
    mp_options options = MP_OPTIONS_INIT;
    options.on_progress = [](void*, const char*) {};
    options.flags = MP_WAIT | MP_KEYS;
    options.language = MP_LANGUAGE_GERMAN;
    options.memory_limit = 5000000000;
    Order order = readOrder("{\"a\":\"\\n\"}", &options);
    order.catalogs = {"c.xml"};
    order.documents = {{7, "/a.dita", -1}};
    const std::string line = toJsonLine(order);
    EXPECT_EQ(line.find('\n'), std::string::npos);
    const SentOrder sent = orderFromJson(line);
    EXPECT_EQ(sent.order.request, order.request);
    EXPECT_EQ(sent.order.flags, static_cast<std::uint32_t>(MP_KEYS));
    EXPECT_EQ(sent.order.language, Language::kGerman);
    EXPECT_EQ(sent.order.catalogs, order.catalogs);
    EXPECT_EQ(sent.order.documents, order.documents);
    EXPECT_EQ(sent.order.memoryLimit, 5000000000U);
    EXPECT_TRUE(sent.wantsProgress);
    EXPECT_FALSE(sent.canResolve);
}

}  // namespace
}  // namespace marrowpress
