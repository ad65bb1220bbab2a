#pragma once

#include <utility>

#include "marrowpress/host_interfaces.h"

namespace marrowpress {

/// Owner of one counted reference to an interface, of the host's or the client's; may be null.
template <class Interface>
class InterfaceRef {
public:
    InterfaceRef() = default;
    /// Takes over a reference that the caller holds.
    explicit InterfaceRef(Interface* held) noexcept : object_(held) {}
    InterfaceRef(InterfaceRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    InterfaceRef& operator=(InterfaceRef&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~InterfaceRef() {
        if (object_) {
            object_->release();
        }
    }

    /// Asks `object`, which may be null, for the interface; null when it has none.
    static InterfaceRef query(IHostObject* object) {
        void* found = nullptr;
        if (!object || object->queryInterface(Interface::kId, &found) < 0) {
            return InterfaceRef();
        }
        return InterfaceRef(static_cast<Interface*>(found));
    }

    /// Takes a reference of its own on `object`, which may be null.
    static InterfaceRef share(Interface* object) {
        if (object) {
            object->addRef();
        }
        return InterfaceRef(object);
    }

    Interface* get() const noexcept { return object_; }
    Interface* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

private:
    Interface* object_ = nullptr;
};

}  // namespace marrowpress
