#pragma once

#include <memory>
#include <optional>
#include <string>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/XMLException.hpp>

#include "xml/entity_resolver.h"

namespace marrowpress {

/// A diagnostic of the parser, thrown. The code is the parser's own number, and
/// the message the text that the Xerces exception catalogue has for it.
class QSXercesParseException final : public xercesc::XMLException {
public:
    /// `sourceName` is UTF-8 and is copied.
    QSXercesParseException(unsigned int code, const XMLCh* text, const char* sourceName,
                           XMLFileLoc line, XMLFileLoc column);

    const XMLCh* getType() const override { return u"QSXercesParseException"; }
    XMLFileLoc getColumn() const noexcept { return column_; }

private:
    XMLFileLoc column_;
};

/// Why a file could not be read, as the parser said it.
struct ParseFailure {
    std::u16string reason;    ///< the engine's words, in its language
    std::u16string systemId;  ///< of the file or entity that it was reading
    XMLFileLoc line = 0;      ///< from 1, like the column; 0 where it is of no place
    XMLFileLoc column = 0;
};

/// A parser for plain Xerces trees that throws each diagnostic, warnings and
/// validity errors included, as a `QSXercesParseException`.
class QSXercesDOMParser final : public xercesc::XercesDOMParser {
public:
    QSXercesDOMParser();

    void error(unsigned int code, const XMLCh* domain, xercesc::XMLErrorReporter::ErrTypes type,
               const XMLCh* text, const XMLCh* systemId, const XMLCh* publicId, XMLFileLoc line,
               XMLFileLoc column) override;

    /// The first diagnostic since the last `forgetFailure`. The engine takes one that is thrown for
    /// an accident of its own and reports that as well: the first is the one that says what is
    /// wrong.
    const std::optional<ParseFailure>& failure() const noexcept { return failure_; }
    void forgetFailure() noexcept { failure_.reset(); }

    /// Whether the grammar that was loaded last is a DTD that declares `attribute` for `element`.
    bool declaresAttribute(const XMLCh* element, const XMLCh* attribute) const;

private:
    std::optional<ParseFailure> failure_;
};

/// What a parse context consists of: a parser, its handlers and its settings.
///
/// Documents and cached grammars belong to the parser and end with it. Every
/// destruction, that of a moved-from bundle too, sends one
/// "EntityResolver terminate".
class ParserBundle {
public:
    /// The retries that `parseFile` may still make.
    enum Retries : unsigned {
        kNoRetries = 0,
        kWithoutValidation = 1,
        kWithoutGrammarCache = 2,
        kAllRetries = 3,
    };

    ParserBundle();
    ParserBundle(ParserBundle&& other) noexcept = default;
    ParserBundle& operator=(ParserBundle&&) = delete;
    ~ParserBundle();

    /// Parses the file at `path`; the document belongs to the parser. Null for an empty path.
    ///
    /// A failed parse is tried again, once with grammars neither reused nor kept, and once without
    /// validation and without external DTD, as far as `retryMask` allows it; a DTD that can't be
    /// opened skips the former. So a well-formed document loads whatever its DTD is like, at the
    /// last try without the defaults of the DTD. Each try is a session of its own with
    /// "XmlUtilities". The parser's settings are as before when this returns or throws.
    ///
    /// @throws what the last try threw.
    xercesc::DOMDocument* parseFile(const std::u16string& path, unsigned retryMask);

    QSXercesDOMParser& parser() { return *parser_; }
    const QSXercesDOMParser& parser() const { return *parser_; }

private:
    xercesc::DOMDocument* parseOnce(const std::u16string& path);
    xercesc::DOMDocument* retryWithoutValidation(const std::u16string& path, unsigned retryMask);
    xercesc::DOMDocument* retryWithoutGrammarCache(const std::u16string& path, unsigned retryMask);

    // Destroyed from the last to the first.
    std::unique_ptr<QSXercesDOMParser> parser_;
    std::unique_ptr<xercesc::HandlerBase> errorHandler_;
    std::unique_ptr<QSXMLEntityResolver> entityResolver_;
};

}  // namespace marrowpress
