#include "publish/doc_publisher.h"
#include "tests/support/current_folder.h"
#include "tests/support/message_texts.h"
#include "tests/support/whole_request.h"

namespace marrowpress {
namespace {

constexpr std::string_view kMapDtd =
    "<!ELEMENT map ANY>"
    "<!ATTLIST map class CDATA '- map/map ' status CDATA #IMPLIED audience CDATA #IMPLIED>"
    "<!ELEMENT topicref ANY>"
    "<!ATTLIST topicref class CDATA '- map/topicref ' href CDATA #IMPLIED keys CDATA #IMPLIED"
    " id CDATA #IMPLIED conref CDATA #IMPLIED audience CDATA #IMPLIED>";

constexpr std::string_view kTopicDtd =
    "<!ELEMENT topic (title, p*)>"
    "<!ATTLIST topic id ID #REQUIRED class CDATA '- topic/topic ' audience CDATA #IMPLIED>"
    "<!ELEMENT title (#PCDATA)><!ATTLIST title class CDATA '- topic/title '>"
    "<!ELEMENT p (#PCDATA)>"
    "<!ATTLIST p class CDATA '- topic/p ' keyref CDATA #IMPLIED audience CDATA #IMPLIED>";

constexpr std::string_view kExcludeX = "<val><prop att='audience' val='x' action='exclude'/></val>";

/// Requests one after the other. The DTDs of the outputs stand beside them.
class ProfiledRequestTest : public WholeRequestTest {
protected:
    ProfiledRequestTest() {
        folder.write("map.dtd", kMapDtd);
        folder.write("topic.dtd", kTopicDtd);
        folder.write("out/map.dtd", kMapDtd);
        folder.write("out/dita.dtd", std::string(kTopicDtd) + "<!ELEMENT dita ANY>");
        writeTopic("a.dita", "<p audience='x'>X</p><p audience='y'>Y</p>");
        writeMap("<topicref href='a.dita'/>");
        watch = [this](const std::string& line) { see(line); };
    }

    void writeTopic(std::string_view name, std::string_view content) {
        folder.write(name, "<!DOCTYPE topic SYSTEM 'topic.dtd'><topic id='t'><title/>" +
                               std::string(content) + "</topic>");
    }
    void writeMap(std::string_view content) {
        folder.write("root.ditamap",
                     "<!DOCTYPE map SYSTEM 'map.dtd'><map>" + std::string(content) + "</map>");
    }
    /// From now on a default attribute of the DTD makes the profile exclude each output's root.
    void excludeRootsOfOutputs() {
        folder.write("out/dita.dtd", std::string(kTopicDtd) +
                                         "<!ELEMENT dita ANY>"
                                         "<!ATTLIST dita audience CDATA 'x'>");
    }
    void excludeRootOfKeySpace() {
        folder.write("out/map.dtd", std::string(kMapDtd) + "<!ATTLIST map rev CDATA 'gone'>");
    }

    /// The status of a request.
    std::int32_t publish(std::string_view ditaVal, bool isFlatBook = false) {
        boost::json::object params = isFlatBook ? flatBook() : composite();
        params["ditaVal"] = ditaVal;
        params["compositeDocDtd"] = "dita.dtd";
        answer = isFlatBook ? publishFlatBook(params) : publishComposite(params);
        return status(answer);
    }
    /// The first output, from its root on.
    std::string output(std::string_view name = "out/book.dita") const {
        const std::string text = folder.read(name);
        const std::size_t root = text.find("<dita>");
        return root == std::string::npos ? text : text.substr(root);
    }

    TypedValues answer;  ///< of the last request
    /// What the key space document held when it was last seen; it doesn't outlive its request.
    std::string keySpace;
    /// The lines, console and progress, in the order in which they came.
    std::string events;

private:
    void see(const std::string& line) {
        if (line.ends_with("\r\n")) {
            events += folder.exists("out/book.dita") ? "console, old output; " : "console; ";
            return;
        }
        events += "progress; ";
        if (folder.exists("out/KeyspaceDoc.ditamap")) {
            keySpace = folder.read("out/KeyspaceDoc.ditamap");
        }
    }
};

TEST_F(ProfiledRequestTest, TheNextRequestDoesNotUseTheProfileOfTheLast) {
    const std::string profile = folder.write("x.ditaval", kExcludeX);
    EXPECT_EQ(publish(profile), 0);
    EXPECT_EQ(output().find(">X</p>"), std::string::npos) << output();
    EXPECT_NE(output().find(">Y</p>"), std::string::npos) << output();

    EXPECT_EQ(publish(""), 0);
    EXPECT_NE(output().find(">X</p>"), std::string::npos) << output();
    EXPECT_NE(output().find(">Y</p>"), std::string::npos) << output();
    EXPECT_EQ(console, "");
}

TEST_F(ProfiledRequestTest, ARequestWithAnUnreadableProfileIsUnfilteredToo) {
    const std::string profile = folder.write("x.ditaval", kExcludeX);
    EXPECT_EQ(publish(profile), 0);
    EXPECT_EQ(publish(folder.file("none.ditaval")), 0);
    EXPECT_NE(output().find(">X</p>"), std::string::npos) << output();
    EXPECT_EQ(console, cannotRead("$F/none.ditaval"));
}

TEST_F(ProfiledRequestTest, EachRequestReadsItsProfileAnew) {
    const std::string profile = folder.write("x.ditaval", kExcludeX);
    EXPECT_EQ(publish(profile), 0);
    folder.write("x.ditaval", "<val><prop att='audience' val='y' action='exclude'/></val>");
    EXPECT_EQ(publish(profile), 0);
    EXPECT_NE(output().find(">X</p>"), std::string::npos) << output();
    EXPECT_EQ(output().find(">Y</p>"), std::string::npos) << output();
}

TEST_F(ProfiledRequestTest, ARelativePathIsTakenAsItStands) {
    folder.write("profiles/x.ditaval", kExcludeX);
    const CurrentFolder current(folder.path() / "profiles");
    EXPECT_EQ(publish("x.ditaval"), 0);
    EXPECT_EQ(output().find(">X</p>"), std::string::npos) << output();
    EXPECT_EQ(console, "");

    EXPECT_EQ(publish("../profiles/none.ditaval"), 0);
    EXPECT_NE(output().find(">X</p>"), std::string::npos) << output();
    EXPECT_EQ(console, cannotRead("../profiles/none.ditaval"));
}

TEST_F(ProfiledRequestTest, TheKeySpaceDocumentIsFiltered) {
    writeMap(
        "<topicref keys='k' audience='x' href='a.dita'/><topicref keys='k l'>"
        "<topicref audience='x' keys='m'/></topicref>");
    EXPECT_EQ(publish(folder.write("x.ditaval", kExcludeX)), 0);
    EXPECT_NE(keySpace.find(R"(<map><topicref keys="k"/><topicref keys="l"/></map>)"),
              std::string::npos)
        << keySpace;

    EXPECT_EQ(publish(""), 0);
    EXPECT_NE(keySpace.find(R"(keys="m")"), std::string::npos) << keySpace;
    EXPECT_NE(keySpace.find(R"(<map><topicref audience="x" href=")"), std::string::npos)
        << keySpace;
}

TEST_F(ProfiledRequestTest, ACompositeMayLoseItsRoot) {
    excludeRootsOfOutputs();
    EXPECT_EQ(publish(folder.write("x.ditaval", kExcludeX)), 0);
    EXPECT_EQ(console, "");
    EXPECT_EQ(output(), R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)"
                        R"(<!DOCTYPE dita PUBLIC "-//OASIS//DTD DITA Composite//EN" "dita.dtd">)");

    EXPECT_EQ(publish(""), 0);
    EXPECT_NE(output().find(">X</p>"), std::string::npos) << output();
}

TEST_F(ProfiledRequestTest, ComponentsMayLoseTheirRoots) {
    excludeRootsOfOutputs();
    writeTopic("b.dita", "<p/>");
    writeMap("<topicref href='a.dita'/><topicref href='b.dita'/><topicref href='a.dita'/>");
    EXPECT_EQ(publish(folder.write("x.ditaval", kExcludeX), true), 0);
    EXPECT_EQ(console, "");
    for (const char* const component : {"out/a.qs", "out/b.qs"}) {
        EXPECT_EQ(output(component),
                  R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)"
                  R"(<!DOCTYPE dita PUBLIC "-//OASIS//DTD DITA Composite//EN" "dita.dtd">)"
                  "<?Qs BoolCondExpr  State 1?>")
            << component;
    }
    EXPECT_EQ(components(answer), "$F/out/a.qs $F/out/b.qs $F/out/a.qs ");
}

TEST_F(ProfiledRequestTest, WhatReferencesBringIntoTheKeySpaceIsNotFilteredThere) {
    folder.write("parts.ditamap",
                 "<!DOCTYPE map SYSTEM 'map.dtd'><map><topicref id='p' audience='x'/></map>");
    writeMap("<topicref keys='k' conref='parts.ditamap#p'/>");
    EXPECT_EQ(publish(folder.write("x.ditaval", kExcludeX)), 0);
    EXPECT_NE(keySpace.find(R"(<map><topicref audience="x" keys="k"/></map>)"), std::string::npos)
        << keySpace;
}

TEST_F(ProfiledRequestTest, TheProfileIsReadBehindThePreparationAndBeforeAllElse) {
    folder.write("out/book.dita", "old");
    EXPECT_EQ(publish(folder.file("none.ditaval")), 0);
    EXPECT_EQ(events, "console; progress; progress; progress; progress; ");
}

TEST_F(ProfiledRequestTest, TheKeySpaceDocumentMayLoseItsRoot) {
    excludeRootOfKeySpace();
    const std::string profile =
        folder.write("gone.ditaval", "<val><prop att='rev' val='gone' action='exclude'/></val>");
    writeTopic("a.dita", "<p keyref='k'/>");
    writeMap("<topicref href='a.dita'/><topicref keys='k' href='a.dita'/>");
    for (const bool isFlatBook : {false, true}) {
        keySpace.clear();
        EXPECT_EQ(publish(profile, isFlatBook), 0) << isFlatBook;
        EXPECT_EQ(keySpace, R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)"
                            R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd">)");
        EXPECT_FALSE(folder.exists("out/KeyspaceDoc.ditamap"));
    }
    EXPECT_NE(output().find("<p/>"), std::string::npos) << output();
    EXPECT_NE(output("out/a.qs").find("<p/>"), std::string::npos) << output("out/a.qs");
}

}  // namespace
}  // namespace marrowpress
