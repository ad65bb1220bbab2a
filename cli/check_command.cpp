#include "cli/check_command.h"

#include <ostream>

namespace marrowpress {

ExitCode runCheck(const CheckOptions& options, const Streams& streams) {
    streams.err << "marrowpress check: cannot check " << options.map << " yet\n";
    return ExitCode::kRunFailed;
}

}  // namespace marrowpress
