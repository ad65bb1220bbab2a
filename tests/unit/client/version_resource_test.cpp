#include "client/version_resource.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace marrowpress {
namespace {

struct Key {
    const char* name;
    std::size_t field;
};

constexpr Key kResourceKeys[] = {
    {"ClientName", 2},      {"ClientType", 3},       {"FileDescription", 4}, {"ClientProducts", 5},
    {"ClientFacet", 6},     {"ClientFormatId", 7},   {"ClientVendor", 8},    {"ClientSuffix", 9},
    {"ClientInFormat", 10}, {"ClientOutFormat", 11},
};

TEST(VersionResourceTest, EachKeyFillsItsField) {
    const ClientRegistration registration = registrationFromVersionResource();
    for (const Key& key : kResourceKeys) {
        const char* const text = versionResource(key.name);
        EXPECT_STREQ(registration.fields[key.field], text ? text : "") << key.name;
    }
}

TEST(VersionResourceTest, TheModuleNamesItself) {
    EXPECT_STREQ(versionResource("ClientName"), "Marrowpress");
    EXPECT_STREQ(versionResource("ClientProducts"), "Quillstone");
    EXPECT_GT(std::strlen(versionResource("FileDescription")), 0U);
}

TEST(VersionResourceTest, AMissingKeyLeavesItsFieldEmpty) {
    ASSERT_EQ(versionResource("ClientSuffix"), nullptr);
    EXPECT_STREQ(registrationFromVersionResource().fields[9], "");
}

TEST(VersionResourceTest, ReservedFieldsStateNothing) {
    const ClientRegistration registration = registrationFromVersionResource();
    EXPECT_EQ(registration.fields[0], nullptr);
    EXPECT_EQ(registration.fields[1], nullptr);
}

TEST(VersionResourceTest, OtherNamesHaveNoText) {
    for (const char* name : {"", "clientname", "ClientName ", "Client", "ClientNames"}) {
        EXPECT_EQ(versionResource(name), nullptr) << name;
    }
}

}  // namespace
}  // namespace marrowpress
