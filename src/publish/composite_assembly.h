#pragma once

#include <string>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "profiling/condition_merge.h"
#include "publish/composite_doc_node_filter.h"
#include "references/conref_resolution.h"
#include "references/direct_references.h"
#include "references/keyref_resolution.h"
#include "references/node_filters.h"

namespace marrowpress {

/// One composite document to build.
struct CompositeDocRequest {
    /// The document that the walk starts from; the title is taken from it if it is a map. Empty
    /// when there is none.
    std::u16string sourcePath;
    std::u16string outputPath;  ///< absolute
    std::u16string doctypeSystemId;
    bool usePrint = false;
    TopicIdMap topicIds;  ///< filled by the assembly
    /// The conditional text of the sources; merged only if it is enabled there.
    ConditionMergeState conditions;
};

/// Builds composite documents: walks the references of a map, takes in each
/// topic document that they name, nested as they are, and resolves the
/// references of the whole.
///
/// Every topic of the output has an id that was made for it. A topic that is
/// referenced twice is in it twice, and references lead to the first.
/// A map that leads back to itself is passed over where it does.
class CompositeDocAssembler {
public:
    /// Builds the document at `request.outputPath` from `start`, an element of a map (null: from
    /// nothing), behind what that document holds already if it was built before in this request.
    /// The result belongs to the `DocumentStore`; null when the file could not be created. One that
    /// was and can't be read back is message 107, like a write that failed.
    ///
    /// A document that can't be read is message 106 and left out.
    xercesc::DOMDocument* assembleComposite(xercesc::DOMElement* start, KeySpace& keySpace,
                                            CompositeDocRequest& request);

private:
    /// What the output document is when its body was to be created.
    struct Body {
        enum class State {
            kCreated,
            kUnreadable,    ///< there is no document
            kOldFileStays,  ///< the document holds what an earlier run wrote
        };
        State state;
        xercesc::DOMDocument* document;
        bool isWritten = true;  ///< its file was, whether or not it could be read back
    };

    Body createBody(xercesc::DOMElement* start, KeySpace& keySpace, CompositeDocRequest& request);
    void addDocumentShell(xercesc::DOMElement& root, const std::u16string& sourcePath) const;
    void copyMapTitle(xercesc::DOMElement& title, const xercesc::DOMDocument& map) const;

    CompositeDocNodeFilter filter_;
    ReferenceNormalizer normalizer_;
    ReferenceUpdater updater_;
    KeyrefProcessor keyrefs_;
    ConrefProcessor conrefs_;
    TitleNodeFilter titleFilter_;
    BookTitleNodeFilter bookTitleFilter_;
};

}  // namespace marrowpress
