#pragma once

#include <string>
#include <string_view>

#include "support/text.h"
#include "support/xerces_ptr.h"
#include "tests/support/message_texts.h"
#include "tests/support/xml_text.h"

/// A small document type with DITA's class values, and documents of it.
namespace marrowpress {

inline constexpr std::string_view kTopicDtd =
    "<!ELEMENT topic (title,p*)>\n"
    "<!ATTLIST topic id ID #REQUIRED class CDATA '- topic/topic '>\n"
    "<!ELEMENT title (#PCDATA)>\n"
    "<!ATTLIST title class CDATA '- topic/title '>\n"
    "<!ELEMENT p (#PCDATA)>\n"
    "<!ATTLIST p class CDATA '- topic/p ' id ID #IMPLIED>\n";

inline const std::string kTopicId = "-//Test//DTD Topic//EN";

/// `<!DOCTYPE topic PUBLIC ...>`.
inline std::string topicDoctype(std::string_view systemId) {
    return "<!DOCTYPE topic PUBLIC \"" + kTopicId + "\" \"" + std::string(systemId) + "\">";
}

/// A valid topic with one paragraph, whose DTD stands at `systemId`.
inline std::string topicText(std::string_view systemId) {
    return topicDoctype(systemId) + "<topic id=\"t\"><title>T</title><p id=\"p\">x</p></topic>";
}

/// One that the DTD doesn't allow: its title is missing.
inline std::string invalidTopicText(std::string_view systemId) {
    return topicDoctype(systemId) + "<topic id=\"t\"><p id=\"p\">x</p></topic>";
}

/// One that ends too early.
inline std::string brokenTopicText(std::string_view systemId) {
    return topicDoctype(systemId) + "<topic id=\"t\"><title>T</title>";
}

/// The value of "class" of the first paragraph, and whether the document wrote it: "none", the
/// value alone for a default, the value and "!" when it is specified.
inline std::string classOf(const xercesc::DOMElement& element) {
    const xercesc::DOMAttr* const value = element.getAttributeNode(u"class");
    if (!value) {
        return "none";
    }
    return toUtf8(value->getValue()).value_or("") + (value->getSpecified() ? "!" : "");
}

inline xercesc::DOMElement& firstOf(const xercesc::DOMDocument& document, const XMLCh* name) {
    return dynamic_cast<xercesc::DOMElement&>(*document.getElementsByTagName(name)->item(0));
}

/// The class of the document's first paragraph as it was parsed.
inline std::string parsedClass(const xercesc::DOMDocument& document) {
    return classOf(firstOf(document, u"p"));
}

/// The class of a paragraph that is made in the document.
inline std::string createdClass(xercesc::DOMDocument& document) {
    return classOf(*document.createElement(u"p"));
}

/// `count` times the commands of one try to parse the document at `path`.
inline std::vector<std::string> tries(int count, const std::string& path) {
    std::vector<std::string> commands;
    for (int attempt = 0; attempt < count; ++attempt) {
        commands.push_back(startOf(path));
        commands.push_back(kEnd);
    }
    return commands;
}

using Texts = std::vector<std::string>;

}  // namespace marrowpress
