#pragma once

#include <string>

namespace marrowpress {

class KeySpace;
class PublishResult;
class RunObserver;

/// Tells `observer` what is wrong in finished documents though no pass stumbles over it: links that
/// lead nowhere or out of the publication, keys that lead nowhere, content references that are
/// left, what has no effect, and that there is no topic. `mapPath` is that of the root map.
///
/// Asks the file system whether the targets of links are there.
void observeOutput(RunObserver& observer, const PublishResult& result, const KeySpace& keySpace,
                   const std::u16string& mapPath);

}  // namespace marrowpress
