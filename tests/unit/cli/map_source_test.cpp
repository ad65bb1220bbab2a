#include "cli/map_source.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class ReadMapElementsTest : public testing::Test {
protected:
    /// "depth line:column name" of each element.
    std::vector<std::string> read(const std::string& text) {
        path = folder.write("m.ditamap", text);
        std::vector<std::string> lines;
        for (const MapElement& element : readMapElements(path)) {
            EXPECT_EQ(element.place.file, path);
            lines.push_back(std::to_string(element.depth) + " " +
                            std::to_string(element.place.line) + ":" +
                            std::to_string(element.place.column) + " " + element.tagName);
        }
        return lines;
    }

    TemporaryFolder folder;
    std::string path;
};

using Lines = std::vector<std::string>;

TEST_F(ReadMapElementsTest, TellsWhereEachTagStandsAndHowDeep) {
    EXPECT_EQ(read("\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<!DOCTYPE map [<!ENTITY a \"<b/>\">]>\n"
                   "<map><!-- <c> -->\n  <d>ü𝄞<e/></d ><f\n g='>'>x</f></map>"),
              (Lines{"0 3:1 map", "1 4:3 d", "2 4:9 e", "1 4:18 f"}));
}

TEST_F(ReadMapElementsTest, KnowsAttributesAndTheTextOfNavtitles) {
    read(
        "<map><topicref href='a&amp;b' navtitle=''><topicmeta><navtitle>A &lt; B</navtitle>tail"
        "</topicmeta></topicref></map>");
    const std::vector<MapElement> elements = readMapElements(path);
    ASSERT_EQ(elements.size(), 4U);
    EXPECT_EQ(elements[1].attribute("href"), "a&b");
    EXPECT_EQ(elements[1].attribute("navtitle"), "");
    EXPECT_EQ(elements[1].attribute("keys"), "");
    EXPECT_EQ(elements[3].text, "A < B");
    EXPECT_EQ(elements[2].text, "");
}

TEST_F(ReadMapElementsTest, GivesNothingOfWhatCannotBeRead) {
    EXPECT_EQ(read(""), Lines{});
    EXPECT_EQ(read(std::string("<map>\0</map>", 12)), Lines{});
    EXPECT_TRUE(readMapElements(folder.file("none")).empty());
    EXPECT_TRUE(readMapElements(folder.path().string()).empty());
}

TEST_F(ReadMapElementsTest, TakesAMapThatBreaksOff) {
    EXPECT_EQ(read("</x><map><a><b"), (Lines{"0 1:5 map", "1 1:10 a"}));
}

}  // namespace
}  // namespace marrowpress
