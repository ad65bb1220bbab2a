#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "application/connection.h"
#include "host/typed_record.h"

namespace marrowpress {

/// A host that answers what the test sets and writes every call down: for the failures that a
/// working host doesn't have.
///
/// Every method fills its out-parameters before it fails, so that a caller that takes them in spite
/// of the failure is found out.
class ScriptedHost : public IHostMain,
                     public IHostText,
                     public IHostModules,
                     public IHostNotifications,
                     public IHostClients,
                     public IHostProperties,
                     public IHostProgress,
                     public IHostConsole {
public:
    ScriptedHost() = default;
    ScriptedHost(const ScriptedHost&) = delete;
    ScriptedHost& operator=(const ScriptedHost&) = delete;
    virtual ~ScriptedHost();

    /// The object to hand to a client.
    IHostObject& provider() { return static_cast<IHostMain&>(*this); }

    // What the host answers.
    std::vector<InterfaceId> missing;  ///< interfaces that the host doesn't have
    ComStatus comStatus = kComOk;      ///< of every method but `query`
    std::int32_t hostStatus = 0;
    ComStatus questionStatus = kComOk;  ///< of `query`
    std::int32_t clientFreesTexts = 0;
    bool keepsClient = true;
    std::int32_t commandResult = 1;
    /// Makes the reply to a typed command, whose blocks are the caller's.
    std::function<HostTypedValueList()> makeReply = [] { return makeStringReply("reply"); };
    /// Properties by object and number; what isn't there reads as 0 or null.
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::int32_t> integers;
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> ids;
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::string> texts;
    /// Called with each line as it is added to `calls`.
    std::function<void(const std::string& call)> onCall;

    // What the host saw.
    std::vector<std::string> calls;
    std::uint32_t references = 0;  ///< that others hold
    std::uint32_t attachFlags = 0;
    void* module = nullptr;
    /// The texts of the registration block, a null pointer as "(null)"; empty without a block.
    std::optional<std::vector<std::string>> registration;
    IHostObject* client = nullptr;     ///< held if `keepsClient`
    std::vector<std::string> answers;  ///< the lists of values, as JSON

    /// Lets the client go.
    void dropClient();

    ComStatus queryInterface(const InterfaceId& id, void** object) override;
    std::uint32_t addRef() override { return ++references; }
    std::uint32_t release() override { return --references; }

    ComStatus attachClient(IHostObject* notifications, std::uint32_t flags,
                           const ClientRegistration* block, std::int32_t* status) override;
    ComStatus query(std::uint32_t question, std::int32_t* answer) override;
    ComStatus enableUnicode(std::uint32_t on, std::int32_t* status) override;
    ComStatus useModule(void* handle, std::int32_t* status) override;
    ComStatus registerNotification(std::uint32_t notification, std::uint32_t state,
                                   std::int32_t* status) override;
    ComStatus callClient(const char* name, const char* command, std::int32_t* result,
                         std::int32_t* status) override;
    ComStatus callClientTyped(const char* name, const char* command, HostTypedValueList* reply,
                              std::int32_t* status) override;
    ComStatus returnTypedValue(HostTypedValueList values, HostTypedValueList* answer,
                               std::int32_t* status) override;
    ComStatus getIntProp(std::uint32_t context, std::uint32_t object, std::uint32_t property,
                         std::int32_t* value, std::int32_t* status) override;
    ComStatus getIdProp(std::uint32_t context, std::uint32_t object, std::uint32_t property,
                        std::uint32_t* value, std::int32_t* status) override;
    ComStatus getStringProp(std::uint32_t context, std::uint32_t object, std::uint32_t property,
                            char** value, std::int32_t* status) override;
    ComStatus reportProgress(std::int32_t kind, const char* text, std::int32_t number,
                             std::int32_t* status) override;
    ComStatus write(const char* text, std::int32_t* status) override;

private:
    void* find(const InterfaceId& id);
    /// Writes `call` down and gives the outcome that the test set.
    ComStatus answered(const std::string& call, std::int32_t* status);
};

}  // namespace marrowpress
