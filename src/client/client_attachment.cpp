#include "client/client_attachment.h"

#include "application/connection.h"
#include "application/text_layer.h"
#include "client/notifications.h"
#include "client/version_resource.h"

namespace marrowpress {

bool HostFinishMessageLoop = false;

namespace {

constexpr std::int32_t kAttached = 0;
constexpr std::int32_t kNotAttached = -1;

}  // namespace

std::int32_t attachClient(void* module, IHostObject* provider, IHostObject* keepAlive,
                          const ClientRegistration* registration,
                          const ClientCallbacks& callbacks) {
    if (!provider) {
        return kNotAttached;
    }
    QsApiInterfacesC interfaces(*provider);
    if (!interfaces.main) {
        return kNotAttached;
    }
    interfaces.askWhoFreesTexts();

    // Held until the end of this function: a host that takes no reference of its own is not
    // attached, and lets the object go with everything that it holds.
    const InterfaceRef<QuillstoneNotificationsC> client(
        QuillstoneNotificationsC::create(std::move(interfaces), callbacks));
    const ClientRegistration own = registrationFromVersionResource();
    if (!registration && module) {
        registration = &own;
    }
    std::int32_t hostStatus = 0;
    client->main->attachClient(static_cast<IClientLifecycle*>(client.get()),
                               IHostMain::kInProcessClient, registration, &hostStatus);
    if (client->modules) {
        client->modules->useModule(module, &hostStatus);
    }
    initializeTextLayer();
    HostFinishMessageLoop = false;
    client->keptAlive = InterfaceRef<IHostObject>::share(keepAlive);
    return kAttached;
}

}  // namespace marrowpress
