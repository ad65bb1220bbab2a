#include "host/message_lines.h"

#include <gtest/gtest.h>

#include <string>

namespace marrowpress {
namespace {

struct LineCase {
    std::string line;
    std::optional<MessageId> id;
};

const LineCase kLineCases[] = {
    {"Referenzen werden verarbeitet", MessageId::kProcessingReferences},
    {"Wird angehängt: a.dita", MessageId::kAppending},
    {"Die Definition von Schlüssel k wurde im geladenen Schlüsselraum nicht gefunden.\r\n",
     MessageId::kKeyNotFound},
    {"Lesen nicht möglich: /o.dita\r\n", MessageId::kCannotRead},
    {"Lesen nicht möglich: Speichern nicht möglich: \r\n", MessageId::kCannotRead},
    {"Speichern nicht möglich: /o.dita\r\n", MessageId::kCannotWrite},
    {"Speichern nicht möglich: \r\n", MessageId::kCannotWrite},
    {"p/@id=\"e\" wurde im Thema @id=\"t\" in Datei /f nicht gefunden\r\n",
     MessageId::kElementInTopicNotFound},
    {"p/@id=\"e\" wurde in Datei /f nicht gefunden\r\n", MessageId::kElementNotFound},
    {"Geben Sie ein gültiges conref-Endelement an.\r\n", MessageId::kInvalidConrefEnd},
    {"Die Datei, auf die verwiesen wird, kann nicht gefunden werden: /a\r\n",
     MessageId::kReferencedFileNotFound},
    // Cut: what stands behind the argument is missing.
    {"Die Definition von Schlüssel " + std::string(5000, 'k'), MessageId::kKeyNotFound},

    {"", std::nullopt},
    {"Speichern nicht möglich", std::nullopt},
    {" Speichern nicht möglich: /o.dita", std::nullopt},
    {"speichern nicht möglich: /o.dita", std::nullopt},
    {"Die Definition von Schlüssel k", std::nullopt},
    {"p wurde in Datei /f nicht gefunden", std::nullopt},
    {"anything else\r\n", std::nullopt},
};

TEST(MessageIdOfTest, TellsByTheTextAroundTheArguments) {
    for (const auto& [line, id] : kLineCases) {
        EXPECT_EQ(messageIdOf(line), id) << line;
    }
}

}  // namespace
}  // namespace marrowpress
