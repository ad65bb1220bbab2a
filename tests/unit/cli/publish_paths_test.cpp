#include "cli/publish_paths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>

#include "tests/support/composite_doctype.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr const char* kInTheWay =
    ": a folder, or a symbolic link to nothing, is in the way of what the run writes for a while; "
    "choose another output folder";

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
    options_.filters = {"/a/./b/../f.ditaval"};
    const PublishPaths paths = resolvePublishPaths(options_);
    EXPECT_EQ(paths.map, fs::current_path() / "m.ditamap");
    EXPECT_EQ(paths.output.string(), "/out/m.dita");
    EXPECT_EQ(paths.filters.at(0).string(), "/a/f.ditaval");
}

TEST_F(PublishPathsTest, GoodOnesHaveNoFault) {
    options_.filters = {folder_.file("docs/f.ditaval")};
    EXPECT_EQ(fault(), "");
    folder_.write("out/m.dita", kCompositeDoctype + "<dita/>");
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
    options_.filters = {folder_.file("docs/f.ditaval")};
    EXPECT_TRUE(faultWithOutput("docs/m.ditamap").starts_with("MAP: the run would overwrite"));
    EXPECT_TRUE(faultWithOutput("docs/../docs/m.ditamap").starts_with("MAP: "));
    EXPECT_TRUE(faultWithOutput("docs\\m.ditamap").starts_with("MAP: "));
    EXPECT_TRUE(faultWithOutput("docs/f.ditaval").starts_with("--filter: the run would"));

    fs::create_symlink(folder_.path() / "docs", folder_.path() / "link");
    EXPECT_TRUE(faultWithOutput("link/m.ditamap").starts_with("MAP: "));
    fs::create_hard_link(folder_.path() / "docs/f.ditaval", folder_.path() / "out/hard");
    EXPECT_TRUE(faultWithOutput("out/hard").starts_with("--filter: "));

    const std::string catalog = folder_.write("out/catalog.xml", "");
    for (const std::string& name : {catalog, "file://" + catalog}) {
        options_.catalogs = {name};
        EXPECT_TRUE(faultWithOutput("out/catalog.xml").starts_with("--catalog: ")) << fault();
    }
}

TEST_F(PublishPathsTest, TheOutputMayNotBeADefaultCatalog) {
    const std::string catalog = folder_.write("out/m.dita_tmp", "<catalog/>");
    const char* const value = std::getenv("XML_CATALOG_FILES");
    const std::optional<std::string> saved =
        value ? std::optional<std::string>(value) : std::nullopt;
    setenv("XML_CATALOG_FILES", ("/none.xml file://" + catalog).c_str(), 1);
    const std::string withDefaults = fault();
    options_.catalogs = {folder_.file("docs/catalog.xml")};
    const std::string withNamed = fault();
    if (saved) {
        setenv("XML_CATALOG_FILES", saved->c_str(), 1);
    } else {
        unsetenv("XML_CATALOG_FILES");
    }
    EXPECT_EQ(withDefaults, "default catalog: the run would overwrite or remove " + catalog +
                                "; choose another output");
    EXPECT_EQ(withNamed, "");
}

TEST_F(PublishPathsTest, NothingMayBeALinkToNothing) {
    fs::create_symlink("none", folder_.path() / "out/link");
    EXPECT_EQ(faultWithOutput("out/link"),
              "--output: " + folder_.file("out/link") + " is a symbolic link to nothing");
    fs::create_symlink("none", folder_.path() / "docs/KeyspaceDoc.ditamap");
    EXPECT_EQ(faultWithOutput("docs/m.dita"),
              "--output: " + folder_.file("docs/m.dita") + kInTheWay);
    folder_.write("docs/none", "");
    EXPECT_EQ(faultWithOutput("docs/m.dita"), "");
}

TEST_F(PublishPathsTest, NoFolderMayStandWhereTheRunWritesForAWhile) {
    for (const char* const name : {"out/KeyspaceDoc.ditamap", "out/KeyspaceDoc.ditamap_tmp"}) {
        fs::create_directory(folder_.path() / name);
        EXPECT_EQ(fault(), "--output: " + options_.output + kInTheWay);
        fs::remove(folder_.path() / name);
    }
    fs::create_directory(folder_.path() / "out/m.dita_tmp");
    EXPECT_EQ(fault(), "--output: " + options_.output + ": " + options_.output +
                           "_tmp is a folder, and the run needs that name for a while; choose "
                           "another output");
}

TEST_F(PublishPathsTest, TheOutputMayNotTakeThePlaceOfTheBaseline) {
    options_.diagnostics.baseline = folder_.write("out/m.dita_tmp", "{}");
    EXPECT_EQ(fault(), "--baseline: the run would overwrite or remove " +
                           folder_.file("out/m.dita_tmp") + "; choose another output");
}

TEST_F(PublishPathsTest, TheOutputsNameMustLeaveRoomForASuffix) {
    EXPECT_EQ(faultWithOutput("out/" + std::string(251, 'n')), "");
    for (const std::size_t length : {252U, 300U}) {
        const std::string found = faultWithOutput("out/" + std::string(length, 'n'));
        EXPECT_EQ(found, "--output: " + options_.output +
                             ": the name is too long; _tmp must fit behind it");
    }
}

TEST_F(PublishPathsTest, TheOutputOfAFlatBookIsAFolder) {
    options_.format = OutputFormat::kFlatBook;
    for (const char* const name : {"out", "out/", "docs/../out//", "docs"}) {
        EXPECT_EQ(faultWithOutput(name), "") << name;
        EXPECT_TRUE(resolvePublishPaths(options_).output.has_filename()) << name;
    }
    for (const char* const name : {"none", "docs/m.ditamap/out"}) {
        EXPECT_EQ(faultWithOutput(name),
                  "--output: " + folder_.file(name) + ": there is no such folder; create it first");
    }
    EXPECT_EQ(faultWithOutput("docs/f.ditaval"), "--output: " + folder_.file("docs/f.ditaval") +
                                                     " is no folder, and a flat book needs one");
}

TEST_F(PublishPathsTest, NoSourceOfAFlatBookMayHaveANameThatTheRunRemoves) {
    options_.format = OutputFormat::kFlatBook;
    options_.output = folder_.file("out/");
    for (const char* const name : {"out/KeyspaceDoc.ditamap", "out/KeyspaceDoc.ditamap_tmp"}) {
        const PublishOptions good = options_;
        const std::string end =
            ": the run would overwrite or remove " + folder_.file(name) + "; choose another output";
        options_.map = folder_.write(name, "<map/>");
        EXPECT_EQ(fault(), "MAP" + end);
        options_ = good;
        options_.filters = {folder_.file(name)};
        EXPECT_EQ(fault(), "--filter" + end);
        options_ = good;
        options_.catalogs = {folder_.file(name)};
        EXPECT_EQ(fault(), "--catalog" + end);
        options_ = good;
        EXPECT_EQ(fault(), "");
    }
}

TEST_F(PublishPathsTest, TheKeySpaceOfAFlatBookMayNotBeALinkToNothing) {
    options_.format = OutputFormat::kFlatBook;
    options_.output = folder_.file("out");
    fs::create_symlink("none", folder_.path() / "out/KeyspaceDoc.ditamap");
    EXPECT_EQ(fault(), "--output: " + options_.output + kInTheWay);
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
    options_.filters = {folder_.write("\xE4.ditaval", "<val/>")};
    EXPECT_EQ(fault(), "--filter: the path is not UTF-8");
    options_ = good;
    options_.compositeDtd = "\xFF";
    EXPECT_EQ(fault(), "--composite-dtd: the text is not UTF-8");
    options_ = good;
    options_.keySpaceDtd = "\xFF";
    EXPECT_EQ(fault(), "--keyspace-dtd: the text is not UTF-8");
}

TEST_F(PublishPathsTest, OnlyACompositeOfAnEarlierRunIsReplaced) {
    folder_.write("out/m.dita", kCompositeDoctype + "<dita><!-- no topic --></dita>");
    EXPECT_EQ(fault(), "--output: " + options_.output +
                           " is there already, and no composite of an earlier run: the run would "
                           "delete it; choose another output");
}

}  // namespace
}  // namespace marrowpress
