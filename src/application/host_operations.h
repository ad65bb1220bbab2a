#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "marrowpress/properties.h"
#include "marrowpress/typed_values.h"

/// All that the system asks of the host: one plain function for each operation.
///
/// A function calls one method of one host interface. When that fails it leaves
/// the reason in `HostLastError` and gives its failure value; nothing is thrown,
/// and callers run on with what they got:
///
/// - the interface is missing: -1;
/// - the call didn't get through: -88 when the host was busy, else -1;
/// - the host threw something: -1, and it is remembered, so that the run can end where that is
///   safe. Nothing that a host throws passes through the engine or a destructor;
/// - the host refused: the host's own status.
namespace marrowpress {

/// Whether a call of the host has thrown since the last `forgetHostExceptions`.
bool hasHostThrown() noexcept;
void forgetHostExceptions() noexcept;

/// Ends a run whose host has thrown; called before a document is read or written.
///
/// @throws PublishException if `hasHostThrown`.
void requireWorkingHost();

/// Remembers that a call of the host has thrown.
void rememberHostException() noexcept;

/// Runs `call`, which calls the host. What it throws is remembered and goes no further.
template <class Call>
void guardHostCall(Call&& call) noexcept {
    try {
        call();
    } catch (...) {
        rememberHostException();
    }
}

/// The last failure of any host operation. A success leaves it as it is.
extern std::int32_t HostLastError;

inline constexpr std::int32_t kHostErrorUnavailable = -1;
inline constexpr std::int32_t kHostErrorBusy = -88;

/// Releases what came from the allocator of the host boundary.
struct HostFree {
    void operator()(void* block) const noexcept { std::free(block); }
};

/// A text of the host's that the caller owns now; may be null.
using HostText = std::unique_ptr<char, HostFree>;

void HostEnableUnicode(std::uint32_t on);

/// Gives the host's status, 0 when good.
std::int32_t HostRegisterNotification(std::uint32_t notification, std::uint32_t state);

/// Gives the other client's status, 0 when the call fails.
std::int32_t HostCallClient(const char* client, const char* command);

/// Gives the other client's reply, empty when the call fails.
HostTypedValues HostCallClientTyped(const char* client, const char* command);

/// Hands `values` to the caller of the client call that is being handled. They are the host's
/// from then on; without a host they are released.
HostTypedValues HostReturnTypedValue(HostTypedValues values);

/// 0 when the read fails. `context` is always 0.
std::int32_t HostGetIntProp(std::uint32_t context, std::uint32_t object, HostProperty property);

/// 0 when the read fails.
std::uint32_t HostGetIdProp(std::uint32_t context, std::uint32_t object, HostProperty property);

/// Null when the read fails.
HostText HostGetStringProp(std::uint32_t context, std::uint32_t object, HostProperty property);

/// Gives the host's status.
std::int32_t HostReportProgress(std::int32_t kind, const char* text, std::int32_t number);

/// Hands `text` over as it is. Gives the host's status.
std::int32_t HostConsoleWrite(const char* text);

}  // namespace marrowpress
