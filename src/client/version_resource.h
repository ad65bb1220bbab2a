#pragma once

#include <string_view>

#include "marrowpress/host_interfaces.h"

namespace marrowpress {

/// The module's own text of that name, such as "ClientName"; null when there is none.
const char* versionResource(std::string_view name) noexcept;

/// What the module says of itself when the host states nothing. The texts live as long as the
/// module; a text that the module doesn't have is empty.
ClientRegistration registrationFromVersionResource() noexcept;

}  // namespace marrowpress
