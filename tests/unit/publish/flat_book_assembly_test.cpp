#include "publish/flat_book_assembly.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/message_texts.h"
#include "tests/support/whole_request.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

const std::string kShell = "<topic id=\"id-1\"><title/></topic>";
const std::string kNothingMerged = "<?Qs BoolCondExpr  State 1?>";

/// What is reported when the shell of a component can't be written, and so can't be read.
std::string cannotCreate(const std::string& path) {
    return cannotWrite(path) + cannotRead(path) + cannotRead(path);
}

/// A book of three components, of which the second is a head with some title.
class OddTitleTest : public WholeRequestTest {
protected:
    OddTitleTest() {
        std::filesystem::create_directories(folder.path() / "out");
        folder.write("a.dita", topic("a"));
    }

    /// Publishes; the names of what came of it in the folder.
    std::string publish(const std::string& navtitle) {
        folder.write("root.ditamap",
                     map(topicref("href='a.dita'") +
                         topichead("navtitle='" + navtitle + "'", topicref("href='a.dita'")) +
                         topichead("navtitle='Last'")));
        const TypedValues answer = publishFlatBook(flatBook());
        EXPECT_EQ(status(answer), 0);
        listed = components(answer);
        return tree();
    }

    std::string listed;
};

struct TitleCase {
    const char* name;
    const char* navtitle;
    const char* path;
    bool isTried;  ///< inside the folder: the file system is asked
};

const std::string kLongName(300, 'x');
const std::string kLongestTitle(252, 'x');

constexpr TitleCase kImpossibleTitles[] = {
    {"MissingFolder", "TCP/IP", "$F/out/TCP/IP.qs", true},
    {"MissingFolderBackslash", "a\\b", "$F/out/a/b.qs", true},
    {"DeepMissingFolder", "a/b/../c/d", "$F/out/a/c/d.qs", true},
    {"AboveTheFolder", "../x", "$F/x.qs", false},
    {"AboveTheFolderBackslash", "..\\x", "$F/x.qs", false},
    {"FarAbove", "x/../../../../../../../../../x", "/x.qs", false},
    {"OutAndInAgain", "x/../../other/x", "$F/other/x.qs", false},
    {"FolderOfASimilarName", "../out2/x", "$F/out2/x.qs", false},
    {"Absolute", "/abs/x", "/abs/x.qs", false},
    {"AbsoluteBackslash", "\\abs\\x", "/abs/x.qs", false},
    {"Drive", "C:\\x", "C:/x.qs", false},
    {"DriveWithoutRoot", "C:x", "C:x.qs", false},
    {"Server", "\\\\server\\share\\x", "//server/share/x.qs", false},
};

class ImpossibleTitleTest : public OddTitleTest, public testing::WithParamInterface<TitleCase> {};

TEST_P(ImpossibleTitleTest, IsReportedAndLeftOut) {
    folder.write("out2/kept.txt", "");
    folder.write("other/kept.txt", "");
    EXPECT_EQ(publish(GetParam().navtitle),
              "a.dita other other/kept.txt out out/Last.qs out/a.qs out2 out2/kept.txt "
              "root.ditamap ");
    EXPECT_EQ(listed, "$F/out/a.qs $F/out/Last.qs ");
    EXPECT_EQ(console,
              GetParam().isTried ? cannotCreate(GetParam().path) : cannotWrite(GetParam().path));
    EXPECT_FALSE(std::filesystem::exists("/abs/x.qs"));
    EXPECT_FALSE(std::filesystem::exists("/x.qs"));
    EXPECT_FALSE(std::filesystem::exists("C:x.qs"));
    EXPECT_EQ(written("out/a.qs"), kNothingMerged + "<dita>" + kShell +
                                       "<topic id=\"id-2\"><title>a</title></topic></dita>");
}

INSTANTIATE_TEST_SUITE_P(, ImpossibleTitleTest, testing::ValuesIn(kImpossibleTitles),
                         [](const auto& example) { return std::string(example.param.name); });

TEST_F(OddTitleTest, ANameThatIsTooLongIsReported) {
    EXPECT_EQ(publish(kLongName), "a.dita out out/Last.qs out/a.qs root.ditamap ");
    EXPECT_EQ(console, cannotWrite("$F/out/" + kLongName + ".qs"));
}

TEST_F(OddTitleTest, ANameMustLeaveRoomForTheTemporaryOne) {
    EXPECT_EQ(publish(kLongestTitle), "a.dita out out/Last.qs out/a.qs root.ditamap ");
    EXPECT_EQ(console, cannotWrite("$F/out/" + kLongestTitle + ".qs"));
    const std::string oneTooMany(249, 'x');
    EXPECT_EQ(publish(oneTooMany), "a.dita out out/Last.qs out/a.qs root.ditamap ");
    EXPECT_EQ(console, cannotWrite("$F/out/" + oneTooMany + ".qs"));
    // Counted in bytes.
    std::string umlauts;
    for (int count = 0; count < 125; ++count) {
        umlauts += "\xC3\xBC";
    }
    EXPECT_EQ(publish(umlauts), "a.dita out out/Last.qs out/a.qs root.ditamap ");
    const std::string fitting(248, 'x');
    EXPECT_EQ(publish(fitting),
              "a.dita out out/Last.qs out/a.qs out/" + fitting + ".qs root.ditamap ");
    EXPECT_EQ(console, "");
}

TEST_F(OddTitleTest, AFolderInItsPlaceIsReported) {
    folder.write("out/Folder.qs/kept.txt", "");
    EXPECT_EQ(publish("Folder"),
              "a.dita out out/Folder.qs out/Folder.qs/kept.txt out/Last.qs out/a.qs root.ditamap ");
    EXPECT_EQ(listed, "$F/out/a.qs $F/out/Last.qs ");
    EXPECT_EQ(console, cannotCreate("$F/out/Folder.qs"));
}

TEST_F(OddTitleTest, ALinkDoesNotLeadOutOfTheFolder) {
    namespace fs = std::filesystem;
    folder.write("out2/kept.txt", "");
    fs::create_directory_symlink("../out2", folder.path() / "out/away");
    for (const char* name : {"away/x", "away/none/x"}) {
        publish(name);
        EXPECT_EQ(listed, "$F/out/a.qs $F/out/Last.qs ") << name;
        EXPECT_EQ(console, cannotWrite("$F/out/" + std::string(name) + ".qs")) << name;
    }
    EXPECT_FALSE(folder.exists("out2/x.qs"));

    fs::create_symlink("../out2/kept.txt", folder.path() / "out/Elsewhere.qs");
    fs::create_symlink("../out2/new.qs", folder.path() / "out/Nowhere.qs");
    for (const char* name : {"Elsewhere", "Nowhere"}) {
        publish(name);
        const std::string component = "$F/out/" + std::string(name) + ".qs";
        EXPECT_EQ(listed, "$F/out/a.qs " + component + " $F/out/Last.qs ") << name;
        EXPECT_EQ(console, "") << name;
        EXPECT_FALSE(fs::is_symlink(folder.path() / "out" / (std::string(name) + ".qs"))) << name;
    }
    EXPECT_EQ(folder.read("out2/kept.txt"), "");
    EXPECT_FALSE(folder.exists("out2/new.qs"));
}

TEST_F(OddTitleTest, ALinkInsideTheFolderIsFollowed) {
    namespace fs = std::filesystem;
    folder.write("out/Old.txt", "");
    fs::create_symlink("Old.txt", folder.path() / "out/Old.qs");
    publish("Old");
    EXPECT_EQ(listed, "$F/out/a.qs $F/out/Old.qs $F/out/Last.qs ");
    fs::create_directory(folder.path() / "out/inner");
    fs::create_directory_symlink("inner", folder.path() / "out/link");
    publish("link/x");
    EXPECT_EQ(listed, "$F/out/a.qs $F/out/link/x.qs $F/out/Last.qs ");
    EXPECT_TRUE(folder.exists("out/inner/x.qs"));
}

TEST_F(OddTitleTest, WhatIsNotThereLeadsNowhere) {
    publish("../x");
    // The topic of the component that couldn't be created keeps its first place.
    folder.write("b.dita", topic("b", "<body><p><xref href='only.dita'/></p></body>"));
    folder.write("only.dita", topic("only"));
    folder.write("root.ditamap", map(topichead("navtitle='../x'", topicref("href='only.dita'")) +
                                     topicref("href='b.dita'") +
                                     topichead("navtitle='y'", topicref("href='only.dita'"))));
    EXPECT_EQ(components(publishFlatBook(flatBook())), "$F/out/b.qs $F/out/y.qs ");
    EXPECT_NE(written("out/b.qs").find("href=\"$F/out/y.qs#id-"), std::string::npos);
}

TEST_F(OddTitleTest, OtherNamesAreTakenAsTheyStand) {
    folder.write("out/TCP/kept.txt", "");
    for (const auto& [navtitle, file] : std::vector<std::pair<std::string, std::string>>{
             {"TCP/IP", "TCP/IP.qs"},
             {"TCP\\UDP", "TCP/UDP.qs"},
             {"x/../y", "y.qs"},
             {" ", " .qs"},
             {".", "..qs"},
             {"..", "...qs"},
             {"a.b", "a.b.qs"},
             {"ab:c?*|&lt;&gt;&quot;", "ab:c?*|<>\".qs"},
             {"KeyspaceDoc.ditamap", "KeyspaceDoc.ditamap.qs"},
             {"&#xFC; &#x1F600;", "\xC3\xBC \xF0\x9F\x98\x80.qs"}}) {
        publish(navtitle);
        EXPECT_EQ(listed, "$F/out/a.qs $F/out/" + file + " $F/out/Last.qs ") << navtitle;
        EXPECT_EQ(console, "") << navtitle;
        EXPECT_TRUE(folder.exists("out/" + file)) << navtitle;
    }
}

TEST_F(OddTitleTest, TheNameOfASourceMustFitToo) {
    const std::string longStem(250, 's');
    folder.write(longStem + ".dita", topic("s"));
    folder.write("root.ditamap",
                 map(topicref("href='./" + longStem + ".dita'") + topicref("href='a.dita'")));
    EXPECT_EQ(components(publishFlatBook(flatBook())), "$F/out/a.qs ");
    EXPECT_EQ(console, cannotWrite("$F/out/" + longStem + ".qs"));
    EXPECT_FALSE(folder.exists("out/" + longStem + ".qs"));
}

TEST_F(OddTitleTest, TheFolderMayBeGivenInAnySpelling) {
    folder.write("root.ditamap", map(topicref("href='a.dita'") + topichead("navtitle='Head'")));
    for (const char* spelling : {"out/", "out/.", "./out", "x/../out", "out//"}) {
        boost::json::object params = flatBook();
        params["outputDir"] = folder.path().string() + "/" + spelling;
        EXPECT_EQ(components(publishFlatBook(params)), "$F/out/a.qs $F/out/Head.qs ") << spelling;
        EXPECT_EQ(console, "") << spelling;
    }
}

using HeadComponentTest = OddTitleTest;

TEST_F(HeadComponentTest, OnlyNamelessOnesAreCounted) {
    folder.write("root.ditamap",
                 map(topichead("") + topichead("navtitle='Named'") + topichead("navtitle=''") +
                     topichead("navtitle='container0'") + topichead("", topichead(""))));
    EXPECT_EQ(components(publishFlatBook(flatBook())),
              "$F/out/container0.qs $F/out/Named.qs $F/out/container1.qs $F/out/container0.qs "
              "$F/out/container2.qs ");
    EXPECT_EQ(written("out/Named.qs"),
              "<dita>" + kShell + "<topic id=\"id-2\"><title>Named</title></topic></dita>");
    EXPECT_EQ(written("out/container1.qs"), "<dita>" + kShell + "</dita>");
    // The next request counts anew.
    EXPECT_EQ(components(publishFlatBook(flatBook())),
              "$F/out/container0.qs $F/out/Named.qs $F/out/container1.qs $F/out/container0.qs "
              "$F/out/container2.qs ");
}

TEST_F(HeadComponentTest, RejectedOnesAreNotCounted) {
    boost::json::object params = flatBook();
    params["usePrint"] = true;
    folder.write("root.ditamap",
                 map(topichead("print='no'") + topichead("processing-role='resource-only'") +
                     topichead("print='yes'") + topicref("href='a.dita' print='no'") +
                     "<reltable>" + topicref("href='a.dita'") + "</reltable>" + topichead("")));
    EXPECT_EQ(components(publishFlatBook(params)), "$F/out/container0.qs $F/out/container1.qs ");
    params["usePrint"] = false;
    EXPECT_EQ(components(publishFlatBook(params)),
              "$F/out/container0.qs $F/out/container1.qs $F/out/a.qs $F/out/container2.qs ");
}

TEST_F(HeadComponentTest, ATitleElementIsNoTitle) {
    folder.write("root.ditamap",
                 map(topichead("",
                               "<topicmeta class='- map/topicmeta '><navtitle "
                               "class='- topic/navtitle '>Nav</navtitle></topicmeta>" +
                                   topicref("href='a.dita'"))));
    EXPECT_EQ(components(publishFlatBook(flatBook())), "$F/out/container0.qs ");
    EXPECT_EQ(
        written("out/container0.qs"),
        kNothingMerged + "<dita>" + kShell + "<topic id=\"id-2\"><title>a</title></topic></dita>");
    EXPECT_EQ(status(publishComposite(composite())), 0);
    EXPECT_EQ(written("out/book.dita"),
              "<dita><topic id=\"id-1\"><title></title></topic>"
              "<topic id=\"id-2\"><title>a</title></topic></dita>");
}

TEST_F(HeadComponentTest, WhatIsNotForPrintIsLeftOutBelowComponentsToo) {
    boost::json::object params = flatBook();
    folder.write("b.dita", topic("b"));
    folder.write("root.ditamap",
                 map(topicref("href='a.dita'",
                              topicref("href='b.dita' print='no'", topicref("href='b.dita'")))));
    publishFlatBook(params);
    EXPECT_NE(written("out/a.qs").find("<title>b</title>"), std::string::npos);
    params["usePrint"] = true;
    publishFlatBook(params);
    EXPECT_EQ(written("out/a.qs"), kNothingMerged + "<dita>" + kShell +
                                       "<topic id=\"id-2\"><title>a</title></topic></dita>");
    EXPECT_EQ(progress.find("b.dita"), std::string::npos);
}

TEST_F(HeadComponentTest, ATargetOfAHeadIsNotLookedAt) {
    folder.write("root.ditamap", map(topichead("navtitle='Head' href='a.dita'")));
    EXPECT_EQ(components(publishFlatBook(flatBook())), "$F/out/Head.qs ");
    EXPECT_EQ(written("out/Head.qs"),
              "<dita>" + kShell + "<topic id=\"id-2\"><title>Head</title></topic></dita>");
}

class FlatBookAssemblerTest : public XmlTest {
protected:
    ParsedXml keys{"<map/>"};
    KeySpace keySpace{keys.document()};
    FlatBookRequest request;
    TopicIdMap topicIds;
};

TEST_F(FlatBookAssemblerTest, ReplacesWhatTheMapHeld) {
    topicIds.add(u"/old.dita#old", u"#new");
    EXPECT_TRUE(FlatBookAssembler().assembleBook(nullptr, keySpace, request, topicIds).empty());
    EXPECT_TRUE(topicIds.byReference().empty());
    EXPECT_TRUE(topicIds.byFile().empty());
}

TEST_F(FlatBookAssemblerTest, LeavesTheLocationsOfTheWholeBook) {
    folder.write("out/x", "");
    const std::string text = topic("a");
    folder.write("one/a.dita", text);
    folder.write("b.dita", topic("b"));
    const ParsedXml book(
        map(topicref("href='one/a.dita'", topicref("href='b.dita'")) + topicref("href='b.dita'")),
        u"file://" + folder.file16("root.ditamap"));
    request.outputDir = folder.file16("out");
    request.doctypeSystemId = u"ditabase.dtd";
    const std::vector<xercesc::DOMDocument*> documents =
        FlatBookAssembler().assembleBook(book.root(), keySpace, request, topicIds);
    ASSERT_EQ(documents.size(), 2U);
    EXPECT_TRUE(folder.exists("one/a.qs"));
    EXPECT_TRUE(folder.exists("b.qs"));
    EXPECT_EQ(topicIds.byReference().size(), 2U);
    const std::u16string location = topicIds.find(folder.file16("b.dita") + u"#b");
    EXPECT_TRUE(location.starts_with(folder.file16("one/a.qs") + u"#id"));
    EXPECT_EQ(topicIds.find(folder.file16("b.dita")), location);
}

}  // namespace
}  // namespace marrowpress
