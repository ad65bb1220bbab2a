#pragma once

#include <cstddef>
#include <string_view>

/// The lines that a run shows to people, by id.
///
/// In a text each "%s" is the place of an argument, in UTF-8. Progress lines
/// tell the state of a run; report lines stay on the console and never change
/// the status of a run.
namespace marrowpress {

enum class MessageId : unsigned {
    kProcessingKeySpaces = 101,
    kUpdatingReferences = 102,
    kAppending = 103,
    kProcessingReferences = 104,
    kKeyNotFound = 105,
    kCannotRead = 106,
    kCannotWrite = 107,
    kElementInTopicNotFound = 108,
    kElementNotFound = 109,
    kInvalidConrefEnd = 110,
    kReferencedFileNotFound = 111,
};

/// The bytes at which a line is cut, its line end included.
inline constexpr std::size_t kLongestMessageLine = 4095;

/// The text of `id`; empty for a number that is no message. The view is NUL-terminated.
constexpr std::string_view messageText(MessageId id) {
    switch (id) {
        case MessageId::kProcessingKeySpaces:
            return "Schlüsselräume werden in Ditamap verarbeitet...";
        case MessageId::kUpdatingReferences:
            return "Referenzen in Ditamap werden aktualisiert...";
        case MessageId::kAppending:
            return "Wird angehängt: %s";
        case MessageId::kProcessingReferences:
            return "Referenzen werden verarbeitet";
        case MessageId::kKeyNotFound:
            return "Die Definition von Schlüssel %s wurde im geladenen Schlüsselraum nicht "
                   "gefunden.";
        case MessageId::kCannotRead:
            return "Lesen nicht möglich: %s";
        case MessageId::kCannotWrite:
            return "Speichern nicht möglich: %s";
        case MessageId::kElementInTopicNotFound:
            return "%s/@id=\"%s\" wurde im Thema @id=\"%s\" in Datei %s nicht gefunden";
        case MessageId::kElementNotFound:
            return "%s/@id=\"%s\" wurde in Datei %s nicht gefunden";
        case MessageId::kInvalidConrefEnd:
            return "Geben Sie ein gültiges conref-Endelement an.";
        case MessageId::kReferencedFileNotFound:
            return "Die Datei, auf die verwiesen wird, kann nicht gefunden werden: %s";
    }
    return {};
}

}  // namespace marrowpress
