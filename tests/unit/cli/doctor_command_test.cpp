#include "cli/doctor_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/chosen_language.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class DoctorCommandTest : public testing::Test {
protected:
    ExitCode run() {
        std::ostringstream outStream;
        std::ostringstream errStream;
        const ExitCode code = runDoctor(options, {outStream, errStream});
        out = outStream.str();
        err = errStream.str();
        return code;
    }

    bool says(const std::string& text) const { return out.find(text) != std::string::npos; }

    TemporaryFolder folder;
    ChosenLanguage english{Language::kEnglish};
    DoctorOptions options;
    std::string out;
    std::string err;
};

TEST_F(DoctorCommandTest, ACatalogThatCannotBeReadIsWrongUsage) {
    options.catalogs = {folder.file("none.xml")};
    EXPECT_EQ(run(), ExitCode::kWrongUsage);
    EXPECT_EQ(out, "");
    EXPECT_TRUE(err.starts_with("marrowpress doctor: --catalog: " + options.catalogs[0])) << err;
}

TEST_F(DoctorCommandTest, WithoutDtdsItEndsWith1AndSaysWhatToInstall) {
    options.catalogs = {
        folder.write("c.xml", R"(<catalog xmlns="urn:oasis:names:tc:entity:xmlns:xml:catalog"/>)")};
    EXPECT_EQ(run(), ExitCode::kRunFailed);
    EXPECT_EQ(err, "");
    EXPECT_TRUE(says("\n" + options.catalogs[0] + "  "));
    EXPECT_TRUE(says("map                 -//OASIS//DTD DITA Map//EN                  not found"));
    EXPECT_TRUE(says("Documents may be in: UTF-8, UTF-16, "));
    EXPECT_TRUE(says("Missing: Install the Debian package dita-ot"));
}

TEST_F(DoctorCommandTest, OfAMapTheTypesOfItsDocumentsAreTold) {
    folder.write("a.dita", "<!DOCTYPE topic SYSTEM \"a.dtd\"><topic/>");
    folder.write("a.dtd", "<!ELEMENT topic ANY>");
    folder.write("b.dita",
                 "<!DOCTYPE task PUBLIC \"-//OASIS//DTD DITA Task//EN\" \"b.dtd\">"
                 "<task/>");
    options.map = folder.write("m.ditamap",
                               "<map class=\"- map/map \">"
                               "<topicref class=\"- map/topicref \" href=\"a.dita\"/>"
                               "<topicref class=\"- map/topicref \" href=\"b.dita\"/></map>");
    options.catalogs = {
        folder.write("c.xml", R"(<catalog xmlns="urn:oasis:names:tc:entity:xmlns:xml:catalog"/>)")};
    options.diagnostics.format = DiagnosticsFormat::kNone;
    EXPECT_EQ(run(), ExitCode::kRunFailed) << err;
    EXPECT_TRUE(says("no doctype\n")) << out;
    EXPECT_TRUE(says("  " + folder.file("a.dtd") + "\n")) << out;
    EXPECT_TRUE(says("not found\n")) << out;
    EXPECT_FALSE(says("Learning"));
}

TEST_F(DoctorCommandTest, AMapThatIsAbsentIsWrongUsage) {
    options.map = folder.file("none.ditamap");
    EXPECT_EQ(run(), ExitCode::kWrongUsage);
    EXPECT_EQ(out, "");
    EXPECT_TRUE(err.starts_with("marrowpress doctor: MAP: cannot read " + options.map)) << err;
}

}  // namespace
}  // namespace marrowpress
