#include "cli/file_failure.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(FileFailureTest, SaysWhatCouldNotBeDoneAndWhy) {
    const FileFailure failure(FileAction::kRead, "/a.png", "Permission denied");
    EXPECT_STREQ(failure.what(), "cannot read /a.png: Permission denied");
    EXPECT_EQ(failure.action(), FileAction::kRead);
    EXPECT_EQ(failure.path(), "/a.png");
    EXPECT_EQ(failure.reason(), "Permission denied");
}

TEST(FileFailureTest, TakesTheReasonOfTheLastCall) {
    errno = ENOSPC;
    EXPECT_STREQ(FileFailure::ofLastCall(FileAction::kWrite, "/m.dita").what(),
                 "cannot write /m.dita: No space left on device");
}

}  // namespace
}  // namespace marrowpress
