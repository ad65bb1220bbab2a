#include "publish/output_formats.h"

#include <gtest/gtest.h>

#include "publish/composite_publisher.h"
#include "publish/flat_book_publisher.h"

namespace marrowpress {
namespace {

TEST(OutputFormatsTest, EachHasAFactoryInItsOrder) {
    const PublishParamsFactories& factories = OutputFormats::instance().factories();
    ASSERT_EQ(factories.size(), 2U);
    EXPECT_EQ(factories[0]->typeKey(), "PublishComp");
    EXPECT_EQ(factories[1]->typeKey(), "PublishFlatBook");
}

TEST(OutputFormatsTest, ParametersAreServedByTheirPublisher) {
    const OutputFormats& formats = OutputFormats::instance();
    DocPublisher& composite = formats.publisherFor(CompositePublishParams(nullptr));
    DocPublisher& flatBook = formats.publisherFor(FlatBookPublishParams(nullptr));
    EXPECT_NE(dynamic_cast<CompositeDocPublisher*>(&composite), nullptr);
    EXPECT_NE(dynamic_cast<FlatBookPublisher*>(&flatBook), nullptr);
}

TEST(OutputFormatsTest, ParametersWithoutAPublisherAreRefused) {
    OutputFormats formats;
    formats.add<FlatBookPublishParamsFactory, FlatBookPublisher>();
    EXPECT_THROW(formats.publisherFor(CompositePublishParams(nullptr)),
                 UnsupportedPublishParamsException);
}

TEST(OutputFormatsTest, TheListIsMadeOnce) {
    EXPECT_EQ(&OutputFormats::instance(), &OutputFormats::instance());
}

}  // namespace
}  // namespace marrowpress
