#include "host/open_documents.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

/// What the reader says about `json`; "" when it takes it.
std::string listFaultOf(std::string_view json) {
    try {
        parseOpenDocuments(json);
        return "";
    } catch (const std::runtime_error& fault) {
        return fault.what();
    }
}

TEST(OpenDocumentsTest, KeepsTheOrder) {
    const std::vector<OpenDocument> expected{{7, "/a.dita", 1}, {4294967295U, "/ä.dita", -2}};
    EXPECT_EQ(parseOpenDocuments(R"([{"id": 7, "path": "/a.dita", "flag": 1},
                                     {"flag": -2, "path": "/ä.dita", "id": 4294967295}])"),
              expected);
}

TEST(OpenDocumentsTest, MayBeEmpty) {
    EXPECT_TRUE(parseOpenDocuments("[]").empty());
}

struct BadListCase {
    const char* name;
    std::string_view json;
    std::string_view fault;  // how the error text begins
};

constexpr BadListCase kBadListCases[] = {
    {"Nothing", "", "is not JSON: "},
    {"TrailingComma", "[1,]", "is not JSON: "},
    {"InvalidUtf8", "[\"\xFC\"]", "is not JSON: "},
    {"Object", R"({"id": 7, "path": "/a", "flag": 1})", "is not a JSON array"},
    {"EntryIsNumber", "[7]", "entry 0: is not an object"},
    {"SecondEntryIsNull", R"([{"id": 7, "path": "/a", "flag": 1}, null])",
     "entry 1: is not an object"},
    {"NoId", R"([{"path": "/a", "flag": 1}])", "entry 0: \"id\" is missing"},
    {"NoPath", R"([{"id": 7, "flag": 1}])", "entry 0: \"path\" is missing"},
    {"NoFlag", R"([{"id": 7, "path": "/a"}])", "entry 0: \"flag\" is missing"},
    {"UnknownMember", R"([{"id": 7, "path": "/a", "flag": 1, "flags": 1}])",
     "entry 0: has an unknown member \"flags\""},
    {"IdOfTheSession", R"([{"id": 0, "path": "/a", "flag": 1}])",
     "entry 0: \"id\" is not an integer from 1 to 4294967295"},
    {"NegativeId", R"([{"id": -7, "path": "/a", "flag": 1}])", "entry 0: \"id\" is not an integer"},
    {"IdTooLarge", R"([{"id": 4294967296, "path": "/a", "flag": 1}])",
     "entry 0: \"id\" is not an integer"},
    {"IdPastInt64", R"([{"id": 18446744073709551615, "path": "/a", "flag": 1}])",
     "entry 0: \"id\" is not an integer"},
    {"FractionalId", R"([{"id": 7.5, "path": "/a", "flag": 1}])",
     "entry 0: \"id\" is not an integer"},
    {"IdAsText", R"([{"id": "7", "path": "/a", "flag": 1}])", "entry 0: \"id\" is not an integer"},
    {"FlagAsBoolean", R"([{"id": 7, "path": "/a", "flag": true}])",
     "entry 0: \"flag\" is not an integer from -2147483648 to 2147483647"},
    {"FlagTooLarge", R"([{"id": 7, "path": "/a", "flag": 2147483648}])",
     "entry 0: \"flag\" is not an integer"},
    {"PathAsNumber", R"([{"id": 7, "path": 1, "flag": 1}])", "entry 0: \"path\" is not a string"},
    {"EmptyPath", R"([{"id": 7, "path": "", "flag": 1}])", "entry 0: \"path\" is empty"},
    {"PathWithNul", R"([{"id": 7, "path": "/a\u0000b", "flag": 1}])",
     "entry 0: \"path\" holds a NUL"},
    {"IdTwice", R"([{"id": 7, "path": "/a", "flag": 1}, {"id": 7, "path": "/b", "flag": 1}])",
     "entry 1: \"id\" 7 is there twice"},
};

class BadOpenDocumentsTest : public testing::TestWithParam<BadListCase> {};

TEST_P(BadOpenDocumentsTest, IsRefused) {
    const std::string fault = listFaultOf(GetParam().json);
    EXPECT_EQ(fault.substr(0, GetParam().fault.size()), GetParam().fault);
}

INSTANTIATE_TEST_SUITE_P(, BadOpenDocumentsTest, testing::ValuesIn(kBadListCases),
                         [](const auto& c) { return std::string(c.param.name); });

/// What the reader says about the file at `path`; "" when it takes it.
std::string faultOfFile(const std::string& path) {
    try {
        readOpenDocuments(path);
        return "";
    } catch (const std::runtime_error& fault) {
        return fault.what();
    }
}

TEST(OpenDocumentsTest, ErrorsNameTheFile) {
    const TemporaryFolder folder;
    EXPECT_EQ(faultOfFile(folder.file("none.json")),
              folder.file("none.json") + ": No such file or directory");
    EXPECT_EQ(faultOfFile(folder.path().string()), folder.path().string() + ": Is a directory");
    const std::string object = folder.write("object.json", "{}");
    EXPECT_EQ(faultOfFile(object), object + ": is not a JSON array");
    EXPECT_EQ(faultOfFile("/dev/zero"), "/dev/zero: File too large");
}

}  // namespace
}  // namespace marrowpress
