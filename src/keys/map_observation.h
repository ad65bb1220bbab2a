#pragma once

#include <xercesc/dom/DOMDocument.hpp>

namespace marrowpress {

class RunObserver;

/// Tells `observer` what stands in `map` and is passed over without a word: keys that the profile
/// leaves out, key scopes, what has no effect here; and the values that the profile has rules for.
void observeMap(RunObserver& observer, const xercesc::DOMDocument& map);

}  // namespace marrowpress
