#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/local_xml_input.h"
#include "host/utf8.h"
#include "marrowpress/marrowpress.h"
#include "runs/public_ids.h"

struct mp_catalogs {
    marrowpress::StandInHostOptions::PublicIdResolver resolve;
};

int mp_catalogs_open(const char* const* names, size_t count, mp_catalogs** catalogs) {
    if (!catalogs || (count > 0 && !names)) {
        return MP_INVALID;
    }
    *catalogs = nullptr;
    try {
        std::vector<std::string> copies;
        for (std::size_t index = 0; index < count; ++index) {
            if (!names[index] || !marrowpress::isValidUtf8(names[index])) {
                return MP_INVALID;
            }
            copies.emplace_back(names[index]);
        }
        auto made = std::make_unique<mp_catalogs>();
        made->resolve = marrowpress::makePublicIdResolver(copies);
        *catalogs = made.release();
        marrowpress::endLibxmlRestrictions();
        return MP_OK;
    } catch (const std::bad_alloc&) {
        marrowpress::endLibxmlRestrictions();
        return MP_NO_MEMORY;
    } catch (...) {
        marrowpress::endLibxmlRestrictions();
        return MP_SYSTEM;
    }
}

void mp_catalogs_free(mp_catalogs* catalogs) {
    const std::unique_ptr<mp_catalogs> owner(catalogs);
}

int mp_catalogs_find(mp_catalogs* catalogs, const char* id, char* path, size_t size) {
    if (!catalogs || !id || !path) {
        return 0;
    }
    std::optional<std::string> found;
    try {
        marrowpress::restrictLibxmlToLocalFiles();
        found = catalogs->resolve(id);
    } catch (...) {
        // Nothing is known then.
        found.reset();
    }
    marrowpress::endLibxmlRestrictions();
    if (!found || found->size() >= size) {
        return 0;
    }
    path[found->copy(path, size - 1)] = '\0';
    return 1;
}
