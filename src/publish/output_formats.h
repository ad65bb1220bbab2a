#pragma once

#include <memory>
#include <vector>

#include "publish/doc_publisher.h"
#include "publish/publish_params.h"

namespace marrowpress {

/// All kinds of output that can be asked for: how a request for each is read, and who serves it.
class OutputFormats {
public:
    /// The list of the module. Made at the first call, and kept from then on: nothing of a request
    /// is in it.
    static const OutputFormats& instance();

    /// In the order in which they are tried.
    const PublishParamsFactories& factories() const noexcept { return factories_; }

    /// The publisher whose parameters these are.
    ///
    /// @throws UnsupportedPublishParamsException when there is none.
    DocPublisher& publisherFor(const PublishParams& params) const;

    /// Adds a kind of output behind the others.
    template <class Factory, class Publisher>
    void add() {
        factories_.push_back(std::make_unique<Factory>());
        publishers_.push_back(std::make_unique<Publisher>());
    }

private:
    PublishParamsFactories factories_;
    std::vector<std::unique_ptr<DocPublisher>> publishers_;
};

}  // namespace marrowpress
