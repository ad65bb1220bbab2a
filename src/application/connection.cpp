#include "application/connection.h"

#include <utility>

namespace marrowpress {
namespace {

QsApiInterfacesC* connectedInterfaces = nullptr;

}  // namespace

QsApiInterfacesC::QsApiInterfacesC(IHostObject& provider)
    : main(InterfaceRef<IHostMain>::query(&provider)),
      textSettings(InterfaceRef<IHostText>::query(&provider)),
      modules(InterfaceRef<IHostModules>::query(&provider)),
      notifications(InterfaceRef<IHostNotifications>::query(&provider)),
      clients(InterfaceRef<IHostClients>::query(&provider)),
      properties(InterfaceRef<IHostProperties>::query(&provider)),
      progress(InterfaceRef<IHostProgress>::query(&provider)),
      console(InterfaceRef<IHostConsole>::query(&provider)),
      observer(InterfaceRef<IHostObserver>::query(&provider)),
      referenceObserver(InterfaceRef<IHostReferenceObserver>::query(&provider)) {}

QsApiInterfacesC::QsApiInterfacesC(QsApiInterfacesC&& other) noexcept
    : keptAlive(std::move(other.keptAlive)),
      main(std::move(other.main)),
      textSettings(std::move(other.textSettings)),
      modules(std::move(other.modules)),
      notifications(std::move(other.notifications)),
      clients(std::move(other.clients)),
      properties(std::move(other.properties)),
      progress(std::move(other.progress)),
      console(std::move(other.console)),
      observer(std::move(other.observer)),
      referenceObserver(std::move(other.referenceObserver)),
      freesHostTexts(other.freesHostTexts) {
    if (connectedInterfaces == &other) {
        connect();
    }
}

QsApiInterfacesC::~QsApiInterfacesC() {
    if (connectedInterfaces == this) {
        connectedInterfaces = nullptr;
    }
}

void QsApiInterfacesC::askWhoFreesTexts() {
    std::int32_t answer = 0;
    if (textSettings && textSettings->query(IHostText::kClientFreesTexts, &answer) >= 0) {
        freesHostTexts = answer != 0;
    }
}

void QsApiInterfacesC::connect() noexcept {
    connectedInterfaces = this;
}

QsApiInterfacesC* QsApiInterfacesC::connected() noexcept {
    return connectedInterfaces;
}

}  // namespace marrowpress
