#pragma once

#include <cstdint>

namespace marrowpress {

/// The session, as an object that has properties.
inline constexpr std::uint32_t kSessionObject = 0;

/// The properties that the module reads through `IHostProperties`, by the host's numbers.
enum class HostProperty : std::uint32_t {
    kDocumentPath = 20,   ///< of a document, a text: its full path
    kFirstDocument = 53,  ///< of the session, an id: the first open document, 0 without any
    kIcuDataParent = 89,  ///< of the session, a text: the folder that holds "icu_data"
    kNextDocument = 111,  ///< of a document, an id: the next open one, 0 behind the last
    kDocumentFlag = 131,  ///< of a document, an integer: divides the open documents in the answer
};

}  // namespace marrowpress
