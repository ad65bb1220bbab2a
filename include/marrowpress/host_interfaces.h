#pragma once

#include <cstdint>

#include "marrowpress/typed_values.h"

/// What the module asks of the application that loads it, and what it offers
/// in return: small reference-counted interfaces, found by GUID.
///
/// The host hands `Q_ApiClientInit` one provider, whose `queryInterface` gives
/// out the host's interfaces. Only `IHostMain` is required; any other may be
/// missing, and what it would have done then fails quietly. In return the host
/// gets one notification object, through `IHostMain::attachClient`, that
/// answers for `IClientLifecycle`, `IClientNotification` and `IClientResources`.
///
/// All calls are synchronous and come on one thread. Nothing is thrown across
/// this boundary in either direction. All texts are UTF-8 and NUL-terminated.
namespace marrowpress {

/// Outcome of a call as such: negative means that the call didn't get through.
using ComStatus = std::int32_t;

inline constexpr ComStatus kComOk = 0;
inline constexpr ComStatus kComFailed = static_cast<ComStatus>(0x80004005U);
inline constexpr ComStatus kComNoInterface = static_cast<ComStatus>(0x80004002U);
inline constexpr ComStatus kComUnexpected = static_cast<ComStatus>(0x8000FFFFU);
/// The host is busy and its message filter refused the call.
inline constexpr ComStatus kComServerBusy = static_cast<ComStatus>(0x8001010AU);

struct InterfaceId {
    std::uint32_t data1;
    std::uint16_t data2;
    std::uint16_t data3;
    std::uint8_t data4[8];

    friend bool operator==(const InterfaceId&, const InterfaceId&) = default;
};

/// Base of every interface: lifetime by counting, further interfaces by GUID.
class IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x00}};

    /// Gives `*object` one reference to the interface `id`. When there is no such interface the
    /// status is negative and `*object` null.
    virtual ComStatus queryInterface(const InterfaceId& id, void** object) = 0;
    virtual std::uint32_t addRef() = 0;
    virtual std::uint32_t release() = 0;

protected:
    ~IHostObject() = default;
};

/// What a client says of itself when it attaches. A field that is empty or null
/// is not stated. Fields 0 and 1 are reserved.
struct ClientRegistration {
    enum Field : std::uint32_t {
        kClientName = 2,
        kClientType = 3,
        kFileDescription = 4,
        kClientProducts = 5,
        kClientFacet = 6,
        kClientFormatId = 7,
        kClientVendor = 8,
        kClientSuffix = 9,
        kClientInFormat = 10,
        kClientOutFormat = 11,
        kFieldCount = 12,
    };

    const char* fields[kFieldCount];
};

// The host's side. Each method returns whether the call got through; where
// there is a `hostStatus`, it is the host's own word on the matter, 0 for good.

/// Required of every host: the place where a client attaches.
class IHostMain : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x01}};
    /// The `flags` of a client that lives in the host's process.
    static constexpr std::uint32_t kInProcessClient = 0x18000000;

    /// Takes a reference on `notifications`; `registration` is only read during the call and may
    /// be null.
    virtual ComStatus attachClient(IHostObject* notifications, std::uint32_t flags,
                                   const ClientRegistration* registration,
                                   std::int32_t* hostStatus) = 0;

protected:
    ~IHostMain() = default;
};

class IHostText : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x02}};
    /// The question whether the client has to `free` texts that the host hands over.
    static constexpr std::uint32_t kClientFreesTexts = 1;

    virtual ComStatus query(std::uint32_t question, std::int32_t* answer) = 0;
    virtual ComStatus enableUnicode(std::uint32_t on, std::int32_t* hostStatus) = 0;

protected:
    ~IHostText() = default;
};

class IHostModules : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x03}};

    /// Tells the host which loaded module the client lives in.
    virtual ComStatus useModule(void* module, std::int32_t* hostStatus) = 0;

protected:
    ~IHostModules() = default;
};

class IHostNotifications : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x04}};

    /// Turns a notification on (`state` 1) or off (0) for the attached client.
    virtual ComStatus registerNotification(std::uint32_t notification, std::uint32_t state,
                                           std::int32_t* hostStatus) = 0;

protected:
    ~IHostNotifications() = default;
};

/// Calls from client to client, each run to its end within the call.
class IHostClients : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x05}};

    /// `*result` is the other client's own status.
    virtual ComStatus callClient(const char* client, const char* command, std::int32_t* result,
                                 std::int32_t* hostStatus) = 0;
    /// `*reply` belongs to the caller afterwards.
    virtual ComStatus callClientTyped(const char* client, const char* command,
                                      HostTypedValueList* reply, std::int32_t* hostStatus) = 0;
    /// Answers the client call that is being handled. The blocks of `values` belong to the host
    /// afterwards, those of `*answer` to the caller.
    virtual ComStatus returnTypedValue(HostTypedValueList values, HostTypedValueList* answer,
                                       std::int32_t* hostStatus) = 0;

protected:
    ~IHostClients() = default;
};

/// Properties of the session (object 0) and of open documents. `context` is always 0.
class IHostProperties : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x06}};

    virtual ComStatus getIntProp(std::uint32_t context, std::uint32_t object,
                                 std::uint32_t property, std::int32_t* value,
                                 std::int32_t* hostStatus) = 0;
    virtual ComStatus getIdProp(std::uint32_t context, std::uint32_t object, std::uint32_t property,
                                std::uint32_t* value, std::int32_t* hostStatus) = 0;
    /// `*value` is null when there is no such property. Who frees it is what the host answers to
    /// `IHostText::kClientFreesTexts`; a host without that answer keeps it alive until its next
    /// call.
    virtual ComStatus getStringProp(std::uint32_t context, std::uint32_t object,
                                    std::uint32_t property, char** value,
                                    std::int32_t* hostStatus) = 0;

protected:
    ~IHostProperties() = default;
};

class IHostProgress : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x07}};

    virtual ComStatus reportProgress(std::int32_t kind, const char* text, std::int32_t number,
                                     std::int32_t* hostStatus) = 0;

protected:
    ~IHostProgress() = default;
};

class IHostConsole : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x08}};

    /// `text` is handed over as it is, CR and LF included, whatever percent signs it holds.
    virtual ComStatus write(const char* text, std::int32_t* hostStatus) = 0;

protected:
    ~IHostConsole() = default;
};

// The client's side, all answered by the one notification object.

class IClientLifecycle : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x09}};
    /// The code of the one initialisation that subscribes the client.
    static constexpr std::uint32_t kInitialize = 1;

    virtual ComStatus initialize(std::uint32_t initCode) = 0;
    virtual ComStatus terminate() = 0;

protected:
    ~IClientLifecycle() = default;
};

class IClientNotification : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x0a}};
    /// Another client of the host calls this one; `text` is what it says.
    static constexpr std::uint32_t kClientCall = 13;
    /// `text` is a record of fields, separated by the byte 0x1E.
    static constexpr std::uint32_t kRecord = 75;

    /// `text` stays the host's. A status of `kComUnexpected` says that the client could not even
    /// begin to handle the notification; nothing was answered then.
    virtual ComStatus notify(std::uint32_t notification, std::uint32_t objectId, const char* text,
                             std::int32_t number) = 0;

protected:
    ~IClientNotification() = default;
};

class IClientResources : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x0b}};

    /// Gives the path of the module (`name` null), or the module's own text of that name. `*text`
    /// comes from `malloc` and is the caller's; null when there is none.
    virtual ComStatus getResource(const char* name, char** text) = 0;

protected:
    ~IClientResources() = default;
};

}  // namespace marrowpress
