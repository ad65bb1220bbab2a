#pragma once

#include <cstddef>
#include <cstdint>

#include "marrowpress/host_interfaces.h"
#include "marrowpress/interface_ref.h"

namespace marrowpress {

/// Stands between a client and a host, and lets no allocation of the host's operations fail: what a
/// host does without memory is its own matter. Must outlive the client.
class HostWithMemory final : public IHostMain,
                             public IHostText,
                             public IHostModules,
                             public IHostNotifications,
                             public IHostClients,
                             public IHostProperties,
                             public IHostProgress,
                             public IHostConsole {
public:
    explicit HostWithMemory(IHostObject& host);

    IHostObject& provider() { return static_cast<IHostMain&>(*this); }
    /// How many operations the client has asked for.
    std::size_t operations() const noexcept { return operations_; }

    ComStatus queryInterface(const InterfaceId& id, void** object) override;
    std::uint32_t addRef() override { return ++references_; }
    std::uint32_t release() override { return --references_; }

    ComStatus attachClient(IHostObject* notifications, std::uint32_t flags,
                           const ClientRegistration* registration,
                           std::int32_t* hostStatus) override;
    ComStatus query(std::uint32_t question, std::int32_t* answer) override;
    ComStatus enableUnicode(std::uint32_t on, std::int32_t* hostStatus) override;
    ComStatus useModule(void* module, std::int32_t* hostStatus) override;
    ComStatus registerNotification(std::uint32_t notification, std::uint32_t state,
                                   std::int32_t* hostStatus) override;
    ComStatus callClient(const char* client, const char* command, std::int32_t* result,
                         std::int32_t* hostStatus) override;
    ComStatus callClientTyped(const char* client, const char* command, HostTypedValueList* reply,
                              std::int32_t* hostStatus) override;
    ComStatus returnTypedValue(HostTypedValueList values, HostTypedValueList* answer,
                               std::int32_t* hostStatus) override;
    ComStatus getIntProp(std::uint32_t context, std::uint32_t object, std::uint32_t property,
                         std::int32_t* value, std::int32_t* hostStatus) override;
    ComStatus getIdProp(std::uint32_t context, std::uint32_t object, std::uint32_t property,
                        std::uint32_t* value, std::int32_t* hostStatus) override;
    ComStatus getStringProp(std::uint32_t context, std::uint32_t object, std::uint32_t property,
                            char** value, std::int32_t* hostStatus) override;
    ComStatus reportProgress(std::int32_t kind, const char* text, std::int32_t number,
                             std::int32_t* hostStatus) override;
    ComStatus write(const char* text, std::int32_t* hostStatus) override;

private:
    template <class Interface, class... Parameters>
    ComStatus passOn(const InterfaceRef<Interface>& host,
                     ComStatus (Interface::*method)(Parameters...), Parameters... arguments);

    InterfaceRef<IHostMain> main_;
    InterfaceRef<IHostText> text_;
    InterfaceRef<IHostModules> modules_;
    InterfaceRef<IHostNotifications> notifications_;
    InterfaceRef<IHostClients> clients_;
    InterfaceRef<IHostProperties> properties_;
    InterfaceRef<IHostProgress> progress_;
    InterfaceRef<IHostConsole> console_;
    std::uint32_t references_ = 0;
    std::size_t operations_ = 0;
};

}  // namespace marrowpress
