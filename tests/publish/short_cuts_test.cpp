#include <gtest/gtest.h>

#include "support/work_counts.h"
#include "tests/publish/random_publication.h"
#include "tests/support/publication.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/without_short_cuts.h"

namespace marrowpress {
namespace {

/// What publications came to, so that a test can tell that they were worth it.
struct Outcomes {
    std::size_t published = 0;  ///< with files
    std::size_t shortened = 0;  ///< with fewer scans of DTDs
};

/// Publishes with and without short cuts.
void compare(const PublicationCase& example, Outcomes& outcomes) {
    const std::size_t before = WorkCounts::total().dtdScans;
    const Publication with = example.publishInProcess();
    const std::size_t between = WorkCounts::total().dtdScans;
    const WithoutShortCuts none;
    const Publication without = example.publishInProcess();
    EXPECT_EQ(with.answer, without.answer);
    EXPECT_EQ(with.console, without.console);
    EXPECT_EQ(with.progress, without.progress);
    EXPECT_EQ(with.trace, without.trace);
    EXPECT_EQ(with.files, without.files);
    outcomes.published += with.files.empty() ? 0 : 1;
    outcomes.shortened += WorkCounts::total().dtdScans - between > between - before ? 1 : 0;
}

TEST(ShortCutsTest, GoldenPublicationsComeOutTheSameWithoutThem) {
    Outcomes outcomes;
    for (const std::string& name : publicationCases()) {
        SCOPED_TRACE(name);
        compare(PublicationCase(name), outcomes);
    }
    EXPECT_GT(outcomes.shortened, 0U);
}

TEST(ShortCutsTest, RandomPublicationsComeOutTheSameWithoutThem) {
    constexpr std::uint32_t kPublications = 300;
    Outcomes outcomes;
    for (std::uint32_t seed = 0; seed < kPublications; ++seed) {
        SCOPED_TRACE(seed);
        const TemporaryFolder folder;
        writeRandomPublication(seed, folder);
        compare(PublicationCase(folder.path().string()), outcomes);
    }
    EXPECT_GT(outcomes.published, kPublications / 2);
    EXPECT_GT(outcomes.shortened, kPublications / 2);
}

}  // namespace
}  // namespace marrowpress
