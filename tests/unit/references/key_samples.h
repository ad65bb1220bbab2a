#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "dom/element_walker.h"
#include "dom/nodes.h"
#include "references/key_definitions.h"
#include "references/key_space.h"
#include "references/node_filters.h"
#include "support/text.h"
#include "tests/support/message_texts.h"
#include "tests/support/texts.h"
#include "tests/support/xml_text.h"
#include "xml/document_store.h"

/// Documents of a small document type with DITA's class values, for tests of
/// what refers through keys.
namespace marrowpress {

/// One type for maps and topics. Every element may hold everything; "href" is declared for topic
/// references, cross references, links and images alone.
inline constexpr std::string_view kKeySampleDtd = R"(
<!ENTITY % univ "id CDATA #IMPLIED keys CDATA #IMPLIED keyref CDATA #IMPLIED conref CDATA #IMPLIED
  conrefend CDATA #IMPLIED conkeyref CDATA #IMPLIED audience CDATA #IMPLIED type CDATA #IMPLIED
  format CDATA #IMPLIED scope CDATA #IMPLIED xtrf CDATA #IMPLIED">
<!ENTITY % href "href CDATA #IMPLIED">
<!ELEMENT map ANY>       <!ATTLIST map %univ; class CDATA "- map/map ">
<!ELEMENT topicref ANY>  <!ATTLIST topicref %univ; %href; class CDATA "- map/topicref ">
<!ELEMENT keydef ANY>    <!ATTLIST keydef %univ; %href; class CDATA "+ map/topicref mapgroup-d/keydef ">
<!ELEMENT mapref ANY>    <!ATTLIST mapref %univ; %href; class CDATA "+ map/topicref mapgroup-d/mapref ">
<!ELEMENT reltable ANY>  <!ATTLIST reltable %univ; class CDATA "- map/reltable ">
<!ELEMENT relcell ANY>   <!ATTLIST relcell %univ; class CDATA "- map/relcell ">
<!ELEMENT topicmeta ANY> <!ATTLIST topicmeta %univ; class CDATA "- map/topicmeta ">
<!ELEMENT bookmeta ANY>  <!ATTLIST bookmeta %univ; class CDATA "- map/topicmeta bookmap/bookmeta ">
<!ELEMENT navtitle ANY>  <!ATTLIST navtitle %univ; class CDATA "- topic/navtitle ">
<!ELEMENT linktext ANY>  <!ATTLIST linktext %univ; class CDATA "- map/linktext ">
<!ELEMENT keywords ANY>  <!ATTLIST keywords %univ; class CDATA "- topic/keywords ">
<!ELEMENT keyword ANY>   <!ATTLIST keyword %univ; class CDATA "- topic/keyword ">
<!ELEMENT topic ANY>     <!ATTLIST topic %univ; class CDATA "- topic/topic ">
<!ELEMENT p ANY>         <!ATTLIST p %univ; class CDATA "- topic/p ">
<!ELEMENT ph ANY>        <!ATTLIST ph %univ; class CDATA "- topic/ph ">
<!ELEMENT term ANY>      <!ATTLIST term %univ; class CDATA "- topic/term ">
<!ELEMENT draft-comment ANY>
<!ATTLIST draft-comment %univ; translate CDATA #IMPLIED class CDATA "- topic/draft-comment ">
<!ELEMENT abbreviated-form ANY>
<!ATTLIST abbreviated-form %univ; %href; class CDATA "+ topic/term abbrev-d/abbreviated-form ">
<!ELEMENT xref ANY>      <!ATTLIST xref %univ; %href; class CDATA "- topic/xref ">
<!ELEMENT link ANY>      <!ATTLIST link %univ; %href; class CDATA "- topic/link ">
<!ELEMENT image ANY>     <!ATTLIST image %univ; %href; class CDATA "- topic/image ">
<!ELEMENT object ANY>
<!ATTLIST object %univ; data CDATA #IMPLIED datakeyref CDATA #IMPLIED class CDATA "- topic/object ">
<!ELEMENT param ANY>
<!ATTLIST param %univ; name CDATA #IMPLIED value CDATA #IMPLIED class CDATA "- topic/param ">
)";

/// The definition of a key as any element sees it.
inline xercesc::DOMElement* definitionOf(const KeySpace& keySpace, std::u16string_view keyName) {
    return keySpace.find(keyName, *keySpace.document().getDocumentElement());
}

/// In the texts that go in and come out, "$F" stands for the test's folder.
class KeySampleTest : public XmlTest {
protected:
    using Lines = std::vector<std::string>;

    KeySampleTest() {
        folder.write("sample.dtd", kKeySampleDtd);
        host.pathsByPublicId["-//OASIS//DTD DITA Map//EN"] = folder.file("sample.dtd");
    }

    std::string inFolder(std::string_view text) const {
        return replacedAll(std::string(text), "$F", folder.path().string());
    }
    std::string shown(const xercesc::DOMNode& node) const { return neutral(printed(node)); }
    std::string neutral(const std::string& text) const {
        return replacedAll(text, folder.path().string(), "$F");
    }

    /// Writes a document of the type, or one without any.
    void write(std::string_view name, std::string_view xml) const {
        const std::string text = inFolder(xml);
        const std::string root = text.substr(1, text.find_first_of(" />\n", 1) - 1);
        writePlain(name, "<!DOCTYPE " + root +
                             R"( PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd">)" + text);
    }
    void writePlain(std::string_view name, std::string_view xml) const {
        folder.write(name, inFolder(xml));
    }

    xercesc::DOMDocument& load(std::string_view name) const {
        return DocumentStore::instance().mustLoad(folder.file16(name));
    }
    xercesc::DOMDocument& loadSample(std::string_view name, std::string_view xml) const {
        write(name, xml);
        return load(name);
    }
    xercesc::DOMDocument& loadPlain(std::string_view name, std::string_view xml) const {
        writePlain(name, xml);
        return load(name);
    }

    /// A key space document with these definitions, of the type or of none.
    KeySpace keySpaceOf(std::string_view definitions) const {
        return withKeys(loadSample("Keys.ditamap", mapOf(definitions)));
    }
    KeySpace plainKeySpaceOf(std::string_view definitions) const {
        return withKeys(loadPlain("Keys.ditamap", mapOf(definitions)));
    }

    static std::string mapOf(std::string_view content) {
        return "<map>" + std::string(content) + "</map>";
    }

    /// The first element with that "id"; the test fails when there is none.
    static xercesc::DOMElement& byId(xercesc::DOMDocument& document, std::string_view id) {
        const AttrBasedElementNodeFilter filter(u"id", toUtf16(id));
        xercesc::DOMElement* const element =
            ElementWalker(document.getDocumentElement(), filter).nextNode();
        if (!element) {
            throw std::runtime_error("no element " + std::string(id));
        }
        return *element;
    }

    /// The definition of a key as text.
    std::string definition(const KeySpace& keySpace, std::string_view keyName) const {
        const xercesc::DOMElement* const element = definitionOf(keySpace, toUtf16(keyName));
        return element ? shown(*element) : "(none)";
    }

    /// What was said on the console since the last call.
    Lines told() {
        Lines lines;
        for (const std::string& line : host.console()) {
            lines.push_back(neutral(line));
        }
        host.forget();
        return lines;
    }

private:
    static KeySpace withKeys(xercesc::DOMDocument& document) {
        for (xercesc::DOMElement* const child : childElementsOf(*document.getDocumentElement())) {
            child->setIdAttribute(u"keys", true);
        }
        return KeySpace(document);
    }
};

}  // namespace marrowpress
