#pragma once

#include <xercesc/util/PlatformUtils.hpp>

namespace marrowpress {

/// Whether somebody has made Xerces ready and not yet terminated it.
inline bool isXmlPlatformUp() {
    return xercesc::XMLPlatformUtils::fgMemoryManager != nullptr;
}

}  // namespace marrowpress
