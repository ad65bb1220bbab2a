#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

#include "application/messengers.h"
#include "support/text.h"
#include "xml/dom_parser.h"

namespace marrowpress {

/// How a document is open in the host.
enum class OpenDocumentState : std::uint32_t {
    kOpen = 1,     ///< its flag is zero
    kFlagged = 2,  ///< its flag is set
};

struct OpenDocumentRecord {
    OpenDocumentState state;
    std::uint32_t documentId;  ///< the host's number for it
};

/// Records by path, as exact text; in the order of the paths, so that equal runs give equal
/// answers.
using OpenDocumentRecords = std::map<std::u16string, OpenDocumentRecord>;

/// The most documents of the host's list that are looked at: more than anybody opens. A list may
/// have no end.
inline constexpr std::size_t kMostOpenDocuments = 100'000;

/// The documents that are open in the host, as they were when the request
/// first looked.
class OpenDocumentTable {
public:
    static OpenDocumentTable& instance();

    /// Reads the list from the host. Of two documents of one name the later one counts.
    OpenDocumentTable();

    /// The record of the document with exactly this path, or null.
    const OpenDocumentRecord* find(const std::u16string& path) const;

    std::size_t size() const noexcept { return records_.size(); }

private:
    OpenDocumentRecords records_;
};

/// The parsed documents of a request, each file parsed once and shared as one
/// mutable tree.
///
/// Paths are keys as they stand, compared by code unit: two spellings of one
/// file are two documents. Documents live until the request ends. A file that
/// is open in the host is read from the disk like any other.
class DocumentStore {
public:
    static DocumentStore& instance();

    /// The document of the file at `path`; null, after message 106, when it can't be read. It is
    /// the store's. Never throws for a file that can't be read: each further request for it tries,
    /// and reports, again. The empty path is reported once. A document that nests too deeply to be
    /// worked on counts as one that can't be read. `reference` is the element that leads to the
    /// file, null where none does.
    ///
    /// @throws PublishException when the host has thrown something or memory is out, and
    ///         std::bad_alloc: the run is to end.
    xercesc::DOMDocument* getOrLoad(const std::u16string& path,
                                    const xercesc::DOMElement* reference = nullptr);

    /// As `getOrLoad`, for a document without which a run can't go on.
    ///
    /// @throws PublishException in place of null.
    xercesc::DOMDocument& mustLoad(const std::u16string& path,
                                   const xercesc::DOMElement* reference = nullptr);

    /// Whether the document of `path` has been asked for before and is kept.
    bool holds(const std::u16string& path) const { return documents_.contains(path); }

    /// Whether a document that is kept was read from the file of which `path` is a name.
    bool hasRead(const std::u16string& path) const;

    /// What the parser said, at its last try, of the file at `path`, which could not be read when
    /// it was last asked for; null where it was read, or the parser said nothing.
    const ParseFailure* failureOf(const std::u16string& path) const;

    /// The DTD of the file at `dtdPath` that documents were read with; null when there is none, or
    /// it isn't whole.
    const KeptDtd* dtd(const std::u16string& dtdPath) const {
        return loader_.parser().dtds().findSound(dtdPath);
    }

    /// The requested paths that are open in the host, whether or not they could be read.
    const OpenDocumentRecords& touchedOpenDocuments() const noexcept {
        return touchedOpenDocuments_;
    }

private:
    xercesc::DOMDocument* load(const std::u16string& path);
    ReadFailure readFailureOf(const std::u16string& path) const;
    void recordIfOpen(const std::u16string& path);
    void removeFiltered(xercesc::DOMDocument* document) const;

    std::unordered_map<std::u16string, xercesc::DOMDocument*> documents_;
    std::unordered_map<std::u16string, ParseFailure> failures_;
    OpenDocumentRecords touchedOpenDocuments_;
    ParserBundle loader_;
    /// What it accepts is taken out of each document as it is loaded. Null in this system.
    std::unique_ptr<xercesc::DOMNodeFilter> loadFilter_;
};

}  // namespace marrowpress
