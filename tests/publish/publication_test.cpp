#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/publication.h"

namespace marrowpress {
namespace {

/// Each case publishes an input of its own through the module, and compares all that comes of it.
class PublicationTest : public testing::TestWithParam<std::string> {};

TEST_P(PublicationTest, MatchesExpected) {
    const PublicationCase example(GetParam());
    const Publication actual = example.publish();
    const Publication golden = example.golden(actual);

    EXPECT_EQ(actual.answer, golden.answer);
    EXPECT_EQ(actual.console, golden.console);
    EXPECT_EQ(actual.progress, golden.progress);
    EXPECT_EQ(actual.files, golden.files);
}

INSTANTIATE_TEST_SUITE_P(, PublicationTest, testing::ValuesIn(publicationCases()),
                         [](const auto& example) {
                             std::string name = example.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

}  // namespace
}  // namespace marrowpress
