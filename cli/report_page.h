#pragma once

#include <string>
#include <vector>

#include "cli/exclusion_list.h"
#include "cli/map_outline.h"
#include "cli/page_files.h"
#include "findings/finding.h"
#include "runs/key_list.h"

namespace marrowpress {

/// What a page shows; all of it must outlive the writing.
struct ReportContent {
    bool isCheck;  ///< Nothing was to be written.
    const std::string& map;
    const std::string& output;                 ///< Empty when there is none.
    const std::vector<std::string>& profiles;  ///< Paths.
    const std::vector<Finding>& findings;
    const FindingSummary& summary;
    const MapOutline& outline;
    const ExclusionList& exclusions;
    const KeyList& keys;
    const PageFiles& files;
};

/// The page, in the language that was chosen: one file of HTML that needs no other one and no
/// network. The same content gives the same bytes.
std::string reportPage(const ReportContent& content);

}  // namespace marrowpress
