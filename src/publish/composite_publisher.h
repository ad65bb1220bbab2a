#pragma once

#include "publish/doc_publisher.h"

namespace marrowpress {

/// Publishes a whole map as one composite document at "output". The key space
/// document stands in the same folder.
class CompositeDocPublisher final : public DocPublisher {
public:
    CompositeDocPublisher() : DocPublisher(PublisherId::kComposite) {}

protected:
    std::unique_ptr<PublishResult> assemble(const std::u16string& mapPath, KeySpace& keySpace,
                                            TopicIdMap& topicIds,
                                            const PublishParams& params) override;
    void removeStaleOutput(const PublishParams& params) override;
    void writeOutput(const PublishParams& params, const PublishResult& result) override;
    std::u16string getKeySpaceDocPath(const PublishParams& params) override;
    std::vector<std::u16string> getOutputPaths(const PublishParams& params) override;
};

}  // namespace marrowpress
