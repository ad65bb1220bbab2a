#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace marrowpress {

/// Says which local file a public identifier stands for, from OASIS XML Catalogs.
///
/// Catalogs are asked in order, and the first that knows the identifier answers. Each is read when
/// it is first asked, and answers are kept, misses too: a later change of a catalog is not seen.
/// What a catalog refers to is followed on this machine only, never over the network.
class CatalogResolver {
public:
    /// `catalogs` are paths or `file:` URIs. One that cannot be read knows nothing.
    explicit CatalogResolver(const std::vector<std::string>& catalogs);

    /// The file's absolute path; empty when no catalog knows `publicId`, or the one that does
    /// points to something that is no local path. Whether the file exists is not asked.
    std::optional<std::string> resolvePublic(std::string_view publicId);

private:
    struct FreeCatalog {
        void operator()(void* catalog) const noexcept;
    };
    using Catalog = std::unique_ptr<void, FreeCatalog>;

    std::optional<std::string> ask(const std::string& publicId) const;

    std::vector<Catalog> catalogs_;
    std::unordered_map<std::string, std::optional<std::string>> answers_;
};

/// The catalogs that are asked when none is named: those of the blank-separated list in the
/// environment variable XML_CATALOG_FILES, else the system's and the DITA Open Toolkit's.
std::vector<std::string> defaultCatalogs();

/// The absolute path of a catalog that is named by a path or a `file:` URI.
std::filesystem::path catalogPath(const std::string& catalog);

/// What is wrong with a catalog, named by a path or a `file:` URI, for people; empty when it is
/// readable and its root is a catalog. Other files that it names are not looked at.
std::optional<std::string> findCatalogFault(const std::string& catalog);

}  // namespace marrowpress
