#include "client/request_dispatch.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "application/host_operations.h"
#include "application/text_layer.h"
#include "client/client_attachment.h"
#include "client/xml_session.h"
#include "publish/composite_publisher.h"
#include "publish/flat_book_publisher.h"
#include "publish/publish_params.h"
#include "publish/publish_result.h"

namespace marrowpress {
namespace {

using Publishers = std::vector<std::unique_ptr<DocPublisher>>;

// Both lists hold nothing of a request, and stay from the first request to the end of the module.

const PublishParamsFactories& factoryList() {
    static const PublishParamsFactories factories = makePublishParamsFactories();
    return factories;
}

Publishers makePublishers() {
    Publishers publishers;
    publishers.push_back(std::make_unique<CompositeDocPublisher>());
    publishers.push_back(std::make_unique<FlatBookPublisher>());
    return publishers;
}

const Publishers& publisherList() {
    static const Publishers publishers = makePublishers();
    return publishers;
}

DocPublisher& publisherFor(const PublishParams& params) {
    const Publishers& publishers = publisherList();
    const auto found = std::find_if(
        publishers.begin(), publishers.end(),
        [&](const auto& publisher) { return publisher->publisherId() == params.publisherId(); });
    if (found == publishers.end()) {
        throw UnsupportedPublishParamsException();
    }
    return **found;
}

std::unique_ptr<PublishResult> runRequest(const char* text) {
    std::unique_ptr<PublishParams> params = parseRequest(factoryList(), text);
    DocPublisher& publisher = publisherFor(*params);
    return publisher.publish(std::move(params));
}

/// Puts the result of the request into `result`, or the status of its failure.
void serveRequest(const char* text, std::unique_ptr<PublishResult>& result) {
    try {
        result = runRequest(text);
    } catch (const PublishException& failure) {
        result->status = failure.code();
    } catch (...) {
        result->status = PublishException().code();
    }
}

}  // namespace

void onClientInitialize(std::uint32_t initCode) {
    if (initCode != IClientLifecycle::kInitialize) {
        return;
    }
    HostEnableUnicode(1);
    initializeTextLayer();
    HostSetClientEncoding("UTF-8");
    HostRegisterNotification(IClientNotification::kClientCall, 1);
    HostFinishMessageLoop = true;
}

void onNotify(std::uint32_t notification, std::uint32_t /*objectId*/, const char* text,
              std::int32_t /*number*/) {
    if (notification != IClientNotification::kClientCall) {
        return;
    }
    // What goes back when the run yields no result of its own. It outlives the session.
    auto result = std::make_unique<PublishResult>(PublishResultKind::kFallback);
    const XmlSession session;
    serveRequest(text, result);
    HostReturnTypedValue(publishResultToTypedValues(*result));
}

}  // namespace marrowpress
