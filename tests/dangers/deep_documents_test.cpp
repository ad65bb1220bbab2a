#include <gtest/gtest.h>

#include "dom/nesting_depth.h"
#include "tests/dangers/danger.h"
#include "tests/support/message_texts.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

/// What is one of the documents of a run, with as many levels of elements as are wanted.
struct DeepDocument {
    const char* name;
    const char* file;
    const char* start;  ///< what stands in front of the levels
    int startLevels;    ///< elements that are open there
    const char* tag;    ///< of each level
    const char* end;
    const char* mapContent;
    std::int32_t status;  ///< where it is too deep
};

const DeepDocument kDeepDocuments[] = {
    {"Map", "root.ditamap", "<map>", 1, "topicgroup", "<topicref href='beside.dita'/></map>", "",
     -42},
    {"NestedMap", "nested.ditamap", "<map>", 1, "topicgroup", "</map>",
     "<mapref href='nested.ditamap' format='ditamap'/>", -42},
    {"Topic", "deep.dita", "<topic id='d'><title>D</title><body>", 2, "p", "</body></topic>",
     "<topicref href='deep.dita'/>", 0},
    {"ConrefTarget", "target.dita", "<topic id='d'><title>D</title><body>", 2, "p",
     "</body></topic>", "<topicref href='uses.dita'/>", 0},
    {"Profile", "p.ditaval", "<val>", 1, "prop", "</val>", "", 0},
};

class DeepDocumentDangerTest : public DangerTest, public testing::WithParamInterface<DeepDocument> {
protected:
    DeepDocumentDangerTest() {
        mostSeconds = 60;
        folder.write("p.ditaval", "<val/>");
        folder.write("uses.dita", topic("uses", "<body><p conref='target.dita#d/none'/></body>"));
        writeMap(GetParam().mapContent);
    }

    /// Publishes with the document so deep.
    std::int32_t publishWith(std::size_t levels) {
        const DeepDocument& document = GetParam();
        const std::string tag = document.tag;
        const std::string start = withClasses("<" + tag + ">");
        const std::string end = "</" + tag + ">";
        std::string text = withClasses(document.start);
        const std::size_t more = levels - document.startLevels;
        for (std::size_t level = 0; level < more; ++level) {
            text += start;
        }
        for (std::size_t level = 0; level < more; ++level) {
            text += end;
        }
        folder.write(document.file, text + withClasses(document.end));
        boost::json::object params = composite();
        params["ditaVal"] = folder.file("p.ditaval");
        return publish(params);
    }
};

TEST_P(DeepDocumentDangerTest, IsReadUpToTheLimit) {
    // What becomes part of the output gets one level more there.
    for (const std::size_t levels : {std::size_t{10}, std::size_t{1000}, kDeepestNesting - 1}) {
        EXPECT_EQ(publishWith(levels), 0) << levels << console;
        EXPECT_EQ(console.find(cannotRead("$F/" + std::string(GetParam().file))), std::string::npos)
            << levels;
        EXPECT_TRUE(isBesideWhole()) << levels;
    }
}

TEST_P(DeepDocumentDangerTest, IsToldBeyondTheLimit) {
    const std::string told = cannotRead("$F/" + std::string(GetParam().file));
    for (const std::size_t levels :
         {kDeepestNesting + 1, std::size_t{20'000}, std::size_t{100'000}}) {
        EXPECT_EQ(publishWith(levels), GetParam().status) << levels;
        EXPECT_NE(console.find(told), std::string::npos) << levels << console;
        EXPECT_EQ(isBesideWhole(), GetParam().status == 0) << levels;
        EXPECT_TRUE(isTidy()) << levels;
    }
}

/// Topics that are in order by themselves, and add up where the map nests them.
class DeepOutputDangerTest : public DangerTest {};

TEST_F(DeepOutputDangerTest, IsToldWhereNoDocumentIsTooDeepByItself) {
    const auto write = [&](const std::string& name, std::size_t levels) {
        folder.write(name + ".dita",
                     topic(name, "<body>" + nestedElements(levels - 2) + "</body>"));
    };
    write("whole", kDeepestNesting);
    write("half", kDeepestNesting / 2);
    const std::string half = "<topicref href='half.dita'>";
    std::string nested = half;
    std::string ends = "</topicref>";
    for (std::size_t level = 0; level < kDeepestNesting / 2; ++level) {
        nested += "<topicref href='beside.dita'>";
        ends += "</topicref>";
    }
    nested += "<topicref href='half.dita'/>" + ends;
    for (const std::string& content : {reference("topicref", "whole.dita"), nested}) {
        writeMap(content);
        EXPECT_EQ(publish(), 0);
        EXPECT_EQ(console, cannotWrite("$F/out/book.dita"));
        EXPECT_TRUE(isTidy());
    }
}

INSTANTIATE_TEST_SUITE_P(As, DeepDocumentDangerTest, testing::ValuesIn(kDeepDocuments),
                         [](const auto& document) { return std::string(document.param.name); });

}  // namespace
}  // namespace marrowpress
