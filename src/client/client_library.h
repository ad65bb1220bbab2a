#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "marrowpress/host_interfaces.h"

/// The connection to the host, and the little state that lasts as long as the
/// module: nothing of a request is kept here.
namespace marrowpress {

/// Owner of one reference to a host object; may be null.
template <class Interface>
class HostRef {
public:
    HostRef() = default;
    /// Takes over a reference that the caller holds.
    explicit HostRef(Interface* held) noexcept : object_(held) {}
    HostRef(HostRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    HostRef& operator=(HostRef&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~HostRef() {
        if (object_) {
            object_->release();
        }
    }

    /// Asks `provider` for the interface; null when it has none.
    static HostRef query(IHostObject& provider) {
        void* found = nullptr;
        if (provider.queryInterface(Interface::kId, &found) < 0) {
            return HostRef();
        }
        return HostRef(static_cast<Interface*>(found));
    }

    /// Takes a reference of its own on `object`, which may be null.
    static HostRef share(Interface* object) {
        if (object) {
            object->addRef();
        }
        return HostRef(object);
    }

    Interface* get() const noexcept { return object_; }
    Interface* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

private:
    Interface* object_ = nullptr;
};

/// The host's interfaces, each null when the host doesn't have it.
///
/// The host operations go through the one object that was connected last;
/// while there is none they fail as they do for a missing interface.
class QsApiInterfacesC {
public:
    /// Asks `provider` for each interface. What it doesn't have stays null. Connects nothing.
    explicit QsApiInterfacesC(IHostObject& provider);
    /// Connects what was not connected; the operations follow the object that they were moved to.
    QsApiInterfacesC(QsApiInterfacesC&& other) noexcept;
    QsApiInterfacesC& operator=(QsApiInterfacesC&&) = delete;
    ~QsApiInterfacesC();

    /// Asks the host once whether texts that it hands over are freed here.
    void askWhoFreesTexts();

    /// From now on the host operations go through this object, until it ends.
    void connect() noexcept;

    /// The connected object, or null.
    static QsApiInterfacesC* connected() noexcept;

    /// What the host asked to keep; null for nothing. Released behind all interfaces, whose code it
    /// may keep loaded.
    HostRef<IHostObject> keptAlive;

    HostRef<IHostMain> main;
    HostRef<IHostText> textSettings;
    HostRef<IHostModules> modules;
    HostRef<IHostNotifications> notifications;
    HostRef<IHostClients> clients;
    HostRef<IHostProperties> properties;
    HostRef<IHostProgress> progress;
    HostRef<IHostConsole> console;

    /// Whether texts that the host hands over are freed here.
    bool freesHostTexts = false;
};

/// Chooses the narrow encoding of all texts between this client and the host. Gives false, and
/// changes nothing, for a name that isn't one of the library's.
bool HostSetClientEncoding(std::string_view name);

/// The chosen encoding; empty before the text layer was initialised.
std::string_view hostClientEncoding() noexcept;

/// Makes text ready to cross: chooses "QuillRoman" if nothing was chosen yet, and shows ICU
/// the host's data folder if ICU has none and the host names one.
void initializeTextLayer();

/// Whether the message loop of a client that runs as a process of its own is to end. This module
/// runs no such loop.
extern bool HostFinishMessageLoop;

}  // namespace marrowpress
