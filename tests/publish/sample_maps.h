#pragma once

#include <string>
#include <string_view>

namespace marrowpress {

/// What the root map of an observed run holds.
inline constexpr std::string_view kMapOfA = "<topicref href=\"a.dita\"/>";
inline constexpr std::string_view kMapOfNested =
    "<mapref href=\"sub/n.ditamap\" format=\"ditamap\"/>";
/// The way to the topic of `kMapOfA`, as it stands behind a line about it.
inline const std::string kViaMap = " via root.ditamap:3:1 href=a.dita";

}  // namespace marrowpress
