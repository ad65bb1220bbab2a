#include "cli/page_map.h"

#include <gtest/gtest.h>

#include "tests/support/observations.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/told_page.h"

namespace marrowpress {
namespace {

class MapPartTest : public testing::Test, protected ToldPage {
protected:
    MapPartTest() {
        folder.write("m.ditamap",
                     "<map>\n<topichead navtitle='&lt;Part>'>\n"
                     "<topicref href='a.dita' navtitle='A' audience='x\"y'/>\n"
                     "<topicref href='b.dita'/></topichead></map>");
    }

    void exclude(std::uint32_t line) {
        const std::string map = folder.file("m.ditamap");
        const ObservedStep step{{map.c_str(), line, 1}, "", ""};
        Observation met = observationOf(ObservationKind::kExcluded, "/w/t.dita#t");
        met.element = "topicref";
        met.detail = "audience";
        met.steps = &step;
        exclusions.observe(met);
    }

    TemporaryFolder folder;
    ExclusionList exclusions;
};

TEST_F(MapPartTest, ALineSaysWhatBecameOfItsReference) {
    exclude(3);
    exclusions.finish();
    MapOutline outline(folder.file("m.ditamap"), false, exclusions);
    outline.finish();
    const std::string html = mapPart(outline, *files);
    EXPECT_TRUE(holds(html,
                      "<ul class=tree>\n<li>&lt;Part&gt;<details open><summary>2 entries below"
                      "</summary><ul>\n<li class=excluded>A <em>excluded</em> "
                      "<code>audience=&quot;x&quot;y&quot;</code>\n<li class=other>"))
        << html;
    EXPECT_TRUE(holds(html, "<em>no topic of this publication</em></ul></details>\n</ul>"));
    EXPECT_TRUE(holds(html, "<option value=\"excluded\">excluded</option>"));
}

TEST_F(MapPartTest, WhatIsLeftOutIsATable) {
    exclude(3);
    exclusions.finish();
    const std::string html = exclusionsPart(exclusions, *files);
    EXPECT_TRUE(holds(html,
                      "m.ditamap:3:1</code><td><code>topicref</code><td><code>audience=&quot;x"
                      "&quot;y&quot;</code><td><code><a href=#f:t>t.dita#t</a></code>\n"))
        << html;
}

TEST_F(MapPartTest, ManyThatAreLeftOutAreCounted) {
    for (std::uint32_t line = 1; line <= 1003; ++line) {
        exclude(line);
    }
    EXPECT_TRUE(holds(exclusionsPart(exclusions, *files), "<p>and 3 more</p>"));
}

TEST_F(MapPartTest, SaysThatNothingIsLeftOut) {
    const std::string html = exclusionsPart(exclusions, *files);
    EXPECT_TRUE(holds(html, "The profile leaves out nothing."));
    EXPECT_FALSE(holds(html, "<table>"));
}

}  // namespace
}  // namespace marrowpress
