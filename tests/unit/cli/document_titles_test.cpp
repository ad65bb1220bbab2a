#include "cli/document_titles.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class TitleOfDocumentTest : public testing::Test {
protected:
    std::string titleOf(const std::string& text, const std::string& id = {}) const {
        return titleOfDocument(folder.write("t.dita", text), id);
    }

    TemporaryFolder folder;
};

TEST_F(TitleOfDocumentTest, IsItsTextWithOneBlankForEachWhiteSpace) {
    EXPECT_EQ(titleOf("<t id='a'><title> A\n  <b>bold</b><!-- no --> one<![CDATA[ <x> ]]></title>"
                      "<title>B</title></t>"),
              "A bold one <x>");
    EXPECT_EQ(titleOf("<b><booktitle><mainbooktitle>Book</mainbooktitle></booktitle></b>"), "Book");
    EXPECT_EQ(titleOf("<g><glossterm>Term</glossterm></g>"), "Term");
}

TEST_F(TitleOfDocumentTest, IsThatOfTheTopicThatIsMeant) {
    const std::string text =
        "<dita><topic id='a'><title>A</title></topic><topic id='b'><title>B</title></topic></dita>";
    EXPECT_EQ(titleOf(text), "A");
    EXPECT_EQ(titleOf(text, "b"), "B");
    EXPECT_EQ(titleOf(text, "c"), "");
}

TEST_F(TitleOfDocumentTest, IsEmptyWhereThereIsNone) {
    EXPECT_EQ(titleOf("<t><title/></t>"), "");
    EXPECT_EQ(titleOf("<t><p>Text</p></t>"), "");
    EXPECT_EQ(titleOf("no document"), "");
    EXPECT_EQ(titleOfDocument(folder.file("none.dita")), "");
    EXPECT_EQ(titleOfDocument(folder.path().string()), "");
}

TEST_F(TitleOfDocumentTest, ALongOneIsCutAtACharacter) {
    std::string text;
    for (int count = 0; count < 200; ++count) {
        text += "ü";
    }
    const std::string title = titleOf("<t><title>x" + text + "</title></t>");
    EXPECT_EQ(title.size(), 162U);
    EXPECT_TRUE(title.ends_with("ü..."));
}

TEST_F(TitleOfDocumentTest, AKeyIsShownByItsName) {
    EXPECT_EQ(
        titleOf("<t><title>The <keyword keyref='product'/> and <ph keyref='k'>x</ph></title></t>"),
        "The [product] and x");
}

TEST_F(TitleOfDocumentTest, WhatTheProfileTakesIsNotThere) {
    const std::vector<ExcludedElement> leftOut{{{"t.dita", 1, 1}, "ph", "audience", "b", {}}};
    const std::string path = folder.write(
        "t.dita",
        "<t><title><ph audience='a'>One</ph><ph audience='b'>Two<b>x</b></ph> end</title></t>");
    EXPECT_EQ(titleOfDocument(path, {}, leftOut), "One end");
}

TEST_F(TitleOfDocumentTest, ReadsNoOtherFile) {
    folder.write("e.txt", "secret");
    EXPECT_EQ(titleOf("<!DOCTYPE t [<!ENTITY e SYSTEM 'e.txt'>]><t><title>A &e;</title></t>"), "A");
}

}  // namespace
}  // namespace marrowpress
