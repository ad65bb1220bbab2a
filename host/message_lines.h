#pragma once

#include <optional>
#include <string_view>

#include "marrowpress/messages.h"

namespace marrowpress {

/// The message that `line`, a text for the console or the progress display, is of: the one whose
/// text the line has, whatever stands in the places of the arguments. Nothing for any other text.
///
/// The interfaces hand over texts alone; so everybody else can go by the id.
std::optional<MessageId> messageIdOf(std::string_view line);

}  // namespace marrowpress
