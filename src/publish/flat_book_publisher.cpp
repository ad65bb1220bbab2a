#include "publish/flat_book_publisher.h"

#include "publish/flat_book_assembly.h"
#include "support/paths.h"
#include "xml/document_store.h"
#include "xml/document_writer.h"

namespace marrowpress {
namespace {

const FlatBookPublishParams& flatBookParams(const PublishParams& params) {
    return dynamic_cast<const FlatBookPublishParams&>(params);
}

std::u16string outputFolder(const PublishParams& params) {
    return absolutePath(flatBookParams(params).getOutputDir());
}

}  // namespace

std::unique_ptr<PublishResult> FlatBookPublisher::assemble(const std::u16string& mapPath,
                                                           xercesc::DOMDocument& keyDoc,
                                                           TopicIdMap& topicIds,
                                                           const PublishParams& params) {
    xercesc::DOMDocument& map = DocumentStore::instance().mustLoad(mapPath);
    FlatBookRequest request;
    request.outputDir = outputFolder(params);
    request.doctypeSystemId = params.getCompositeDocDtd();
    request.atOneLocation = flatBookParams(params).getGenerateQSComponentsAtOneLoc();
    request.usePrint = params.getUsePrint();
    return std::make_unique<FlatBookPublishResult>(
        FlatBookAssembler().assembleBook(map.getDocumentElement(), keyDoc, request, topicIds));
}

void FlatBookPublisher::removeStaleOutput(const PublishParams& /*params*/) {}

void FlatBookPublisher::writeOutput(const PublishParams& /*params*/, const PublishResult& result) {
    for (const xercesc::DOMDocument* const document :
         dynamic_cast<const FlatBookPublishResult&>(result).documents) {
        // A failure is reported; it doesn't fail the run.
        static_cast<void>(saveDocumentInPlace(document));
    }
}

std::u16string FlatBookPublisher::getMapPath(const PublishParams& params) {
    return absolutePath(params.getDitamap());
}

std::u16string FlatBookPublisher::getKeySpaceDocPath(const PublishParams& params) {
    return joinPath(outputFolder(params), kKeySpaceDocName);
}

}  // namespace marrowpress
