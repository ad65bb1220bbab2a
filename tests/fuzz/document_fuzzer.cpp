#include <algorithm>
#include <xercesc/dom/DOM.hpp>

#include "client/xml_session.h"
#include "dom/copies.h"
#include "references/direct_references.h"
#include "support/publish_exception.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "tests/fuzz/fuzzing.h"
#include "xml/document_store.h"
#include "xml/document_writer.h"

namespace {

using marrowpress::DocumentStore;
using marrowpress::domText;
using marrowpress::require;
using marrowpress::splitTokens;
using marrowpress::toUtf8;
using marrowpress::Workplace;
using marrowpress::WriteStatus;
using xercesc::DOMAttr;
using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;

/// A start tag, an end tag, text as a whole, or another node.
struct Piece {
    char kind;
    std::u16string text;
    const DOMElement* element = nullptr;
};

void addText(std::vector<Piece>& pieces, std::u16string_view text) {
    if (text.empty()) {
        return;
    }
    if (pieces.empty() || pieces.back().kind != 't') {
        pieces.push_back({'t', {}});
    }
    pieces.back().text += text;
}

void addNode(std::vector<Piece>& pieces, const DOMNode& node) {
    switch (node.getNodeType()) {
        case DOMNode::ELEMENT_NODE:
            pieces.push_back({'<', std::u16string(domText(node.getNodeName())),
                              static_cast<const DOMElement*>(&node)});
            break;
        case DOMNode::TEXT_NODE:
        case DOMNode::CDATA_SECTION_NODE:
            addText(pieces, domText(node.getNodeValue()));
            break;
        case DOMNode::COMMENT_NODE:
            pieces.push_back({'c', std::u16string(domText(node.getNodeValue()))});
            break;
        case DOMNode::PROCESSING_INSTRUCTION_NODE:
            pieces.push_back({'p', std::u16string(domText(node.getNodeName()))
                                       .append(u" ")
                                       .append(domText(node.getNodeValue()))});
            break;
        default:
            break;
    }
}

/// All of a document, in its order; how its text is cut into nodes doesn't count.
std::vector<Piece> piecesOf(const DOMDocument& document) {
    std::vector<Piece> pieces;
    const DOMNode* node = document.getFirstChild();
    while (node) {
        addNode(pieces, *node);
        const DOMNode* next =
            node->getNodeType() == DOMNode::DOCUMENT_TYPE_NODE ? nullptr : node->getFirstChild();
        while (node && !next) {
            if (node->getNodeType() == DOMNode::ELEMENT_NODE) {
                pieces.push_back({'>', {}});
            }
            next = node->getNextSibling();
            node = next ? node : node->getParentNode();
        }
        node = next;
    }
    return pieces;
}

/// Whether two values are one, by a declaration that takes a value by its tokens, if there is one.
bool isSameValue(std::u16string_view left, std::u16string_view right) {
    return left == right || splitTokens(left) == splitTokens(right);
}

/// Attributes that only a DTD gives don't count as more.
bool hasSameAttributes(const DOMElement& written, const DOMElement& read) {
    const xercesc::DOMNamedNodeMap& attributes = *written.getAttributes();
    for (XMLSize_t index = 0; index < attributes.getLength(); ++index) {
        const auto& attribute = static_cast<const DOMAttr&>(*attributes.item(index));
        const DOMAttr* const same = read.getAttributeNode(attribute.getName());
        if (!same || !isSameValue(domText(same->getValue()), domText(attribute.getValue()))) {
            return false;
        }
    }
    const xercesc::DOMNamedNodeMap& others = *read.getAttributes();
    for (XMLSize_t index = 0; index < others.getLength(); ++index) {
        const auto& other = static_cast<const DOMAttr&>(*others.item(index));
        if (other.getSpecified() && !written.hasAttribute(other.getName())) {
            return false;
        }
    }
    return true;
}

void requireSameTree(const DOMDocument& written, const DOMDocument& read, const std::string& text) {
    const std::vector<Piece> left = piecesOf(written);
    const std::vector<Piece> right = piecesOf(read);
    for (std::size_t index = 0; index < std::min(left.size(), right.size()); ++index) {
        const Piece& one = left[index];
        const Piece& other = right[index];
        const std::string shown = toUtf8(one.text) + "\n" + toUtf8(other.text) + "\n" + text;
        require(one.kind == other.kind && one.text == other.text,
                "what was written is read again as the same", shown);
        require(!one.element || hasSameAttributes(*one.element, *other.element),
                "attributes are read as they were written", shown);
    }
    require(left.size() == right.size(), "nothing is lost or added by writing", text);
}

/// Writes `document`, unless it holds what XML can't, and reads it again.
void checkWriting(const Workplace& place, const DOMDocument& document, const std::string& name) {
    const std::u16string path = place.folder.file16(name);
    if (marrowpress::writeDocument(&document, path) == WriteStatus::kFailed) {
        return;
    }
    const std::string text = place.folder.read(name);
    const DOMDocument* const again = DocumentStore::instance().getOrLoad(path);
    require(again != nullptr, "what was written can be read", text);
    requireSameTree(document, *again, text);
}

/// Takes the content of `source` into a composite, as a run does.
void checkImport(const Workplace& place, DOMDocument& source) {
    place.folder.write("book.dita", "<dita/>");
    DOMDocument* const book = DocumentStore::instance().getOrLoad(place.folder.file16("book.dita"));
    require(book != nullptr, "a composite can be read");
    DOMElement* const copy =
        static_cast<DOMElement*>(marrowpress::importCopy(*book, *source.getDocumentElement(), {}));
    book->getDocumentElement()->appendChild(copy);
    marrowpress::TopicIdMap topicIds;
    marrowpress::ReferenceNormalizer().normalizeSubtree(copy, source, topicIds);
    checkWriting(place, *book, "again.dita");
}

void checkDocument(const Workplace& place, std::string_view text) {
    const marrowpress::XmlSession session;
    try {
        place.folder.write("source.dita", text);
        DOMDocument* const source =
            DocumentStore::instance().getOrLoad(place.folder.file16("source.dita"));
        if (source) {
            checkWriting(place, *source, "copy.dita");
            checkImport(place, *source);
        }
    } catch (const marrowpress::PublishException&) {
        // It has taken more memory than a request may.
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Workplace place;
    marrowpress::keepEngineStarted();
    checkDocument(place, marrowpress::inputText(data, size));
    return 0;
}
