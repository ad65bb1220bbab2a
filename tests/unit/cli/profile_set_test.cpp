#include "cli/profile_set.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "tests/support/chosen_language.h"
#include "tests/support/observations.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class ProfileSetTest : public testing::Test {
protected:
    NamedPath filter(const std::string& name) const {
        return {"--filter", name, folder.file(name)};
    }

    std::string fault(const std::vector<NamedPath>& files, bool isOptional = false) const {
        return ProfileSet(files, isOptional).fault().value_or("");
    }

    /// What the files say, as "id file:line: text", when a run has met audience="trade" alone.
    std::vector<std::string> findings(const ProfileSet& profiles) const {
        FindingCollector collector({folder.path().string(), profiles.names(), {}, true}, {});
        Observation met = observationOf(ObservationKind::kConditionValue, "audience");
        met.detail = "trade";
        collector.observe(met);
        profiles.addFindings(collector);
        std::vector<std::string> lines;
        for (const Finding& finding : collector.list().findings()) {
            lines.push_back(finding.id + " " +
                            std::filesystem::path(finding.place.file).filename().string() + ":" +
                            std::to_string(finding.place.line) + ": " + finding.text);
        }
        return lines;
    }

    std::string rule(const std::string& value, const std::string& action = "exclude") const {
        return "<prop att=\"audience\" val=\"" + value + "\" action=\"" + action + "\"/>";
    }

    using Lines = std::vector<std::string>;

    TemporaryFolder folder;
    ChosenLanguage english{Language::kEnglish};
};

TEST_F(ProfileSetTest, MayBeEmpty) {
    const ProfileSet profiles({}, false);
    EXPECT_EQ(profiles.fault(), std::nullopt);
    EXPECT_EQ(profiles.file(), std::nullopt);
    EXPECT_TRUE(profiles.names().empty());
    EXPECT_EQ(findings(profiles), Lines());
}

TEST_F(ProfileSetTest, HandsOverOneFileAsItIs) {
    folder.write("p.ditaval", "<val>" + rule("trade") + "</val>");
    const ProfileSet profiles({filter("p.ditaval")}, false);
    EXPECT_EQ(profiles.file(), folder.file("p.ditaval"));
    EXPECT_EQ(profiles.names(), Lines{folder.file("p.ditaval")});
    EXPECT_EQ(findings(profiles), Lines());
}

TEST_F(ProfileSetTest, MergesSeveralIntoAPrivateOneAndTheEarlierRuleCounts) {
    folder.write("1.ditaval", "<val>" + rule("trade", "include") + "</val>");
    folder.write("2.ditaval", "<val>" + rule("trade") + rule("home") + "</val>");
    folder.write("3.ditaval", "<val>" + rule("home", "include") + rule("all") + "</val>");
    std::filesystem::path merged;
    {
        const ProfileSet profiles({filter("1.ditaval"), filter("2.ditaval"), filter("3.ditaval")},
                                  false);
        ASSERT_TRUE(profiles.file());
        merged = *profiles.file();
        std::ostringstream text;
        text << std::ifstream(merged).rdbuf();
        EXPECT_NE(text.str().find(rule("trade", "include")), std::string::npos) << text.str();
        EXPECT_EQ(text.str().find(rule("trade")), std::string::npos);
        EXPECT_NE(text.str().find(rule("home")), std::string::npos);
        EXPECT_EQ(text.str().find(rule("home", "include")), std::string::npos);
        EXPECT_NE(text.str().find(rule("all")), std::string::npos);
        EXPECT_EQ(profiles.names(), (Lines{folder.file("1.ditaval"), folder.file("2.ditaval"),
                                           folder.file("3.ditaval")}));
    }
    EXPECT_FALSE(std::filesystem::exists(merged.parent_path()));
}

TEST_F(ProfileSetTest, SaysWhichFileCannotBeUsed) {
    folder.write("good.ditaval", "<val/>");
    folder.write("broken.ditaval", "<val>\n<prop>\n</val>");
    folder.write("other.ditaval", "<topic/>");
    EXPECT_EQ(fault({filter("good.ditaval"), filter("none.ditaval")}),
              "--filter: cannot read none.ditaval: No such file or directory");
    EXPECT_TRUE(fault({filter("broken.ditaval")}).starts_with("--filter: broken.ditaval:3:"))
        << fault({filter("broken.ditaval")});
    EXPECT_EQ(fault({filter("other.ditaval")}),
              "--filter: other.ditaval:1:1: the root is a `topic`; that of a DITAVAL file is a "
              "`val`");
}

TEST_F(ProfileSetTest, DoesWithoutAFileThatCannotBeUsedWhereItMay) {
    folder.write("good.ditaval", "<val>" + rule("trade") + "</val>");
    EXPECT_EQ(fault({filter("none.ditaval")}, true), "");
    const ProfileSet profiles({filter("none.ditaval"), filter("good.ditaval")}, true);
    EXPECT_EQ(profiles.fault(), std::nullopt);
    EXPECT_EQ(findings(profiles),
              Lines{"MP106 none.ditaval:0: `none.ditaval` cannot be read: No such file or "
                    "directory"});
}

TEST_F(ProfileSetTest, SaysWhatDitaDoesNotKnowAndWhatMatchesNothing) {
    folder.write("p.ditaval", "<val>\n" + rule("trade") + "\n" + rule("nobody") + "\n" +
                                  rule("trade2", "remove") + "\n<rule/>\n</val>");
    const Lines lines = findings(ProfileSet({filter("p.ditaval")}, false));
    const auto hasLine = [&lines](const std::string& start) {
        return std::any_of(lines.begin(), lines.end(),
                           [&](const std::string& line) { return line.starts_with(start); });
    };
    EXPECT_TRUE(hasLine("MP207 p.ditaval:3: "));
    EXPECT_TRUE(hasLine("MP207 p.ditaval:4: "));
    EXPECT_TRUE(hasLine("MP207 p.ditaval:5: "));
    EXPECT_FALSE(hasLine("MP207 p.ditaval:2: "));
}

TEST_F(ProfileSetTest, EachFindingHasAHint) {
    folder.write("p.ditaval", "<val>\n" + rule("nobody") + "\n" + rule("x", "remove") +
                                  "\n<rule/>\n<prop attr=\"a\" action=\"include\"/>\n</val>");
    folder.write("q.ditaval", "<topic/>");
    for (const char* const name : {"p.ditaval", "q.ditaval"}) {
        const ProfileSet profiles({filter(name)}, true);
        FindingCollector collector({folder.path().string(), profiles.names(), {}, true}, {});
        profiles.addFindings(collector);
        EXPECT_FALSE(collector.list().findings().empty());
        for (const Finding& finding : collector.list().findings()) {
            EXPECT_NE(finding.hint, "") << finding.text;
        }
    }
}

TEST_F(ProfileSetTest, ARuleThatMatchesNothingIsHintedAtByAMapWithoutItsDtd) {
    folder.write("p.ditaval", "<val>" + rule("nobody") + "</val>");
    const ProfileSet profiles({filter("p.ditaval")}, false);
    FindingCollector collector({folder.path().string(), profiles.names(), {}, true}, {});
    const std::string map = folder.file("m.ditamap");
    Observation met = observationOf(ObservationKind::kDocumentRead, map.c_str());
    met.code = static_cast<std::uint32_t>(DocumentGrammar::kInvalid);
    met.element = "map";
    collector.observe(met);
    profiles.addFindings(collector);
    ASSERT_EQ(collector.list().findings().size(), 1U);
    const std::string& hint = collector.list().findings()[0].hint;
    EXPECT_NE(hint.find("`m.ditamap`"), std::string::npos) << hint;
    EXPECT_NE(hint.find("MP202"), std::string::npos) << hint;
}

}  // namespace
}  // namespace marrowpress
