#include "cli/request_files.h"

#include <gtest/gtest.h>

#include "tests/support/current_folder.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

using Lines = std::vector<std::string>;

/// Each file as a line: its name, a blank, its path.
Lines filesOf(const std::string& text) {
    Lines lines;
    for (const RequestFile& file : filesOfRequest(text)) {
        lines.push_back(file.name + " " + file.path.string());
    }
    return lines;
}

TEST(RequestFilesTest, OfACompositeAreItsSourcesAndWhatItMakes) {
    EXPECT_EQ(
        filesOf(R"({"type":"PublishComp","params":{"ditamap":"/a/../m.ditamap",)"
                R"("output":"\\o\\c.dita","ditaVal":"","usePrint":false}})"),
        (Lines{"\"ditamap\" /m.ditamap", "\"ditamap\" /a/../m.ditamap", "\"output\" /o/c.dita",
               "a temporary file /o/c.dita_tmp", "a temporary file /o/KeyspaceDoc.ditamap",
               "a temporary file /o/KeyspaceDoc.ditamap_tmp"}));
}

TEST(RequestFilesTest, OfAFlatBookHaveNoOutputButItsKeySpaceDocument) {
    EXPECT_EQ(filesOf(R"({"type":"PublishFlatBook","params":{"outputDir":"/o/"}})"),
              (Lines{"a temporary file /o/KeyspaceDoc.ditamap",
                     "a temporary file /o/KeyspaceDoc.ditamap_tmp"}));
}

TEST(RequestFilesTest, AProfileIsMeantByBothReadingsOfItsPath) {
    EXPECT_EQ(filesOf(R"({"params":{"ditaVal":"/a\\b"}})"),
              (Lines{"\"ditaVal\" /a/b", "\"ditaVal\" /a\\b"}));
}

TEST(RequestFilesTest, RelativePathsAreSeenFromTheCurrentFolder) {
    const TemporaryFolder folder;
    const CurrentFolder current(folder.path());
    EXPECT_EQ(filesOf(R"({"params":{"ditamap":"m"}})").front(), "\"ditamap\" " + folder.file("m"));
}

TEST(RequestFilesTest, SourcesAreNotMade) {
    for (const RequestFile& file : filesOfRequest(
             R"({"params":{"ditamap":"/m","ditaVal":"/v","output":"/o/c","outputDir":"/d"}})")) {
        const bool isSource = file.path == "/m" || file.path == "/v";
        EXPECT_EQ(file.isMade, !isSource) << file.path;
    }
}

TEST(RequestFilesTest, ATextIsReadUpToItsFirstNul) {
    const std::string text = R"({"params":{"ditamap":"/m"}})";
    EXPECT_EQ(filesOf(text + '\0' + "x"), filesOf(text));
    EXPECT_EQ(filesOf(text).size(), 2U);
}

TEST(RequestFilesTest, WhatIsNoRequestNamesNone) {
    for (const char* const text : {"", "{", "[]", "7", "{}", R"({"params":7})",
                                   R"({"params":{"ditamap":7,"output":"","outputDir":null}})"}) {
        EXPECT_EQ(filesOf(text), Lines{}) << text;
    }
}

}  // namespace
}  // namespace marrowpress
