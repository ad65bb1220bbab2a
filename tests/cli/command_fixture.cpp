#include "tests/cli/command_fixture.h"

#include <regex>
#include <sstream>

#include "tests/support/texts.h"

namespace marrowpress {
namespace {

constexpr const char* kMapDtd = R"(<!ELEMENT map (title?, topicref*)>
<!ATTLIST map id ID #IMPLIED class CDATA "- map/map ">
<!ELEMENT title (#PCDATA)>
<!ATTLIST title class CDATA "- topic/title ">
<!ELEMENT topicref (topicmeta?, topicref*)>
<!ATTLIST topicref href CDATA #IMPLIED keys CDATA #IMPLIED print (yes|no) #IMPLIED
                   audience CDATA #IMPLIED navtitle CDATA #IMPLIED processing-role CDATA #IMPLIED
                   class CDATA "- map/topicref ">
<!ELEMENT topicmeta (linktext)>
<!ATTLIST topicmeta class CDATA "- map/topicmeta ">
<!ELEMENT linktext (#PCDATA)>
<!ATTLIST linktext class CDATA "- map/linktext ">
)";

constexpr const char* kTopicDtd = R"(<!ELEMENT dita (topic*)>
<!ELEMENT topic (title, body?, topic*)>
<!ATTLIST topic id ID #REQUIRED class CDATA "- topic/topic ">
<!ELEMENT title (#PCDATA)>
<!ATTLIST title class CDATA "- topic/title ">
<!ELEMENT body (#PCDATA|ph|xref|image)*>
<!ATTLIST body class CDATA "- topic/body ">
<!ELEMENT ph (#PCDATA)>
<!ATTLIST ph id CDATA #IMPLIED keyref CDATA #IMPLIED conref CDATA #IMPLIED
             conkeyref CDATA #IMPLIED audience CDATA #IMPLIED class CDATA "- topic/ph ">
<!ELEMENT xref (#PCDATA)>
<!ATTLIST xref href CDATA #IMPLIED class CDATA "- topic/xref ">
<!ELEMENT image EMPTY>
<!ATTLIST image href CDATA #IMPLIED keyref CDATA #IMPLIED class CDATA "- topic/image ">
)";

constexpr const char* kCatalog =
    R"(<catalog xmlns="urn:oasis:names:tc:entity:xmlns:xml:catalog">
<public publicId="-//OASIS//DTD DITA Map//EN" uri="dtd/map.dtd"/>
<public publicId="-//OASIS//DTD DITA Topic//EN" uri="dtd/topic.dtd"/>
<public publicId="-//OASIS//DTD DITA Composite//EN" uri="dtd/topic.dtd"/>
</catalog>
)";

}  // namespace

std::string shownProgress(const Texts& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += "> " + line + "\n";
    }
    return text;
}

std::string shownReport(std::string_view line) {
    return replacedAll(std::string(line), "\r\n", "\n");
}

std::string withoutTime(const std::string& text) {
    static const std::regex kTime(R"(, \d+[.,]\d s\n$)");
    return std::regex_replace(text, kTime, "\n");
}

CommandTest::CommandTest() {
    folder_.write("dtd/map.dtd", kMapDtd);
    folder_.write("dtd/topic.dtd", kTopicDtd);
    folder_.write("catalog.xml", kCatalog);
    writeMap(R"(<topicref href="a.dita"/><topicref href="b.dita" print="no"/>)");
    writeTopic("a", "Text of a");
    writeTopic("b", "Text of b");
    folder_.write("out/keep.txt", "");
}

void CommandTest::writeMap(const std::string& references) const {
    folder_.write("docs/m.ditamap",
                  R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd"><map>)" +
                      references + "</map>");
}

void CommandTest::writeTopic(const std::string& id, const std::string& text) const {
    folder_.write("docs/" + id + ".dita",
                  R"(<!DOCTYPE topic PUBLIC "-//OASIS//DTD DITA Topic//EN" "topic.dtd">)"
                  "<topic id=\"" +
                      id + "\"><title>" + id + "</title><body>" + text + "</body></topic>");
}

CommandResult CommandTest::publish(const Texts& more, const CommandSetting& setting) const {
    Texts arguments{"publish", "docs/m.ditamap", "-f",        "composite",
                    "-o",      "out/m.dita",     "--catalog", "catalog.xml"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments, setting);
}

CommandResult CommandTest::check(const Texts& more, const CommandSetting& setting) const {
    Texts arguments{"check", "docs/m.ditamap", "--catalog", "catalog.xml"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments, setting);
}

std::string CommandTest::bodiesOf(const std::string& name) const {
    const std::string text = folder_.read(name);
    std::string bodies;
    for (std::size_t at = 0; (at = text.find("<body", at)) != std::string::npos; ++at) {
        const std::size_t begin = text.find('>', at) + 1;
        bodies += text.substr(begin, text.find("</body>", at) - begin) + ";";
    }
    return bodies;
}

std::string CommandTest::request(const std::string& output) const {
    return R"({"type":"PublishComp","params":{"ditamap":"docs/m.ditamap","output":")" + output +
           R"(","ditaVal":"","keyspaceDocDtd":"map.dtd","compositeDocDtd":"d.dtd",)"
           R"("usePrint":false}})";
}

Texts CommandTest::traceLines(const std::string& name) const {
    std::istringstream in(folder_.read(name));
    Texts lines;
    for (std::string line; std::getline(in, line);) {
        if (line.find(R"("property":89,)") == std::string::npos) {
            lines.push_back(line);
        }
    }
    return lines;
}

}  // namespace marrowpress
