#include <filesystem>

#include "tests/unit/references/conref_samples.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

std::string number(std::size_t value) {
    return std::to_string(value);
}

/// `texts` one in the other: the first is outermost, each in a "ph", with `innermost` in the last.
std::string nested(const std::vector<std::string>& texts, const std::string& innermost) {
    std::string xml;
    for (const std::string& text : texts) {
        xml += "<ph>" + text;
    }
    xml += innermost;
    for (std::size_t level = 0; level < texts.size(); ++level) {
        xml += "</ph>";
    }
    return xml;
}

/// The texts of the elements of a cycle, in the order in which they are reached.
std::vector<std::string> textsOfCycle(std::size_t length) {
    std::vector<std::string> texts;
    for (std::size_t index = 1; index <= length; ++index) {
        texts.push_back("text " + number(index));
    }
    return texts;
}

/// Cycles of elements that each hold a reference to the next one; the last one's leads to the
/// first, or, in the finite neighbour, nowhere.
class ConrefCycleTest : public ConrefTest, public testing::WithParamInterface<std::size_t> {
protected:
    /// The element of that index; its reference has the attributes `reference`.
    static std::string element(std::size_t index, const std::string& reference) {
        return "<ph id='e" + number(index) + "'>text " + number(index) + "<ph " + reference +
               ">own</ph></ph>";
    }

    std::size_t behind(std::size_t index) const { return index % GetParam() + 1; }

    void writeCycle(const std::string& referenceOfTheLast) const {
        for (std::size_t index = 1; index <= GetParam(); ++index) {
            const std::string next = number(behind(index));
            write("f" + number(index) + ".dita",
                  element(index, index == GetParam()
                                     ? referenceOfTheLast
                                     : "conref='f" + next + ".dita#t/e" + next + "'"));
        }
    }

    const std::string expected_ = nested(textsOfCycle(GetParam()), "<ph>own</ph>");
};

TEST_P(ConrefCycleTest, InOneDocumentIsCutOnce) {
    std::string cycle;
    for (std::size_t index = 1; index <= GetParam(); ++index) {
        cycle += element(index, "conref='#t/e" + number(behind(index)) + "'");
    }
    const std::string result = resolved("<ph conref='#t/e1'/>" + cycle);
    EXPECT_EQ(result.substr(0, expected_.size()), expected_);
    EXPECT_EQ(console(), notFound("ph", "e1", "d.dita"));
}

TEST_P(ConrefCycleTest, AcrossFilesIsCutOnce) {
    writeCycle("conref='f1.dita#t/e1'");
    EXPECT_EQ(resolved("<ph conref='f1.dita#t/e1'/>"), expected_);
    EXPECT_EQ(console(), notFound("ph", "e1", "f1.dita"));
}

TEST_P(ConrefCycleTest, AcrossFilesIsCutOnceForEachReferenceFromOutside) {
    writeCycle("conref='f1.dita#t/e1'");
    EXPECT_EQ(resolved("<ph conref='f1.dita#t/e1'/><ph conref='f1.dita#t/e1'/>"),
              expected_ + expected_);
    EXPECT_EQ(console(), notFound("ph", "e1", "f1.dita") + notFound("ph", "e1", "f1.dita"));
}

TEST_P(ConrefCycleTest, ByKeysIsCutOnce) {
    std::string definitions;
    for (std::size_t index = 1; index <= GetParam(); ++index) {
        const std::string next = number(behind(index));
        write("f" + number(index) + ".dita",
              element(index, "conkeyref='k" + next + "/e" + next + "'"));
        definitions += "<keydef keys='k" + number(index) + "' href='" +
                       folder.file("f" + number(index) + ".dita") + "'/>";
    }
    defineKeys(definitions);
    EXPECT_EQ(resolved("<ph conref='f1.dita#t/e1'/>"), expected_);
    EXPECT_EQ(console(), notFound("ph", "e1", "f1.dita"));
}

TEST_P(ConrefCycleTest, ByPathsThroughTheDocumentItselfIsCutOnceForEachReference) {
    std::string cycle = "<ph conref='#t/e1'>start</ph>";
    for (std::size_t index = 1; index <= GetParam(); ++index) {
        cycle += element(index, "conref='d.dita#t/e" + number(behind(index)) + "'");
    }
    write("d.dita", cycle);
    const std::string result = resolved(cycle);
    // The first element is the walked document's, the others are the stored one's; the reference
    // of the last one leads to the stored first element, which is another than the walked one.
    std::vector<std::string> texts{"text 1"};
    for (std::size_t index = 1; index <= GetParam(); ++index) {
        texts.push_back("text " + number(behind(index)));
    }
    const std::string first = nested(texts, "<ph>own</ph>");
    EXPECT_EQ(result.substr(0, first.size()), first);
    std::string cuts = notFound("ph", "e" + number(behind(1)), "d.dita");
    for (std::size_t index = 1; index <= GetParam(); ++index) {
        cuts += notFound("ph", "e" + number(behind(index)), "d.dita");
    }
    EXPECT_EQ(console(), cuts);
}

TEST_P(ConrefCycleTest, WithoutTheLastReferenceNothingIsCut) {
    writeCycle("audience='last'");
    EXPECT_EQ(resolved("<ph conref='f1.dita#t/e1'/>"),
              nested(textsOfCycle(GetParam()), "<ph audience='last'>own</ph>"));
    EXPECT_EQ(console(), "");
}

TEST_P(ConrefCycleTest, WithAWayOutTheWayOutIsTaken) {
    writeCycle("conref='out.dita#t/e1'");
    write("out.dita", "<ph id='e1'>out</ph>");
    EXPECT_EQ(resolved("<ph conref='f1.dita#t/e1'/>"),
              nested(textsOfCycle(GetParam()), "<ph>out</ph>"));
    EXPECT_EQ(console(), "");
}

INSTANTIATE_TEST_SUITE_P(OfLength, ConrefCycleTest, testing::Values(1, 2, 3, 5),
                         testing::PrintToStringParamName());

using ConrefRangeCycleTest = ConrefTest;

constexpr const char* kRange = "conref='x.dita#t/a' conrefend='x.dita#t/c'";

TEST_F(ConrefRangeCycleTest, AnotherFilesRangeThatHoldsItselfIsCutOnce) {
    write("x.dita",
          "<p id='a'>A</p>1<p id='b' conref='#t/a' conrefend='#t/c'>B</p>2<p id='c'>C</p>");
    EXPECT_EQ(resolved("<p " + std::string(kRange) + "/>"),
              "<p>A</p>1<p>A</p>1<p>B</p>2<p>C</p>2<p>C</p>");
    EXPECT_EQ(console(), notFound("p", "a", "x.dita"));
}

TEST_F(ConrefRangeCycleTest, OwnRangeByPathIsCutOnce) {
    const std::string content =
        "<p id='a'>A</p><p id='b' conref='d.dita#t/a' conrefend='d.dita#t/c'>B</p><p id='c'>C</p>";
    write("d.dita", content);
    EXPECT_EQ(resolved(content),
              "<p id='a'>A</p><p id='b'>A</p><p>A</p><p>B</p><p>C</p><p>C</p><p id='c'>C</p>");
    EXPECT_EQ(console(), notFound("p", "a", "d.dita"));
}

TEST_F(ConrefRangeCycleTest, RangeWhoseMemberHoldsItIsCutOnce) {
    write("x.dita", "<p id='a'>A</p><p id='c'>C<p conref='#t/a' conrefend='#t/c'>own</p></p>");
    EXPECT_EQ(resolved("<p " + std::string(kRange) + "/>"),
              "<p>A</p><p>C<p>A</p><p>C<p>own</p></p></p>");
    EXPECT_EQ(console(), notFound("p", "a", "x.dita"));
}

TEST_F(ConrefRangeCycleTest, RangeWhoseStartHoldsItIsCutOnce) {
    write("x.dita", "<p id='a'>A<p conref='#t/a' conrefend='#t/c'>own</p></p><p id='c'>C</p>");
    EXPECT_EQ(resolved("<p " + std::string(kRange) + "/>"), "<p>A<p>own</p></p><p>C</p>");
    EXPECT_EQ(console(), notFound("p", "a", "x.dita"));
}

TEST_F(ConrefRangeCycleTest, RangesOfTwoFilesThatEndInEachOtherAreCutOnce) {
    write("x.dita", "<p id='a'>A</p><p id='c' conref='y.dita#t/a' conrefend='y.dita#t/c'>C</p>");
    write("y.dita", "<p id='a'>a</p><p id='c' conref='x.dita#t/a' conrefend='x.dita#t/c'>c</p>");
    EXPECT_EQ(resolved("<p " + std::string(kRange) + "/>"), "<p>A</p><p>a</p><p>A</p><p>C</p>");
    EXPECT_EQ(console(), notFound("p", "a", "y.dita"));
}

TEST_F(ConrefRangeCycleTest, RangeThatHoldsItselfByAKeyIsCutOnce) {
    defineKeys("<keydef keys='k' href='" + folder.file("x.dita") + "'/>");
    write("x.dita",
          "<p id='a'>A</p><p id='b' conkeyref='k/a' conrefend='#t/c'>B</p><p id='c'>C</p>");
    EXPECT_EQ(resolved("<p " + std::string(kRange) + "/>"),
              "<p>A</p><p>A</p><p>B</p><p>C</p><p>C</p>");
    EXPECT_EQ(console(), notFound("p", "a", "x.dita"));
}

TEST_F(ConrefRangeCycleTest, MemberThatRefersToItselfIsNot) {
    write("x.dita", "<p id='a'>A</p><p id='b' conref='#t/b'>B</p><p id='c'>C</p>");
    // Its copy gets the content, and with it the reference, which it has passed.
    EXPECT_EQ(resolved("<p " + std::string(kRange) + "/>"),
              "<p>A</p><p conref='$D/x.dita#t/b'>B</p><p>C</p>");
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefRangeCycleTest, MemberThatRefersToTheStartAloneIsNot) {
    write("x.dita", "<p id='a'>A</p><p id='b' conref='#t/a'>B</p><p id='c'>C</p>");
    EXPECT_EQ(resolved("<p " + std::string(kRange) + "/>"), "<p>A</p><p>A</p><p>C</p>");
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefRangeCycleTest, RangesInsideRangesAreNotWhenNoneHoldsItself) {
    write("x.dita", "<p id='a'>A</p><p id='c' conref='y.dita#t/a' conrefend='y.dita#t/c'>C</p>");
    write("y.dita", "<p id='a'>a</p><p id='c' conref='x.dita#t/a' conrefend='x.dita#t/a'>c</p>");
    EXPECT_EQ(resolved("<p " + std::string(kRange) + "/>"), "<p>A</p><p>a</p><p>A</p>");
    EXPECT_EQ(console(), "");
}

using ConrefCopiesTest = ConrefTest;

TEST_F(ConrefCopiesTest, OneTargetMayBeCopiedEverMoreOften) {
    constexpr std::size_t kLevels = 8;
    std::string content;
    std::string expected = "<ph>leaf</ph>";
    for (std::size_t level = 1; level < kLevels; ++level) {
        const std::string reference = "<ph conref='#t/e" + number(level + 1) + "'/>";
        content += "<ph id='e" + number(level) + "'>" + reference + reference + "</ph>";
        expected = "<ph>" + expected + expected + "</ph>";
    }
    content += "<ph id='e" + number(kLevels) + "'>leaf</ph>";
    write("x.dita", content);
    EXPECT_EQ(resolved("<ph conref='x.dita#t/e1'/>"), expected);
    EXPECT_EQ(resolved("<ph conref='#t/e1'/>" + content).substr(0, expected.size()), expected);
    EXPECT_EQ(console(), "");
}

TEST_F(ConrefCopiesTest, AChainMayBeLong) {
    constexpr std::size_t kLength = 200;
    std::string content;
    std::string expected = "<ph>end</ph>";
    for (std::size_t index = 1; index < kLength; ++index) {
        content +=
            "<ph id='e" + number(index) + "'><ph conref='#t/e" + number(index + 1) + "'/></ph>";
        expected = "<ph>" + expected + "</ph>";
    }
    write("x.dita", content + "<ph id='e" + number(kLength) + "'>end</ph>");
    EXPECT_EQ(resolved("<ph conref='x.dita#t/e1'/>"), expected);
    EXPECT_EQ(console(), "");
}

// The chain goes on below ever longer paths, until the system refuses to follow the link.
TEST_F(ConrefCopiesTest, AFileThatIsReachedByEverLongerPathsEndsWhereItCannotBeRead) {
    write("x.dita", "<ph id='e'>x<ph conref='loop/x.dita#t/e'/></ph>");
    fs::create_directory_symlink(folder.path(), folder.path() / "loop");
    const std::string result = resolved("<ph conref='x.dita#t/e'/>");
    std::size_t copies = 0;
    for (std::size_t at = result.find('x'); at == result.find("x<ph", at); ++copies) {
        at = result.find('x', at + 1);
    }
    EXPECT_GT(copies, 30U);
    ASSERT_EQ(host.console().size(), 1U);
    const std::string line = cannotRead("$D/loop/loop/");
    EXPECT_TRUE(console().starts_with(line.substr(0, line.find('\r'))));
}

// What a key gives is no copy of anything that was followed, and leads back all the same.
TEST_F(ConrefCopiesTest, AReferenceThatAKeyGivesEachTimeAnewIsCut) {
    write("x.dita", "<ph id='e'>x<ph keyref='k'/></ph>");
    defineKeys("<keydef keys='k'><topicmeta><linktext><ph conref='" + folder.file("x.dita") +
               "#t/e'>own</ph></linktext></topicmeta></keydef>");
    resolved("<ph conref='x.dita#t/e'/>");
    EXPECT_EQ(console(), notFound("ph", "e", "x.dita"));
}

TEST_F(ConrefCopiesTest, AReferenceDeepInWhatAKeyGivesEachTimeAnewIsCut) {
    write("x.dita", "<ph id='e'>x<b><ph keyref='k'/></b></ph>");
    defineKeys("<keydef keys='k'><topicmeta><linktext><i><u><ph conref='" + folder.file("x.dita") +
               "#t/e'>own</ph></u></i></linktext></topicmeta></keydef>");
    resolved("<ph conref='x.dita#t/e'/>");
    EXPECT_EQ(console(), notFound("ph", "e", "x.dita"));
}

// Each part may nest as deep as a file may; copying what they come to together is recursive.
TEST_F(ConrefCopiesTest, CopiesThatNestDeeperAndDeeperDoNotEndTheProgram) {
    constexpr std::size_t kParts = 25;
    std::string content;
    for (std::size_t part = 1; part <= kParts; ++part) {
        const std::string next = number(part + 1);
        content += "<p id='e" + number(part) + "'>" +
                   nestedElements(4000, "<p conref='#t/e" + next + "'/>") + "</p>";
    }
    write("x.dita", content + "<p id='e" + number(kParts + 1) + "'/>");
    const ParsedXml document =
        parse(topicOf("<p id='deep' conref='x.dita#t/e1'/><p id='copy' conref='#t/deep'/>"));
    resolve(document);
    EXPECT_FALSE(document.byId("copy")->hasAttribute(u"conref"));
}

TEST_F(ConrefCopiesTest, AStartThatNestsTooDeeplyIsReportedAndTheElementKeepsItsContent) {
    const std::string result =
        resolved("<p conref='#t/deep'>own</p><p id='deep'>" + nestedElements(5000) + "</p>");
    EXPECT_EQ(result.substr(0, result.find("<ph>")), "<p>own</p><p id='deep'>");
    EXPECT_EQ(console(), notFound("p", "deep", "d.dita"));
}

TEST_F(ConrefCopiesTest, ContentThatNestsTooDeeplyOnlyWhereItIsToStandIsReportedToo) {
    const std::string around = nestedElements(3000, "<p conref='#t/deep'>own</p>");
    const std::string deep = "<p id='deep'>" + nestedElements(3000) + "</p>";
    const std::string result = resolved(around + deep);
    EXPECT_NE(result.find("<p>own</p>"), std::string::npos);
    EXPECT_EQ(console(), notFound("p", "deep", "d.dita"));
}

TEST_F(ConrefCopiesTest, AMemberOfARangeThatNestsTooDeeplyIsReportedAndLeftOut) {
    const std::string result =
        resolved("<p conref='#t/a' conrefend='#t/c'/><p id='a'>A</p><p id='deep'>" +
                 nestedElements(5000) + "</p><p id='c'>C</p>");
    EXPECT_EQ(result.substr(0, result.find("<ph>")),
              "<p>A</p><p>C</p><p id='a'>A</p><p id='deep'>");
    EXPECT_EQ(console(), notFound("p", "deep", "d.dita"));
}

}  // namespace
}  // namespace marrowpress
