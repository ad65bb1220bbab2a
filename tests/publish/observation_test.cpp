#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "marrowpress/observer.h"
#include "tests/support/publication.h"

namespace marrowpress {
namespace {

/// Each golden publication, with an observer and without.
class ObservationTest : public testing::TestWithParam<std::string> {};

TEST_P(ObservationTest, AnObserverChangesNothing) {
    const PublicationCase example(GetParam());
    const Publication unobserved = example.publish();
    std::size_t observations = 0;
    const Publication observed =
        example.publish([&](const Observation& /*observation*/) { ++observations; });

    EXPECT_GT(observations, 0U) << "nobody was told anything";
    EXPECT_FALSE(unobserved.trace.empty());
    EXPECT_EQ(observed.answer, unobserved.answer);
    EXPECT_EQ(observed.console, unobserved.console);
    EXPECT_EQ(observed.progress, unobserved.progress);
    EXPECT_EQ(observed.trace, unobserved.trace);
    EXPECT_EQ(observed.files, unobserved.files);
}

TEST_P(ObservationTest, AnObserverThatFailsChangesNothing) {
    const PublicationCase example(GetParam());
    const Publication unobserved = example.publish();
    const Publication observed = example.publish(
        [](const Observation& /*observation*/) { throw std::runtime_error("no room"); });

    EXPECT_EQ(observed.answer, unobserved.answer);
    EXPECT_EQ(observed.trace, unobserved.trace);
    EXPECT_EQ(observed.files, unobserved.files);
}

TEST_P(ObservationTest, EachReportLineComesWithAFault) {
    std::string lines;
    const Publication publication =
        PublicationCase(GetParam()).publish([&](const Observation& observation) {
            EXPECT_TRUE(observation.kind == ObservationKind::kFault || !*observation.line);
            lines += observation.line;
        });
    const auto countOf = [](const std::string& text) {
        return std::count(text.begin(), text.end(), '\n');
    };
    EXPECT_EQ(countOf(lines), countOf(publication.console)) << lines;
}

TEST_P(ObservationTest, EveryObservationIsWhole) {
    PublicationCase(GetParam()).publish([](const Observation& observation) {
        for (const char* const text : {observation.element, observation.target, observation.detail,
                                       observation.reason, observation.line}) {
            EXPECT_TRUE(text);
        }
        ASSERT_GE(observation.stepCount, 1U);
        EXPECT_STREQ(observation.steps[0].attribute, "");
        EXPECT_STREQ(observation.steps[0].target, "");
        for (std::uint32_t index = 0; index < observation.stepCount; ++index) {
            const ObservedStep& step = observation.steps[index];
            EXPECT_TRUE(step.attribute && step.target);
            EXPECT_EQ(step.place.line == 0, step.place.column == 0);
            EXPECT_TRUE(index == 0 || step.place.file) << "a way that leads over no file";
        }
    });
}

INSTANTIATE_TEST_SUITE_P(, ObservationTest, testing::ValuesIn(publicationCases()),
                         [](const auto& example) {
                             std::string name = example.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

}  // namespace
}  // namespace marrowpress
