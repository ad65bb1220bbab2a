#include "cli/publish_request.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace marrowpress
