#pragma once

/// What every host over the bare interfaces has in common: references that are counted, an
/// attached client, and catalogs. Who only wants to publish takes marrowpress.hpp.
///
///     class Host final : public marrowpress::PublishingHost<marrowpress::IHostObserver> {
///         marrowpress::ComStatus observe(const marrowpress::Observation* met) override { ... }
///     };
///     const auto host = marrowpress::makeCounted<Host>();
///     const std::int32_t status = host->publish(entry, module, request);

#include <array>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "marrowpress/client_entry.h"
#include "marrowpress/host_interfaces.h"
#include "marrowpress/interface_ref.h"
#include "marrowpress/marrowpress.h"
#include "marrowpress/observer.h"
#include "marrowpress/publish_status.h"
#include "marrowpress/typed_values.h"

namespace marrowpress {

/// An object that has several interfaces and goes with its last reference; for one thread. It
/// begins with one, which `makeCounted` holds.
template <class First, class... Interfaces>
class CountedObject : public First, public Interfaces... {
public:
    CountedObject() = default;
    CountedObject(const CountedObject&) = delete;
    CountedObject& operator=(const CountedObject&) = delete;

    ComStatus queryInterface(const InterfaceId& id, void** object) override {
        if (!object) {
            return kComFailed;
        }
        *object = nullptr;
        const bool isFound = give<First>(id, object) || (give<Interfaces>(id, object) || ...);
        if (!isFound && id == IHostObject::kId) {
            *object = static_cast<IHostObject*>(static_cast<First*>(this));
        }
        if (!*object) {
            return kComNoInterface;
        }
        addRef();
        return kComOk;
    }
    std::uint32_t addRef() override { return ++references_; }
    std::uint32_t release() override {
        const std::uint32_t left = --references_;
        if (left == 0) {
            const std::unique_ptr<CountedObject> last(this);
        }
        return left;
    }

protected:
    virtual ~CountedObject() = default;

private:
    friend std::default_delete<CountedObject>;

    template <class Interface>
    bool give(const InterfaceId& id, void** object) {
        if (id == Interface::kId) {
            *object = static_cast<Interface*>(this);
        }
        return *object != nullptr;
    }

    std::uint32_t references_ = 1;
};

/// A new object of a class that counts its references.
template <class Object, class... Arguments>
InterfaceRef<Object> makeCounted(Arguments&&... arguments) {
    return InterfaceRef<Object>(
        std::make_unique<Object>(std::forward<Arguments>(arguments)...).release());
}

/// A host that attaches a client, sends it requests and takes the answers. `Further` are what a
/// class offers besides, such as `IHostObserver`, and implements.
template <class... Further>
class PublishingHost
    : public CountedObject<IHostMain, IHostNotifications, IHostClients, Further...> {
public:
    /// Attaches the client behind `entry`, serves one request, and lets the client go.
    ///
    /// @param module  Its handle; may be null.
    /// @return        The status of the answer; `kRunFailed` without one.
    std::int32_t publish(ClientEntry entry, void* module, const std::string& request) {
        status_ = kRunFailed;
        if (entry(module, static_cast<IHostMain*>(this), nullptr, nullptr) != 0) {
            return kRunFailed;
        }
        const InterfaceRef<IHostObject> client =
            std::exchange(client_, InterfaceRef<IHostObject>());
        const auto lifecycle = InterfaceRef<IClientLifecycle>::query(client.get());
        const auto notification = InterfaceRef<IClientNotification>::query(client.get());
        if (lifecycle && notification &&
            lifecycle->initialize(IClientLifecycle::kInitialize) >= 0) {
            notification->notify(IClientNotification::kClientCall, 0, request.c_str(), 0);
            lifecycle->terminate();
        }
        return status_;
    }

protected:
    /// The path that a public identifier stands for; empty where it is not known.
    virtual std::optional<std::string> findEntity(std::string_view /*publicId*/) {
        return std::nullopt;
    }

    /// The values of an answer, for the length of the call.
    virtual void takeAnswer(const HostTypedValueList& /*values*/) {}

private:
    ComStatus attachClient(IHostObject* notifications, std::uint32_t /*flags*/,
                           const ClientRegistration* /*registration*/,
                           std::int32_t* hostStatus) override {
        client_ = InterfaceRef<IHostObject>::share(notifications);
        return *hostStatus = kComOk;
    }
    ComStatus registerNotification(std::uint32_t /*notification*/, std::uint32_t /*state*/,
                                   std::int32_t* hostStatus) override {
        return *hostStatus = kComOk;
    }
    ComStatus callClient(const char* /*client*/, const char* /*command*/, std::int32_t* result,
                         std::int32_t* hostStatus) override {
        return *result = *hostStatus = kComOk;
    }
    /// The one question that is asked: EntityResolver resolveentity -publicid "..."
    ComStatus callClientTyped(const char* /*client*/, const char* command,
                              HostTypedValueList* reply, std::int32_t* hostStatus) override {
        *reply = {0, nullptr};
        const std::string_view question = command;
        const std::size_t start = question.find('"') + 1;
        const std::optional<std::string> path =
            findEntity(question.substr(start, question.rfind('"') - start));
        char* const text = path ? strdup(path->c_str()) : nullptr;
        void* const value = text ? std::calloc(1, sizeof(HostTypedValue)) : nullptr;
        if (value) {
            *reply = {1, static_cast<HostTypedValue*>(value)};
            reply->values->type = HostValueType::kString;
            reply->values->value.string = text;
        } else {
            std::free(text);
        }
        return *hostStatus = kComOk;
    }
    ComStatus returnTypedValue(HostTypedValueList values, HostTypedValueList* answer,
                               std::int32_t* hostStatus) override {
        const HostTypedValues owner(values);
        *answer = {0, nullptr};
        if (values.count > 0 && values.values[0].type == HostValueType::kInteger) {
            status_ = values.values[0].value.integer;
        }
        takeAnswer(values);
        return *hostStatus = kComOk;
    }

    InterfaceRef<IHostObject> client_;
    std::int32_t status_ = kRunFailed;
};

/// A host that asks XML catalogs: those in XML_CATALOG_FILES, or the usual ones. It takes
/// libmarrowpress.
template <class... Further>
class CatalogHost : public PublishingHost<Further...> {
public:
    CatalogHost() {
        mp_catalogs* opened = nullptr;
        mp_catalogs_open(nullptr, 0, &opened);
        catalogs_.reset(opened);
    }

protected:
    std::optional<std::string> findEntity(std::string_view publicId) override {
        std::array<char, PATH_MAX> path{};
        const bool isKnown = mp_catalogs_find(catalogs_.get(), std::string(publicId).c_str(),
                                              path.data(), path.size()) != 0;
        return isKnown ? std::optional<std::string>(path.data()) : std::nullopt;
    }

private:
    struct Free {
        void operator()(mp_catalogs* catalogs) const noexcept { mp_catalogs_free(catalogs); }
    };
    std::unique_ptr<mp_catalogs, Free> catalogs_;
};

}  // namespace marrowpress
