#pragma once

#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

class KeySpace;
class RunObserver;

/// Tells `observer` of `element`, which has a content reference in a finished document: it leads
/// into a ring of them, or to one that had not been followed. Nothing is told where a file on the
/// way could not be read: that was told.
void observeLeftConref(RunObserver& observer, const KeySpace& keySpace,
                       const xercesc::DOMElement& element);

}  // namespace marrowpress
