#pragma once

#include <optional>
#include <string>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/XMLException.hpp>

#include "xml/entity_resolver.h"
#include "xml/kept_dtds.h"

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
    bool isOfValidity = false;  ///< it breaks its DTD; else it can't be read with it, or at all
    bool isOfFile = false;  ///< the document says nothing wrong; a file can't be read, or opened
};

/// A parser for plain Xerces trees that throws each diagnostic, warnings and
/// validity errors included, as a `QSXercesParseException`.
///
/// It ends a try, as if memory had run out, where the engine would take no end of time: for more
/// than 10,000 attributes of an element, time grows with the square of their count, and for content
/// models of more than some 2,000 members, alone or together, with its cube.
class QSXercesDOMParser : public xercesc::XercesDOMParser {
public:
    QSXercesDOMParser();

    /// Has external entities found by `resolver`, which must outlive the parser.
    void setResolver(QSXMLEntityResolver& resolver);

    /// A try to read a file begins, and has ended with a document or with a failure.
    void beginTry() noexcept;
    void succeed() noexcept { dtds_.succeed(); }
    void fail() noexcept;

    /// A parse of the file at `path` begins, and has come to its end, in this order; the latter is
    /// left out when it fails.
    virtual void beginFile(const std::u16string& path);
    virtual void endFile();

    void error(unsigned int code, const XMLCh* domain, xercesc::XMLErrorReporter::ErrTypes type,
               const XMLCh* text, const XMLCh* systemId, const XMLCh* publicId, XMLFileLoc line,
               XMLFileLoc column) override;

    /// @throws xercesc::OutOfMemoryException as said above.
    void elementDecl(const xercesc::DTDElementDecl& declaration, bool isIgnored) override;
    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
    void startExtSubset() override;
    void endExtSubset() override;

    /// The first diagnostic since the last `beginTry`. The engine takes one that is thrown for
    /// an accident of its own and reports that as well: the first is the one that says what is
    /// wrong.
    const std::optional<ParseFailure>& failure() const noexcept { return failure_; }

    /// Whether the try that failed would fail again, in the same way, if its DTD were read anew. A
    /// file that can't be read may be read the next time.
    bool wouldFailAgain() const noexcept {
        return failure_ && !failure_->isOfFile && dtds_.wouldFailAgain();
    }

    /// The DTDs that it keeps for the documents to come.
    const KeptDtds& dtds() const noexcept { return dtds_; }

    /// From now on, the DTD that is asked is `dtd`, which must outlive the parser.
    void borrowDtd(xercesc::Grammar& dtd) noexcept { borrowedDtd_ = &dtd; }

    /// Whether the grammar that was borrowed, or else was loaded last, is a DTD that declares
    /// `attribute` for `element`.
    bool declaresAttribute(const XMLCh* element, const XMLCh* attribute) const;

private:
    xercesc::Grammar* currentGrammar() const;

    std::optional<ParseFailure> failure_;
    KeptDtds dtds_;
    QSXMLEntityResolver* resolver_ = nullptr;
    xercesc::Grammar* borrowedDtd_ = nullptr;
    double contentModelCosts_ = 0;
};

}  // namespace marrowpress
