#include "marrowpress/client_entry.h"

#include "client/client_attachment.h"
#include "client/notifications.h"
#include "client/request_dispatch.h"

extern "C" __attribute__((visibility("default"))) std::int32_t Q_ApiClientInit(
    void* module, marrowpress::IHostObject* provider, marrowpress::IHostObject* keepAlive,
    const marrowpress::ClientRegistration* registration) {
    try {
        return marrowpress::attachClient(
            module, provider, keepAlive, registration,
            {&marrowpress::onClientInitialize, &marrowpress::onNotify});
    } catch (...) {
        return -1;
    }
}
