#include "cli/unwritten_file.h"

#include "findings/catalogue.h"
#include "findings/shown_path.h"
#include "findings/wording.h"

namespace marrowpress {

Finding unwrittenFinding(const std::string& path, const std::string& reason,
                         const std::string& currentFolder) {
    Finding finding;
    finding.id = "MP107";
    finding.severity = *defaultSeverity(finding.id);
    finding.place.file = path;
    finding.target = path;
    finding.text = cannotWriteText(shownPath(path, currentFolder), reason);
    return finding;
}

}  // namespace marrowpress
