#include "cli/batch/job_file.h"

#include <sstream>

namespace marrowpress {

std::vector<Job> readJobFile(const JobFileSetting& setting) {
    std::istringstream in(setting.text);
    return readJobLines(in, setting.shown);
}

}  // namespace marrowpress
