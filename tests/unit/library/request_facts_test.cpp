#include "library/request_facts.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

constexpr const char* kCompositeRequest =
    R"({"type":"PublishComp","params":{"ditamap":"/w/a/../m.ditamap","output":"/o\\x.dita",)"
    R"("ditaVal":""}})";
constexpr const char* kFlatBookRequest =
    R"({"type":"PublishFlatBookX","params":{"ditamap":"/w/m.ditamap","outputDir":"/o",)"
    R"("generateQSComponentsAtOneLoc":true,"ditaVal":"/w/p.ditaval"}})";

TEST(RequestFactsTest, PathsAreAbsoluteAndNormal) {
    const RequestFacts facts = factsOf(kCompositeRequest);
    EXPECT_EQ(facts.map, "/w/m.ditamap");
    EXPECT_EQ(facts.output, "/o/x.dita");
    EXPECT_EQ(facts.filter, "");
    EXPECT_FALSE(facts.isFlatBook);
    EXPECT_EQ(factsOf(R"({"type":"PublishComp","params":{"ditamap":"m.ditamap"}})").map,
              std::filesystem::current_path() / "m.ditamap");
}

TEST(RequestFactsTest, AFlatBookHasAFolder) {
    const RequestFacts facts = factsOf(kFlatBookRequest);
    EXPECT_TRUE(facts.isFlatBook);
    EXPECT_TRUE(facts.isAtOneLocation);
    EXPECT_EQ(facts.output, "/o");
    EXPECT_EQ(facts.filter, "/w/p.ditaval");
}

TEST(RequestFactsTest, WhatIsNoRequestHasNone) {
    for (const char* const text : {"", "[]", "{}", "{\"type\":1,\"params\":{}}",
                                   "{\"type\":\"PublishComp\",\"params\":[]}", "{\"type\":"}) {
        EXPECT_EQ(factsOf(text).map, "") << text;
        EXPECT_EQ(movedInto("/s", text), text);
    }
    EXPECT_EQ(factsOf(R"({"type":"PublishComp","params":{"ditamap":7}})").map, "");
}

TEST(RequestFactsTest, ATrialWritesIntoItsFolder) {
    const RequestFacts composite = factsOf(movedInto("/s", kCompositeRequest));
    EXPECT_EQ(composite.output, "/s/composite.dita");
    EXPECT_EQ(composite.map, "/w/m.ditamap");
    const RequestFacts book = factsOf(movedInto("/s", kFlatBookRequest));
    EXPECT_EQ(book.output, "/s");
    EXPECT_TRUE(book.isAtOneLocation);
}

}  // namespace
}  // namespace marrowpress
