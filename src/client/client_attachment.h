#pragma once

#include <cstdint>

#include "marrowpress/host_interfaces.h"

namespace marrowpress {

struct ClientCallbacks;

/// Whether the message loop of a client that runs as a process of its own is to end. This module
/// runs no such loop.
extern bool HostFinishMessageLoop;

/// Attaches a client to the host that `provider` stands for; what `Q_ApiClientInit` does, with
/// the same arguments and results. `callbacks` is copied.
std::int32_t attachClient(void* module, IHostObject* provider, IHostObject* keepAlive,
                          const ClientRegistration* registration, const ClientCallbacks& callbacks);

}  // namespace marrowpress
