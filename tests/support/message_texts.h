#pragma once

#include <string>
#include <string_view>

#include "marrowpress/messages.h"

/// The lines that a run is to show, from the texts of the messages.
namespace marrowpress {

// Progress lines, without a line end.
std::string processingKeySpaces();
std::string updatingReferences();
std::string appending(std::string_view fileName);
std::string processingReferences();

// Report lines, as they come to the console: with CR and LF at their end.
std::string keyNotFound(std::string_view keyName);
std::string cannotRead(std::string_view path);
std::string cannotWrite(std::string_view path);
std::string elementInTopicNotFound(std::string_view tagName, std::string_view elementId,
                                   std::string_view topicId, std::string_view file);
std::string elementNotFound(std::string_view tagName, std::string_view id, std::string_view file);
std::string invalidConrefEnd();
std::string referencedFileNotFound(std::string_view path);

}  // namespace marrowpress
