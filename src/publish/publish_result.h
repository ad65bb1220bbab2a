#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "application/host_operations.h"
#include "publish/publisher_id.h"
#include "xml/document_store.h"

/// What goes back to the caller of a publish request.
namespace marrowpress {

/// The outcome of a request. The documents of a derived result belong to the
/// `DocumentStore` and are not to be used once the `XmlSession` has closed.
class PublishResult {
public:
    explicit PublishResult(PublisherId publisherId) : kind(publisherId) {}
    PublishResult(const PublishResult&) = delete;
    PublishResult& operator=(const PublishResult&) = delete;
    virtual ~PublishResult() = default;

    /// Adds to `list` what the kind of result has beyond the four values of all results.
    virtual void appendExtraValues(HostTypedValueList& list) const;

    /// The finished documents, in the order of their creation; each of them once or more.
    virtual std::vector<xercesc::DOMDocument*> finishedDocuments() const { return {}; }

    PublisherId kind;
    std::int32_t status = 0;
    /// The documents of the run that were open in the host, by path.
    OpenDocumentRecords usedHostDocuments;
};

/// The result of "PublishComp".
class CompositeDocPublishResult final : public PublishResult {
public:
    /// `finished` may be null: the document could not be created.
    explicit CompositeDocPublishResult(xercesc::DOMDocument* finished)
        : PublishResult(PublisherId::kComposite), document(finished) {}

    std::vector<xercesc::DOMDocument*> finishedDocuments() const override { return {document}; }

    xercesc::DOMDocument* document;
};

/// The result of "PublishFlatBook"; adds the paths of the components.
class FlatBookPublishResult final : public PublishResult {
public:
    explicit FlatBookPublishResult(std::vector<xercesc::DOMDocument*> components)
        : PublishResult(PublisherId::kFlatBook), documents(std::move(components)) {}

    void appendExtraValues(HostTypedValueList& list) const override;
    std::vector<xercesc::DOMDocument*> finishedDocuments() const override { return documents; }

    std::vector<xercesc::DOMDocument*> documents;
};

/// The list that the host takes: the status; the paths of the open documents with a set flag; the
/// ids of the same, in the same order; the ids of the other open documents; and what the kind of
/// result adds. Texts are UTF-8.
HostTypedValues publishResultToTypedValues(const PublishResult& result);

}  // namespace marrowpress
