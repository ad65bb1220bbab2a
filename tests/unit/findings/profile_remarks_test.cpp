#include "findings/profile_remarks.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "dom/element_walker.h"
#include "profiling/ditaval.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using RemarkKind = ProfileRemark::Kind;

Profile profileOf(const std::string& text) {
    const TemporaryFolder folder;
    return std::get<Profile>(readProfile(folder.write("p.ditaval", text)));
}

/// Each remark as "kind line:column element name=value *count;".
std::string shown(const std::vector<ProfileRemark>& remarks) {
    constexpr const char* kKinds[] = {"element", "attribute", "action",
                                      "root",    "unmatched", "idle"};
    std::string text;
    for (const ProfileRemark& remark : remarks) {
        text += kKinds[static_cast<std::size_t>(remark.kind)];
        text += " " + std::to_string(remark.place.line) + ":" +
                std::to_string(remark.place.column) + " " + remark.element + " " + remark.name +
                "=" + remark.value + " *" + std::to_string(remark.count) + ";";
    }
    return text;
}

std::string remarksOn(const std::string& text) {
    return shown(remarksOn(profileOf(text)));
}

std::string unmatched(const std::string& props, const ConditionValues& met) {
    return shown(unmatchedRules(profileOf("<val>\n" + props + "</val>").rules, met));
}

TEST(RemarksOnProfileTest, OfIncludesAndExcludesThereIsNothingToSay) {
    EXPECT_EQ(remarksOn("<val/>"), "");
    EXPECT_EQ(remarksOn("<val xmlns:xsi='urn:x' xsi:noNamespaceSchemaLocation='v.xsd'>"
                        "<prop action='include'/><prop att='a' action='exclude'/>"
                        "<prop att='a' val='v' action='include' xml:lang='de'/></val>"),
              "");
}

TEST(RemarksOnProfileTest, WhatDitaDoesNotKnowIsToldWhereItStands) {
    EXPECT_EQ(remarksOn("<val>\n<prob att='a' action='exclude'/><Prop/></val>"),
              "element 2:1 prob = *1;element 2:33 Prop = *1;");
    EXPECT_EQ(remarksOn("<val version='2'>\n<prop attr='a' value='v' action='include'/></val>"),
              "attribute 1:1 val version=2 *1;"
              "attribute 2:1 prop attr=a *1;attribute 2:1 prop value=v *1;");
    EXPECT_EQ(remarksOn("<val>\n<prop action='Exclude'/>\n<prop att='a'/></val>"),
              "action 2:1 prop action=Exclude *1;action 3:1 prop action= *1;");
}

TEST(RemarksOnProfileTest, AnAttributeIsKnownByItsWholeNameAndAtItsElement) {
    EXPECT_EQ(remarksOn("<val><prop action='include' at='' backcolo='' changebar=''/></val>"),
              "attribute 1:6 prop at= *1;attribute 1:6 prop backcolo= *1;"
              "attribute 1:6 prop changebar= *1;");
}

TEST(RemarksOnProfileTest, WhatHasNoEffectIsToldOnceForEachKind) {
    EXPECT_EQ(remarksOn("<val><style-conflict foreground-conflict-color='red'/>\n"
                        "<prop att='a' val='v' action='flag' color='red' outputclass='x'>\n"
                        "<startflag imageref='a.png'><alt-text>New</alt-text></startflag></prop>\n"
                        "<prop att='a' val='w' action='flag'/><prop action='passthrough'/>\n"
                        "<revprop val='1' action='flag' changebar='|'><endflag/></revprop></val>"),
              "idle 1:6 style-conflict style-conflict= *1;idle 2:1 prop flag= *2;"
              "idle 3:1 startflag startflag= *1;idle 4:38 prop passthrough= *1;"
              "idle 5:1 revprop revprop= *1;idle 5:46 endflag endflag= *1;");
}

TEST(RemarksOnProfileTest, OfAnotherRootNothingElseIsSaid) {
    EXPECT_EQ(remarksOn("\n<topic id='t'><title/></topic>"), "root 2:1 topic = *1;");
    EXPECT_FALSE(isProfile(profileOf("<topic/>")));
    EXPECT_TRUE(isProfile(profileOf("<val/>")));
}

TEST(UnmatchedRulesTest, ARuleForAValueNeedsThePair) {
    const std::string props =
        "<prop att='a' val='v' action='exclude'/>\n<prop att='b' val='w' action='exclude'/>";
    EXPECT_EQ(unmatched(props, {{"a", "v"}, {"b", "w"}}), "");
    EXPECT_EQ(unmatched(props, {{"a", "V"}, {"b", "w"}}), "unmatched 2:1 prop a=v *1;");
    EXPECT_EQ(unmatched(props, {{"a", "w"}, {"b", "v"}}),
              "unmatched 2:1 prop a=v *1;unmatched 3:1 prop b=w *1;");
}

TEST(UnmatchedRulesTest, ARuleForAnAttributeNeedsAnyOfItsValues) {
    const std::string props = "<prop att='b' action='exclude'/>";
    EXPECT_EQ(unmatched(props, {{"b", "anything"}}), "");
    EXPECT_EQ(unmatched(props, {{"a", "x"}, {"ba", "x"}, {"c", "x"}}), "unmatched 2:1 prop b= *1;");
}

TEST(UnmatchedRulesTest, WhatOnlyRepeatsIsNotMissed) {
    for (const char* const props :
         {"<prop att='audience' val='v' action='include'/>",
          "<prop att='audience' action='include'/>", "<prop action='exclude'/>",
          "<prop action='include'/>", "<prop att='audience' val='v' action='flag'/>",
          "<prop att='audience' val='v'/>", "<prop val='v' action='exclude'/>",
          "<prop action='exclude'/><prop att='audience' val='v' action='exclude'/>",
          "<prop action='exclude'/><prop att='audience' action='exclude'/>",
          "<prop action='exclude'/><prop att='rev' action='include'/>"}) {
        EXPECT_EQ(unmatched(props, {}), "") << props;
    }
}

TEST(UnmatchedRulesTest, WhatDiffersFromTheDefaultIsMissed) {
    const std::string byDefaultExcluded = "<prop action='exclude'/>\n";
    EXPECT_EQ(unmatched(byDefaultExcluded + "<prop att='audience' val='v' action='include'/>", {}),
              "unmatched 3:1 prop audience=v *1;");
    EXPECT_EQ(unmatched(byDefaultExcluded + "<prop att='audience' action='include'/>", {}),
              "unmatched 3:1 prop audience= *1;");
    EXPECT_EQ(unmatched(byDefaultExcluded + "<prop att='rev' action='exclude'/>", {}),
              "unmatched 3:1 prop rev= *1;");
}

TEST(UnmatchedRulesTest, ARuleThatComesAgainIsMissedOnce) {
    EXPECT_EQ(unmatched("<prop att='a' val='v' action='exclude'/><prop att='a' action='exclude'/>"
                        "<prop att='b' val='v' action='exclude'/>"
                        "<prop att='b' val='v' action='exclude'/><prop att='a' action='include'/>",
                        {}),
              "unmatched 2:41 prop a= *1;unmatched 2:73 prop b=v *1;");
}

/// The ids of those samples that the module excludes by these rules.
std::string excludedBy(const std::string& props) {
    const ParsedXml profile("<val>" + props + "</val>");
    DitaValReader reader;
    reader.readDefaultAction(profile.document());
    reader.readAttributeRules(profile.document());
    reader.readValueRules(profile.document());
    const std::unique_ptr<DitaValExcludeFilter> filter = reader.buildExcludeFilter();
    const ParsedXml content(
        "<body><p id='none'/><p id='a' audience='a'/><p id='b' audience='b'/>"
        "<p id='c' audience='c'/><p id='ab' audience='a b'/></body>");
    return idsOf(collectElements(content.root(), *filter));
}

/// Every list of three of these rules.
std::vector<std::vector<std::string>> listsOfRules() {
    const std::vector<std::string> pool{"<prop action='exclude'/>",
                                        "<prop att='audience' action='exclude'/>",
                                        "<prop att='audience' action='include'/>",
                                        "<prop att='audience' val='a' action='exclude'/>",
                                        "<prop att='audience' val='a' action='include'/>",
                                        "<prop att='audience' val='b' action='exclude'/>",
                                        "<prop att='audience' val='b' action='include'/>"};
    std::vector<std::vector<std::string>> lists;
    for (const std::string& first : pool) {
        for (const std::string& second : pool) {
            for (const std::string& third : pool) {
                lists.push_back({first, second, third});
            }
        }
    }
    return lists;
}

class UnmatchedRulesInModuleTest : public XmlTest {};

TEST_F(UnmatchedRulesInModuleTest, TheRulesThatCountMakeUpTheProfile) {
    for (const std::vector<std::string>& list : listsOfRules()) {
        std::string all;
        for (const std::string& prop : list) {
            all += prop + "\n";
        }
        const std::vector<ProfileRemark> missed =
            unmatchedRules(profileOf("<val>\n" + all + "</val>").rules, {});
        std::string counting;
        for (std::size_t index = 0; index < list.size(); ++index) {
            // The default is no rule that could be met.
            const bool isDefault = list[index].find("att=") == std::string::npos;
            const bool counts = std::any_of(
                missed.begin(), missed.end(),
                [index](const ProfileRemark& remark) { return remark.place.line == index + 2; });
            counting += isDefault || counts ? list[index] : "";
        }
        EXPECT_EQ(excludedBy(counting), excludedBy(all)) << all;
    }
}

}  // namespace
}  // namespace marrowpress
