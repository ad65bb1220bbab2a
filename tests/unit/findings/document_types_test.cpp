#include "findings/document_types.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(DocumentTypesTest, TheRootsOfDitasOwnTypesHavePublicIdentifiers) {
    ASSERT_NE(rootTypeOf("task"), nullptr);
    EXPECT_EQ(rootTypeOf("task")->publicId, "-//OASIS//DTD DITA Task//EN");
    for (const char* const root : {"svg", "val", "Task", ""}) {
        EXPECT_EQ(rootTypeOf(root), nullptr) << root;
    }
}

TEST(DocumentTypesTest, AMapIsOneByItsRootOrItsName) {
    EXPECT_TRUE(isMap("map", "/w/m.xml"));
    EXPECT_TRUE(isMap("bookmap", "/w/m.xml"));
    EXPECT_TRUE(isMap("mymap", "/w/m.ditamap"));
    EXPECT_FALSE(isMap("topic", "/w/a.dita"));
    EXPECT_FALSE(isMap("val", "/w/p.ditaval"));
}

}  // namespace
}  // namespace marrowpress
