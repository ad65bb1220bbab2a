#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/stand_in_host.h"

namespace marrowpress {

/// The catalogs that are asked, in their order, as they were named: `named`, or the default ones
/// when that is empty.
std::vector<std::string> catalogsInUse(const std::vector<std::string>& named);

/// The files of the named catalogs, or of the default ones when none is named.
std::vector<std::filesystem::path> catalogFiles(const std::vector<std::string>& catalogs);

/// The catalogs that are asked, in their order, as people name them; one that is not there says so.
std::vector<std::string> shownCatalogs(const std::vector<std::string>& catalogs);

/// What is wrong with the first catalog of XML_CATALOG_FILES that cannot be used, when none is
/// named: "c.xml: not well-formed XML". Empty when all can, or the variable is not set: of the
/// usual catalogs none has to be there.
std::string findListedCatalogFault(const std::vector<std::string>& catalogs);

/// What is wrong with the first of the named catalogs that cannot be used; empty when all can.
std::optional<std::string> findCatalogOptionFault(const std::vector<std::string>& catalogs);

/// Answers public identifiers from `catalogs`, or from the default ones when none is named.
/// `onCatalog`, which may be empty, gets the path of each catalog that is looked for.
StandInHostOptions::PublicIdResolver makePublicIdResolver(
    const std::vector<std::string>& catalogs,
    std::function<void(const std::string&)> onCatalog = {});

}  // namespace marrowpress
