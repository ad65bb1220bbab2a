#include "client/request_dispatch.h"

#include <memory>

#include "application/host_operations.h"
#include "application/run_observer.h"
#include "application/text_layer.h"
#include "client/client_attachment.h"
#include "client/xml_session.h"
#include "publish/output_formats.h"
#include "publish/publish_result.h"
#include "references/published_content.h"

namespace marrowpress {
namespace {

std::unique_ptr<PublishResult> runRequest(const char* text) {
    const OutputFormats& formats = OutputFormats::instance();
    std::unique_ptr<PublishParams> params = parseRequest(formats.factories(), text);
    DocPublisher& publisher = formats.publisherFor(*params);
    return publisher.publish(std::move(params));
}

void fail(PublishResult& result, std::int32_t code, const char* reason) {
    result.status = code;
    if (RunObserver* const observer = RunObserver::existing()) {
        observer->runFailed(reason);
    }
}

/// Puts the result of the request into `result`, or the status of its failure.
void serveRequest(const char* text, std::unique_ptr<PublishResult>& result) {
    try {
        result = runRequest(text);
    } catch (const PublishException& failure) {
        fail(*result, failure.code(), "");
    } catch (const std::exception& failure) {
        fail(*result, PublishException().code(), failure.what());
    } catch (...) {
        fail(*result, PublishException().code(), "");
    }
    if (RunObserver* const observer = RunObserver::existing()) {
        observer->finish(isPublished);
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
    auto result = std::make_unique<PublishResult>(PublisherId::kNone);
    const XmlSession session;
    serveRequest(text, result);
    HostReturnTypedValue(publishResultToTypedValues(*result));
}

}  // namespace marrowpress
