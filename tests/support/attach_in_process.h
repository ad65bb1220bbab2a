#pragma once

#include <cstdint>

#include "client/client_attachment.h"
#include "client/notifications.h"
#include "client/request_dispatch.h"

namespace marrowpress {

/// What the module's exported function does, for a client that is linked into the test's program.
inline std::int32_t attachInProcess(void* module, IHostObject* provider, IHostObject* keepAlive,
                                    const ClientRegistration* registration) {
    return attachClient(module, provider, keepAlive, registration,
                        {&onClientInitialize, &onNotify});
}

}  // namespace marrowpress
