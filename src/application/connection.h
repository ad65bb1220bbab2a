#pragma once

#include "marrowpress/interface_ref.h"
#include "marrowpress/observer.h"

namespace marrowpress {

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
    InterfaceRef<IHostObject> keptAlive;

    InterfaceRef<IHostMain> main;
    InterfaceRef<IHostText> textSettings;
    InterfaceRef<IHostModules> modules;
    InterfaceRef<IHostNotifications> notifications;
    InterfaceRef<IHostClients> clients;
    InterfaceRef<IHostProperties> properties;
    InterfaceRef<IHostProgress> progress;
    InterfaceRef<IHostConsole> console;
    /// Wants to know what a run meets; optional.
    InterfaceRef<IHostObserver> observer;
    /// Wants to know references, too; optional.
    InterfaceRef<IHostReferenceObserver> referenceObserver;

    /// Whether texts that the host hands over are freed here.
    bool freesHostTexts = false;
};

}  // namespace marrowpress
