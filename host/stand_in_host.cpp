#include "host/stand_in_host.h"

#include "host/stand_in_interfaces.h"
#include "marrowpress/interface_ref.h"

namespace marrowpress {

StandInHost::StandInHost(StandInHostOptions options)
    : interfaces_(std::make_shared<StandInInterfaces>(std::move(options))) {}

StandInHost::~StandInHost() {
    detach();
}

IHostObject& StandInHost::provider() {
    return interfaces_->provider();
}

std::uint32_t StandInHost::referenceCount() const {
    return interfaces_->referenceCount();
}

bool StandInHost::attach(ClientEntry entry, void* module) {
    if (entry(module, &provider(), nullptr, nullptr) != 0) {
        return false;
    }
    return interfaces_->client() != nullptr;
}

bool StandInHost::initialize(std::uint32_t initCode) {
    const auto lifecycle = InterfaceRef<IClientLifecycle>::query(interfaces_->client());
    if (!lifecycle) {
        return false;
    }
    isStarted_ = true;
    return lifecycle->initialize(initCode) >= 0;
}

bool StandInHost::isSubscribed(std::uint32_t notification) const {
    return interfaces_->isSubscribed(notification);
}

std::optional<TypedValues> StandInHost::send(const std::string& text) {
    if (!isSubscribed(IClientNotification::kClientCall)) {
        return std::nullopt;
    }
    const auto client = InterfaceRef<IClientNotification>::query(interfaces_->client());
    if (!client) {
        return std::nullopt;
    }

    interfaces_->beginCall();
    client->notify(IClientNotification::kClientCall, 0, text.c_str(), 0);
    return interfaces_->endCall();
}

void StandInHost::detach() {
    if (isStarted_) {
        const auto lifecycle = InterfaceRef<IClientLifecycle>::query(interfaces_->client());
        if (lifecycle) {
            lifecycle->terminate();
        }
        isStarted_ = false;
    }
    interfaces_->releaseClient();
}

}  // namespace marrowpress
