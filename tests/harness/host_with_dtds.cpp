#include "tests/harness/host_with_dtds.h"

#include <optional>
#include <string>
#include <string_view>

namespace marrowpress {

StandInHostOptions hostWithDtds(const std::filesystem::path& dtds) {
    StandInHostOptions options;
    options.resolvePublicId = [dtds](std::string_view publicId) -> std::optional<std::string> {
        const bool isMap = publicId.find("Map") != std::string_view::npos;
        return (dtds / (isMap ? "map.dtd" : "topic.dtd")).string();
    };
    return options;
}

}  // namespace marrowpress
