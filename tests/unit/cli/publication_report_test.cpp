#include "cli/publication_report.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/chosen_language.h"
#include "tests/support/observations.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

TEST(PublicationReportTest, ShowsWhatItWasTold) {
    const ChosenLanguage english(Language::kEnglish);
    const TemporaryFolder folder;
    const std::string map = folder.write(
        "m.ditamap",
        "<map><title>Guide &amp; <b>book</b></title>\n<topicref href='t.dita'/></map>");
    const std::string topic = folder.write("t.dita", "<topic><title>One</title></topic>");
    PublicationReport report({true, false, map, {}, {}, folder.path().string()});
    for (const std::string& path : {map, topic}) {
        report.observe(observationOf(ObservationKind::kDocumentRead, path.c_str()));
    }
    const ObservedStep step{{map.c_str(), 2, 1}, "", ""};
    Observation met = observationOf(ObservationKind::kTopic, topic.c_str());
    met.steps = &step;
    report.observe(met);
    met = observationOf(ObservationKind::kFileReference, topic.c_str());
    met.code = static_cast<std::uint32_t>(ReferenceKind::kTopic);
    met.steps = &step;
    watchingFor (&report)(met);

    std::ostringstream out;
    writingOf (&report)(out, {}, {});
    EXPECT_NE(out.str().find("<h1>Guide &amp; book</h1>"), std::string::npos);
    EXPECT_NE(out.str().find("<li><a href=#f:t>One</a>"), std::string::npos);
    EXPECT_NE(out.str().find("<dl class=in><dt>taken in by<dd>m</dl>"), std::string::npos);
}

TEST(PublicationReportTest, NothingIsWatchedWithoutOne) {
    EXPECT_FALSE(watchingFor(nullptr));
    EXPECT_FALSE(writingOf(nullptr));
}

}  // namespace
}  // namespace marrowpress
