#include "publish/composite_publisher.h"

#include "marrowpress/output_names.h"
#include "publish/composite_assembly.h"
#include "support/paths.h"
#include "support/text.h"
#include "xml/document_store.h"

namespace marrowpress {
namespace {

std::u16string outputPath(const PublishParams& params) {
    return absolutePath(dynamic_cast<const CompositePublishParams&>(params).getOutput());
}

}  // namespace

std::unique_ptr<PublishResult> CompositeDocPublisher::assemble(const std::u16string& mapPath,
                                                               KeySpace& keySpace,
                                                               TopicIdMap& /*topicIds*/,
                                                               const PublishParams& params) {
    xercesc::DOMDocument& map = DocumentStore::instance().mustLoad(mapPath);
    CompositeDocRequest request;
    request.sourcePath = mapPath;
    request.outputPath = outputPath(params);
    request.doctypeSystemId = params.getCompositeDocDtd();
    request.usePrint = params.getUsePrint();
    return std::make_unique<CompositeDocPublishResult>(
        CompositeDocAssembler().assembleComposite(map.getDocumentElement(), keySpace, request));
}

void CompositeDocPublisher::removeStaleOutput(const PublishParams& params) {
    removeOldFile(outputPath(params));
}

void CompositeDocPublisher::writeOutput(const PublishParams& /*params*/,
                                        const PublishResult& result) {
    writeResultDocument(dynamic_cast<const CompositeDocPublishResult&>(result).document);
}

std::u16string CompositeDocPublisher::getKeySpaceDocPath(const PublishParams& params) {
    return joinPath(parentPath(outputPath(params)), toUtf16(kKeySpaceDocName));
}

std::vector<std::u16string> CompositeDocPublisher::getOutputPaths(const PublishParams& params) {
    return {outputPath(params)};
}

}  // namespace marrowpress
