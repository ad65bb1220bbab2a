#include "runs/unwritten_file.h"

#include <utility>

#include "findings/catalogue.h"
#include "findings/shown_path.h"
#include "findings/wording.h"

namespace marrowpress {
namespace {

Finding fileFinding(const char* id, const std::string& path, std::string text) {
    Finding finding;
    finding.id = id;
    finding.severity = *defaultSeverity(finding.id);
    finding.place.file = path;
    finding.target = path;
    finding.text = std::move(text);
    return finding;
}

}  // namespace

Finding unwrittenFinding(const std::string& path, const std::string& reason,
                         const std::string& currentFolder) {
    return fileFinding("MP107", path, cannotWriteText(shownPath(path, currentFolder), reason));
}

Finding unreadableFinding(const std::string& path, const std::string& reason,
                          const std::string& currentFolder) {
    return fileFinding("MP106", path, cannotReadText(shownPath(path, currentFolder), reason));
}

}  // namespace marrowpress
