#include "publish/flat_book_publisher.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/current_folder.h"
#include "tests/support/file_conditions.h"
#include "tests/support/message_texts.h"
#include "tests/support/whole_request.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using FlatBookPublishResultTest = XmlTest;

TEST_F(FlatBookPublishResultTest, AddsThePathsOfItsDocumentsInTheirOrder) {
    const ParsedXml plain("<dita/>", u"/z.qs");
    const ParsedXml uri("<dita/>", u"file:///a/./b//\u00E4 %20\U0001F600.qs");
    const FlatBookPublishResult result({&plain.document(), &uri.document(), &plain.document()});
    EXPECT_EQ(static_cast<std::uint32_t>(result.kind), 1U);
    const TypedValues values = copyTypedValues(publishResultToTypedValues(result).list());
    const std::vector<std::string> paths{"/z.qs", "/a/b/\xC3\xA4 %20\xF0\x9F\x98\x80.qs", "/z.qs"};
    const std::vector<std::int32_t> none;
    EXPECT_EQ(
        values,
        (TypedValues{{1, 0}, {6, std::vector<std::string>()}, {15, none}, {15, none}, {6, paths}}));
}

TEST_F(FlatBookPublishResultTest, WithoutDocumentsAddsAnEmptyList) {
    const HostTypedValues values = publishResultToTypedValues(FlatBookPublishResult({}));
    ASSERT_EQ(values.list().count, 5U);
    EXPECT_EQ(values.list().values[4].type, HostValueType::kStringList);
    EXPECT_EQ(values.list().values[4].value.strings.count, 0U);
    EXPECT_EQ(values.list().values[4].value.strings.strings, nullptr);
}

class FlatBookPublisherTest : public WholeRequestTest {
protected:
    FlatBookPublisherTest() {
        std::filesystem::create_directories(folder.path() / "out");
        for (const char* name : {"a", "b", "c"}) {
            folder.write(std::string(name) + ".dita", topic(name));
        }
        folder.write("root.ditamap", map(topicref("href='a.dita'") + topicref("href='b.dita'") +
                                         topicref("href='c.dita'")));
    }
};

const std::string kSources = "a.dita b.dita c.dita ";
const std::string kInput = kSources + "out root.ditamap ";

TEST_F(FlatBookPublisherTest, HasItsNumber) {
    EXPECT_EQ(static_cast<std::uint32_t>(FlatBookPublisher().publisherId()), 1U);
}

TEST_F(FlatBookPublisherTest, AFailureWhileWritingLeavesWhatWasWritten) {
    folder.write("out/b.qs_tmp/in-the-way.txt", "");
    const TypedValues answer = publishFlatBook(flatBook());
    EXPECT_EQ(status(answer), -42);
    EXPECT_EQ(answer.size(), 4U);
    EXPECT_EQ(written("out/a.qs"),
              "<?Qs BoolCondExpr  State 1?><dita><topic id=\"id-1\"><title/></topic>"
              "<topic id=\"id-2\"><title>a</title></topic></dita>");
    EXPECT_EQ(written("out/b.qs"), "<dita/>");
    EXPECT_EQ(written("out/c.qs"), "<dita/>");
    EXPECT_FALSE(folder.exists("out/KeyspaceDoc.ditamap"));
}

TEST_F(FlatBookPublisherTest, AnOldComponentThatCannotBeReplacedTakesNothingIn) {
    const std::string old = "<dita><topic id=\"old\"><title>Old</title></topic></dita>";
    folder.write("out/b.qs", old);
    namespace fs = std::filesystem;
    fs::permissions(folder.file("out/b.qs"),
                    fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    fs::permissions(folder.path(), fs::perms::all);
    fs::permissions(folder.path() / "out", fs::perms::all);
    TypedValues answer;
    {
        const WithoutRights nobody;
        answer = publishFlatBook(flatBook());
    }
    EXPECT_EQ(status(answer), 0);
    EXPECT_EQ(folder.read("out/b.qs"), old);
    EXPECT_EQ(components(answer), "$F/out/a.qs $F/out/c.qs ");
}

TEST_F(FlatBookPublisherTest, AComponentThatCannotBeWrittenKeepsItsShell) {
    // As deep as a topic can be read; in a component it stands one level deeper.
    folder.write("b.dita", topic("b", "<body><p>" + nestedElements(4997, "x") + "</p></body>"));
    const TypedValues answer = publishFlatBook(flatBook());
    EXPECT_EQ(status(answer), 0);
    EXPECT_EQ(components(answer), "$F/out/a.qs $F/out/b.qs $F/out/c.qs ");
    EXPECT_EQ(console, cannotWrite("$F/out/b.qs"));
    EXPECT_EQ(written("out/b.qs"), "<dita/>");
    EXPECT_NE(written("out/a.qs").find("<title>a</title>"), std::string::npos);
    EXPECT_NE(written("out/c.qs").find("<title>c</title>"), std::string::npos);
    EXPECT_FALSE(folder.exists("out/b.qs_tmp"));
}

TEST_F(FlatBookPublisherTest, NothingHasContentBeforeAllIsAssembled) {
    std::string seen;
    watch = [&](const std::string& line) {
        if (line == appending("c.dita")) {
            seen = written("out/a.qs") + written("out/b.qs") + written("out/c.qs");
        }
    };
    EXPECT_EQ(status(publishFlatBook(flatBook())), 0);
    EXPECT_EQ(seen, "<dita/><dita/><dita/>");
    EXPECT_NE(written("out/a.qs").find("<title>a</title>"), std::string::npos);
}

TEST_F(FlatBookPublisherTest, TheKeySpaceDocumentStandsInTheOutputFolder) {
    for (const bool atOneLocation : {true, false}) {
        bool isThere = false;
        watch = [&](const std::string& line) {
            isThere |= line == appending("a.dita") && folder.exists("out/KeyspaceDoc.ditamap") &&
                       !folder.exists("KeyspaceDoc.ditamap");
        };
        boost::json::object params = flatBook();
        params["generateQSComponentsAtOneLoc"] = atOneLocation;
        EXPECT_EQ(status(publishFlatBook(params)), 0);
        EXPECT_TRUE(isThere);
        EXPECT_FALSE(folder.exists("out/KeyspaceDoc.ditamap"));
    }
}

TEST_F(FlatBookPublisherTest, BesideTheSourcesTheFolderIsForHeadsAlone) {
    boost::json::object params = flatBook();
    params["generateQSComponentsAtOneLoc"] = false;
    folder.write("root.ditamap", map(topichead("navtitle='Head'", topicref("href='b.dita'")) +
                                     topicref("href='a.dita'")));
    EXPECT_EQ(components(publishFlatBook(params)), "$F/out/Head.qs $F/a.qs ");
    EXPECT_EQ(tree(), "a.dita a.qs b.dita c.dita out out/Head.qs root.ditamap ");
}

TEST_F(FlatBookPublisherTest, WhatCannotBeReadBelowAComponentIsLeftOutAlone) {
    folder.write("broken.dita", "<topic");
    folder.write(
        "root.ditamap",
        map(topicref("href='a.dita'", topicref("href='broken.dita'", topicref("href='b.dita'"))) +
            topicref("href='c.dita'")));
    EXPECT_EQ(components(publishFlatBook(flatBook())), "$F/out/a.qs $F/out/c.qs ");
    EXPECT_EQ(console, cannotRead("$F/broken.dita"));
    EXPECT_EQ(written("out/a.qs"),
              "<?Qs BoolCondExpr  State 1?><dita><topic id=\"id-1\"><title/></topic>"
              "<topic id=\"id-2\"><title>a</title><topic id=\"id-3\"><title>b</title></topic>"
              "</topic></dita>");
}

TEST_F(FlatBookPublisherTest, TheOutputOfACompositeIsNotRead) {
    boost::json::object params = flatBook();
    params["output"] = 7;
    EXPECT_EQ(components(publishFlatBook(params)), "$F/out/a.qs $F/out/b.qs $F/out/c.qs ");
}

TEST_F(FlatBookPublisherTest, OldComponentsStayUntilTheyAreWritten) {
    folder.write("out/old.qs", "old");
    folder.write("out/a.qs", "old");
    boost::json::object params = flatBook();
    params.erase("usePrint");
    EXPECT_EQ(status(publishFlatBook(params)), -43);
    EXPECT_EQ(folder.read("out/a.qs"), "old");
    EXPECT_EQ(status(publishFlatBook(flatBook())), 0);
    EXPECT_NE(written("out/a.qs").find("<title>a</title>"), std::string::npos);
    EXPECT_EQ(folder.read("out/old.qs"), "old");
}

TEST_F(FlatBookPublisherTest, TwoRequestsInARowGiveTheSame) {
    folder.write("a.dita", "<?Qs Condition X x y show z?>" + topic("a"));
    folder.write("b.dita", "<?Qs Condition X x y show z?>" + topic("b"));
    folder.write("root.ditamap", map(topicref("href='a.dita'", topicref("href='b.dita'"))));
    publishFlatBook(flatBook());
    const std::string first = folder.read("out/a.qs");
    EXPECT_NE(first.find("QS_REPLACE_CONDITION_X_0"), std::string::npos);
    publishFlatBook(flatBook());
    EXPECT_EQ(folder.read("out/a.qs"), first);
}

TEST_F(FlatBookPublisherTest, AnEmptyMapPathCannotBeRead) {
    boost::json::object params = flatBook();
    params["ditamap"] = "";
    EXPECT_EQ(status(publishFlatBook(params)), -42);
    EXPECT_EQ(console, cannotRead(""));
    EXPECT_EQ(tree(), kInput);
}

/// In another current directory for the length of a test.
class FlatBookInCurrentFolderTest : public FlatBookPublisherTest {
protected:
    const CurrentFolder current{folder.path()};
};

TEST_F(FlatBookInCurrentFolderTest, PathsAreTakenAgainstIt) {
    boost::json::object params = flatBook();
    params["ditamap"] = "root.ditamap";
    params["outputDir"] = "out";
    EXPECT_EQ(components(publishFlatBook(params)), "$F/out/a.qs $F/out/b.qs $F/out/c.qs ");
}

TEST_F(FlatBookInCurrentFolderTest, AnEmptyOutputFolderIsTheCurrentOne) {
    boost::json::object params = flatBook();
    params["outputDir"] = "";
    params["generateQSComponentsAtOneLoc"] = false;
    folder.write("root.ditamap", map(topichead("navtitle='Head'") + topicref("href='a.dita'")));
    const TypedValues answer = publishFlatBook(params);
    EXPECT_EQ(status(answer), 0);
    EXPECT_EQ(components(answer), "$F/Head.qs $F/a.qs ");
    EXPECT_EQ(console, "");
    EXPECT_EQ(tree(), "Head.qs a.dita a.qs b.dita c.dita out root.ditamap ");
}

TEST_F(FlatBookInCurrentFolderTest, ATitleDoesNotLeadOutOfIt) {
    std::filesystem::current_path(folder.path() / "out");
    boost::json::object params = flatBook();
    params["outputDir"] = "";
    folder.write("root.ditamap",
                 map(topichead("navtitle='../x'") + topichead("navtitle='a/../../x'") +
                     topichead("navtitle='/abs/x'") + topichead("navtitle='y'")));
    EXPECT_EQ(components(publishFlatBook(params)), "$F/out/y.qs ");
    EXPECT_EQ(console, cannotWrite("../x.qs") + cannotWrite("../x.qs") + cannotWrite("/abs/x.qs"));
    EXPECT_EQ(tree(), kSources + "out out/y.qs root.ditamap ");

    std::filesystem::create_directory("inner");
    std::filesystem::create_directory_symlink("../..", folder.path() / "out/away");
    folder.write("root.ditamap",
                 map(topichead("navtitle='inner/x'") + topichead("navtitle='away/x'")));
    EXPECT_EQ(components(publishFlatBook(params)), "$F/out/inner/x.qs ");
    EXPECT_EQ(console, cannotWrite("away/x.qs"));
}

}  // namespace
}  // namespace marrowpress
