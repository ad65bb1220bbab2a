#pragma once

#include <cstdint>

namespace marrowpress {

/// Gets the client ready and subscribes it to client calls. Only the code 1 does anything.
void onClientInitialize(std::uint32_t initCode);

/// Serves a client call: `text` is one JSON request in UTF-8, and the answer goes back through
/// `HostReturnTypedValue` before this returns. Any other notification is ignored.
///
/// A run that fails is a negative status in the answer. The documents, tables and singletons of
/// the request are gone when this returns.
///
/// One request at a time: a client call that comes while one is being served, out of a host
/// operation or on another thread, is answered with a failed run and changes nothing.
///
/// @throws whatever keeps the XML platform from being initialised; nothing is answered then.
void onNotify(std::uint32_t notification, std::uint32_t objectId, const char* text,
              std::int32_t number);

}  // namespace marrowpress
