#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace marrowpress {

/// Says which local file a public identifier stands for, from OASIS XML Catalogs.
///
/// Catalogs are asked in order, and the first that knows the identifier answers. All are read at
/// the start, but for those that one delegates to, which are read when they are first asked.
/// Answers are kept, misses too: a later change of a catalog is not seen. What a catalog refers to
/// is followed on this machine only, never over the network.
///
/// One that could not be read for want of file descriptors, memory or rights, or because the disk
/// failed, is no miss: from then on every question to any resolver fails. Once none is left,
/// nothing of that is known any more.
class CatalogResolver {
public:
    using PathSink = std::function<void(const std::string&)>;

    /// `catalogs` are paths or `file:` URIs. One that isn't there, or is no catalog, knows nothing.
    ///
    /// @param onCatalog  Gets the path of each catalog that is looked for, also by another catalog,
    ///                   unless an earlier resolver has read it. May be empty.
    /// @throws std::system_error that says "cannot read the catalogs", and why, when one could not
    ///         be read.
    explicit CatalogResolver(const std::vector<std::string>& catalogs, PathSink onCatalog = {});
    CatalogResolver(const CatalogResolver&) = delete;
    CatalogResolver& operator=(const CatalogResolver&) = delete;
    ~CatalogResolver() = default;

    /// The file's absolute path; empty when no catalog knows `publicId`, or the one that does
    /// points to something that is no local path. Whether the file exists is not asked.
    ///
    /// @throws std::system_error as the constructor does.
    std::optional<std::string> resolvePublic(std::string_view publicId);

private:
    struct FreeCatalog {
        void operator()(void* catalog) const noexcept;
    };
    using Catalog = std::unique_ptr<void, FreeCatalog>;

    /// What libxml2 keeps of catalogs for all resolvers goes with the last of them, when it holds
    /// a failure.
    class SharedCatalogs {
    public:
        SharedCatalogs();
        SharedCatalogs(const SharedCatalogs&) = delete;
        SharedCatalogs& operator=(const SharedCatalogs&) = delete;
        ~SharedCatalogs();
    };

    std::optional<std::string> ask(const std::string& publicId) const;

    SharedCatalogs shared_;
    PathSink onCatalog_;
    std::vector<Catalog> catalogs_;
    std::unordered_map<std::string, std::optional<std::string>> answers_;
};

/// Makes the next resolver read all catalogs anew, unless one lives. What others have made libxml2
/// load is forgotten, too.
void forgetCatalogs();

/// The catalogs that are asked when none is named: those of the blank-separated list in the
/// environment variable XML_CATALOG_FILES, else the system's and the DITA Open Toolkit's.
std::vector<std::string> defaultCatalogs();

/// The absolute path of a catalog that is named by a path or a `file:` URI.
std::filesystem::path catalogPath(const std::string& catalog);

/// What is wrong with a catalog, named by a path or a `file:` URI, for people; empty when it is
/// readable and its root is a catalog. Other files that it names are not looked at.
std::optional<std::string> findCatalogFault(const std::string& catalog);

}  // namespace marrowpress
