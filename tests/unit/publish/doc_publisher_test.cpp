#include "publish/doc_publisher.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <typeinfo>

#include "publish/composite_publisher.h"
#include "publish/flat_book_publisher.h"
#include "support/folder_lock.h"
#include "tests/support/current_folder.h"
#include "tests/support/file_conditions.h"
#include "tests/support/message_texts.h"
#include "tests/support/texts.h"
#include "tests/support/whole_request.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// The code of what `action` throws; 0 when nothing is thrown.
template <class Action>
int codeOf(Action&& action) {
    try {
        action();
        return 0;
    } catch (const PublishException& failure) {
        return failure.code();
    } catch (const fs::filesystem_error& failure) {
        EXPECT_NE(std::string(failure.what()).find("remove"), std::string::npos);
        return -42;
    }
}

class ForeignParamsTest : public XmlTest {
protected:
    ForeignParamsTest() {
        folder.write("out/KeyspaceDoc.ditamap", "old");
        folder.write("out/book.dita", "old");
    }

    boost::json::value params() const {
        return {{"ditamap", folder.file("root.ditamap")},
                {"output", folder.file("out/book.dita")},
                {"outputDir", folder.file("out")}};
    }

    void expectUntouched() const {
        EXPECT_EQ(folder.read("out/KeyspaceDoc.ditamap"), "old");
        EXPECT_EQ(folder.read("out/book.dita"), "old");
        EXPECT_TRUE(host.progress().empty());
        EXPECT_TRUE(host.console().empty());
    }
};

TEST_F(ForeignParamsTest, AreRefusedByTheFlatBook) {
    FlatBookPublisher publisher;
    EXPECT_EQ(
        codeOf([&] { publisher.publish(std::make_unique<CompositePublishParams>(params())); }),
        -43);
    expectUntouched();
}

TEST_F(ForeignParamsTest, AreRefusedByTheComposite) {
    CompositeDocPublisher publisher;
    EXPECT_EQ(codeOf([&] { publisher.publish(std::make_unique<FlatBookPublishParams>(params())); }),
              -43);
    expectUntouched();
}

class RemoveOldFileTest : public testing::Test {
protected:
    int remove(const char* name) const {
        return codeOf([&] { removeOldFile(folder.file16(name)); });
    }

    TemporaryFolder folder;
};

TEST_F(RemoveOldFileTest, RemovesFilesAlone) {
    folder.write("file", "x");
    folder.write("target", "x");
    folder.write("full/file", "x");
    fs::create_directory(folder.path() / "empty");
    fs::create_symlink("target", folder.path() / "link");
    fs::create_symlink("none", folder.path() / "dangling");
    fs::create_symlink("full", folder.path() / "linked-folder");
    ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);

    EXPECT_EQ(remove("file"), 0);
    EXPECT_FALSE(folder.exists("file"));
    EXPECT_EQ(remove("file"), 0);
    EXPECT_EQ(remove("link"), 0);
    EXPECT_FALSE(folder.exists("link"));
    EXPECT_EQ(folder.read("target"), "x");
    for (const char* link : {"dangling", "linked-folder"}) {
        EXPECT_EQ(remove(link), 0) << link;
        EXPECT_FALSE(fs::is_symlink(folder.path() / link)) << link;
    }
    EXPECT_TRUE(folder.exists("full/file"));
    for (const char* name : {"full", "empty", "pipe", "."}) {
        EXPECT_EQ(remove(name), -43) << name;
        EXPECT_TRUE(folder.exists(name)) << name;
    }
    EXPECT_EQ(codeOf([] { removeOldFile(u""); }), 0);
    EXPECT_EQ(codeOf([] { removeOldFile(u"/proc/version"); }), -42);
}

class DocPublisherTest : public WholeRequestTest {
protected:
    DocPublisherTest() {
        fs::create_directories(folder.path() / "out");
        folder.write("a.dita", topic("a", "<body><p audience='expert'>P</p></body>"));
        folder.write("root.ditamap", map(topicref("href='a.dita'")));
    }
};

const std::string kReadingKeys = processingKeySpaces() + "\n";
const std::string kUpdatingMap = updatingReferences() + "\n";

/// What is wrong with a parameter, and how far a run gets in spite of it.
struct BadParam {
    const char* key;
    std::string progress;
};

class BadParamTest : public DocPublisherTest {
protected:
    /// A run with the parameter missing, and one with a value of the wrong type.
    void expectRefusal(const BadParam& bad, bool isFlatBook) {
        for (const bool isMissing : {true, false}) {
            boost::json::object params = isFlatBook ? flatBook() : composite();
            params[bad.key] = 7;
            if (isMissing) {
                params.erase(bad.key);
            }
            bool isKeySpaceThere = false;
            watch = [&](const std::string&) {
                isKeySpaceThere = folder.exists("out/KeyspaceDoc.ditamap");
            };
            const TypedValues answer =
                isFlatBook ? publishFlatBook(params) : publishComposite(params);
            EXPECT_EQ(status(answer), -43) << bad.key;
            EXPECT_EQ(answer.size(), 4U) << bad.key;
            EXPECT_EQ(progress, bad.progress) << bad.key;
            EXPECT_EQ(isKeySpaceThere, bad.progress == kReadingKeys + kUpdatingMap) << bad.key;
            EXPECT_EQ(tree(), "a.dita out root.ditamap ") << bad.key;
        }
    }
};

TEST_F(BadParamTest, EndsAFlatBookWhereItIsFirstRead) {
    for (const BadParam& bad : {BadParam{"outputDir", ""},
                                {"ditaVal", ""},
                                {"ditamap", kReadingKeys},
                                {"keyspaceDocDtd", kReadingKeys},
                                {"compositeDocDtd", kReadingKeys + kUpdatingMap},
                                {"generateQSComponentsAtOneLoc", kReadingKeys + kUpdatingMap},
                                {"usePrint", kReadingKeys + kUpdatingMap}}) {
        expectRefusal(bad, true);
    }
}

TEST_F(BadParamTest, EndsACompositeWhereItIsFirstRead) {
    for (const BadParam& bad : {BadParam{"output", ""},
                                {"ditaVal", ""},
                                {"ditamap", kReadingKeys},
                                {"keyspaceDocDtd", kReadingKeys},
                                {"compositeDocDtd", kReadingKeys + kUpdatingMap},
                                {"usePrint", kReadingKeys + kUpdatingMap}}) {
        expectRefusal(bad, false);
    }
}

TEST_F(BadParamTest, OfTheFlatBookIsNoneOfAComposite) {
    boost::json::object params = composite();
    params["outputDir"] = 7;
    params["generateQSComponentsAtOneLoc"] = "x";
    EXPECT_EQ(status(publishComposite(params)), 0);
}

TEST_F(DocPublisherTest, AnOldCompositeGoesBeforeTheRunStarts) {
    folder.write("out/book.dita", "old");
    boost::json::object params = composite();
    params.erase("ditaVal");
    EXPECT_EQ(status(publishComposite(params)), -43);
    EXPECT_EQ(tree(), "a.dita out root.ditamap ");
}

TEST_F(DocPublisherTest, AFailureWhileWritingLeavesTheCompositeAsItWas) {
    folder.write("out/book.dita_tmp/in-the-way.txt", "");
    const TypedValues answer = publishComposite(composite());
    EXPECT_EQ(status(answer), -42);
    EXPECT_EQ(answer.size(), 4U);
    EXPECT_EQ(written("out/book.dita"), "<dita/>");
    EXPECT_FALSE(folder.exists("out/KeyspaceDoc.ditamap"));
}

/// Requests in which an output is also something else.
class OneFileForTwoTest : public DocPublisherTest {
protected:
    OneFileForTwoTest() {
        folder.write("out/KeyspaceDoc.ditamap", "the user's own");
        folder.write("profile.ditaval", "<val/>");
    }

    void expectRefused(const boost::json::object& params, const std::string& what) {
        const std::string before = tree();
        const std::string map = folder.read("root.ditamap");
        EXPECT_EQ(
            status(params.contains("output") ? publishComposite(params) : publishFlatBook(params)),
            -43)
            << what;
        EXPECT_EQ(tree(), before) << what;
        EXPECT_EQ(folder.read("root.ditamap"), map) << what;
        EXPECT_EQ(folder.read("out/KeyspaceDoc.ditamap"), "the user's own") << what;
        EXPECT_EQ(progress, "") << what;
    }

    boost::json::object withOutput(const std::string& output) const {
        boost::json::object params = composite();
        params["output"] = folder.file(output);
        params["ditaVal"] = folder.file("profile.ditaval");
        return params;
    }
};

TEST_F(OneFileForTwoTest, TheMapIsNoOutputByAnySpelling) {
    fs::create_directory_symlink(".", folder.path() / "linked");
    for (const char* output : {"root.ditamap", "./root.ditamap", "out/../root.ditamap",
                               "linked/root.ditamap", ".//root.ditamap"}) {
        expectRefused(withOutput(output), output);
    }
    fs::create_symlink("root.ditamap", folder.path() / "link.ditamap");
    boost::json::object params = withOutput("root.ditamap");
    params["ditamap"] = folder.file("link.ditamap");
    expectRefused(params, "what the map is a link to");
}

TEST_F(OneFileForTwoTest, TheProfileIsNoOutput) {
    expectRefused(withOutput("profile.ditaval"), "profile");
    const CurrentFolder current(folder.path());
    boost::json::object params = withOutput("profile.ditaval");
    params["ditaVal"] = "profile.ditaval";
    expectRefused(params, "relative profile");
}

TEST_F(OneFileForTwoTest, WhatStandsBesideAnOutputForAWhileIsNoSource) {
    boost::json::object params = withOutput("book.dita");
    for (const char* map : {"book.dita_tmp", "KeyspaceDoc.ditamap", "KeyspaceDoc.ditamap_tmp"}) {
        folder.write(map, folder.read("root.ditamap"));
        params["ditamap"] = folder.file(map);
        expectRefused(params, map);
        params["ditamap"] = folder.file("root.ditamap");
        params["ditaVal"] = folder.file(map);
        expectRefused(params, map);
    }
    boost::json::object book = flatBook();
    book["ditamap"] = folder.file("out/KeyspaceDoc.ditamap");
    expectRefused(book, "flat book");
}

TEST_F(OneFileForTwoTest, OneOutputIsNotAnother) {
    for (const char* output : {"KeyspaceDoc.ditamap", "KeyspaceDoc.ditamap_tmp"}) {
        expectRefused(withOutput(output), output);
    }
}

TEST_F(OneFileForTwoTest, ALinkToTheMapInAnOutputsPlaceGoesAlone) {
    const std::string map = folder.read("root.ditamap");
    fs::create_symlink("root.ditamap", folder.path() / "soft.dita");
    fs::create_hard_link(folder.path() / "root.ditamap", folder.path() / "hard.dita");
    for (const char* output : {"soft.dita", "hard.dita"}) {
        EXPECT_EQ(status(publishComposite(withOutput(output))), 0) << output;
        EXPECT_EQ(folder.read("root.ditamap"), map) << output;
        EXPECT_NE(folder.read(output), map) << output;
        EXPECT_FALSE(fs::is_symlink(folder.path() / output)) << output;
    }
}

TEST_F(OneFileForTwoTest, ARefusedRequestHasRemovedNothing) {
    boost::json::object params = composite();
    fs::create_directory(folder.path() / "out/book.dita");
    expectRefused(params, "a folder in the output's place");
    params["output"] = folder.file("out/pipe");
    makePipe(folder.file("out/pipe"));
    expectRefused(params, "a pipe in the output's place");
}

TEST_F(DocPublisherTest, ALinkToAFolderInAnOutputsPlaceGoesAlone) {
    folder.write("kept/file", "kept");
    fs::create_directory_symlink("../kept", folder.path() / "out/book.dita");
    EXPECT_EQ(status(publishComposite(composite())), 0);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder.path() / "out/book.dita")));
    EXPECT_EQ(folder.read("kept/file"), "kept");
}

TEST_F(DocPublisherTest, ANewOutputHasTheRightsOfTheOldOne) {
    folder.write("out/book.dita", "old");
    fs::permissions(folder.path() / "out/book.dita", fs::perms{0600});
    EXPECT_EQ(status(publishComposite(composite())), 0);
    EXPECT_EQ(fs::status(folder.path() / "out/book.dita").permissions(), fs::perms{0600});
}

TEST_F(DocPublisherTest, ASecondRunIntoTheSameFolderFailsAndTouchesNothing) {
    folder.write("out/book.dita", "another run's");
    folder.write("out/KeyspaceDoc.ditamap", "another run's");
    const std::string before = tree();
    {
        const FolderLock other(folder.file16("out"));
        EXPECT_EQ(status(publishComposite(composite())), -42);
        EXPECT_EQ(status(publishFlatBook(flatBook())), -42);
        EXPECT_EQ(progress, "");
        EXPECT_EQ(tree(), before);
        EXPECT_EQ(folder.read("out/book.dita"), "another run's");
        EXPECT_EQ(folder.read("out/KeyspaceDoc.ditamap"), "another run's");
    }
    EXPECT_EQ(status(publishComposite(composite())), 0);
}

/// Files that only their owner may touch, and somebody else who publishes.
class ForeignFilesTest : public DocPublisherTest {
protected:
    ForeignFilesTest() { fs::permissions(folder.path(), fs::perms::all); }

    TypedValues publishAsNobody() {
        const WithoutRights nobody;
        return publishComposite(composite());
    }

    void expectOldFileStays(const std::string& name) {
        folder.write(name, "old");
        fs::permissions(folder.path() / "out", kReadable | fs::perms::owner_exec |
                                                   fs::perms::group_exec | fs::perms::others_exec);
        const TypedValues answer = publishAsNobody();
        fs::permissions(folder.path() / "out", fs::perms::all);
        EXPECT_EQ(status(answer), -42) << name;
        EXPECT_EQ(answer.size(), 4U) << name;
        EXPECT_EQ(progress, "") << name;
        EXPECT_EQ(folder.read(name), "old") << name;
        EXPECT_EQ(tree(), "a.dita out " + name + " root.ditamap ");
        fs::remove(folder.path() / name);
    }

    static constexpr fs::perms kReadable =
        fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
};

TEST_F(ForeignFilesTest, EndTheRunWhenTheyCannotBeRemoved) {
    expectOldFileStays("out/book.dita");
    expectOldFileStays("out/KeyspaceDoc.ditamap");
}

TEST_F(ForeignFilesTest, AreRemovedEvenWhereTheyCannotBeOverwritten) {
    for (const char* name : {"out/book.dita", "out/KeyspaceDoc.ditamap"}) {
        folder.write(name, "old");
        fs::permissions(folder.path() / name, kReadable);
        fs::permissions(folder.path() / "out", fs::perms::all);
        EXPECT_EQ(status(publishAsNobody()), 0) << name;
        EXPECT_EQ(console, "") << name;
        EXPECT_EQ(tree(), "a.dita out out/book.dita root.ditamap ") << name;
    }
}

TEST_F(ForeignFilesTest, AnOutputThatCannotBeReadBackIsAFailedWrite) {
    folder.write("out/book.dita", "old");
    fs::permissions(folder.path() / "out/book.dita", fs::perms::owner_write);
    fs::permissions(folder.path() / "out", fs::perms::all);
    EXPECT_EQ(status(publishAsNobody()), 0);
    const std::string unread = cannotRead("$F/out/book.dita");
    EXPECT_EQ(console, unread + unread + cannotWrite("$F/out/book.dita"));
}

TEST_F(ForeignFilesTest, EndTheRunWhenTheyCannotBeLookedAt) {
    folder.write("closed/a.dita", topic("a"));
    folder.write("root.ditamap", map(topicref("href='closed/a.dita'")));
    fs::permissions(folder.path() / "closed", fs::perms::none);
    fs::permissions(folder.path() / "out", fs::perms::all);
    EXPECT_EQ(status(publishAsNobody()), -42);
    fs::permissions(folder.path() / "closed", fs::perms::owner_all);
    EXPECT_EQ(console, "");
    EXPECT_EQ(progress, kReadingKeys);
    EXPECT_EQ(tree(), "a.dita closed closed/a.dita out root.ditamap ");
}

TEST_F(DocPublisherTest, ARelativeOutputNeedsACurrentFolder) {
    fs::create_directory(folder.path() / "current");
    const CurrentFolder current(folder.path() / "current");
    fs::remove(folder.path() / "current");
    boost::json::object params = composite();
    params["output"] = "book.dita";
    EXPECT_EQ(status(publishComposite(params)), -42);
    EXPECT_EQ(progress, "");
    EXPECT_EQ(tree(), "a.dita out root.ditamap ");
}

TEST_F(DocPublisherTest, ADtdOfTheKeySpaceThatCannotBeLoadedEndsTheRun) {
    for (const char* dtd :
         {"<!ELEMENT", "<!ELEMENT map ANY><!ATTLIST map b CDATA 'x' b CDATA 'y'>"}) {
        boost::json::object params = composite();
        params["keyspaceDocDtd"] = folder.write("bad.dtd", dtd);
        const TypedValues answer = publishComposite(params);
        EXPECT_EQ(status(answer), -42) << dtd;
        EXPECT_EQ(answer.size(), 4U) << dtd;
        EXPECT_EQ(console, "") << dtd;
        EXPECT_EQ(progress, kReadingKeys) << dtd;
        EXPECT_EQ(tree(), "a.dita bad.dtd out root.ditamap ") << dtd;
    }
}

TEST_F(DocPublisherTest, AKeySpaceDocumentThatCannotBeRemovedStays) {
    watch = [&](const std::string& line) {
        if (line == processingReferences()) {
            fs::remove(folder.path() / "out/KeyspaceDoc.ditamap");
            folder.write("out/KeyspaceDoc.ditamap/kept.txt", "");
        }
    };
    EXPECT_EQ(status(publishComposite(composite())), 0);
    EXPECT_NE(written("out/book.dita").find("<title>a</title>"), std::string::npos);
    EXPECT_TRUE(folder.exists("out/KeyspaceDoc.ditamap/kept.txt"));
}

TEST_F(DocPublisherTest, ALinkInThePlaceOfTheKeySpaceDocumentGoesAlone) {
    const fs::path link = folder.path() / "out/KeyspaceDoc.ditamap";
    folder.write("out/kept.txt", "x");
    watch = [&](const std::string& line) {
        if (line == processingReferences()) {
            fs::remove(link);
            fs::create_symlink("kept.txt", link);
        }
    };
    EXPECT_EQ(status(publishComposite(composite())), 0);
    EXPECT_FALSE(fs::is_symlink(link));
    EXPECT_EQ(folder.read("out/kept.txt"), "x");
}

TEST_F(DocPublisherTest, DtdsMayHaveAnyName) {
    boost::json::object params = composite();
    params["compositeDocDtd"] =
        "dtd/gr\xC3\xB6\xC3\x9F"
        "e x.dtd";
    params["keyspaceDocDtd"] = "dtd/\xF0\x9F\x98\x80.dtd";
    std::string keySpace;
    watch = [&](const std::string& line) {
        if (line == updatingReferences()) {
            keySpace = folder.read("out/KeyspaceDoc.ditamap");
        }
    };
    EXPECT_EQ(status(publishComposite(params)), 0);
    EXPECT_NE(keySpace.find("\"-//OASIS//DTD DITA Map//EN\" \"dtd/\xF0\x9F\x98\x80.dtd\">"),
              std::string::npos)
        << keySpace;
    const std::string book = folder.read("out/book.dita");
    EXPECT_NE(book.find("\"-//OASIS//DTD DITA Composite//EN\" \"dtd/gr\xC3\xB6\xC3\x9F"
                        "e x.dtd\">"),
              std::string::npos)
        << book;
}

TEST_F(DocPublisherTest, AnOldKeySpaceDocumentIsBuiltAnew) {
    folder.write("out/KeyspaceDoc.ditamap", "<map><topicref keys='old'/></map>");
    std::string seen;
    watch = [&](const std::string& line) {
        if (line == updatingReferences()) {
            seen = folder.read("out/KeyspaceDoc.ditamap");
        }
    };
    folder.write("root.ditamap", map("<keydef keys='k' href='a.dita'/>"));
    EXPECT_EQ(status(publishComposite(composite())), 0);
    EXPECT_EQ(neutral(seen),
              "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?><!DOCTYPE map PUBLIC "
              "\"-//OASIS//DTD DITA Map//EN\" \"map.dtd\"><map><keydef href=\"$F/a.dita\" "
              "keys=\"k\"/></map>");
    EXPECT_FALSE(folder.exists("out/KeyspaceDoc.ditamap"));
}

TEST_F(DocPublisherTest, TheProfileOfARequestEndsWithIt) {
    folder.write("p.ditaval", "<val><prop att='audience' val='expert' action='exclude'/></val>");
    boost::json::object params = composite();
    params["ditaVal"] = folder.file("p.ditaval");
    EXPECT_EQ(status(publishComposite(params)), 0);
    EXPECT_EQ(written("out/book.dita").find("audience"), std::string::npos);
    EXPECT_EQ(status(publishComposite(composite())), 0);
    EXPECT_NE(written("out/book.dita").find("audience"), std::string::npos);
    params["ditaVal"] = folder.file("none.ditaval");
    EXPECT_EQ(status(publishComposite(params)), 0);
    EXPECT_NE(written("out/book.dita").find("audience"), std::string::npos);
    EXPECT_EQ(console, cannotRead("$F/none.ditaval"));
}

/// Lines of a trace, as the host operations write them.
std::string calls(const std::string& command) {
    return R"({"op":"HostCallClient","client":"XmlUtilities","command":"EntityResolver )" +
           command + "\",\"result\":1}\n";
}

std::string starts(const std::string& file) {
    return calls("start -basefile \\\"$F/" + file + "\\\"");
}

std::string asks(const std::string& publicId) {
    return R"({"op":"HostCallClientTyped","client":"XmlUtilities","command":"EntityResolver )"
           R"(resolveentity -publicid \"-//OASIS//DTD DITA )" +
           publicId + "//EN\\\"\",\"reply\":[]}\n";
}

std::string shows(const std::string& line) {
    return R"({"op":"HostReportProgress","kind":4,"text":")" + line + "\",\"number\":-1}\n";
}

std::string writes(const std::string& line) {
    return R"({"op":"HostConsoleWrite","text":")" + replacedAll(line, "\r\n", "\\r\\n") + "\"}\n";
}

const std::string kEnd = calls("end");
const std::string kTerminate = calls("terminate");
const std::string kNoneIsMissing = writes(referencedFileNotFound("$F/none.dita"));
const std::string kKeyIsMissing = writes(keyNotFound("k"));

/// Status 0 and no open documents, and what the kind of result adds.
std::string answers(const std::string& extraValues) {
    return R"({"op":"HostReturnTypedValue","values":[{"type":1,"value":0},{"type":6,"value":[]},)"
           R"({"type":15,"value":[]},{"type":15,"value":[]})" +
           extraValues + "]}\n";
}

/// The key space of a map without a doctype that names a file "none.dita".
std::string readsTheMap() {
    const std::string keySpace = "out/KeyspaceDoc.ditamap";
    return shows(processingKeySpaces()) +
           R"({"op":"HostGetIdProp","object":0,"property":53,"result":0})" + "\n" +
           // Without its DTD a document takes two tries; the answer is known at the second.
           starts(keySpace) + asks("Map") + kEnd + starts(keySpace) + kEnd +
           // Without a doctype there is nothing to ask.
           starts("root.ditamap") + kEnd + kNoneIsMissing +
           // The passes ask for the DTD of the key space document, by a resolver of their own.
           starts(keySpace) + asks("Map") + kEnd + kTerminate + starts(keySpace) + kEnd +
           shows(updatingReferences());
}

TEST_F(DocPublisherTest, ACompositeRunAsksTheHostInThisOrder) {
    folder.write(
        "a.dita",
        "<!DOCTYPE topic PUBLIC \"-//OASIS//DTD DITA Topic//EN\" \"topic.dtd\">" + topic("a"));
    folder.write("root.ditamap",
                 map(topicref("href='a.dita'") + topicref("href='none.dita'", "<ph keyref='k'/>")));
    EXPECT_EQ(status(publishComposite(composite())), 0);

    const std::string book = "out/book.dita";
    EXPECT_EQ(neutral(operations.str()),
              readsTheMap() + kKeyIsMissing + starts(book) + asks("Composite") + kEnd +
                  starts(book) + kEnd + starts("a.dita") + asks("Topic") + kEnd + starts("a.dita") +
                  kEnd + shows(appending("a.dita")) + kNoneIsMissing +
                  shows(processingReferences()) + starts(book) + asks("Composite") + kEnd +
                  starts(book) + kEnd + answers("") + kTerminate + kTerminate);
}

TEST_F(DocPublisherTest, AFlatBookRunAsksTheHostInThisOrder) {
    folder.write("root.ditamap", map(topicref("href='a.dita'", topicref("href='b.dita'")) +
                                     topicref("href='none.dita'") +
                                     topichead("navtitle='Head'", topicref("href='b.dita'"))));
    folder.write("b.dita", topic("b"));
    EXPECT_EQ(status(publishFlatBook(flatBook())), 0);

    const std::string first = "out/a.qs";
    const std::string second = "out/Head.qs";
    EXPECT_EQ(neutral(operations.str()),
              readsTheMap() +
                  // A source is read before its component is created.
                  starts("a.dita") + kEnd + starts(first) + asks("Composite") + kEnd +
                  starts(first) + kEnd + shows(appending("a.dita")) + starts("b.dita") + kEnd +
                  shows(appending("b.dita")) + shows(processingReferences()) + starts(first) +
                  asks("Composite") + kEnd + starts(first) + kEnd + kNoneIsMissing +
                  // By now both resolvers know the answer.
                  starts(second) + kEnd + starts(second) + kEnd + shows(appending("b.dita")) +
                  shows(processingReferences()) + starts(second) + kEnd + starts(second) + kEnd +
                  answers(R"(,{"type":6,"value":["$F/out/a.qs","$F/out/Head.qs"]})") + kTerminate +
                  kTerminate);
}

}  // namespace
}  // namespace marrowpress
