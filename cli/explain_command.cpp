#include "cli/explain_command.h"

#include <string>

#include "findings/catalogue.h"

namespace marrowpress {

ExitCode runExplain(const ExplainOptions& options, const Streams& streams) {
    std::string text;
    for (const std::string& id : findingIds()) {
        if (!options.id || *options.id == id) {
            text += id + "\n";
        }
    }
    return writeResult(streams, text) ? ExitCode::kSuccess : ExitCode::kRunFailed;
}

}  // namespace marrowpress
