#include "application/host_operations.h"

#include <cstring>

#include "application/connection.h"
#include "support/publish_exception.h"

namespace marrowpress {
namespace {

bool hasThrown = false;

/// Calls one method of the host's interface `member`, which gets the host's status as its last
/// argument. Gives true when the call got through and the host agreed.
///
/// `hostStatus`, if it isn't null, receives the host's own status, or the failure as in
/// `HostLastError` when there is none.
template <class Interface, class Call>
bool callHost(InterfaceRef<Interface> QsApiInterfacesC::*member, Call&& call,
              std::int32_t* hostStatus = nullptr) {
    const QsApiInterfacesC* host = QsApiInterfacesC::connected();
    Interface* const interface = host ? (host->*member).get() : nullptr;
    std::int32_t status = kHostErrorUnavailable;
    if (interface) {
        guardHostCall([&] {
            std::int32_t answered = 0;
            const ComStatus com = call(*interface, &answered);
            if (com >= 0) {
                status = answered;
            } else if (com == kComServerBusy) {
                status = kHostErrorBusy;
            }
        });
    }
    if (hostStatus) {
        *hostStatus = status;
    }
    if (status != 0) {
        HostLastError = status;
    }
    return status == 0;
}

}  // namespace

bool hasHostThrown() noexcept {
    return hasThrown;
}

void forgetHostExceptions() noexcept {
    hasThrown = false;
}

void rememberHostException() noexcept {
    hasThrown = true;
}

void requireWorkingHost() {
    if (hasThrown) {
        throw PublishException();
    }
}

std::int32_t HostLastError = 0;

void HostEnableUnicode(std::uint32_t on) {
    callHost(&QsApiInterfacesC::textSettings, [&](IHostText& text, std::int32_t* hostStatus) {
        return text.enableUnicode(on, hostStatus);
    });
}

std::int32_t HostRegisterNotification(std::uint32_t notification, std::uint32_t state) {
    std::int32_t status = 0;
    callHost(
        &QsApiInterfacesC::notifications,
        [&](IHostNotifications& notifications, std::int32_t* hostStatus) {
            return notifications.registerNotification(notification, state, hostStatus);
        },
        &status);
    return status;
}

std::int32_t HostCallClient(const char* client, const char* command) {
    std::int32_t result = 0;
    const bool isCalled =
        callHost(&QsApiInterfacesC::clients, [&](IHostClients& clients, std::int32_t* hostStatus) {
            return clients.callClient(client, command, &result, hostStatus);
        });
    return isCalled ? result : 0;
}

HostTypedValues HostCallClientTyped(const char* client, const char* command) {
    HostTypedValues reply;
    const bool isCalled =
        callHost(&QsApiInterfacesC::clients, [&](IHostClients& clients, std::int32_t* hostStatus) {
            return clients.callClientTyped(client, command, &reply.list(), hostStatus);
        });
    return isCalled ? std::move(reply) : HostTypedValues();
}

HostTypedValues HostReturnTypedValue(HostTypedValues values) {
    HostTypedValues answer;
    const bool isCalled =
        callHost(&QsApiInterfacesC::clients, [&](IHostClients& clients, std::int32_t* hostStatus) {
            return clients.returnTypedValue(values.release(), &answer.list(), hostStatus);
        });
    return isCalled ? std::move(answer) : HostTypedValues();
}

std::int32_t HostGetIntProp(std::uint32_t context, std::uint32_t object, HostProperty property) {
    std::int32_t value = 0;
    const bool isRead = callHost(
        &QsApiInterfacesC::properties, [&](IHostProperties& properties, std::int32_t* hostStatus) {
            return properties.getIntProp(context, object, static_cast<std::uint32_t>(property),
                                         &value, hostStatus);
        });
    return isRead ? value : 0;
}

std::uint32_t HostGetIdProp(std::uint32_t context, std::uint32_t object, HostProperty property) {
    std::uint32_t value = 0;
    const bool isRead = callHost(
        &QsApiInterfacesC::properties, [&](IHostProperties& properties, std::int32_t* hostStatus) {
            return properties.getIdProp(context, object, static_cast<std::uint32_t>(property),
                                        &value, hostStatus);
        });
    return isRead ? value : 0;
}

HostText HostGetStringProp(std::uint32_t context, std::uint32_t object, HostProperty property) {
    char* value = nullptr;
    const bool isRead = callHost(
        &QsApiInterfacesC::properties, [&](IHostProperties& properties, std::int32_t* hostStatus) {
            return properties.getStringProp(context, object, static_cast<std::uint32_t>(property),
                                            &value, hostStatus);
        });
    const QsApiInterfacesC* host = QsApiInterfacesC::connected();
    HostText handedOver(host && host->freesHostTexts ? value : nullptr);
    if (!isRead || !value) {
        return nullptr;
    }
    return handedOver ? std::move(handedOver) : HostText(strdup(value));
}

std::int32_t HostReportProgress(std::int32_t kind, const char* text, std::int32_t number) {
    std::int32_t status = 0;
    callHost(
        &QsApiInterfacesC::progress,
        [&](IHostProgress& progress, std::int32_t* hostStatus) {
            return progress.reportProgress(kind, text, number, hostStatus);
        },
        &status);
    return status;
}

std::int32_t HostConsoleWrite(const char* text) {
    std::int32_t status = 0;
    callHost(
        &QsApiInterfacesC::console,
        [&](IHostConsole& console, std::int32_t* hostStatus) {
            return console.write(text, hostStatus);
        },
        &status);
    return status;
}

}  // namespace marrowpress
