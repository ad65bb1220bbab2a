#include "tests/support/host_with_memory.h"

#include "host/give_interface.h"
#include "tests/support/failing_allocations.h"

namespace marrowpress {

HostWithMemory::HostWithMemory(IHostObject& host)
    : main_(InterfaceRef<IHostMain>::query(&host)),
      text_(InterfaceRef<IHostText>::query(&host)),
      modules_(InterfaceRef<IHostModules>::query(&host)),
      notifications_(InterfaceRef<IHostNotifications>::query(&host)),
      clients_(InterfaceRef<IHostClients>::query(&host)),
      properties_(InterfaceRef<IHostProperties>::query(&host)),
      progress_(InterfaceRef<IHostProgress>::query(&host)),
      console_(InterfaceRef<IHostConsole>::query(&host)) {}

template <class Interface, class... Parameters>
ComStatus HostWithMemory::passOn(const InterfaceRef<Interface>& host,
                                 ComStatus (Interface::*method)(Parameters...),
                                 Parameters... arguments) {
    const UnfailingAllocations ofHost;
    ++operations_;
    return (host.get()->*method)(arguments...);
}

ComStatus HostWithMemory::queryInterface(const InterfaceId& id, void** object) {
    *object = nullptr;
    const bool isFound =
        giveInterface<IHostMain, IHostText, IHostModules, IHostNotifications, IHostClients,
                      IHostProperties, IHostProgress, IHostConsole>(*this, id, object) ||
        giveInterface<IHostObject>(provider(), id, object);
    if (!isFound) {
        return kComNoInterface;
    }
    addRef();
    return kComOk;
}

ComStatus HostWithMemory::attachClient(IHostObject* notifications, std::uint32_t flags,
                                       const ClientRegistration* registration,
                                       std::int32_t* hostStatus) {
    return passOn(main_, &IHostMain::attachClient, notifications, flags, registration, hostStatus);
}

ComStatus HostWithMemory::query(std::uint32_t question, std::int32_t* answer) {
    return passOn(text_, &IHostText::query, question, answer);
}

ComStatus HostWithMemory::enableUnicode(std::uint32_t on, std::int32_t* hostStatus) {
    return passOn(text_, &IHostText::enableUnicode, on, hostStatus);
}

ComStatus HostWithMemory::useModule(void* module, std::int32_t* hostStatus) {
    return passOn(modules_, &IHostModules::useModule, module, hostStatus);
}

ComStatus HostWithMemory::registerNotification(std::uint32_t notification, std::uint32_t state,
                                               std::int32_t* hostStatus) {
    return passOn(notifications_, &IHostNotifications::registerNotification, notification, state,
                  hostStatus);
}

ComStatus HostWithMemory::callClient(const char* client, const char* command, std::int32_t* result,
                                     std::int32_t* hostStatus) {
    return passOn(clients_, &IHostClients::callClient, client, command, result, hostStatus);
}

ComStatus HostWithMemory::callClientTyped(const char* client, const char* command,
                                          HostTypedValueList* reply, std::int32_t* hostStatus) {
    return passOn(clients_, &IHostClients::callClientTyped, client, command, reply, hostStatus);
}

ComStatus HostWithMemory::returnTypedValue(HostTypedValueList values, HostTypedValueList* answer,
                                           std::int32_t* hostStatus) {
    return passOn(clients_, &IHostClients::returnTypedValue, values, answer, hostStatus);
}

ComStatus HostWithMemory::getIntProp(std::uint32_t context, std::uint32_t object,
                                     std::uint32_t property, std::int32_t* value,
                                     std::int32_t* hostStatus) {
    return passOn(properties_, &IHostProperties::getIntProp, context, object, property, value,
                  hostStatus);
}

ComStatus HostWithMemory::getIdProp(std::uint32_t context, std::uint32_t object,
                                    std::uint32_t property, std::uint32_t* value,
                                    std::int32_t* hostStatus) {
    return passOn(properties_, &IHostProperties::getIdProp, context, object, property, value,
                  hostStatus);
}

ComStatus HostWithMemory::getStringProp(std::uint32_t context, std::uint32_t object,
                                        std::uint32_t property, char** value,
                                        std::int32_t* hostStatus) {
    return passOn(properties_, &IHostProperties::getStringProp, context, object, property, value,
                  hostStatus);
}

ComStatus HostWithMemory::reportProgress(std::int32_t kind, const char* text, std::int32_t number,
                                         std::int32_t* hostStatus) {
    return passOn(progress_, &IHostProgress::reportProgress, kind, text, number, hostStatus);
}

ComStatus HostWithMemory::write(const char* text, std::int32_t* hostStatus) {
    return passOn(console_, &IHostConsole::write, text, hostStatus);
}

}  // namespace marrowpress
