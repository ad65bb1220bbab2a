#include "client/notifications.h"

#include <dlfcn.h>

#include <cstring>

#include "client/version_resource.h"

namespace marrowpress {
namespace {

constexpr char kFieldSeparator = '\x1E';

/// The path of the module that holds this code; empty when the system won't say.
std::string modulePath() {
    Dl_info info{};
    const bool isKnown = dladdr(reinterpret_cast<const void*>(&modulePath), &info) != 0;
    return isKnown && info.dli_fname ? info.dli_fname : "";
}

/// Runs `action`; what it throws ends here, for nothing may reach the host.
template <class Action>
ComStatus guarded(Action&& action) noexcept {
    try {
        return action();
    } catch (...) {
        return kComUnexpected;
    }
}

}  // namespace

NotificationRecord::NotificationRecord(const char* text) : text_(text ? text : "") {
    if (text) {
        fields_.push_back(text_.data());
        for (char& unit : text_) {
            if (unit == kFieldSeparator) {
                unit = '\0';
                fields_.push_back(&unit + 1);
            }
        }
    }
    fields_.push_back(nullptr);
}

std::uint32_t NotificationRecord::count() const noexcept {
    return static_cast<std::uint32_t>(fields_.size() - 1);
}

const char* NotificationRecord::asText() const noexcept {
    return reinterpret_cast<const char*>(this);
}

QuillstoneNotificationsC* QuillstoneNotificationsC::create(QsApiInterfacesC&& interfaces,
                                                           const ClientCallbacks& callbacks) {
    return new QuillstoneNotificationsC(std::move(interfaces), callbacks);
}

QuillstoneNotificationsC::QuillstoneNotificationsC(QsApiInterfacesC&& interfaces,
                                                   const ClientCallbacks& callbacks)
    : QsApiInterfacesC(std::move(interfaces)), callbacks_(callbacks) {
    connect();
}

std::uint32_t QuillstoneNotificationsC::callCount(Callback kind) const noexcept {
    return callCounts_[static_cast<std::size_t>(kind)];
}

void QuillstoneNotificationsC::count(Callback kind) noexcept {
    ++callCounts_[static_cast<std::size_t>(kind)];
}

ComStatus QuillstoneNotificationsC::queryInterface(const InterfaceId& id, void** object) {
    if (id == IClientLifecycle::kId || id == IHostObject::kId) {
        *object = static_cast<IClientLifecycle*>(this);
    } else if (id == IClientNotification::kId) {
        *object = static_cast<IClientNotification*>(this);
    } else if (id == IClientResources::kId) {
        *object = static_cast<IClientResources*>(this);
    } else {
        *object = nullptr;
        return kComNoInterface;
    }
    addRef();
    return kComOk;
}

std::uint32_t QuillstoneNotificationsC::addRef() {
    return ++references_;
}

std::uint32_t QuillstoneNotificationsC::release() {
    const std::uint32_t left = --references_;
    if (left == 0) {
        delete this;
    }
    return left;
}

ComStatus QuillstoneNotificationsC::initialize(std::uint32_t initCode) {
    return guarded([&] {
        count(Callback::kInitialize);
        callbacks_.onClientInitialize(initCode);
        return kComOk;
    });
}

ComStatus QuillstoneNotificationsC::terminate() {
    count(Callback::kTerminate);
    return kComOk;
}

ComStatus QuillstoneNotificationsC::notify(std::uint32_t notification, std::uint32_t objectId,
                                           const char* text, std::int32_t number) {
    return guarded([&] {
        count(Callback::kNotify);
        passOn(notification, objectId, text, number);
        return kComOk;
    });
}

void QuillstoneNotificationsC::passOn(std::uint32_t notification, std::uint32_t objectId,
                                      const char* text, std::int32_t number) {
    if (notification != kRecord) {
        callbacks_.onNotify(notification, objectId, text, number);
        return;
    }
    const NotificationRecord record(text);
    callbacks_.onNotify(notification, objectId, record.asText(), number);
}

ComStatus QuillstoneNotificationsC::getResource(const char* name, char** text) {
    return guarded([&] {
        count(Callback::kGetResource);
        const std::string path = modulePath();
        const char* const found = name ? versionResource(name) : path.c_str();
        *text = found ? strdup(found) : nullptr;
        return kComOk;
    });
}

}  // namespace marrowpress
