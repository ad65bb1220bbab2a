#pragma once

#include <map>
#include <set>
#include <string>

#include "findings/finding.h"

namespace marrowpress {

/// Looks into documents that a run does not read, for the elements that links into them name.
class OutsideFragments {
public:
    /// @param currentFolder  Absolute; texts show paths as seen from it.
    /// @param severities  By id, in the place of the usual ones.
    OutsideFragments(std::string currentFolder, std::map<std::string, Severity> severities)
        : currentFolder_(std::move(currentFolder)), severities_(std::move(severities)) {}

    /// A finding about a link to a topic outside the publication becomes one about its fragment,
    /// when the document is there and has no such element. All others come back as they are.
    Finding lookedAt(Finding finding);

private:
    /// The ids in a document: of topics, and "topic/element".
    using Ids = std::set<std::string>;

    const Ids* idsIn(const std::string& path);

    std::string currentFolder_;
    std::map<std::string, Severity> severities_;
    std::map<std::string, Ids> documents_;
};

}  // namespace marrowpress
