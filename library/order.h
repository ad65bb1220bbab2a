#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "findings/language.h"
#include "host/open_documents.h"
#include "host/stand_in_host_options.h"
#include "marrowpress/marrowpress.h"

namespace marrowpress {

/// What a call of the library asks for, looked at and copied.
struct Order {
    std::string request;
    std::uint32_t flags = 0;
    Language language = Language::kAuto;
    std::vector<std::string> catalogs;
    std::vector<OpenDocument> documents;
    StandInHostOptions::LineSink onProgress;
    StandInHostOptions::PublicIdResolver resolvePublicId;
    std::function<void(const mp_finding&)> onFinding;
    const std::int32_t* cancel = nullptr;  ///< The caller's; may be null.
    std::uint64_t memoryLimit = 0;         ///< In bytes; 0 for none.
    std::uint64_t timeLimit = 0;           ///< In milliseconds; 0 for none.

    bool has(std::uint32_t flag) const noexcept { return (flags & flag) != 0; }
    bool isCancelled() const noexcept {
        return cancel && __atomic_load_n(cancel, __ATOMIC_RELAXED) != 0;
    }
};

/// Asks the caller for its open documents, too.
///
/// @param options  May be null.
/// @throws LibraryFailure with MP_INVALID and the name of what is wrong.
Order readOrder(const char* request, const mp_options* options);

}  // namespace marrowpress
