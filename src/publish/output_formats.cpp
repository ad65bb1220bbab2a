#include "publish/output_formats.h"

#include <algorithm>

#include "publish/composite_publisher.h"
#include "publish/flat_book_publisher.h"

namespace marrowpress {
namespace {

/// The registration: one line for each kind of output.
OutputFormats makeOutputFormats() {
    OutputFormats formats;
    formats.add<CompositePublishParamsFactory, CompositeDocPublisher>();
    formats.add<FlatBookPublishParamsFactory, FlatBookPublisher>();
    return formats;
}

}  // namespace

const OutputFormats& OutputFormats::instance() {
    static const OutputFormats formats = makeOutputFormats();
    return formats;
}

DocPublisher& OutputFormats::publisherFor(const PublishParams& params) const {
    const auto found = std::find_if(
        publishers_.begin(), publishers_.end(),
        [&](const auto& publisher) { return publisher->publisherId() == params.publisherId(); });
    if (found == publishers_.end()) {
        throw UnsupportedPublishParamsException();
    }
    return **found;
}

}  // namespace marrowpress
