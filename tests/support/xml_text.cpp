#include "tests/support/xml_text.h"

#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>

#include "dom/element_walker.h"
#include "references/node_filters.h"
#include "support/text.h"
#include "support/xerces_ptr.h"

namespace marrowpress {

class ParsedXml::Parser {
public:
    xercesc::HandlerBase handler;
    xercesc::XercesDOMParser parser;
};

ParsedXml::ParsedXml(std::string_view text, std::u16string_view uri)
    : parser_(std::make_unique<Parser>()) {
    parser_->parser.setErrorHandler(&parser_->handler);
    parser_->parser.setDoNamespaces(false);
    parser_->parser.setCreateEntityReferenceNodes(false);
    const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()),
                                            text.size(), "test");
    try {
        parser_->parser.parse(source);
    } catch (const xercesc::SAXException& failure) {
        ADD_FAILURE() << toUtf8(domText(failure.getMessage())) << " in " << text;
    }
    if (!uri.empty()) {
        document().setDocumentURI(std::u16string(uri).c_str());
    }
}

ParsedXml::ParsedXml(ParsedXml&&) noexcept = default;

ParsedXml::~ParsedXml() = default;

xercesc::DOMDocument& ParsedXml::document() const {
    return *parser_->parser.getDocument();
}

xercesc::DOMElement* ParsedXml::byId(std::string_view id) const {
    const AttrBasedElementNodeFilter filter(u"id", toUtf16(id));
    return ElementWalker(root(), filter).nextNode();
}

std::string printed(const xercesc::DOMNode& node) {
    xercesc::DOMImplementation* const implementation =
        xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
    const XercesPtr<xercesc::DOMLSSerializer> serializer(implementation->createLSSerializer());
    serializer->getDomConfig()->setParameter(xercesc::XMLUni::fgDOMXMLDeclaration, false);
    xercesc::MemBufFormatTarget target;
    const XercesPtr<xercesc::DOMLSOutput> output(implementation->createLSOutput());
    output->setEncoding(u"UTF-8");
    output->setByteStream(&target);
    EXPECT_TRUE(serializer->write(&node, output.get()));
    return {reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen()};
}

std::string attribute(const xercesc::DOMElement& element, std::string_view name) {
    return toUtf8(domText(element.getAttribute(toUtf16(name).c_str())));
}

std::string nestedElements(std::size_t depth, std::string_view innermost) {
    std::string text;
    for (std::size_t level = 0; level < depth; ++level) {
        text += "<ph>";
    }
    text += innermost;
    for (std::size_t level = 0; level < depth; ++level) {
        text += "</ph>";
    }
    return text;
}

std::string idsOf(const std::vector<xercesc::DOMElement*>& elements) {
    std::string ids;
    for (const xercesc::DOMElement* element : elements) {
        const std::string id = attribute(*element, "id");
        ids += ids.empty() ? "" : " ";
        ids += id.empty() ? "<" + toUtf8(domText(element->getTagName())) + ">" : id;
    }
    return ids;
}

}  // namespace marrowpress
