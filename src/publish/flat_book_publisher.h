#pragma once

#include "publish/doc_publisher.h"

namespace marrowpress {

/// Publishes a map as a flat book: a list of components, beside their sources
/// or in "outputDir", where the key space document stands. Old components are
/// replaced as new ones are written.
class FlatBookPublisher final : public DocPublisher {
public:
    FlatBookPublisher() : DocPublisher(PublisherId::kFlatBook) {}

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
