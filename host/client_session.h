#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "host/client_module.h"
#include "host/stand_in_host.h"

namespace marrowpress {

/// A stand-in host with a loaded client that has been started; ends in the order that both need.
class ClientSession {
public:
    /// @throws std::runtime_error when the module at `modulePath` cannot be loaded, or its client
    ///         refuses to attach or to start.
    explicit ClientSession(StandInHostOptions options,
                           const std::filesystem::path& modulePath = defaultModulePath());

    /// One request and its answer, as `StandInHost::send`.
    std::optional<TypedValues> send(const std::string& text) { return host_.send(text); }

private:
    ClientModule module_;
    StandInHost host_;
};

}  // namespace marrowpress
