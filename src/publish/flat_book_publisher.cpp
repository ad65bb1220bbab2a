#include "publish/flat_book_publisher.h"

#include "marrowpress/output_names.h"
#include "publish/flat_book_assembly.h"
#include "support/paths.h"
#include "support/text.h"
#include "xml/document_store.h"

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
                                                           KeySpace& keySpace, TopicIdMap& topicIds,
                                                           const PublishParams& params) {
    xercesc::DOMDocument& map = DocumentStore::instance().mustLoad(mapPath);
    FlatBookRequest request;
    request.outputDir = outputFolder(params);
    request.doctypeSystemId = params.getCompositeDocDtd();
    request.atOneLocation = flatBookParams(params).getGenerateQSComponentsAtOneLoc();
    request.usePrint = params.getUsePrint();
    return std::make_unique<FlatBookPublishResult>(
        FlatBookAssembler().assembleBook(map.getDocumentElement(), keySpace, request, topicIds));
}

void FlatBookPublisher::removeStaleOutput(const PublishParams& /*params*/) {}

void FlatBookPublisher::writeOutput(const PublishParams& /*params*/, const PublishResult& result) {
    for (const xercesc::DOMDocument* const document :
         dynamic_cast<const FlatBookPublishResult&>(result).documents) {
        writeResultDocument(document);
    }
}

std::u16string FlatBookPublisher::getKeySpaceDocPath(const PublishParams& params) {
    return joinPath(outputFolder(params), toUtf16(kKeySpaceDocName));
}

std::vector<std::u16string> FlatBookPublisher::getOutputPaths(const PublishParams& /*params*/) {
    // The components are known when the map has been read.
    return {};
}

}  // namespace marrowpress
