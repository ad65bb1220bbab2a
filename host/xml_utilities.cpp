#include "host/xml_utilities.h"

#include <cstddef>

namespace marrowpress {
namespace {

/// Takes `prefix` off the front of `rest`; false, with nothing taken, when it isn't there.
bool take(std::string_view& rest, std::string_view prefix) {
    if (!rest.starts_with(prefix)) {
        return false;
    }
    rest.remove_prefix(prefix.size());
    return true;
}

/// Takes `name`, a blank and a quoted value off the front of `rest`.
std::optional<std::string> takeArgument(std::string_view& rest, std::string_view name) {
    if (!take(rest, name) || !take(rest, " \"")) {
        return std::nullopt;
    }
    const std::size_t end = rest.find('"');
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    std::string value(rest.substr(0, end));
    rest.remove_prefix(end + 1);
    return value;
}

std::optional<XmlUtilitiesCommand> parseStart(std::string_view rest) {
    std::optional<std::string> baseFile = takeArgument(rest, "-basefile");
    if (!baseFile || !rest.empty()) {
        return std::nullopt;
    }
    return XmlUtilitiesCommand{XmlUtilitiesCommand::Kind::kStart, std::move(*baseFile), {}, {}};
}

std::optional<XmlUtilitiesCommand> parseResolveEntity(std::string_view rest) {
    std::string baseUri;
    if (std::optional<std::string> given = takeArgument(rest, "-baseuri")) {
        baseUri = std::move(*given);
        take(rest, " ");
    }
    std::optional<std::string> publicId = takeArgument(rest, "-publicid");
    if (!publicId || !rest.empty()) {
        return std::nullopt;
    }
    return XmlUtilitiesCommand{
        XmlUtilitiesCommand::Kind::kResolveEntity, {}, std::move(baseUri), std::move(*publicId)};
}

}  // namespace

std::optional<XmlUtilitiesCommand> parseXmlUtilitiesCommand(std::string_view text) {
    if (!take(text, "EntityResolver ")) {
        return std::nullopt;
    }
    if (text == "end") {
        return XmlUtilitiesCommand{XmlUtilitiesCommand::Kind::kEnd, {}, {}, {}};
    }
    if (text == "terminate") {
        return XmlUtilitiesCommand{XmlUtilitiesCommand::Kind::kTerminate, {}, {}, {}};
    }
    if (take(text, "start ")) {
        return parseStart(text);
    }
    if (take(text, "resolveentity ")) {
        return parseResolveEntity(text);
    }
    return std::nullopt;
}

}  // namespace marrowpress
