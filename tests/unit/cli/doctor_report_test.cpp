#include "cli/doctor_report.h"

#include <gtest/gtest.h>

#include "tests/support/chosen_language.h"

namespace marrowpress {
namespace {

class DoctorReportTest : public testing::Test {
protected:
    /// What the report says behind its tables.
    std::string advice() const {
        const std::string text = report.text();
        return text.substr(text.rfind("\n\n") + 2);
    }

    ChosenLanguage english{Language::kEnglish};
    DoctorReport report;
};

constexpr const char* kSound = "Nothing stands in the way of a publication\n";
constexpr const char* kInstall =
    "Missing: Install the Debian package dita-ot, which brings the DTDs of DITA 1.2, or name the "
    "catalog of your DTDs with --catalog or in XML_CATALOG_FILES\n";

TEST_F(DoctorReportTest, CatalogsAreToldInTheirOrderWithWhatIsWrong) {
    report.addCatalogs({{"/a.xml", "No such file or directory"}, {"/b.xml", ""}});
    EXPECT_EQ(report.text(),
              "CATALOG, IN THE ORDER OF ASKING  STATE\n"
              "/a.xml                           No such file or directory\n"
              "/b.xml                           read\n\n" +
                  std::string(kSound));
}

TEST_F(DoctorReportTest, ACommonTypeWithoutADtdIsAFault) {
    report.addTypes({{"map", "-//M//EN", true, "/d/map.dtd"}, {"task", "-//T//EN", true, ""}});
    EXPECT_FALSE(report.isSound());
    EXPECT_EQ(report.text(),
              "DOCUMENT TYPE  PUBLIC IDENTIFIER  DTD\n"
              "map            -//M//EN           /d/map.dtd\n"
              "task           -//T//EN           not found\n\n" +
                  std::string(kInstall));
}

TEST_F(DoctorReportTest, ATypeThatIsNotEverywhereIsOnlyRemarked) {
    report.addTypes(
        {{"map", "-//M//EN", true, "/d/map.dtd"}, {"troubleshooting", "-//T//EN", false, ""}});
    EXPECT_TRUE(report.isSound());
    EXPECT_EQ(advice(),
              "Note: For troubleshooting you need DTDs of DITA 1.3; name their catalog with "
              "--catalog\n" +
                  std::string(kSound));
}

TEST_F(DoctorReportTest, AMapIsMissingTheDtdsThatItsDocumentsName) {
    report.addUses({{"map", DocumentGrammar::kOwn, "/d/map.dtd", 1, "/w/m.ditamap"},
                    {"topic", DocumentGrammar::kNoDoctype, "", 2, "/w/a.dita"},
                    {"task", DocumentGrammar::kNotFound, "", 3, "/w/t.dita"}},
                   "/w");
    EXPECT_EQ(report.text(),
              "DOCUMENT TYPE  DOCUMENTS  THE FIRST  DTD\n"
              "map            1          m.ditamap  /d/map.dtd\n"
              "topic          2          a.dita     no doctype\n"
              "task           3          t.dita     not found\n\n" +
                  std::string(kInstall));
}

TEST_F(DoctorReportTest, ADocumentWithoutADoctypeIsNoFault) {
    report.addUses({{"topic", DocumentGrammar::kNoDoctype, "", 2, "/w/a.dita"}}, "/w");
    EXPECT_TRUE(report.isSound());
}

TEST_F(DoctorReportTest, AnEncodingThatCannotBeReadIsAFault) {
    report.addEncodings({{"UTF-8", true}, {"KOI8-R", true}});
    EXPECT_EQ(report.text(), "Documents may be in: UTF-8, KOI8-R\n\n" + std::string(kSound));
    report.addEncodings({{"UTF-8", true}, {"Big5", false}});
    EXPECT_FALSE(report.isSound());
    EXPECT_NE(report.text().find("\nnot in: Big5\n"), std::string::npos);
}

TEST_F(DoctorReportTest, OnlyTheFolderForPrivateFilesHasToBeWritable) {
    report.addFolders({"/w", "Permission denied"}, {"/tmp", ""});
    EXPECT_TRUE(report.isSound());
    EXPECT_EQ(report.text(),
              "FOLDER             PATH  STATE\n"
              "the current one    /w    Permission denied\n"
              "for private files  /tmp  can be written\n\n"
              "Note: Choose another folder than the current one with --output\n" +
                  std::string(kSound));
    report.addFolders({"/w", ""}, {"/tmp", "No space left on device"});
    EXPECT_FALSE(report.isSound());
}

TEST_F(DoctorReportTest, ACharacterSetBesideUtf8IsRemarked) {
    report.addCharset("UTF-8");
    EXPECT_EQ(advice(), kSound);
    report.addCharset("ISO-8859-1");
    EXPECT_EQ(advice(),
              "Note: All texts and paths are UTF-8; set LC_ALL=C.UTF-8 or the like, so that a "
              "terminal shows them\n" +
                  std::string(kSound));
}

TEST_F(DoctorReportTest, WhatIsMissingTwiceIsToldOnce) {
    report.addTypes({{"map", "-//M//EN", true, ""}});
    report.addUses({{"map", DocumentGrammar::kNotFound, "", 1, "/w/m.ditamap"}}, "/w");
    EXPECT_EQ(advice(), kInstall);
}

}  // namespace
}  // namespace marrowpress
