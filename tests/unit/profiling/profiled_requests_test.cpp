#include <gtest/gtest.h>

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <map>

#include "host/client_session.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

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

/// Makes a folder the current one while it lives.
class CurrentFolder {
public:
    explicit CurrentFolder(const fs::path& folder) : before_(fs::current_path()) {
        fs::current_path(folder);
    }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;
    ~CurrentFolder() {
        std::error_code ignored;
        fs::current_path(before_, ignored);
    }

private:
    fs::path before_;
};

/// Sends requests to the module, one after the other. The DTDs of the outputs stand beside them.
class ProfiledRequestTest : public testing::Test {
protected:
    ProfiledRequestTest() {
        folder.write("map.dtd", kMapDtd);
        folder.write("topic.dtd", kTopicDtd);
        folder.write("out/map.dtd", kMapDtd);
        folder.write("out/dita.dtd", std::string(kTopicDtd) + "<!ELEMENT dita ANY>");
        writeTopic("a.dita", "<p audience='x'>X</p><p audience='y'>Y</p>");
        writeMap("<topicref href='a.dita'/>");
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

    std::string request(std::string_view type, std::string_view ditaVal) const {
        const bool isBook = type == "PublishFlatBook";
        boost::json::object params{{"ditamap", folder.file("root.ditamap")},
                                   {"ditaVal", ditaVal},
                                   {"keyspaceDocDtd", "map.dtd"},
                                   {"compositeDocDtd", "dita.dtd"},
                                   {"usePrint", false}};
        params[isBook ? "outputDir" : "output"] = folder.file(isBook ? "out" : "out/book.dita");
        if (isBook) {
            params["generateQSComponentsAtOneLoc"] = true;
        }
        return boost::json::serialize(
            boost::json::object{{"type", type}, {"params", std::move(params)}});
    }
    /// The status of a request, the first of the values that come back.
    std::int64_t publish(std::string_view ditaVal, std::string_view type = "PublishComp") {
        answer = toJson(session_.send(request(type, ditaVal)).value_or(TypedValues{}));
        return answer.empty() ? 1 : answer.at(0).at("value").as_int64();
    }
    /// The first output, from its root on.
    std::string output(std::string_view name = "out/book.dita") const {
        const std::string text = folder.read(name);
        const std::size_t root = text.find("<dita>");
        return root == std::string::npos ? text : text.substr(root);
    }

    TemporaryFolder folder;
    std::string console;
    boost::json::array answer;  ///< of the last request
    /// What the key space document held when it was last seen; it doesn't outlive its request.
    std::string keySpace;
    /// The lines, console and progress, in the order in which they came.
    std::string events;

private:
    StandInHostOptions options() {
        StandInHostOptions options;
        options.resolvePublicId = [](std::string_view) { return std::nullopt; };
        options.onConsole = [this](std::optional<MessageId>, std::string_view text) {
            console += text;
            events += folder.exists("out/book.dita") ? "console, old output; " : "console; ";
        };
        options.onProgress = [this](std::string_view) {
            events += "progress; ";
            if (folder.exists("out/KeyspaceDoc.ditamap")) {
                keySpace = folder.read("out/KeyspaceDoc.ditamap");
            }
        };
        return options;
    }

    ClientSession session_{options()};
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
    EXPECT_EQ(console, "Lesen nicht möglich: " + folder.file("none.ditaval") + "\r\n");
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
    EXPECT_EQ(console, "Lesen nicht möglich: ../profiles/none.ditaval\r\n");
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
    EXPECT_EQ(publish(folder.write("x.ditaval", kExcludeX), "PublishFlatBook"), 0);
    EXPECT_EQ(console, "");
    for (const char* const component : {"out/a.qs", "out/b.qs"}) {
        EXPECT_EQ(output(component),
                  R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)"
                  R"(<!DOCTYPE dita PUBLIC "-//OASIS//DTD DITA Composite//EN" "dita.dtd">)"
                  "<?Qs BoolCondExpr  State 1?>")
            << component;
    }
    EXPECT_EQ(answer.at(4).at("value"),
              (boost::json::array{folder.file("out/a.qs"), folder.file("out/b.qs"),
                                  folder.file("out/a.qs")}));
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
    for (const char* const type : {"PublishComp", "PublishFlatBook"}) {
        keySpace.clear();
        EXPECT_EQ(publish(profile, type), 0) << type;
        EXPECT_EQ(keySpace, R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)"
                            R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd">)");
        EXPECT_FALSE(folder.exists("out/KeyspaceDoc.ditamap"));
    }
    EXPECT_NE(output().find("<p/>"), std::string::npos) << output();
    EXPECT_NE(output("out/a.qs").find("<p/>"), std::string::npos) << output("out/a.qs");
}

}  // namespace
}  // namespace marrowpress
