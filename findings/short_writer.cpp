#include "findings/short_writer.h"

#include <ostream>

namespace marrowpress {

void writeShort(std::ostream& out, const std::vector<Finding>& findings,
                const FindingSummary& summary, const LineOptions& options) {
    for (const Finding& finding : findings) {
        out << findingLine(finding, options) << '\n';
    }
    out << lastLines(summary, options.words);
}

}  // namespace marrowpress
