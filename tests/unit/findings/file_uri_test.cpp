#include "findings/file_uri.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(UriPathTest, EncodesWhatHasAMeaningOfItsOwn) {
    struct Case {
        const char* path;
        const char* uri;
    };
    const Case cases[] = {
        {"", ""},
        {"topics/b-1_2.dita", "topics/b-1_2.dita"},
        {"a b.dita", "a%20b.dita"},
        {"100%25?#.dita", "100%2525%3F%23.dita"},
        {"c:d.dita", "c%3Ad.dita"},
        {"\"<>\\^`{|}&+,;=@[]", "%22%3C%3E%5C%5E%60%7B%7C%7D%26%2B%2C%3B%3D@%5B%5D"},
        {"a\nb\x7F", "a%0Ab%7F"},
        {"\xC3\x9C", "%C3%9C"},
        {"\xFC", "%FC"},
        {"../x", "../x"},
    };
    for (const Case& sample : cases) {
        EXPECT_EQ(uriPath(sample.path), sample.uri);
    }
}

TEST(FileUriTest, HasNoHost) {
    EXPECT_EQ(fileUri("/guide/a b.dita"), "file:///guide/a%20b.dita");
    EXPECT_EQ(fileUri("/"), "file:///");
}

}  // namespace
}  // namespace marrowpress
