#pragma once

#include <string_view>

namespace marrowpress {

/// Chooses the narrow encoding of all texts between this client and the host. Gives false, and
/// changes nothing, for a name that isn't one of the library's.
bool HostSetClientEncoding(std::string_view name);

/// Makes text ready to cross: chooses "QuillRoman" if nothing was chosen yet, and shows ICU
/// the host's data folder if ICU has none and the host names one.
void initializeTextLayer();

}  // namespace marrowpress
