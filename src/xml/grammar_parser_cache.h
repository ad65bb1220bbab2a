#pragma once

#include <string>
#include <unordered_map>
#include <xercesc/dom/DOMDocument.hpp>

#include "support/text.h"
#include "xml/dom_parser.h"
#include "xml/entity_resolver.h"

namespace marrowpress {

/// Parsers as live handles on DTDs, one for each DTD of a request: what a DTD
/// declares can be asked of them.
class GrammarParserCache {
public:
    static GrammarParserCache& instance();

    /// The bundle whose parser holds the DTD of `document`; made on first use, and the cache's.
    /// Documents without a DTD that can be found share one bundle without a grammar.
    ///
    /// @throws what the engine throws for a DTD that can't be loaded.
    ParserBundle& parserForDocument(const xercesc::DOMDocument& document);

    /// The path of the document's external DTD; empty if it has no doctype or the DTD can't be
    /// found. The question counts as a session of the document's with "XmlUtilities".
    std::u16string resolveDtdPath(const xercesc::DOMDocument& document);

private:
    std::unordered_map<std::u16string, ParserBundle> bundles_;
    QSXMLEntityResolver resolver_;
    /// Of DTDs that were found, by system and public identifier with a line feed between them.
    std::unordered_map<std::u16string, std::u16string> pathsByIds_;
};

}  // namespace marrowpress
