#include "cli/publish_command.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class PublishPathsTest : public testing::Test {
protected:
    PublishPathsTest() {
        folder_.write("docs/m.ditamap", "<map/>");
        folder_.write("docs/f.ditaval", "<val/>");
        fs::create_directory(folder_.path() / "out");
        options_.map = folder_.file("docs/m.ditamap");
        options_.output = folder_.file("out/m.dita");
    }

    /// The fault of the options; "" when there is none.
    std::string fault() const {
        return findPublishFault(options_, resolvePublishPaths(options_)).value_or("");
    }
    std::string faultWithOutput(const std::string& name) {
        options_.output = folder_.file(name);
        return fault();
    }

    TemporaryFolder folder_;
    PublishOptions options_;
};

TEST_F(PublishPathsTest, AreAbsoluteAndNormal) {
    options_.map = "docs/../m.ditamap";
    options_.output = "//out\\m.dita";
    options_.filter = "/a/./b/../f.ditaval";
    const PublishPaths paths = resolvePublishPaths(options_);
    EXPECT_EQ(paths.map, fs::current_path() / "m.ditamap");
    EXPECT_EQ(paths.output.string(), "/out/m.dita");
    EXPECT_EQ(paths.filter->string(), "/a/f.ditaval");
}

TEST_F(PublishPathsTest, GoodOnesHaveNoFault) {
    options_.filter = folder_.file("docs/f.ditaval");
    EXPECT_EQ(fault(), "");
    folder_.write("out/m.dita", "old");
    EXPECT_EQ(fault(), "");
}

TEST_F(PublishPathsTest, TheMapMustBeReadable) {
    options_.map = folder_.file("docs/none.ditamap");
    EXPECT_EQ(fault(), "MAP: cannot read " + options_.map + ": No such file or directory");
    options_.map = folder_.file("docs");
    EXPECT_EQ(fault(), "MAP: cannot read " + options_.map + ": not a regular file");
    options_.map = folder_.file("fifo");
    ASSERT_EQ(mkfifo(options_.map.c_str(), 0600), 0);
    EXPECT_EQ(fault(), "MAP: cannot read " + options_.map + ": not a regular file");
}

TEST_F(PublishPathsTest, TheFilterMustBeReadable) {
    options_.filter = folder_.file("none.ditaval");
    EXPECT_EQ(fault(), "--filter: cannot read " + *options_.filter + ": No such file or directory");
}

TEST_F(PublishPathsTest, TheOutputMustBeAFileInAFolder) {
    const auto outputFault = [this](const std::string& name, const std::string& fault) {
        EXPECT_EQ(faultWithOutput(name), "--output: " + folder_.file(name) + fault);
    };
    outputFault("out", " is a folder");
    outputFault("out/", " is a folder");
    outputFault("out/new/", " is a folder");
    outputFault("none/m.dita", ": there is no folder " + folder_.file("none"));
    outputFault("docs/m.ditamap/m.dita", ": there is no folder " + folder_.file("docs/m.ditamap"));
    ASSERT_EQ(mkfifo(folder_.file("fifo").c_str(), 0600), 0);
    outputFault("fifo", " is not a regular file");
}

TEST_F(PublishPathsTest, TheOutputMayNotHaveANameOfTheRuns) {
    options_.output = folder_.file("out/KeyspaceDoc.ditamap");
    EXPECT_EQ(fault(), "--output: " + options_.output +
                           ": the run itself uses the name KeyspaceDoc.ditamap in the output's "
                           "folder, and removes it");
    EXPECT_NE(faultWithOutput("out/KeyspaceDoc.ditamap_tmp"), "");
}

TEST_F(PublishPathsTest, TheOutputMayNotBeASource) {
    options_.filter = folder_.file("docs/f.ditaval");
    EXPECT_TRUE(faultWithOutput("docs/m.ditamap").starts_with("MAP: the run would overwrite"));
    EXPECT_TRUE(faultWithOutput("docs/../docs/m.ditamap").starts_with("MAP: "));
    EXPECT_TRUE(faultWithOutput("docs\\m.ditamap").starts_with("MAP: "));
    EXPECT_TRUE(faultWithOutput("docs/f.ditaval").starts_with("--filter: the run would"));

    fs::create_symlink(folder_.path() / "docs", folder_.path() / "link");
    EXPECT_TRUE(faultWithOutput("link/m.ditamap").starts_with("MAP: "));
    fs::create_hard_link(folder_.path() / "docs/f.ditaval", folder_.path() / "out/hard");
    EXPECT_TRUE(faultWithOutput("out/hard").starts_with("--filter: "));

    const std::string catalog = folder_.write("out/catalog.xml", "");
    options_.catalogs = {catalog};
    EXPECT_TRUE(faultWithOutput("out/catalog.xml").starts_with("--catalog: "));
}

TEST_F(PublishPathsTest, NoSourceMayHaveANameThatTheRunRemoves) {
    for (const std::string& name :
         {std::string("KeyspaceDoc.ditamap"), std::string("KeyspaceDoc.ditamap_tmp"),
          std::string("m.dita_tmp")}) {
        SCOPED_TRACE(name);
        options_.map = folder_.write("out/" + name, "<map/>");
        EXPECT_TRUE(fault().starts_with("MAP: the run would overwrite or remove ")) << fault();
        options_.map = folder_.write("docs/" + name, "<map/>");
        EXPECT_EQ(fault(), "");
    }
}

TEST_F(PublishPathsTest, TextsMustBeUtf8) {
    const PublishOptions good = options_;
    options_.map = folder_.write("m\xFC.ditamap", "<map/>");
    EXPECT_EQ(fault(), "MAP: the path is not UTF-8");
    options_ = good;
    EXPECT_EQ(faultWithOutput("out/\xE4.dita"), "--output: the path is not UTF-8");
    options_ = good;
    options_.filter = folder_.write("\xE4.ditaval", "<val/>");
    EXPECT_EQ(fault(), "--filter: the path is not UTF-8");
    options_ = good;
    options_.compositeDtd = "\xFF";
    EXPECT_EQ(fault(), "--composite-dtd: the text is not UTF-8");
    options_ = good;
    options_.keySpaceDtd = "\xFF";
    EXPECT_EQ(fault(), "--keyspace-dtd: the text is not UTF-8");
}

TEST(PublishRequestTest, HoldsEveryParameter) {
    PublishOptions options;
    options.compositeDtd = "c.dtd";
    options.keySpaceDtd = "k.dtd";
    options.isForPrint = true;
    EXPECT_EQ(buildRequest(options, {"/a/\"m\".ditamap", "/o/ä.dita", "/f.ditaval"}),
              R"({"type":"PublishComp","params":{"ditamap":"/a/\"m\".ditamap",)"
              R"("output":"/o/ä.dita","ditaVal":"/f.ditaval","keyspaceDocDtd":"k.dtd",)"
              R"("compositeDocDtd":"c.dtd","usePrint":true}})");
}

TEST(PublishRequestTest, SaysThatThereIsNoFilter) {
    EXPECT_EQ(buildRequest({}, {"/m", "/o", std::nullopt}),
              R"({"type":"PublishComp","params":{"ditamap":"/m","output":"/o","ditaVal":"",)"
              R"("keyspaceDocDtd":"map.dtd","compositeDocDtd":"ditabase.dtd","usePrint":false}})");
}

TEST(CannotWriteTest, IsToldByTheTextInFrontOfTheArgument) {
    EXPECT_TRUE(saysCannotWrite("Speichern nicht möglich: /o.dita\r\n"));
    EXPECT_FALSE(saysCannotWrite("Lesen nicht möglich: /o.dita\r\n"));
    EXPECT_FALSE(saysCannotWrite("Lesen nicht möglich: Speichern nicht möglich: \r\n"));
    EXPECT_FALSE(saysCannotWrite(""));
}

}  // namespace
}  // namespace marrowpress
