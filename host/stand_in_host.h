#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/stand_in_host_options.h"
#include "host/typed_record.h"
#include "marrowpress/client_entry.h"

namespace marrowpress {

class StandInInterfaces;

/// Stands in for the application: offers its interfaces to one client and calls it as the
/// application would.
///
///     StandInHost host(options);
///     if (host.attach(entry) && host.initialize()) {
///         const std::optional<TypedValues> answer = host.send(request);
///     }
///
/// What a sink throws ends in the interface method that called it, as a failed call. What ends a
/// run early, though, is thrown into the client, which has to withstand that: that the resolver has
/// no answer, or that the run was interrupted. Each further operation of the request throws it as
/// well, but for those with which a client lets something go, or answers.
class StandInHost {
public:
    explicit StandInHost(StandInHostOptions options = {});
    StandInHost(const StandInHost&) = delete;
    StandInHost& operator=(const StandInHost&) = delete;
    /// Detaches the client, whose module must still be loaded.
    ~StandInHost();

    /// The object that hands out the host's interfaces. It lives as long as this host, and longer
    /// while somebody holds a reference.
    IHostObject& provider();

    /// References to the host's interfaces that others hold: 0 when a client has let all go.
    std::uint32_t referenceCount() const;

    /// Lets the client behind `entry` attach itself; `module` is its handle, which may be null.
    /// False when the client refuses or attaches nothing.
    [[nodiscard]] bool attach(ClientEntry entry, void* module = nullptr);

    /// Starts the attached client; false when there is none, or its start fails.
    [[nodiscard]] bool initialize(std::uint32_t initCode = IClientLifecycle::kInitialize);

    /// Whether the client has turned `notification` on.
    bool isSubscribed(std::uint32_t notification) const;

    /// Calls the client with notification 13, up to the first NUL of `text`, and returns what it
    /// handed to `returnTypedValue`, the last if it did so more than once.
    ///
    /// Empty when no answer came: the client hasn't subscribed, or it answered nothing.
    ///
    /// @throws what was thrown into the client: `RunInterrupted`, or what the resolver throws. An
    ///         answer is lost then.
    std::optional<TypedValues> send(const std::string& text);

    /// Terminates the client and lets it go. Does nothing when none is attached.
    void detach();

private:
    std::shared_ptr<StandInInterfaces> interfaces_;
    bool isStarted_ = false;
};

}  // namespace marrowpress
