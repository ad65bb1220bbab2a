#include "cli/standard_output_composite.h"

#include <fstream>
#include <ostream>

namespace marrowpress {

bool StandardOutputComposite::copyTo(const Streams& streams) const {
    std::ifstream file(path_, std::ios::binary);
    if (!file) {
        return false;
    }
    // An empty file would count as a failed copy.
    if (file.peek() != std::ifstream::traits_type::eof()) {
        streams.out << file.rdbuf();
    }
    return writeOutput(streams, {});
}

}  // namespace marrowpress
