#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/sax/HandlerBase.hpp>

#include "xml/entity_resolver.h"
#include "xml/throwing_parser.h"

namespace marrowpress {

/// How the tries went that it took to read a document.
struct ParseHistory {
    /// What ended the last try that loaded the DTD, if one failed.
    std::optional<ParseFailure> failureWithDtd;
    bool isReadWithoutDtd = false;  ///< though its doctype names one
};

/// What a parse context consists of: a parser, its handlers and its settings.
///
/// A parser for which memory ran out may be broken and is never used again. It is kept, for its
/// documents live on, and the next one scans DTDs anew.
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
    /// last try without the defaults of the DTD. Where memory ran out there is no further try. Each
    /// try is a session of its own with "XmlUtilities", that which is left out because it could
    /// only fail like the one before it, too. The parser's settings are as before when this returns
    /// or throws.
    ///
    /// @throws what the last try threw.
    xercesc::DOMDocument* parseFile(const std::u16string& path, unsigned retryMask);

    /// Holds `dtd`, which another parser keeps and which must outlive this, in place of one that it
    /// would load from the same path. "XmlUtilities" is asked the same questions.
    void borrowDtd(const KeptDtd& dtd);

    /// Ends the document that was parsed last, of which nothing may be used any more.
    void dropDocument() noexcept;

    /// Of the last call of `parseFile`.
    const ParseHistory& history() const noexcept { return history_; }

    QSXercesDOMParser& parser() { return *parser_; }
    const QSXercesDOMParser& parser() const { return *parser_; }

private:
    xercesc::DOMDocument* parseWithRetries(const std::u16string& path, unsigned retryMask,
                                           const std::exception_ptr& knownFailure = nullptr);
    xercesc::DOMDocument* parseOnce(const std::u16string& path);
    void replaceParser();
    xercesc::DOMDocument* retryWithoutValidation(const std::u16string& path, unsigned retryMask);
    xercesc::DOMDocument* retryWithoutGrammarCache(const std::u16string& path, unsigned retryMask,
                                                   const std::exception_ptr& knownFailure);

    // Destroyed from the last to the first.
    std::vector<std::unique_ptr<QSXercesDOMParser>> brokenParsers_;
    std::unique_ptr<QSXercesDOMParser> parser_;
    std::unique_ptr<xercesc::HandlerBase> errorHandler_;
    std::unique_ptr<QSXMLEntityResolver> entityResolver_;
    ParseHistory history_;
};

}  // namespace marrowpress
