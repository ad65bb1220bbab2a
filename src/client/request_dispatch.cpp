#include "client/request_dispatch.h"

#include <atomic>
#include <memory>
#include <utility>

#include "application/host_operations.h"
#include "application/run_observer.h"
#include "application/text_layer.h"
#include "client/client_attachment.h"
#include "client/xml_session.h"
#include "publish/output_formats.h"
#include "publish/publish_result.h"
#include "references/published_content.h"
#include "support/scope_exit.h"

namespace marrowpress {
namespace {

std::unique_ptr<PublishResult> runRequest(const char* text) {
    const OutputFormats& formats = OutputFormats::instance();
    std::unique_ptr<PublishParams> params = parseRequest(formats.factories(), text);
    DocPublisher& publisher = formats.publisherFor(*params);
    return publisher.publish(std::move(params));
}

/// Puts the failure of a run in the place of whatever its result would have been.
void failed(std::unique_ptr<PublishResult>& result, std::int32_t code, const char* reason) {
    if (result->kind != PublisherId::kNone) {
        result = std::make_unique<PublishResult>(PublisherId::kNone);
    }
    result->status = code;
    if (RunObserver* const observer = RunObserver::existing()) {
        observer->runFailed(reason);
    }
}

/// Puts the result of the request into `result`, or the status of its failure.
void serveRequest(const char* text, std::unique_ptr<PublishResult>& result) {
    try {
        result = runRequest(text);
        requireWorkingHost();
    } catch (const PublishException& failure) {
        failed(result, failure.code(), "");
    } catch (const std::exception& failure) {
        failed(result, PublishException().code(), failure.what());
    } catch (...) {
        failed(result, PublishException().code(), "");
    }
    if (RunObserver* const observer = RunObserver::existing()) {
        observer->finish(isPublished);
    }
}

/// The answer of a run that failed.
HostTypedValues failedAnswer() {
    PublishResult result(PublisherId::kNone);
    result.status = PublishException().code();
    return publishResultToTypedValues(result);
}

/// Sends `result`, or, where that can't be put into values or the host throws it back, `refusal`.
void answer(const PublishResult& result, HostTypedValues refusal) {
    forgetHostExceptions();
    try {
        HostReturnTypedValue(publishResultToTypedValues(result));
        if (!hasHostThrown()) {
            return;
        }
    } catch (...) {
        // There is no memory for the values, and nobody to tell but the caller.
    }
    HostReturnTypedValue(std::move(refusal));
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
    // Allocated while nothing has happened yet: it can be sent whatever fails later.
    HostTypedValues refusal = failedAnswer();
    static std::atomic<bool> isServing = false;
    if (isServing.exchange(true)) {
        HostReturnTypedValue(std::move(refusal));
        return;
    }
    const ScopeExit endServing([] { isServing = false; });
    forgetHostExceptions();
    // What goes back when the run yields no result of its own. It outlives the session.
    auto result = std::make_unique<PublishResult>(PublisherId::kNone);
    const XmlSession session;
    serveRequest(text, result);
    answer(*result, std::move(refusal));
}

}  // namespace marrowpress
