#pragma once

#include "marrowpress/host_interfaces.h"

namespace marrowpress {

/// Answers `queryInterface` for an object that is each of `Interfaces`: sets `found` to the one
/// whose id is `id`, and says whether there is one. The caller counts the reference.
template <class... Interfaces, class Object>
bool giveInterface(Object& object, const InterfaceId& id, void** found) {
    return ((id == Interfaces::kId && (*found = static_cast<Interfaces*>(&object))) || ...);
}

}  // namespace marrowpress
