#include "cli/exclusion_list.h"

#include <gtest/gtest.h>

#include "tests/support/observations.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class ExclusionListTest : public testing::Test {
protected:
    void exclude(const std::string& file, std::uint32_t line, std::uint32_t column,
                 const char* element, const char* attribute, const char* target = "") {
        const ObservedStep step{{file.c_str(), line, column}, "", ""};
        Observation met = observationOf(ObservationKind::kExcluded, target);
        met.element = element;
        met.detail = attribute;
        met.steps = &step;
        list.observe(met);
    }

    TemporaryFolder folder;
    ExclusionList list;
};

TEST_F(ExclusionListTest, TellsTheValueThatStandsInTheSource) {
    const std::string path =
        folder.write("a.dita", "<t>\nü <p audience='a b' id='x'>text</p><ph\n audience='c'/></t>");
    exclude(path, 2, 3, "p", "audience", "/w/x.dita");
    exclude(path, 2, 36, "ph", "audience");
    list.finish();
    ASSERT_EQ(list.elements().size(), 2U);
    EXPECT_EQ(list.elements()[0].value, "a b");
    EXPECT_EQ(list.elements()[0].target, "/w/x.dita");
    EXPECT_EQ(list.elements()[1].value, "");
}

TEST_F(ExclusionListTest, EachStartTagIsThereOnceAndByItsPlace) {
    exclude("/w/b.dita", 2, 3, "p", "audience");
    exclude("/w/a.dita", 9, 3, "p", "audience");
    exclude("/w/b.dita", 2, 3, "p", "audience");
    list.observe(observationOf(ObservationKind::kExcluded, ""));
    list.observe(observationOf(ObservationKind::kTopic, ""));
    list.finish();
    ASSERT_EQ(list.elements().size(), 2U);
    EXPECT_EQ(list.elements()[0].place.file, "/w/a.dita");
    EXPECT_EQ(list.find({"/w/b.dita", 2, 3}), &list.elements()[1]);
    EXPECT_EQ(list.find({"/w/b.dita", 2, 4}), nullptr);
    ASSERT_EQ(list.in("/w/b.dita").size(), 1U);
    EXPECT_EQ(&list.in("/w/b.dita").front(), &list.elements()[1]);
    EXPECT_TRUE(list.in("/w/aa.dita").empty());
}

TEST_F(ExclusionListTest, KeepsSoManyAndCountsTheRest) {
    for (std::uint32_t line = 1; line <= ExclusionList::kMost + 2; ++line) {
        exclude("/w/a.dita", line, 1, "p", "");
    }
    EXPECT_EQ(list.elements().size(), ExclusionList::kMost);
    EXPECT_EQ(list.dropped(), 2U);
}

}  // namespace
}  // namespace marrowpress
