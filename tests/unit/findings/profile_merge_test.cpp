#include "findings/profile_merge.h"

#include <gtest/gtest.h>

#include "dom/element_walker.h"
#include "profiling/ditaval.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

class MergeProfilesTest : public testing::Test {
protected:
    /// The files are "0.ditaval", "1.ditaval" and so on.
    MergedProfile merge(const std::vector<std::string>& texts) const {
        std::vector<Profile> profiles;
        for (const std::string& text : texts) {
            const std::string name = std::to_string(profiles.size()) + ".ditaval";
            profiles.push_back(std::get<Profile>(readProfile(folder.write(name, text))));
        }
        return mergeProfiles(profiles);
    }

    /// What stands in the merged root, without line ends and indentation.
    std::string content(const std::vector<std::string>& texts) const {
        const std::string text = merge(texts).text;
        std::string joined;
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = text.find('\n', start);
            const std::string line = text.substr(start, end - start);
            const std::size_t first = line.find_first_not_of(' ');
            joined += first == std::string::npos ? "" : line.substr(first);
            start = end + 1;
        }
        const std::string before = R"(<?xml version="1.0" encoding="UTF-8"?><val>)";
        EXPECT_TRUE(joined.starts_with(before)) << text;
        EXPECT_TRUE(joined.ends_with("</val>")) << text;
        return joined.substr(before.size(), joined.size() - before.size() - 6);
    }

    TemporaryFolder folder;
};

TEST_F(MergeProfilesTest, AnEarlierFilesRuleForAPairStays) {
    EXPECT_EQ(content({"<val><prop att='a' val='v' action='exclude'/></val>",
                       "<val><prop att='a' val='v' action='include'/>"
                       "<prop att='a' val='w' action='exclude'/></val>",
                       "<val><prop att='a' val='w' action='include'/>"
                       "<prop att='b' val='v' action='exclude'/></val>"}),
              R"(<prop att="a" val="v" action="exclude"/><prop att="a" val="w" action="exclude"/>)"
              R"(<prop att="b" val="v" action="exclude"/>)");
}

TEST_F(MergeProfilesTest, WhatARuleDoesNotHaveIsEmpty) {
    EXPECT_EQ(content({"<val><prop action='include'/><prop att='a' action='include'/></val>",
                       "<val><prop att='' val='' action='exclude'/>"
                       "<prop att='a' val='' action='exclude'/>"
                       "<prop att='a' val='v' action='exclude'/></val>"}),
              R"(<prop action="include"/><prop att="a" action="include"/>)"
              R"(<prop att="a" val="v" action="exclude"/>)");
}

TEST_F(MergeProfilesTest, OneFilesRulesAllStay) {
    EXPECT_EQ(
        content({"<val><prop att='a' action='include'/><prop att='a' action='exclude'/></val>",
                 "<val/>"}),
        R"(<prop att="a" action="include"/><prop att="a" action="exclude"/>)");
}

TEST_F(MergeProfilesTest, OtherElementsStay) {
    EXPECT_EQ(content({"<!DOCTYPE val [<!ENTITY v 'v1'>]><val><!-- ours --><style-conflict/>"
                       "<revprop val='&v;' action='flag'><startflag/></revprop></val>",
                       "<val xmlns:m='urn:m'><revprop val='v1' action='flag'/><m:note/>"
                       "<prop action='include'><startflag><alt-text>\u00E4</alt-text></startflag>"
                       "</prop></val>"}),
              R"(<style-conflict/><revprop val="v1" action="flag"><startflag/></revprop>)"
              R"(<revprop val="v1" action="flag"/><m:note xmlns:m="urn:m"/>)"
              "<prop action=\"include\"><startflag><alt-text>\u00E4</alt-text></startflag></prop>");
}

TEST_F(MergeProfilesTest, WhatStandsBelowADroppedRuleGoesWithIt) {
    const MergedProfile merged = merge({"<val><prop att='a' action='exclude'/></val>",
                                        "<val><prop att='a' action='include'>"
                                        "<prop att='b' action='exclude'/>"
                                        "<prop att='a' action='include'/></prop>"
                                        "<prop att='c' action='exclude'/></val>"});
    ASSERT_EQ(merged.rules.size(), 2U);
    EXPECT_EQ(merged.rules[1].attribute, "c");
    EXPECT_EQ(merged.text.find("att=\"b\""), std::string::npos) << merged.text;
}

TEST_F(MergeProfilesTest, ARootMayBeARule) {
    const std::string rule = "<prop att='a' action='exclude'/>";
    EXPECT_EQ(content({rule, "<prop att='b' action='exclude'/>", rule}),
              R"(<prop att="a" action="exclude"/><prop att="b" action="exclude"/>)");
}

TEST_F(MergeProfilesTest, EachRuleKnowsWhereItCameFrom) {
    const MergedProfile merged = merge({"<val>\n<prop att='a' val='v' action='exclude'/></val>",
                                        "<val>\n\n<prop att='a' val='v' action='include'/>"
                                        "<prop att='b' val='v' action='exclude'/></val>"});
    ASSERT_EQ(merged.rules.size(), 2U);
    EXPECT_EQ(merged.rules[0].place, (FindingPlace{folder.file("0.ditaval"), 2, 1}));
    EXPECT_EQ(merged.rules[0].action, "exclude");
    EXPECT_EQ(merged.rules[1].place, (FindingPlace{folder.file("1.ditaval"), 3, 41}));
}

TEST_F(MergeProfilesTest, TheTextsAreEscaped) {
    EXPECT_EQ(
        content({"<val><prop att='a' val='&lt;&amp;&quot;' action='exclude'/></val>", "<val/>"}),
        R"(<prop att="a" val="&lt;&amp;&quot;" action="exclude"/>)");
}

class MergeProfilesInModuleTest : public MergeProfilesTest {
protected:
    /// The ids of those samples that the module excludes by the merged profile.
    std::string excludedBy(const std::vector<std::string>& texts) const {
        const ParsedXml profile(merge(texts).text);
        DitaValReader reader;
        reader.readDefaultAction(profile.document());
        reader.readAttributeRules(profile.document());
        reader.readValueRules(profile.document());
        const std::unique_ptr<DitaValExcludeFilter> filter = reader.buildExcludeFilter();
        const ParsedXml content(
            "<body><p id='none'/><p id='a' audience='a'/><p id='b' audience='b'/>"
            "<p id='ab' audience='a b'/><p id='x' platform='x'/></body>");
        return idsOf(collectElements(content.root(), *filter));
    }

    RecordingHost host;
    XmlSession session;
};

TEST_F(MergeProfilesInModuleTest, TheEarlierFileWins) {
    const std::string exceptA =
        "<val><prop action='exclude'/>"
        "<prop att='audience' val='a' action='include'/></val>";
    const std::string withoutA = "<val><prop att='audience' val='a' action='exclude'/></val>";
    EXPECT_EQ(excludedBy({withoutA, withoutA}), "a");
    EXPECT_EQ(excludedBy({exceptA, withoutA}), "b x");
    EXPECT_EQ(excludedBy({withoutA, exceptA}), "a b ab x");
    EXPECT_EQ(excludedBy({withoutA, "<val><prop att='audience' val='b' action='exclude'/></val>"}),
              "a b ab");
    EXPECT_EQ(excludedBy({"<val><prop action='include'/></val>", exceptA}), "");
}

}  // namespace
}  // namespace marrowpress
