#pragma once

#include <string>
#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

class PublishResult;
class RunObserver;

/// Tells `observer` what is wrong in finished documents though no pass stumbles over it: links that
/// lead nowhere or out of the publication, content references that are left, what has no effect.
/// `mapPath` is that of the root map.
///
/// Asks the file system whether the targets of links are there.
void observeOutput(RunObserver& observer, const PublishResult& result,
                   const std::u16string& mapPath);

/// Whether `element`, of a map, of the key space or of a finished document, is part of what is
/// published: it is still in its document, the profile keeps it, and it stands in no relationship
/// table and in no topic that a map's reference has pulled into the map.
bool isPublished(const xercesc::DOMElement& element);

}  // namespace marrowpress
