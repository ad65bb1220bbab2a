#include "tests/publish/random_publication.h"

#include <random>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

constexpr int kTopics = 6;
constexpr int kMaps = 3;
constexpr int kKeys = 8;

const std::string kTopicDtd =
    "<!ENTITY % part PUBLIC '-//Test//ENTITIES Part//EN' 'nowhere.mod'>%part;"
    "<!ELEMENT topic (title,(p|note)*,topic*)>"
    "<!ATTLIST topic id ID #REQUIRED conref CDATA #IMPLIED class CDATA '- topic/topic '>"
    "<!ELEMENT title (#PCDATA|ph)*><!ATTLIST title class CDATA '- topic/title '>"
    "<!ELEMENT ph (#PCDATA|ph)*>"
    "<!ATTLIST ph id NMTOKEN #IMPLIED keyref CDATA #IMPLIED conref CDATA #IMPLIED"
    " conkeyref CDATA #IMPLIED class CDATA '- topic/ph '>"
    "<!ELEMENT xref (#PCDATA)><!ATTLIST xref href CDATA #IMPLIED keyref CDATA #IMPLIED"
    " class CDATA '- topic/xref '>"
    "<!ELEMENT p (#PCDATA|ph|xref)*>"
    "<!ATTLIST p id NMTOKEN #IMPLIED conref CDATA #IMPLIED conrefend CDATA #IMPLIED"
    " class CDATA '- topic/p '>"
    "<!ELEMENT note (#PCDATA|ph|xref)*>"
    "<!ATTLIST note id NMTOKEN #IMPLIED conref CDATA #IMPLIED class CDATA '- topic/note '>";

/// Everything that is to be chosen.
class Author {
public:
    explicit Author(std::uint32_t seed) : random_(seed) {}

    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    bool isOneIn(int count) { return below(count) == 0; }
    std::string number(int limit) { return std::to_string(below(limit)); }

    std::string topic(int index);
    std::string map(int index);

private:
    std::string doctype();
    std::string conditions();
    std::string marked(const std::string& text);
    std::string id() { return isOneIn(2) ? " id='i" + number(9) + "'" : ""; }
    std::string file() { return "t" + number(kTopics) + ".dita"; }
    std::string target();
    std::string conref();
    std::string phrase(int depth);
    std::string block();
    std::string reference(int depth);

    std::mt19937 random_;
};

std::string Author::doctype() {
    switch (below(9)) {
        case 0:
            return "";
        case 1:
            return "<!DOCTYPE topic SYSTEM 'cut.dtd'>";
        case 2:
            return "<!DOCTYPE topic SYSTEM 'twice.dtd'>";
        case 3:
            return "<!DOCTYPE topic SYSTEM 'topic.dtd' [<!ENTITY e 'entity'>]>";
        case 4:
            return "<!DOCTYPE topic SYSTEM 'missing.dtd'>";
        default:
            return "<!DOCTYPE topic SYSTEM 'topic.dtd'>";
    }
}

std::string Author::conditions() {
    std::string text;
    for (const char* const name : {"A", "B", "C", "QS_REPLACE_CONDITION_A_0"}) {
        if (isOneIn(2)) {
            text += std::string("<?Qs Condition ") + name + " x y " +
                    (isOneIn(2) ? "show" : "hide") + " z?>";
        }
    }
    if (isOneIn(6)) {
        text += "<?Qs ShowAll True?>";
    }
    if (isOneIn(4)) {
        text += "<?Qs BoolCondExpr \"A\"or\"B\" x 1?>";
    }
    return text;
}

std::string Author::marked(const std::string& text) {
    if (!isOneIn(4)) {
        return text;
    }
    const std::string name = isOneIn(2) ? "A" : "QS_REPLACE_CONDITION_A_0";
    return "<?Qs Condstart " + name + "?>" + text + "<?Qs Condend " + name + "?>";
}

std::string Author::target() {
    const int topic = below(kTopics);
    const std::string path = isOneIn(4) ? "" : "t" + std::to_string(topic) + ".dita";
    const std::string container = isOneIn(6) ? "." : "t" + std::to_string(topic);
    return path + "#" + container + (isOneIn(5) ? "" : "/i" + number(9));
}

std::string Author::conref() {
    return isOneIn(3) ? " conref='" + target() + "'" : "";
}

std::string Author::phrase(int depth) {
    switch (below(5)) {
        case 0:
            return "<ph keyref='k" + number(kKeys + 1) + "'/>";
        case 1:
            return "<ph conkeyref='k" + number(kKeys) + "/i" + number(9) + "'/>";
        case 2:
            return "<xref href='" + target() + "'>there</xref>";
        case 3:
            return "<xref keyref='k" + number(kKeys) + "'/>";
        default:
            return "<ph" + id() + conref() + ">" + (depth > 2 ? "" : phrase(depth + 1)) +
                   "words</ph>";
    }
}

std::string Author::block() {
    const std::string name = isOneIn(3) ? "note" : "p";
    const std::string range = name == "p" && isOneIn(6) ? " conrefend='" + target() + "'" : "";
    return marked("<" + name + id() + conref() + range + ">" + phrase(0) + "</" + name + ">");
}

std::string Author::topic(int index) {
    const std::string id = "t" + std::to_string(index);
    std::string text = conditions() + doctype() + "<topic id='" + id + "'>";
    text += isOneIn(8) ? "" : "<title>" + id + phrase(2) + "</title>";
    for (int count = below(5); count >= 0; --count) {
        text += block();
    }
    for (int part = below(3); part > 0; --part) {
        text += marked("<topic id='" + id + "part" + std::to_string(part) +
                       "'><title>part</title>" + block() + "</topic>");
    }
    return text + (isOneIn(12) ? "" : "</topic>");
}

std::string Author::reference(int depth) {
    const std::string inside = depth < 2 && isOneIn(2) ? reference(depth + 1) : "";
    switch (below(8)) {
        case 0:
            return "<mapref href='m" + number(kMaps) + ".ditamap'/>";
        case 1:
            return "<topicref format='ditamap' href='m" + number(kMaps) + ".ditamap#r" + number(4) +
                   "'/>";
        case 2:
            return "<topichead navtitle='head" + number(3) + "'>" + inside + "</topichead>";
        case 3:
            return "<keydef keys='k" + number(kKeys) + "' keyref='k" + number(kKeys) + "'/>";
        case 4:
            return "<keydef keys='k" + number(kKeys) + "' href='" + file() +
                   "'><topicmeta><keywords><keyword>key</keyword></keywords><linktext>link" +
                   number(3) + "</linktext></topicmeta></keydef>";
        case 5: {
            const std::string name = "t" + number(kTopics);
            return "<topicref href='" + name + ".dita#" + name + "part1'/>";
        }
        default:
            return "<topicref id='r" + number(4) + "' href='" + file() + "'>" + inside +
                   "</topicref>";
    }
}

std::string Author::map(int index) {
    std::string text = "<map id='m" + std::to_string(index) + "'><title>map</title>";
    for (int count = 3 + below(4); count > 0; --count) {
        text += reference(0);
    }
    return text + "</map>";
}

}  // namespace

void writeRandomPublication(std::uint32_t seed, const TemporaryFolder& folder) {
    Author author(seed);
    folder.write("input/topic.dtd", kTopicDtd);
    folder.write("input/cut.dtd", kTopicDtd + "<!ATTLIST");
    folder.write("input/twice.dtd", kTopicDtd + "<!ATTLIST title a ID #IMPLIED b ID #IMPLIED>");
    for (int index = 0; index < kTopics; ++index) {
        folder.write("input/t" + std::to_string(index) + ".dita", author.topic(index));
    }
    for (int index = 0; index < kMaps; ++index) {
        folder.write("input/m" + std::to_string(index) + ".ditamap", author.map(index));
    }
    const bool isBook = author.isOneIn(2);
    folder.write("request.json",
                 std::string("{\"type\":\"") + (isBook ? "PublishFlatBook" : "PublishComp") +
                     "\",\"params\":{\"ditamap\":\"$CASE/m0.ditamap\"," +
                     (isBook ? "\"outputDir\":\"$CASE/out\",\"generateQSComponentsAtOneLoc\":true,"
                             : "\"output\":\"$CASE/out/c.dita\",") +
                     "\"ditaVal\":\"\",\"keyspaceDocDtd\":\"$CASE/topic.dtd\"," +
                     "\"compositeDocDtd\":\"$CASE/topic.dtd\",\"usePrint\":false}}");
}

}  // namespace marrowpress
