#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>

#include "host/stand_in_host_options.h"
#include "host/typed_record.h"
#include "host/xml_utilities.h"
#include "marrowpress/host_interfaces.h"
#include "marrowpress/interface_ref.h"
#include "marrowpress/observer.h"

namespace marrowpress {

/// The one object behind all interfaces of the stand-in host.
///
/// It is held by its `shared_ptr`s, and holds itself while references by count are out: a client
/// that forgets to release one leaks the object, and never calls into a dead one.
class StandInInterfaces final : public IHostMain,
                                public IHostText,
                                public IHostModules,
                                public IHostNotifications,
                                public IHostClients,
                                public IHostProperties,
                                public IHostProgress,
                                public IHostConsole,
                                public IHostObserver,
                                public IHostReferenceObserver,
                                public std::enable_shared_from_this<StandInInterfaces> {
public:
    explicit StandInInterfaces(StandInHostOptions options);

    IHostObject& provider() { return static_cast<IHostMain&>(*this); }
    std::uint32_t referenceCount() const { return references_; }
    /// The client's notification object; null when none is attached.
    IHostObject* client() const { return client_.get(); }
    void releaseClient();
    bool isSubscribed(std::uint32_t notification) const;
    /// Opens a client call; its answer is what is returned until `endCall`.
    void beginCall();
    /// @throws what an operation of the call threw to end it.
    std::optional<TypedValues> endCall();

    ComStatus queryInterface(const InterfaceId& id, void** object) override;
    std::uint32_t addRef() override;
    std::uint32_t release() override;

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
    ComStatus observe(const Observation* observation) override;
    ComStatus observeReference(const Observation* observation) override;

private:
    const OpenDocument* findDocument(std::uint32_t id) const;
    std::optional<std::uint32_t> idProperty(std::uint32_t object, std::uint32_t property) const;
    bool hasXmlUtilities(std::string_view client) const;
    void tellDocument(const XmlUtilitiesCommand& command) const;
    std::optional<std::string> resolve(std::string_view command);
    /// Throws when the call that is open is to end early.
    void requireGoingOn();

    const StandInHostOptions options_;
    std::unordered_map<std::uint32_t, const OpenDocument*> documentsById_;
    std::uint32_t references_ = 0;
    std::shared_ptr<StandInInterfaces> self_;
    InterfaceRef<IHostObject> client_;
    std::set<std::uint32_t> notifications_;
    bool isInCall_ = false;
    std::optional<TypedValues> answer_;
    std::exception_ptr failure_;  ///< Why the call is to end early.
};

}  // namespace marrowpress
