#include "publish/composite_publisher.h"

#include "tests/support/current_folder.h"
#include "tests/support/message_texts.h"
#include "tests/support/whole_request.h"

namespace marrowpress {
namespace {

class CompositePublisherTest : public WholeRequestTest {
protected:
    CompositePublisherTest() {
        folder.write("out/keep.txt", "");
        folder.write("a.dita", topic("a"));
        folder.write("root.ditamap", map(topicref("href='a.dita'")));
    }
};

TEST_F(CompositePublisherTest, TheKeySpaceDocumentStandsBesideTheOutput) {
    bool isThere = false;
    watch = [&](const std::string& line) {
        isThere |= line == appending("a.dita") && folder.exists("out/KeyspaceDoc.ditamap") &&
                   !folder.exists("KeyspaceDoc.ditamap");
    };
    EXPECT_EQ(status(publishComposite(composite())), 0);
    EXPECT_TRUE(isThere);
    EXPECT_EQ(tree(), "a.dita out out/book.dita out/keep.txt root.ditamap ");
}

TEST_F(CompositePublisherTest, AnOldOutputGoesBeforeAnythingIsRead) {
    folder.write("out/book.dita", "old");
    folder.write("root.ditamap", "<map>");
    EXPECT_EQ(status(publishComposite(composite())), -42);
    EXPECT_EQ(tree(), "a.dita out out/keep.txt root.ditamap ");
}

TEST_F(CompositePublisherTest, NothingHasContentBeforeAllIsAssembled) {
    std::string seen;
    watch = [&](const std::string& line) {
        if (line == processingReferences()) {
            seen = written("out/book.dita");
        }
    };
    EXPECT_EQ(status(publishComposite(composite())), 0);
    EXPECT_EQ(seen, "<dita/>");
    EXPECT_NE(written("out/book.dita").find("<title>a</title>"), std::string::npos);
}

TEST_F(CompositePublisherTest, TheDoctypeIsThatOfTheRequest) {
    boost::json::object params = composite();
    params["compositeDocDtd"] = "some/other.dtd";
    EXPECT_EQ(status(publishComposite(params)), 0);
    EXPECT_NE(folder.read("out/book.dita")
                  .find("<!DOCTYPE dita PUBLIC \"-//OASIS//DTD DITA Composite//EN\" "
                        "\"some/other.dtd\">"),
              std::string::npos);
}

TEST_F(CompositePublisherTest, WhatIsNotForPrintIsLeftOutOfPrint) {
    folder.write("root.ditamap", map(topicref("href='a.dita' print='no'")));
    for (const bool isForPrint : {true, false}) {
        boost::json::object params = composite();
        params["usePrint"] = isForPrint;
        EXPECT_EQ(status(publishComposite(params)), 0);
        EXPECT_EQ(written("out/book.dita").find("<title>a</title>") == std::string::npos,
                  isForPrint);
    }
}

/// In another current directory for the length of a test.
class CompositeInCurrentFolderTest : public CompositePublisherTest {
protected:
    CompositeInCurrentFolderTest() { folder.write("root.ditamap", map(topicref("href='a.dita'"))); }

    const CurrentFolder current{folder.path()};
};

TEST_F(CompositeInCurrentFolderTest, AnOutputWithoutAFolderStandsThere) {
    boost::json::object params = composite();
    params["output"] = "book.dita";
    bool isThere = false;
    watch = [&](const std::string& line) {
        isThere |= line == appending("a.dita") && folder.exists("KeyspaceDoc.ditamap");
    };
    EXPECT_EQ(status(publishComposite(params)), 0);
    EXPECT_TRUE(isThere);
    EXPECT_EQ(tree(), "a.dita book.dita out out/keep.txt root.ditamap ");
}

TEST_F(CompositeInCurrentFolderTest, AnEmptyOutputIsReported) {
    boost::json::object params = composite();
    params["output"] = "";
    const TypedValues answer = publishComposite(params);
    EXPECT_EQ(status(answer), 0);
    EXPECT_EQ(answer.size(), 4U);
    EXPECT_EQ(console, cannotWrite("") + cannotRead(""));
    EXPECT_EQ(tree(), "a.dita out out/keep.txt root.ditamap ");
}

}  // namespace
}  // namespace marrowpress
