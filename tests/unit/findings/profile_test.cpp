#include "findings/profile.h"

#include <gtest/gtest.h>

#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

/// The bytes of an ASCII text in UTF-16, the lower one first, with a byte order mark.
std::string toUtf16Bytes(const std::string& text) {
    std::string bytes = "\xFF\xFE";
    for (const char character : text) {
        bytes += character;
        bytes += '\0';
    }
    return bytes;
}

class ProfileTest : public testing::Test {
protected:
    std::variant<Profile, ProfileFault> read(const std::string& text) const {
        return readProfile(folder.write("p.ditaval", text));
    }

    /// What the text says; nothing, with a failure of the test, when it cannot be read.
    Profile profileOf(const std::string& text) const {
        const auto reading = read(text);
        if (const auto* const fault = std::get_if<ProfileFault>(&reading)) {
            ADD_FAILURE() << text << ": " << fault->reason;
            return {};
        }
        return std::get<Profile>(reading);
    }

    /// The rules of a text, each as "line:column att=val action;".
    std::string rulesOf(const std::string& text) const {
        std::string rules;
        for (const ProfileRule& rule : profileOf(text).rules) {
            rules += std::to_string(rule.place.line) + ":" + std::to_string(rule.place.column) +
                     " " + rule.attribute + "=" + rule.value + " " + rule.action + ";";
        }
        return rules;
    }

    /// The fault of a text that is not well-formed, as "line:column reason".
    std::string faultOf(const std::string& text) const {
        const auto reading = read(text);
        const auto* const fault = std::get_if<ProfileFault>(&reading);
        if (!fault) {
            return "none";
        }
        EXPECT_EQ(fault->kind, ProfileFault::Kind::kNotWellFormed);
        EXPECT_EQ(fault->place.file, folder.file("p.ditaval"));
        return std::to_string(fault->place.line) + ":" + std::to_string(fault->place.column) + " " +
               fault->reason;
    }

    TemporaryFolder folder;
};

TEST_F(ProfileTest, HasItsRulesInOrderWithTheirPlaces) {
    EXPECT_EQ(rulesOf("<val>\n"
                      "  <prop att='audience' val='trade' action='exclude'/>\n"
                      "  <revprop val='1' action='flag'/><prop\n"
                      "     action='include'></prop>\n"
                      "</val>\n"),
              "2:3 audience=trade exclude;3:35 = include;");
    EXPECT_EQ(rulesOf("<val/>"), "");
}

TEST_F(ProfileTest, HasAllElementsAndAttributesAsTheyStand) {
    const Profile profile = profileOf(
        "<?xml version='1.0'?>\n<!-- <x> --><val xmlns:m='urn:m' m:owner='docs'>\n"
        "<prop action='flag' unknown=''><startflag><alt-text>New</alt-text></startflag>"
        "</prop><m:note/></val>");
    ASSERT_EQ(profile.elements.size(), 5U);
    EXPECT_EQ(profile.root().name, "val");
    EXPECT_EQ(profile.root().place, (FindingPlace{folder.file("p.ditaval"), 2, 13}));
    EXPECT_EQ(profile.root().valueOf("m:owner"), "docs");
    EXPECT_EQ(profile.root().valueOf("owner"), "");
    EXPECT_EQ(profile.elements[1].attributes, (std::vector<std::pair<std::string, std::string>>{
                                                  {"action", "flag"}, {"unknown", ""}}));
    EXPECT_EQ(profile.elements[3].name, "alt-text");
    EXPECT_EQ(profile.elements[4].name, "m:note");
}

TEST_F(ProfileTest, AnotherRootIsNoFault) {
    EXPECT_EQ(profileOf("<topic/>").root().name, "topic");
}

TEST_F(ProfileTest, ColumnsAreUnitsOfUtf16) {
    EXPECT_EQ(rulesOf("<val><!-- \u00E4\u20AC\U0001F600 --><prop action='include'/></val>"),
              "1:19 = include;");
}

TEST_F(ProfileTest, PlacesHoldInLongFilesAndOnLongLines) {
    std::string text = "<val>";
    std::string expected;
    for (int count = 0; count < 3000; ++count) {
        expected += "1:" + std::to_string(text.size() + 1) + " a=v exclude;";
        text += "<prop att='a' val='v' action='exclude'/>";
    }
    EXPECT_EQ(rulesOf(text + "\n\n<prop action='include'/></val>"), expected + "3:1 = include;");
}

TEST_F(ProfileTest, IsReadInItsEncoding) {
    const std::string text = "<val>\n<prop att='a' val='b' action='exclude'/></val>";
    EXPECT_EQ(rulesOf("\xEF\xBB\xBF" + text), "2:1 a=b exclude;");
    EXPECT_EQ(rulesOf(toUtf16Bytes(text)), "2:1 a=b exclude;");
    EXPECT_EQ(rulesOf(toUtf16Bytes("<?xml version='1.0' encoding='UTF-16'?>" + text)),
              "2:1 a=b exclude;");
    EXPECT_EQ(rulesOf("<?xml version='1.0' encoding='ISO-8859-1'?><val><!--\xE4\xE4-->"
                      "<prop att='a' val='\xE4' action='exclude'/></val>"),
              "1:58 a=\u00E4 exclude;");
    EXPECT_EQ(rulesOf("<?xml version='1.0' encoding='windows-1252'?><val>"
                      "<prop att='a' val='\x80\x80\x80' action='exclude'/></val>"),
              "1:51 a=\u20AC\u20AC\u20AC exclude;");
}

TEST_F(ProfileTest, EntitiesOfTheFileStandForTheirText) {
    EXPECT_EQ(rulesOf("<!DOCTYPE val [<!ENTITY t 'trade'>"
                      "<!ENTITY p \"<prop att='b' action='include'/>\">]>\n"
                      "<val><prop att='a' val='&t;&amp;' action='exclude'/>&p;&p;</val>"),
              "2:6 a=trade& exclude;0:0 b= include;0:0 b= include;");
}

TEST_F(ProfileTest, NothingElseIsReadForIt) {
    folder.write("rules.xml", "<prop att='secret' action='exclude'/>");
    folder.write("rules.ent", "<!ENTITY r \"<prop att='secret' action='exclude'/>\">");
    SilentServer server;
    EXPECT_EQ(rulesOf("<!DOCTYPE val SYSTEM 'http://" + server.authority() +
                      "/v.dtd' [<!ENTITY x SYSTEM 'rules.xml'>"
                      "<!ENTITY net SYSTEM 'http://" +
                      server.authority() + "/x'><!ENTITY % more SYSTEM 'rules.ent'> %more;]>\n" +
                      "<val>&x;&net;<prop att='a' action='exclude'/></val>"),
              "2:14 a= exclude;");
    EXPECT_FALSE(server.wasAsked());
}

TEST_F(ProfileTest, WhatIsNotWellFormedIsToldWhereItBreaks) {
    EXPECT_EQ(faultOf("<val>\n  <prop>\n</val>"),
              "3:7 Opening and ending tag mismatch: prop line 2 and val");
    EXPECT_EQ(faultOf("<val>\n\u00E4\U0001F600<prop a=\"<\"/></val>"),
              "2:13 Unescaped '<' not allowed in attributes values");
    EXPECT_EQ(faultOf("<val>"), "1:6 Premature end of data in tag val line 1");
    EXPECT_EQ(faultOf("val"), "1:1 Start tag expected, '<' not found");
    EXPECT_EQ(faultOf("<val/><val/>"), "1:7 Extra content at the end of the document");
    EXPECT_EQ(faultOf("<val>&none;</val>"), "1:12 Entity 'none' not defined");
    EXPECT_EQ(faultOf(""), "0:0 the file is empty");
    const std::string noUtf8 = faultOf("<val>\xE4</val>");
    EXPECT_TRUE(noUtf8.starts_with("1:6 Input is not proper UTF-8")) << noUtf8;
    EXPECT_EQ(noUtf8.find('\n'), std::string::npos) << noUtf8;
}

TEST_F(ProfileTest, AnEntityThatGrowsWithoutEndIsAFault) {
    std::string text = "<!DOCTYPE val [<!ENTITY e0 '0123456789'>";
    for (int level = 1; level < 12; ++level) {
        text += "<!ENTITY e" + std::to_string(level) + " '";
        for (int count = 0; count < 10; ++count) {
            text += "&e" + std::to_string(level - 1) + ";";
        }
        text += "'>";
    }
    EXPECT_NE(faultOf(text + "]><val>&e11;</val>"), "none");
}

TEST_F(ProfileTest, WhatCannotBeReadIsToldWithTheReason) {
    const auto reading = readProfile(folder.file("none.ditaval"));
    const auto& fault = std::get<ProfileFault>(reading);
    EXPECT_EQ(fault.kind, ProfileFault::Kind::kUnreadable);
    EXPECT_EQ(fault.reason, "No such file or directory");
    EXPECT_EQ(fault.place, (FindingPlace{folder.file("none.ditaval")}));
    EXPECT_EQ(std::get<ProfileFault>(readProfile(folder.path().string())).reason,
              "not a regular file");
}

}  // namespace
}  // namespace marrowpress
