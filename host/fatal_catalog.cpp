#include "host/fatal_catalog.h"

#include <libxml/catalog.h>
#include <libxml/parser.h>
#include <libxml/uri.h>

#include "host/libxml_handles.h"

namespace marrowpress {
namespace {

bool hasTarget(xmlNode& nextCatalog) {
    const LibxmlText target(xmlGetProp(&nextCatalog, reinterpret_cast<const xmlChar*>("catalog")));
    return target &&
           LibxmlText(xmlBuildURI(target.get(), reinterpret_cast<const xmlChar*>("file:///")));
}

/// The node behind `node` in document order, below `root`; null at the end.
xmlNode* nextNode(xmlNode* node, const xmlNode* root) {
    if (node->type == XML_ELEMENT_NODE && node->children) {
        return node->children;
    }
    while (node != root && !node->next) {
        node = node->parent;
    }
    return node == root ? nullptr : node->next;
}

}  // namespace

bool isFatalCatalog(const _xmlDoc& document) {
    xmlNode* const root = xmlDocGetRootElement(&document);
    bool isBehindAnother = false;
    for (xmlNode* node = root; node; node = nextNode(node, root)) {
        if (node->type != XML_ELEMENT_NODE || asText(node->name) != "nextCatalog") {
            continue;
        }
        const bool isNamed = hasTarget(*node);
        if (isBehindAnother && !isNamed) {
            return true;
        }
        isBehindAnother |= isNamed;
    }
    return false;
}

bool isFatalCatalog(int descriptor) {
    const LibxmlDocument document(xmlReadFd(
        descriptor, nullptr, nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    return document && isFatalCatalog(*document);
}

}  // namespace marrowpress
