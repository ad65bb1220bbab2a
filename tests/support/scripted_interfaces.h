#pragma once

#include <utility>

#include "application/connection.h"
#include "tests/support/scripted_host.h"

/// Single interfaces of the connected host, exchanged by ones that a test scripts.
namespace marrowpress {

/// Puts `replacement`, which may be null, in the place of an interface, until it ends.
template <class Interface>
class InterfaceReplacement {
public:
    InterfaceReplacement(InterfaceRef<Interface>& place, Interface* replacement)
        : place_(place), kept_(std::move(place)) {
        place_ = InterfaceRef<Interface>::share(replacement);
    }
    InterfaceReplacement(const InterfaceReplacement&) = delete;
    InterfaceReplacement& operator=(const InterfaceReplacement&) = delete;
    ~InterfaceReplacement() { place_ = std::move(kept_); }

private:
    InterfaceRef<Interface>& place_;
    InterfaceRef<Interface> kept_;
};

/// A scripted host that stands in the place of one interface of the connected host, while it
/// lives. It replies with empty lists, unless a test says something else.
template <class Interface, InterfaceRef<Interface> QsApiInterfacesC::*Place>
class ScriptedInterface final : public ScriptedHost {
public:
    ScriptedInterface() {
        makeReply = [] { return HostTypedValueList{0, nullptr}; };
    }

private:
    InterfaceReplacement<Interface> replacement_{QsApiInterfacesC::connected()->*Place, this};
};

using ScriptedClients = ScriptedInterface<IHostClients, &QsApiInterfacesC::clients>;
using ScriptedConsole = ScriptedInterface<IHostConsole, &QsApiInterfacesC::console>;
using ScriptedProperties = ScriptedInterface<IHostProperties, &QsApiInterfacesC::properties>;

}  // namespace marrowpress
