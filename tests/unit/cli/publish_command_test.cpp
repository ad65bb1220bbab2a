#include "cli/publish_command.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

TEST(PublishRequestTest, HoldsEveryParameter) {
    PublishOptions options;
    options.compositeDtd = "c.dtd";
    options.keySpaceDtd = "k.dtd";
    options.isForPrint = true;
    EXPECT_EQ(buildRequest(options, {"/a/\"m\".ditamap", "/o/ä.dita", {}}, "/f.ditaval"),
              R"({"type":"PublishComp","params":{"ditamap":"/a/\"m\".ditamap",)"
              R"("output":"/o/ä.dita","ditaVal":"/f.ditaval","keyspaceDocDtd":"k.dtd",)"
              R"("compositeDocDtd":"c.dtd","usePrint":true}})");
}

TEST(PublishRequestTest, SaysThatThereIsNoFilter) {
    EXPECT_EQ(buildRequest({}, {"/m", "/o", {}}, std::nullopt),
              R"({"type":"PublishComp","params":{"ditamap":"/m","output":"/o","ditaVal":"",)"
              R"("keyspaceDocDtd":"map.dtd","compositeDocDtd":"ditabase.dtd","usePrint":false}})");
}

TEST(PublishRequestTest, AsksForAFlatBook) {
    PublishOptions options;
    options.format = OutputFormat::kFlatBook;
    const std::string start =
        R"({"type":"PublishFlatBook","params":{"ditamap":"/m","outputDir":"/o",)"
        R"("generateQSComponentsAtOneLoc":)";
    const std::string end = R"(,"ditaVal":"","keyspaceDocDtd":"map.dtd",)"
                            R"("compositeDocDtd":"ditabase.dtd","usePrint":false}})";
    EXPECT_EQ(buildRequest(options, {"/m", "/o", {}}, std::nullopt), start + "false" + end);
    options.isAtOneLocation = true;
    EXPECT_EQ(buildRequest(options, {"/m", "/o", {}}, std::nullopt), start + "true" + end);
}

TEST(MissingFileTest, IsTheFirstThatIsNoFile) {
    const TemporaryFolder folder;
    const std::string there = folder.write("a.qs", "");
    EXPECT_EQ(findMissingFile({}), std::nullopt);
    EXPECT_EQ(findMissingFile({there, there}), std::nullopt);
    const std::string end = " was not written";
    EXPECT_EQ(findMissingFile({there, folder.file("b.qs"), folder.file("c.qs")}),
              "the run ended, but " + folder.file("b.qs") + end);
    EXPECT_EQ(findMissingFile({folder.path().string()}),
              "the run ended, but " + folder.path().string() + end);
}

}  // namespace
}  // namespace marrowpress
