#include "runs/profile_findings.h"

#include <gtest/gtest.h>

#include <variant>

#include "tests/support/chosen_language.h"
#include "tests/support/observations.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

TEST(ProfileFindingsTest, TellWhatDitaDoesNotKnowAndRulesThatMatchNothing) {
    const ChosenLanguage english(Language::kEnglish);
    const TemporaryFolder folder;
    const std::string path =
        folder.write("p.ditaval",
                     "<val>\n<prop att=\"audience\" val=\"trade\" action=\"exclude\"/>\n"
                     "<prop att=\"audience\" val=\"home\" action=\"exclude\"/>\n"
                     "<prop att=\"audience\" val=\"trade\" action=\"drop\"/>\n</val>");
    const std::vector profiles{std::get<Profile>(readProfile(path))};
    FindingCollector collector({folder.path().string(), {path}, {}, false}, {});
    Observation met = observationOf(ObservationKind::kConditionValue, "audience");
    met.detail = "trade";
    collector.observe(met);
    addProfileFindings(profiles, profiles.front().rules, collector);
    const std::vector<Finding>& findings = collector.list().findings();
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].id, "MP207");
    EXPECT_EQ(findings[0].place.line, 4U);
    EXPECT_EQ(findings[0].target, "drop");
    EXPECT_EQ(findings[1].place.line, 3U);
    EXPECT_EQ(findings[1].target, "audience=home");
    EXPECT_EQ(findings[1].profiles, std::vector{path});
}

}  // namespace
}  // namespace marrowpress
