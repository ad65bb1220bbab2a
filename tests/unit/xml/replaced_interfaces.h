#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "application/connection.h"
#include "application/host_operations.h"

/// Single interfaces of the host, exchanged by ones that a test scripts.
namespace marrowpress {

/// A host interface that lives on the stack of a test: nobody counts its references.
template <class Interface>
class ScriptedInterface : public Interface {
public:
    ComStatus queryInterface(const InterfaceId& /*id*/, void** object) override {
        *object = nullptr;
        return kComNoInterface;
    }
    std::uint32_t addRef() override { return 1; }
    std::uint32_t release() override { return 1; }

protected:
    ~ScriptedInterface() = default;
};

/// Puts `replacement` in the place of an interface of the connected host, until it ends.
template <class Interface>
class InterfaceReplacement {
public:
    InterfaceReplacement(InterfaceRef<Interface>& place, Interface* replacement)
        : place_(place), kept_(std::move(place)) {
        place_ = InterfaceRef<Interface>(replacement);
    }
    InterfaceReplacement(const InterfaceReplacement&) = delete;
    InterfaceReplacement& operator=(const InterfaceReplacement&) = delete;
    ~InterfaceReplacement() { place_ = std::move(kept_); }

private:
    InterfaceRef<Interface>& place_;
    InterfaceRef<Interface> kept_;
};

/// Records calls to other clients, and answers as it is told.
class ScriptedClients final : public ScriptedInterface<IHostClients> {
public:
    ComStatus callClient(const char* client, const char* command, std::int32_t* result,
                         std::int32_t* hostStatus) override {
        *result = 0;
        *hostStatus = ownStatus;
        return record("plain", client, command);
    }
    ComStatus callClientTyped(const char* client, const char* command, HostTypedValueList* reply,
                              std::int32_t* hostStatus) override {
        *reply = makeReply ? makeReply() : HostTypedValueList{0, nullptr};
        *hostStatus = ownStatus;
        return record("typed", client, command);
    }
    ComStatus returnTypedValue(HostTypedValueList values, HostTypedValueList* answer,
                               std::int32_t* hostStatus) override {
        releaseTypedValues(values);
        *answer = {0, nullptr};
        *hostStatus = 0;
        return kComOk;
    }

    /// Makes the reply to a typed call, whose blocks the caller frees; an empty one if not set.
    std::function<HostTypedValueList()> makeReply;
    /// Runs at each call, after it was recorded.
    std::function<void()> onCall;
    ComStatus outcome = kComOk;
    std::int32_t ownStatus = 0;
    /// "plain" or "typed", the client and the command, separated by colons.
    std::vector<std::string> calls;

private:
    ComStatus record(const std::string& kind, const char* client, const char* command) {
        calls.push_back(kind + ":" + client + ":" + command);
        if (onCall) {
            onCall();
        }
        return outcome;
    }

    InterfaceReplacement<IHostClients> replacement_{QsApiInterfacesC::connected()->clients, this};
};

/// Acts when a report line is written.
class ScriptedConsole final : public ScriptedInterface<IHostConsole> {
public:
    ComStatus write(const char* text, std::int32_t* hostStatus) override {
        lines.emplace_back(text);
        if (onLine) {
            onLine();
        }
        *hostStatus = 0;
        return kComOk;
    }

    std::function<void()> onLine;
    std::vector<std::string> lines;

private:
    InterfaceReplacement<IHostConsole> replacement_{QsApiInterfacesC::connected()->console, this};
};

}  // namespace marrowpress
