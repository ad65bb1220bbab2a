#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace marrowpress {

/// Name of the client that knows which file a public identifier stands for.
inline constexpr std::string_view kXmlUtilitiesClient = "XmlUtilities";

/// One command to the client "XmlUtilities".
struct XmlUtilitiesCommand {
    enum class Kind { kStart, kResolveEntity, kEnd, kTerminate };

    Kind kind;
    std::string baseFile;  ///< Of `kStart`: the document that the next questions are about.
    std::string baseUri;   ///< Of `kResolveEntity`; empty when not given.
    std::string publicId;  ///< Of `kResolveEntity`.

    friend bool operator==(const XmlUtilitiesCommand&, const XmlUtilitiesCommand&) = default;
};

/// Reads a command; empty when it is none that the client knows.
///
///     EntityResolver start -basefile "/p/m.ditamap"
///     EntityResolver resolveentity -publicid "-//OASIS//DTD DITA Map//EN"
///     EntityResolver resolveentity -baseuri "/p/"-publicid "..."
///     EntityResolver end
///     EntityResolver terminate
///
/// Words are separated by one blank, which may be missing behind the base URI. A value ends at
/// the next double quote, there is no escape.
std::optional<XmlUtilitiesCommand> parseXmlUtilitiesCommand(std::string_view text);

}  // namespace marrowpress
