#pragma once

#include <utility>

#include "marrowpress/host_interfaces.h"

namespace marrowpress {

/// One counted reference to an interface, released at the end of the scope.
template <class Interface>
class InterfaceRef {
public:
    InterfaceRef() = default;

    /// Asks `object`, which may be null, for the interface; empty when it has none.
    static InterfaceRef query(IHostObject* object) {
        void* found = nullptr;
        if (object == nullptr || object->queryInterface(Interface::kId, &found) < 0) return {};
        return InterfaceRef(static_cast<Interface*>(found));
    }

    /// Takes a further reference on `object`, which may be null.
    static InterfaceRef share(Interface* object) {
        if (object != nullptr) object->addRef();
        return InterfaceRef(object);
    }

    InterfaceRef(InterfaceRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    InterfaceRef& operator=(InterfaceRef&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~InterfaceRef() {
        if (object_ != nullptr) object_->release();
    }

    Interface* get() const noexcept { return object_; }
    Interface* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

private:
    explicit InterfaceRef(Interface* object) : object_(object) {}

    Interface* object_ = nullptr;
};

}  // namespace marrowpress
