#include "findings/identity.h"

#include <algorithm>
#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/uuid_io.hpp>

#include "findings/shown_path.h"
#include "host/utf8.h"

namespace marrowpress {
namespace {

/// What our names are made within; a fingerprint of another one would be a different text.
constexpr boost::uuids::uuid kNames{{0x1f, 0x0a, 0x6d, 0x52, 0x9c, 0x7e, 0x4b, 0x3d, 0x8e, 0x21,
                                     0x60, 0xd4, 0x37, 0xb5, 0xc8, 0x19}};

/// A target that is a path, as seen from `folder`; its fragment and all others stay.
std::string relativeTarget(std::string_view target, std::string_view folder) {
    const std::size_t pathEnd = std::min(target.find('#'), target.size());
    return relativePath(target.substr(0, pathEnd), folder) + std::string(target.substr(pathEnd));
}

}  // namespace

std::string identityOf(const Finding& finding, const FindingPlace& place, std::string_view folder) {
    std::string identity = finding.id;
    for (const std::string& part : {relativePath(place.file, folder), finding.element,
                                    relativeTarget(finding.target, folder)}) {
        identity += '\0';
        identity += part;
    }
    // What was recorded is valid, whatever it was before.
    return toValidUtf8(identity);
}

std::string fingerprintOf(const Finding& finding, std::string_view folder) {
    boost::uuids::name_generator_sha1 generate(kNames);
    return to_string(generate(identityOf(finding, finding.place, folder)));
}

}  // namespace marrowpress
