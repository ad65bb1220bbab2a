#include "tests/support/scripted_host.h"

#include <algorithm>
#include <boost/json/serialize.hpp>

namespace marrowpress {

ScriptedHost::~ScriptedHost() {
    dropClient();
}

void ScriptedHost::dropClient() {
    if (IHostObject* const held = std::exchange(client, nullptr)) {
        held->release();
    }
}

void* ScriptedHost::find(const InterfaceId& id) {
    if (id == IHostMain::kId || id == IHostObject::kId) {
        return static_cast<IHostMain*>(this);
    }
    if (id == IHostText::kId) {
        return static_cast<IHostText*>(this);
    }
    if (id == IHostModules::kId) {
        return static_cast<IHostModules*>(this);
    }
    if (id == IHostNotifications::kId) {
        return static_cast<IHostNotifications*>(this);
    }
    if (id == IHostClients::kId) {
        return static_cast<IHostClients*>(this);
    }
    if (id == IHostProperties::kId) {
        return static_cast<IHostProperties*>(this);
    }
    if (id == IHostProgress::kId) {
        return static_cast<IHostProgress*>(this);
    }
    if (id == IHostConsole::kId) {
        return static_cast<IHostConsole*>(this);
    }
    return nullptr;
}

ComStatus ScriptedHost::queryInterface(const InterfaceId& id, void** object) {
    const bool isMissing = std::find(missing.begin(), missing.end(), id) != missing.end();
    *object = isMissing ? nullptr : find(id);
    if (!*object) {
        return kComNoInterface;
    }
    addRef();
    return kComOk;
}

ComStatus ScriptedHost::answered(const std::string& call, std::int32_t* status) {
    calls.push_back(call);
    if (onCall) {
        onCall(call);
    }
    *status = hostStatus;
    return comStatus;
}

ComStatus ScriptedHost::attachClient(IHostObject* notifications, std::uint32_t flags,
                                     const ClientRegistration* block, std::int32_t* status) {
    attachFlags = flags;
    registration.reset();
    if (block) {
        registration.emplace();
        for (const char* text : block->fields) {
            registration->emplace_back(text ? text : "(null)");
        }
    }
    if (keepsClient) {
        client = notifications;
        client->addRef();
    }
    return answered("attachClient", status);
}

ComStatus ScriptedHost::query(std::uint32_t question, std::int32_t* answer) {
    std::int32_t ignored = 0;
    answered("query " + std::to_string(question), &ignored);
    *answer = clientFreesTexts;
    return questionStatus;
}

ComStatus ScriptedHost::enableUnicode(std::uint32_t on, std::int32_t* status) {
    return answered("enableUnicode " + std::to_string(on), status);
}

ComStatus ScriptedHost::useModule(void* handle, std::int32_t* status) {
    module = handle;
    return answered("useModule", status);
}

ComStatus ScriptedHost::registerNotification(std::uint32_t notification, std::uint32_t state,
                                             std::int32_t* status) {
    return answered(
        "registerNotification " + std::to_string(notification) + " " + std::to_string(state),
        status);
}

ComStatus ScriptedHost::callClient(const char* name, const char* command, std::int32_t* result,
                                   std::int32_t* status) {
    *result = commandResult;
    return answered(std::string("callClient ") + name + ": " + command, status);
}

ComStatus ScriptedHost::callClientTyped(const char* name, const char* command,
                                        HostTypedValueList* reply, std::int32_t* status) {
    *reply = makeReply();
    return answered(std::string("callClientTyped ") + name + ": " + command, status);
}

ComStatus ScriptedHost::returnTypedValue(HostTypedValueList values, HostTypedValueList* answer,
                                         std::int32_t* status) {
    const HostTypedValues owner(values);
    answers.push_back(boost::json::serialize(toJson(copyTypedValues(values))));
    *answer = makeStringReply("received");
    return answered("returnTypedValue", status);
}

ComStatus ScriptedHost::getIntProp(std::uint32_t context, std::uint32_t object,
                                   std::uint32_t property, std::int32_t* value,
                                   std::int32_t* status) {
    const auto found = integers.find({object, property});
    *value = found == integers.end() ? 0 : found->second;
    return answered("getIntProp " + std::to_string(context) + " " + std::to_string(object) + " " +
                        std::to_string(property),
                    status);
}

ComStatus ScriptedHost::getIdProp(std::uint32_t context, std::uint32_t object,
                                  std::uint32_t property, std::uint32_t* value,
                                  std::int32_t* status) {
    const auto found = ids.find({object, property});
    *value = found == ids.end() ? 0 : found->second;
    return answered("getIdProp " + std::to_string(context) + " " + std::to_string(object) + " " +
                        std::to_string(property),
                    status);
}

ComStatus ScriptedHost::getStringProp(std::uint32_t context, std::uint32_t object,
                                      std::uint32_t property, char** value, std::int32_t* status) {
    const auto found = texts.find({object, property});
    if (found == texts.end()) {
        *value = nullptr;
    } else {
        *value = clientFreesTexts != 0 ? copyToMalloc(found->second) : found->second.data();
    }
    return answered("getStringProp " + std::to_string(context) + " " + std::to_string(object) +
                        " " + std::to_string(property),
                    status);
}

ComStatus ScriptedHost::reportProgress(std::int32_t kind, const char* text, std::int32_t number,
                                       std::int32_t* status) {
    return answered(
        "reportProgress " + std::to_string(kind) + " " + std::to_string(number) + " " + text,
        status);
}

ComStatus ScriptedHost::write(const char* text, std::int32_t* status) {
    return answered(std::string("write ") + text, status);
}

}  // namespace marrowpress
