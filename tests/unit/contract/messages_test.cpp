#include "marrowpress/messages.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

struct MessageCase {
    unsigned id;
    const char* text;
};

// Byte by byte, so that the encoding of a source file can't change what is shown.
const MessageCase kMessages[] = {
    {101, "Schl\xC3\xBCsselr\xC3\xA4ume werden in Ditamap verarbeitet..."},
    {102, "Referenzen in Ditamap werden aktualisiert..."},
    {103, "Wird angeh\xC3\xA4ngt: %s"},
    {104, "Referenzen werden verarbeitet"},
    {105,
     "Die Definition von Schl\xC3\xBCssel %s wurde im geladenen Schl\xC3\xBCsselraum nicht "
     "gefunden."},
    {106, "Lesen nicht m\xC3\xB6glich: %s"},
    {107, "Speichern nicht m\xC3\xB6glich: %s"},
    {108, "%s/@id=\x22%s\x22 wurde im Thema @id=\x22%s\x22 in Datei %s nicht gefunden"},
    {109, "%s/@id=\x22%s\x22 wurde in Datei %s nicht gefunden"},
    {110, "Geben Sie ein g\xC3\xBCltiges conref-Endelement an."},
    {111, "Die Datei, auf die verwiesen wird, kann nicht gefunden werden: %s"},
};

TEST(MessageTextTest, EachIdHasItsText) {
    for (const MessageCase& message : kMessages) {
        const std::string_view text = messageText(static_cast<MessageId>(message.id));
        EXPECT_EQ(text, message.text) << message.id;
        EXPECT_EQ(text.data()[text.size()], '\0') << message.id;
    }
}

TEST(MessageTextTest, OtherNumbersHaveNone) {
    for (const unsigned id : {0U, 100U, 112U, 4294967295U}) {
        EXPECT_EQ(messageText(static_cast<MessageId>(id)), "") << id;
    }
}

}  // namespace
}  // namespace marrowpress
