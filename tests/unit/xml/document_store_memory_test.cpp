#include <gtest/gtest.h>

#include <new>

#include "support/publish_exception.h"
#include "support/scope_exit.h"
#include "tests/support/failing_allocations.h"
#include "tests/unit/xml/sample_documents.h"
#include "xml/document_store.h"

namespace marrowpress {
namespace {

/// What became of a document: read, passed over as one that can't be read, or the end of the run.
enum class LoadOutcome { kRead, kPassedOver, kOutOfMemory, kRunEnded };

LoadOutcome outcomeOf(const std::u16string& path, const AllocationFault& fault) {
    try {
        const FailingAllocations failing(fault);
        return DocumentStore::instance().getOrLoad(path) ? LoadOutcome::kRead
                                                         : LoadOutcome::kPassedOver;
    } catch (const std::bad_alloc&) {
        return LoadOutcome::kOutOfMemory;
    } catch (const PublishException&) {
        return LoadOutcome::kRunEnded;
    }
}

/// Loads a document in a session of its own, without a host: what a host does without memory is its
/// own matter.
class LoadedDocument {
public:
    LoadedDocument() {
        folder_.write("topic.dtd", kTopicDtd);
        folder_.write("a.dita", topicText("topic.dtd"));
    }

    LoadOutcome load(const AllocationFault& fault) const {
        const XmlSession session;
        const std::u16string path = folder_.file16("a.dita");
        const LoadOutcome outcome = outcomeOf(path, fault);
        if (outcome == LoadOutcome::kRead) {
            const xercesc::DOMDocument* const document = DocumentStore::instance().getOrLoad(path);
            EXPECT_EQ(parsedClass(*document), "- topic/p ") << fault.number;
        }
        return outcome;
    }

private:
    TemporaryFolder folder_;
};

TEST(DocumentStoreMemoryTest, AMomentWithoutMemoryEndsTheRunOrLeavesTheDocumentWhole) {
    const LoadedDocument document;
    std::size_t ended = 0;
    std::size_t passedOver = 0;
    tryEachAllocation(false, [&](const AllocationFault& fault) {
        const LoadOutcome outcome = document.load(fault);
        ended += outcome == LoadOutcome::kRunEnded ? 1 : 0;
        passedOver += outcome == LoadOutcome::kPassedOver ? 1 : 0;
    });
    EXPECT_GT(ended, 0U);
    // It or its DTD, whose handle could not be made a stream.
    EXPECT_LE(passedOver, 2U);
}

TEST(DocumentStoreMemoryTest, NoDocumentIsPassedOverWhereMemoryHasRunOut) {
    const LoadedDocument document;
    std::size_t outOfMemory = 0;
    tryEachAllocation(true, [&](const AllocationFault& fault) {
        const LoadOutcome outcome = document.load(fault);
        outOfMemory += outcome == LoadOutcome::kOutOfMemory ? 1 : 0;
        EXPECT_NE(outcome, LoadOutcome::kPassedOver) << fault.number;
    });
    EXPECT_GT(outOfMemory, 0U);
}

}  // namespace
}  // namespace marrowpress
