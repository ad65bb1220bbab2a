#include "cli/xml_pieces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace marrowpress {
namespace {

/// A source that gives `text`, at most `step` bytes at a time.
XmlPieces::Source inSteps(const std::string& text, std::size_t step) {
    return [text, step, at = std::size_t{0}](char* into, std::size_t most) mutable {
        const std::size_t size = std::min({step, most, text.size() - at});
        text.copy(into, size, at);
        at += size;
        return size;
    };
}

struct Pieces {
    std::string all;
    std::vector<std::string> tags;
};

Pieces cut(const std::string& text, std::size_t step) {
    Pieces pieces;
    XmlPieces source(inSteps(text, step));
    while (const std::optional<XmlPiece> piece = source.next()) {
        EXPECT_FALSE(piece->bytes.empty());
        pieces.all += piece->bytes;
        if (piece->isStartTag) {
            pieces.tags.emplace_back(piece->bytes);
        }
    }
    return pieces;
}

struct PiecesCase {
    std::string text;
    std::vector<std::string> tags;
};

class XmlPiecesTest : public testing::TestWithParam<PiecesCase> {};

TEST_P(XmlPiecesTest, AreTheStartTagsAndAllBytesBetween) {
    for (const std::size_t step :
         {std::size_t{1}, std::size_t{2}, std::size_t{7}, std::size_t{1000000}}) {
        const Pieces pieces = cut(GetParam().text, step);
        EXPECT_EQ(pieces.all, GetParam().text) << step;
        EXPECT_EQ(pieces.tags, GetParam().tags) << step;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Documents, XmlPiecesTest,
    testing::Values(
        PiecesCase{"", {}}, PiecesCase{"text", {}}, PiecesCase{"<a/>", {"<a/>"}},
        PiecesCase{"\xEF\xBB\xBF<?xml version=\"1.0\"?>\r\n<a>x<b/>y</a>\r\n", {"<a>", "<b/>"}},
        PiecesCase{"<a b='>' c=\"'>\" d = '\"'>&gt;</a >", {"<a b='>' c=\"'>\" d = '\"'>"}},
        PiecesCase{"<a\n\tb='1'\n/>", {"<a\n\tb='1'\n/>"}},
        PiecesCase{"<a><!-- <b/> > ' -- \" --><c/></a>", {"<a>", "<c/>"}},
        PiecesCase{"<a><!--> --><c/><!----><d/></a>", {"<a>", "<c/>", "<d/>"}},
        PiecesCase{"<a><![CDATA[<b href='/x'>]] ]>]]]><c/></a>", {"<a>", "<c/>"}},
        PiecesCase{"<a><?Qs <b/> ' ? > ?><c/></a>", {"<a>", "<c/>"}},
        PiecesCase{"<!DOCTYPE a PUBLIC \"-//x>//\" '[\">'><a/>", {"<a/>"}},
        PiecesCase{
            "<!DOCTYPE a [<!ENTITY b \"<c/>]>\"><!-- ' ]> --><?p ' ]> ?><!ATTLIST a b CDATA '>'>]"
            " ><a/>",
            {"<a/>"}},
        PiecesCase{"<!DOCTYPE a><a>'<b>\"</b></a>", {"<a>", "<b>"}}));

INSTANTIATE_TEST_SUITE_P(
    CutOff, XmlPiecesTest,
    testing::Values(PiecesCase{"<", {}}, PiecesCase{"<a", {}}, PiecesCase{"<a b='>", {}},
                    PiecesCase{"<!", {}}, PiecesCase{"<!-", {}}, PiecesCase{"<!-- <a/> --", {}},
                    PiecesCase{"<![CDATA", {}}, PiecesCase{"<![CDATA[<a/>]]", {}},
                    PiecesCase{"<?a <b/>", {}}, PiecesCase{"</a", {}},
                    PiecesCase{"<!DOCTYPE a [<b/>]", {}}, PiecesCase{"<!DOCTYPE a [<!-- ]>", {}},
                    PiecesCase{"<a/><", {"<a/>"}}));

TEST(XmlPiecesWindowTest, TakesTagsAndTextsOfAnyLength) {
    const std::string tag = "<a b='" + std::string(1000000, '>') + "'>";
    const std::string text = "<r>" + std::string(3000000, 'x') + tag + "<!--" +
                             std::string(3000000, '-') + "--></a></r>";
    const Pieces pieces = cut(text, 5000);
    EXPECT_EQ(pieces.tags, (std::vector<std::string>{"<r>", tag}));
    EXPECT_EQ(pieces.all, text);
}

TEST(XmlPiecesWindowTest, GivesLongTextsInPartsOfABlock) {
    for (const std::string& text :
         {std::string(5000000, 'x'), "<!--" + std::string(5000000, 'x') + "-->"}) {
        XmlPieces pieces(inSteps(text, text.size()));
        std::size_t longest = 0;
        while (const std::optional<XmlPiece> piece = pieces.next()) {
            longest = std::max(longest, piece->bytes.size());
        }
        EXPECT_LE(longest, 300000U);
    }
}

TEST(XmlPiecesWindowTest, PassOnWhatTheSourceThrows) {
    XmlPieces pieces([](char*, std::size_t) -> std::size_t { throw std::runtime_error("disk"); });
    EXPECT_THROW(pieces.next(), std::runtime_error);
}

TEST(XmlPiecesWindowTest, TellsEachEndTagOnce) {
    for (const std::size_t step : {std::size_t{1}, std::size_t{1000000}}) {
        XmlPieces source(inSteps("<a><b>x</b ><!-- </c> --><![CDATA[</d>]]><e/></a>", step));
        std::size_t endTags = 0;
        while (const std::optional<XmlPiece> piece = source.next()) {
            endTags += piece->isEndTag ? 1 : 0;
        }
        EXPECT_EQ(endTags, 2U) << step;
    }
}

}  // namespace
}  // namespace marrowpress
