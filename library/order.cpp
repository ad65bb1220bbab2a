#include "library/order.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <optional>
#include <unordered_set>

#include "host/utf8.h"
#include "library/calling_back.h"
#include "library/failure.h"

namespace marrowpress {
namespace {

constexpr std::uint32_t kKnownFlags =
    MP_WAIT | MP_CHECK | MP_SURVEY | MP_DEPENDENCIES | MP_KEYS | MP_NO_FINDINGS;
constexpr std::uint32_t kObservingFlags = MP_SURVEY | MP_DEPENDENCIES | MP_KEYS;

[[noreturn]] void refuse(const std::string& text) {
    throw LibraryFailure(MP_INVALID, text);
}

std::string requireText(const char* text, const std::string& what) {
    if (!text) {
        refuse(what + " is null");
    }
    std::string copy = text;
    if (!isValidUtf8(copy)) {
        refuse(what + " is not UTF-8");
    }
    return copy;
}

/// The options as this library knows them.
mp_options knownOptions(const mp_options& given) {
    constexpr std::size_t kMostBytes = 4096;
    if (given.size < offsetof(mp_options, catalogs) || given.size > kMostBytes) {
        refuse("options.size is " + std::to_string(given.size) +
               "; it is to be sizeof(mp_options)");
    }
    mp_options known{};
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&given);
    std::memcpy(&known, bytes, std::min(given.size, sizeof(known)));
    const bool asksForMore =
        given.size > sizeof(known) && std::any_of(bytes + sizeof(known), bytes + given.size,
                                                  [](unsigned char byte) { return byte != 0; });
    if (asksForMore) {
        refuse("options ask for what only a newer version knows");
    }
    return known;
}

Language languageOf(std::int32_t number) {
    switch (number) {
        case MP_LANGUAGE_AUTO:
            return Language::kAuto;
        case MP_LANGUAGE_ENGLISH:
            return Language::kEnglish;
        case MP_LANGUAGE_GERMAN:
            return Language::kGerman;
        default:
            refuse("options.language is " + std::to_string(number) + ", which is none");
    }
}

std::vector<std::string> catalogsOf(const mp_options& options) {
    if (options.catalog_count > 0 && !options.catalogs) {
        refuse("options.catalogs is null");
    }
    std::vector<std::string> catalogs;
    for (std::size_t index = 0; index < options.catalog_count; ++index) {
        const std::string name = "options.catalogs[" + std::to_string(index) + "]";
        catalogs.push_back(requireText(options.catalogs[index], name));
        if (catalogs.back().empty()) {
            refuse(name + " is empty");
        }
    }
    return catalogs;
}

std::vector<OpenDocument> documentsOf(const mp_options& options) {
    const Asking asking;
    std::vector<OpenDocument> documents;
    std::unordered_set<std::uint32_t> ids{0};
    mp_document document{};
    while (options.open_document &&
           options.open_document(options.document_user, documents.size(), &document) != 0) {
        const std::string name = "open document " + std::to_string(documents.size());
        if (!ids.insert(document.id).second) {
            refuse(name + ": the id " + std::to_string(document.id) + " is 0 or taken");
        }
        documents.push_back(
            {document.id, requireText(document.path, name + ": its path"), document.flag});
        document = {};
    }
    return documents;
}

StandInHostOptions::PublicIdResolver resolverOf(mp_entity_function function, void* user) {
    return [function, user](std::string_view publicId) -> std::optional<std::string> {
        std::array<char, PATH_MAX> path{};
        const std::string id(publicId);
        if (function(user, id.c_str(), path.data(), path.size()) == 0) {
            return std::nullopt;
        }
        path.back() = '\0';
        return std::string(path.data());
    };
}

void takeCallbacks(const mp_options& options, Order& order) {
    if (options.on_progress) {
        order.onProgress = [function = options.on_progress,
                            user = options.progress_user](std::string_view line) {
            function(user, std::string(line.substr(0, line.find_last_not_of("\r\n") + 1)).c_str());
        };
    }
    if (options.resolve_entity) {
        order.resolvePublicId = resolverOf(options.resolve_entity, options.entity_user);
    }
    if (options.on_finding) {
        order.onFinding = [function = options.on_finding, user = options.finding_user](
                              const mp_finding& finding) { function(user, &finding); };
    }
}

}  // namespace

Order readOrder(const char* request, const mp_options* options) {
    Order order;
    order.request = requireText(request, "request");
    if (!options) {
        return order;
    }
    const mp_options known = knownOptions(*options);
    order.flags = known.flags;
    if ((order.flags & ~kKnownFlags) != 0) {
        refuse("options.flags has bits that are unknown");
    }
    if (order.has(MP_NO_FINDINGS) && order.has(kObservingFlags)) {
        refuse("options.flags: MP_NO_FINDINGS goes with no other that wants to know something");
    }
    order.language = languageOf(known.language);
    order.catalogs = catalogsOf(known);
    order.cancel = known.cancel;
    order.memoryLimit = known.memory_limit;
    order.timeLimit = known.time_limit;
    takeCallbacks(known, order);
    order.documents = documentsOf(known);
    return order;
}

}  // namespace marrowpress
