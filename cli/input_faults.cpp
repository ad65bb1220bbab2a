#include "cli/input_faults.h"

#include "findings/map_file.h"
#include "findings/profile_remarks.h"
#include "runs/public_ids.h"

namespace marrowpress {
namespace {

std::string cannotRead(const std::string& argument, const std::string& shown,
                       const std::string& reason) {
    return argument + ": cannot read " + shown + ": " + reason;
}

/// "p.ditaval:3:5", or the path alone when no line is known.
std::string withPlace(const std::string& shown, const FindingPlace& place) {
    if (place.line == 0) {
        return shown;
    }
    return shown + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

}  // namespace

std::optional<std::string> findMapFault(const std::string& shown, const std::string& path) {
    const MapFile file = inspectMapFile(path);
    switch (file.kind) {
        case MapFile::Kind::kUnreadable:
            return cannotRead("MAP", shown, file.reason);
        case MapFile::Kind::kNoMap:
            return "MAP: " + shown + " is a `" + file.rootName + "`; a map is wanted";
        case MapFile::Kind::kMap:
        case MapFile::Kind::kNotWellFormed:
            break;
    }
    return std::nullopt;
}

std::optional<std::string> findInputFault(const RunOptions& options, const PublishPaths& paths) {
    if (std::optional<std::string> fault = findCatalogOptionFault(options.catalogs)) {
        return fault;
    }
    if (std::optional<std::string> fault = findTextFault(paths)) {
        return fault;
    }
    return findMapFault(options.map, paths.map.string());
}

std::string profileFaultText(const std::string& argument, const std::string& shown,
                             const ProfileFault& fault) {
    if (fault.kind == ProfileFault::Kind::kUnreadable) {
        return cannotRead(argument, shown, fault.reason);
    }
    return argument + ": " + withPlace(shown, fault.place) + ": " + fault.reason;
}

std::optional<std::string> findProfileRootFault(const std::string& argument,
                                                const std::string& shown, const Profile& profile) {
    if (isProfile(profile)) {
        return std::nullopt;
    }
    return argument + ": " + withPlace(shown, profile.root().place) + ": the root is a `" +
           profile.root().name + "`; that of a DITAVAL file is a `val`";
}

}  // namespace marrowpress
