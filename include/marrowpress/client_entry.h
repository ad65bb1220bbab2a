#pragma once

#include <cstdint>

#include "marrowpress/host_interfaces.h"

/// The one symbol that the module exports.
///
/// `module` is the handle of the loaded module and may be null. `provider`
/// hands out the host's interfaces. `keepAlive`, which may be null, gets one
/// reference that is released together with the notification object. Without
/// a `registration` the module describes itself.
///
/// Returns 0 when the client is attached, and -1, with nothing kept, when there
/// is no provider or the provider has no `IHostMain`. Nothing is thrown.
extern "C" std::int32_t Q_ApiClientInit(void* module, marrowpress::IHostObject* provider,
                                        marrowpress::IHostObject* keepAlive,
                                        const marrowpress::ClientRegistration* registration);

namespace marrowpress {

using ClientEntry = decltype(&Q_ApiClientInit);
inline constexpr const char* kClientEntryName = "Q_ApiClientInit";

}  // namespace marrowpress
