#include "cli/version_text.h"

#include <libxml/parser.h>

#include <cstdlib>

namespace marrowpress {
namespace {

/// The version of the library in use, which it gives as a number of two digits a part: "20914".
std::string xmlLibraryVersion() {
    constexpr int kPart = 100;
    const int number = std::atoi(xmlParserVersion);
    return std::to_string(number / kPart / kPart) + "." + std::to_string(number / kPart % kPart) +
           "." + std::to_string(number % kPart);
}

}  // namespace

std::string versionText() {
    return "marrowpress " MARROWPRESS_VERSION
           "\n"
           "built with Xerces-C " MARROWPRESS_XERCES_VERSION ", ICU " MARROWPRESS_ICU_VERSION
           ", Boost " MARROWPRESS_BOOST_VERSION "\nruns with libxml2 " +
           xmlLibraryVersion() + "\n";
}

std::vector<std::pair<std::string, std::string>> libraryVersions() {
    return {{"marrowpress", MARROWPRESS_VERSION},
            {"xerces-c", MARROWPRESS_XERCES_VERSION},
            {"icu", MARROWPRESS_ICU_VERSION},
            {"boost", MARROWPRESS_BOOST_VERSION},
            {"libxml2", xmlLibraryVersion()}};
}

}  // namespace marrowpress
