#include "runs/public_ids.h"

#include <cstdlib>
#include <memory>
#include <system_error>
#include <utility>

#include "findings/wording.h"
#include "host/catalog_resolver.h"

namespace marrowpress {

std::vector<std::string> catalogsInUse(const std::vector<std::string>& named) {
    return named.empty() ? defaultCatalogs() : named;
}

std::vector<std::filesystem::path> catalogFiles(const std::vector<std::string>& catalogs) {
    std::vector<std::filesystem::path> files;
    for (const std::string& catalog : catalogsInUse(catalogs)) {
        files.push_back(catalogPath(catalog).lexically_normal());
    }
    return files;
}

std::vector<std::string> shownCatalogs(const std::vector<std::string>& catalogs) {
    std::vector<std::string> shown = catalogsInUse(catalogs);
    for (std::string& catalog : shown) {
        std::error_code ignored;
        if (!std::filesystem::exists(catalogPath(catalog), ignored)) {
            catalog = missingCatalogText(catalog);
        }
    }
    return shown;
}

std::string findListedCatalogFault(const std::vector<std::string>& catalogs) {
    if (!catalogs.empty() || !std::getenv("XML_CATALOG_FILES")) {
        return {};
    }
    for (const std::string& catalog : defaultCatalogs()) {
        if (std::optional<std::string> fault = findCatalogFault(catalog)) {
            return *fault;
        }
    }
    return {};
}

std::optional<std::string> findCatalogOptionFault(const std::vector<std::string>& catalogs) {
    for (const std::string& catalog : catalogs) {
        if (std::optional<std::string> fault = findCatalogFault(catalog)) {
            return "--catalog: " + *fault;
        }
    }
    return std::nullopt;
}

StandInHostOptions::PublicIdResolver makePublicIdResolver(
    const std::vector<std::string>& catalogs, std::function<void(const std::string&)> onCatalog) {
    const auto resolver =
        std::make_shared<CatalogResolver>(catalogsInUse(catalogs), std::move(onCatalog));
    return [resolver](std::string_view publicId) { return resolver->resolvePublic(publicId); };
}

}  // namespace marrowpress
