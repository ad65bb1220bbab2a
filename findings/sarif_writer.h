#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "findings/finding.h"

namespace marrowpress {

struct SarifOptions {
    std::string version;        ///< Of the command.
    std::string currentFolder;  ///< Absolute; files in it get URIs relative to it.
    std::function<std::string(std::string_view id)> titleOf;  ///< What an id is about, in short.
};

/// Writes a SARIF 2.1.0 log of one run. Artefacts are left out.
void writeSarif(std::ostream& out, const std::vector<Finding>& findings,
                const FindingSummary& summary, const SarifOptions& options);

}  // namespace marrowpress
