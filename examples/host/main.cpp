// Publishes as an application does: host CATALOG REQUEST, the paths of an OASIS XML catalog that
// knows DITA's DTDs, and of a request. Written files go to standard output, faults in documents to
// standard error.

#include <dlfcn.h>
#include <libxml/catalog.h>
#include <libxml/uri.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "marrowpress/client_entry.h"
#include "marrowpress/interface_ref.h"
#include "marrowpress/observer.h"
#include "marrowpress/publish_status.h"

using namespace marrowpress;

/// The path that the catalog has for what `command` asks, from `malloc`; null when it has none.
static char* findDtd(const std::string& command) {
    const std::size_t start = command.find('"') + 1;
    const std::string id = command.substr(start, command.rfind('"') - start);
    xmlChar* const uri = xmlCatalogResolvePublic(reinterpret_cast<const xmlChar*>(id.c_str()));
    const std::string found = uri ? reinterpret_cast<const char*>(uri) : "";
    xmlFree(uri);
    const char* const path = found.c_str() + (found.starts_with("file://") ? 7 : 0);
    return found.empty() ? nullptr : xmlURIUnescapeString(path, 0, nullptr);
}

/// Stays until the module has let go of it, so its references need no count.
class Host final : public IHostMain, IHostNotifications, IHostClients, IHostObserver {
public:
    /// Sends a request to the client that has attached itself, and lets that go.
    bool publish(const std::string& request) {
        const auto lifecycle = InterfaceRef<IClientLifecycle>::query(client_.get());
        const auto notification = InterfaceRef<IClientNotification>::query(client_.get());
        client_ = {};
        if (lifecycle && lifecycle->initialize(IClientLifecycle::kInitialize) >= 0) {
            notification->notify(IClientNotification::kClientCall, 0, request.c_str(), 0);
            lifecycle->terminate();
        }
        return status_ == kPublished;
    }

    ComStatus queryInterface(const InterfaceId& id, void** object) override {
        *object = nullptr;
        give<IHostMain, IHostNotifications, IHostClients, IHostObserver>(id, object);
        return *object ? kComOk : kComNoInterface;
    }
    std::uint32_t addRef() override { return 1; }
    std::uint32_t release() override { return 1; }

    ComStatus attachClient(IHostObject* notifications, std::uint32_t, const ClientRegistration*,
                           std::int32_t* hostStatus) override {
        client_ = InterfaceRef<IHostObject>::share(notifications);
        return *hostStatus = kComOk;
    }
    ComStatus registerNotification(std::uint32_t, std::uint32_t, std::int32_t* status) override {
        return *status = kComOk;
    }
    ComStatus callClient(const char*, const char*, std::int32_t* result,
                         std::int32_t* hostStatus) override {
        return *result = *hostStatus = kComOk;
    }
    /// The one question that is asked: EntityResolver resolveentity -publicid "..."
    ComStatus callClientTyped(const char*, const char* command, HostTypedValueList* reply,
                              std::int32_t* hostStatus) override {
        *reply = {0, nullptr};
        if (char* const path = findDtd(command)) {
            *reply = {1, static_cast<HostTypedValue*>(std::calloc(1, sizeof(HostTypedValue)))};
            reply->values->type = HostValueType::kString;
            reply->values->value.string = path;
        }
        return *hostStatus = kComOk;
    }
    ComStatus returnTypedValue(HostTypedValueList values, HostTypedValueList* answer,
                               std::int32_t* hostStatus) override {
        const HostTypedValues owner(values);
        status_ = values.values[0].value.integer;
        *answer = {0, nullptr};
        return *hostStatus = kComOk;
    }
    ComStatus observe(const Observation* met) override {
        const ObservedPlace& place = met->steps[0].place;
        if (met->kind == ObservationKind::kOutputWritten) {
            std::cout << met->target << '\n';
        } else if (met->kind == ObservationKind::kFault && !(met->flags & kArtefact)) {
            std::cerr << (place.file ? place.file : "?") << ':' << place.line << ": MP" << met->code
                      << " " << met->target << '\n';
        }
        return kComOk;
    }

private:
    template <class... Interfaces>
    void give(const InterfaceId& id, void** object) {
        ((id == Interfaces::kId && (*object = static_cast<Interfaces*>(this))) || ...);
    }

    InterfaceRef<IHostObject> client_;
    std::int32_t status_ = kRunFailed;
};

int main(int argc, char** argv) {
    void* const module = dlopen(MARROWPRESS_MODULE, RTLD_NOW | RTLD_LOCAL);
    std::ifstream file(argc == 3 ? argv[2] : "");
    if (!module || !file || xmlLoadCatalog(argv[1]) != 0) {
        std::cerr << "usage: host CATALOG REQUEST\n";
        return 2;
    }
    const std::string request(std::istreambuf_iterator<char>(file), {});
    const auto entry = reinterpret_cast<ClientEntry>(dlsym(module, kClientEntryName));
    Host host;
    const bool isAttached = entry(module, static_cast<IHostMain*>(&host), nullptr, nullptr) == 0;
    return isAttached && host.publish(request) ? 0 : 1;
}
