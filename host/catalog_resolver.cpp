#include "host/catalog_resolver.h"

#include <libxml/catalog.h>
#include <libxml/parser.h>

#include <cstdlib>
#include <limits>
#include <sstream>
#include <system_error>
#include <utility>

#include "host/fatal_catalog.h"
#include "host/file_text.h"
#include "host/libxml_handles.h"
#include "host/local_xml_input.h"

namespace marrowpress {
namespace {

constexpr const char* kSystemCatalog = "/etc/xml/catalog";
constexpr const char* kDitaCatalog = "/usr/share/dita-ot/catalog-dita.xml";

/// A catalog is named by URI: its entries are resolved against its name, and a path with a blank
/// or a percent sign would be none to resolve against.
std::string toCatalogUri(const std::string& catalog) {
    return toFileUri(catalogPath(catalog).string());
}

/// Resolvers that are alive.
int resolverCount = 0;

/// What the process preferred before there was a resolver.
xmlCatalogPrefer earlierPreference = XML_CATA_PREFER_NONE;

/// Why libxml2 keeps a catalog as unreadable that may be readable.
std::error_code keptFailure;

/// Fails when a catalog could not be read now or earlier: it may have known the answer.
void requireCompleteCatalogs() {
    const std::error_code failure = takeLibxmlFailure();
    if (!keptFailure) {
        keptFailure = failure;
    }
    if (keptFailure) {
        throw std::system_error(keptFailure, "cannot read the catalogs");
    }
}

/// Asked for what none has, each catalog is read.
constexpr const char* kUnknownId = "none";

bool isCatalog(const xmlDoc& document) {
    const xmlNode* const root = xmlDocGetRootElement(&document);
    return root && asText(root->name) == "catalog" && root->ns &&
           asText(root->ns->href) == asText(XML_CATALOGS_NAMESPACE);
}

}  // namespace

void CatalogResolver::FreeCatalog::operator()(void* catalog) const noexcept {
    xmlCatalogFreeLocal(catalog);
}

CatalogResolver::SharedCatalogs::SharedCatalogs() {
    if (resolverCount++ == 0) {
        earlierPreference = xmlCatalogSetDefaultPrefer(XML_CATA_PREFER_PUBLIC);
    }
    // What others did with libxml2 has nothing to do with catalogs.
    static_cast<void>(takeLibxmlFailure());
}

CatalogResolver::SharedCatalogs::~SharedCatalogs() {
    --resolverCount;
    if (resolverCount == 0) {
        xmlCatalogSetDefaultPrefer(earlierPreference);
    }
    if (resolverCount == 0 && keptFailure) {
        xmlCatalogCleanup();
        keptFailure.clear();
    }
}

CatalogResolver::CatalogResolver(const std::vector<std::string>& catalogs, PathSink onCatalog)
    : onCatalog_(std::move(onCatalog)) {
    restrictLibxmlToLocalFiles();
    for (const std::string& catalog : catalogs) {
        const std::string uri = toCatalogUri(catalog);
        // One list for each: within one list, an entry that delegates would keep the catalogs
        // behind it from being asked.
        catalogs_.emplace_back(xmlCatalogAddLocal(nullptr, asXml(uri.c_str())));
        requireCompleteCatalogs();
    }
    static_cast<void>(ask(kUnknownId));
}

std::optional<std::string> CatalogResolver::resolvePublic(std::string_view publicId) {
    const std::string key(publicId);
    const auto known = answers_.find(key);
    if (known != answers_.end()) {
        return known->second;
    }
    return answers_.emplace(key, ask(key)).first->second;
}

std::optional<std::string> CatalogResolver::ask(const std::string& publicId) const {
    if (publicId.empty()) {
        return std::nullopt;
    }
    const LibxmlFileSink sink(onCatalog_);
    static_cast<void>(takeLibxmlFailure());
    for (const Catalog& catalog : catalogs_) {
        const LibxmlText uri(
            xmlCatalogLocalResolve(catalog.get(), asXml(publicId.c_str()), nullptr));
        requireCompleteCatalogs();
        if (!uri) {
            continue;
        }
        const std::string_view text = asText(uri.get());
        return fileUriToPath(text.starts_with('/') ? "file:" + std::string(text)
                                                   : std::string(text));
    }
    return std::nullopt;
}

void forgetCatalogs() {
    if (resolverCount == 0) {
        xmlCatalogCleanup();
    }
}

std::vector<std::string> defaultCatalogs() {
    const char* const listed = std::getenv("XML_CATALOG_FILES");
    if (!listed) {
        return {kSystemCatalog, kDitaCatalog};
    }
    std::istringstream words{std::string(listed)};
    std::vector<std::string> catalogs;
    for (std::string word; words >> word;) {
        catalogs.push_back(word);
    }
    return catalogs;
}

std::filesystem::path catalogPath(const std::string& catalog) {
    return std::filesystem::absolute(fileUriToPath(catalog).value_or(catalog));
}

std::optional<std::string> findCatalogFault(const std::string& catalog) {
    restrictLibxmlToLocalFiles();
    // A path is shown as it was given.
    const std::string path = fileUriToPath(catalog).value_or(catalog);
    std::error_code ignored;
    if (std::filesystem::exists(path, ignored) &&
        !std::filesystem::is_regular_file(path, ignored)) {
        return path + ": not a regular file";
    }
    std::string text;
    try {
        text = readFile(path);
    } catch (const std::system_error& fault) {
        return fault.what();
    }
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return path + ": too large";
    }
    const LibxmlDocument document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                      XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (!document) {
        return path + ": not well-formed XML";
    }
    if (!isCatalog(*document)) {
        return path + ": not an XML catalog";
    }
    if (isFatalCatalog(*document)) {
        return path + ": a nextCatalog names no catalog";
    }
    return std::nullopt;
}

}  // namespace marrowpress
