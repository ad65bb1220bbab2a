#include "findings/collector.h"

#include <gtest/gtest.h>

#include "tests/support/chosen_language.h"
#include "tests/support/observations.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class FindingCollectorTest : public testing::Test {
protected:
    std::vector<Finding> findings() {
        collector.finish();
        return collector.list().take();
    }

    /// A fault at a place of its own in the file.
    void observe(Observation fault, const std::string& file) {
        const ObservedStep step{{file.c_str(), ++line_, 1}, "", ""};
        fault.steps = &step;
        collector.observe(fault);
    }

    ChosenLanguage english{Language::kEnglish};
    FindingCollector collector{{"/w", {"/w/p.ditaval"}, {}}, {{"MP105", Severity::kNote}}};

private:
    std::uint32_t line_ = 0;
};

TEST_F(FindingCollectorTest, MakesAFindingOfEachFault) {
    observe(faultOf(FaultCode::kReferencedFileNotFound, "/w/none.dita"), "/w/m.ditamap");
    const std::vector<Finding> found = findings();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].id, "MP111");
    EXPECT_EQ(found[0].place, (FindingPlace{"/w/m.ditamap", 1, 1}));
    EXPECT_EQ(found[0].profiles, std::vector<std::string>{"/w/p.ditaval"});
}

TEST_F(FindingCollectorTest, GivesTheSeverityThatWasAskedFor) {
    observe(faultOf(FaultCode::kKeyNotFound, "k"), "/w/a.dita");
    Finding own;
    own.id = "MP105";
    own.target = "other";
    collector.add(own);
    for (const Finding& finding : findings()) {
        EXPECT_EQ(finding.severity, Severity::kNote);
    }
}

TEST_F(FindingCollectorTest, CountsWhatHasNoEffectByKindAndFile) {
    for (const char* const file : {"/w/a.dita", "/w/b.dita", "/w/a.dita"}) {
        observe(faultOf(FaultCode::kNoEffect, "coderef"), file);
    }
    observe(faultOf(FaultCode::kNoEffect, "link-text"), "/w/a.dita");
    const std::vector<Finding> found = findings();
    ASSERT_EQ(found.size(), 3U);
    EXPECT_NE(found[0].text.find('2'), std::string::npos) << found[0].text;
    EXPECT_EQ(found[0].place.line, 1U);
    EXPECT_EQ(found[1].place.file, "/w/b.dita");
    EXPECT_EQ(found[2].text, "1 link stays without text");
}

TEST_F(FindingCollectorTest, ANavtitleThatIsNoFileNameTakesTheLinesThatFollowFromIt) {
    Observation title = faultOf(FaultCode::kNavtitleNoFileName, "a/b");
    title.detail = "/w/out/a/b.qs";
    observe(title, "/w/m.ditamap");
    Observation write = faultOf(FaultCode::kCannotWrite, "/w/out/a/b.qs");
    write.line = "write line\r\n";
    observe(write, "");
    Observation read = faultOf(FaultCode::kCannotRead, "/w/out/a/b.qs");
    read.line = "read line\r\n";
    observe(read, "");
    const std::vector<Finding> found = findings();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].id, "MP212");
    EXPECT_EQ(found[0].hostText, "write line\r\nread line\r\n");
}

TEST_F(FindingCollectorTest, AFileThatIsReadUnderTwoNamesIsTold) {
    const TemporaryFolder folder;
    folder.write("docs/a.dita", "");
    std::filesystem::create_directory_symlink("docs", folder.path() / "link");
    const std::string real = folder.file("docs/a.dita");
    const std::string linked = folder.file("link/a.dita");
    observe(observationOf(ObservationKind::kDocumentRead, real.c_str()), "/w/m.ditamap");
    observe(observationOf(ObservationKind::kDocumentRead, linked.c_str()), "/w/m.ditamap");
    const std::vector<Finding> found = findings();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].id, "MP214");
    EXPECT_EQ(found[0].target, linked);
    EXPECT_EQ(found[0].place.line, 2U);
}

}  // namespace
}  // namespace marrowpress
