#include "cli/public_ids.h"

#include <memory>

#include "host/catalog_resolver.h"

namespace marrowpress {

std::optional<std::string> findCatalogFault(const std::vector<std::string>& catalogs) {
    for (const std::string& catalog : catalogs) {
        if (std::optional<std::string> fault = findCatalogFault(catalog)) {
            return "--catalog: " + *fault;
        }
    }
    return std::nullopt;
}

StandInHostOptions::PublicIdResolver makePublicIdResolver(
    const std::vector<std::string>& catalogs) {
    const auto resolver =
        std::make_shared<CatalogResolver>(catalogs.empty() ? defaultCatalogs() : catalogs);
    return [resolver](std::string_view publicId) { return resolver->resolvePublic(publicId); };
}

}  // namespace marrowpress
