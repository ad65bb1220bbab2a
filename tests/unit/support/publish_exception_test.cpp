#include "support/publish_exception.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace marrowpress {
namespace {

/// The code of what `throwIt` throws, asked through the base.
template <class Throw>
std::int32_t codeThrownBy(Throw throwIt) {
    try {
        throwIt();
    } catch (const PublishException& failure) {
        EXPECT_STREQ(failure.what(), "Publish Exception");
        return failure.code();
    }
    return 0;
}

TEST(PublishExceptionTest, EachKindHasItsCode) {
    EXPECT_EQ(codeThrownBy([] { throw PublishException(); }), -42);
    EXPECT_EQ(codeThrownBy([] { throw UnsupportedPublishParamsException(); }), -43);
    EXPECT_EQ(codeThrownBy([] { throw OutputFileRemoveOperationFailedException(); }), -43);
}

TEST(PublishExceptionTest, IsAStandardException) {
    EXPECT_TRUE((std::is_base_of_v<std::exception, PublishException>));
    const OutputFileRemoveOperationFailedException failure;
    EXPECT_STREQ(static_cast<const std::exception&>(failure).what(), "Publish Exception");
}

TEST(PublishExceptionTest, TheTwoOfOneCodeAreTwoTypes) {
    EXPECT_FALSE((std::is_base_of_v<UnsupportedPublishParamsException,
                                    OutputFileRemoveOperationFailedException>));
    EXPECT_FALSE((std::is_base_of_v<OutputFileRemoveOperationFailedException,
                                    UnsupportedPublishParamsException>));
}

}  // namespace
}  // namespace marrowpress
