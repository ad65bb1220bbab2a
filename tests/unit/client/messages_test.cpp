#include "client/messages.h"

#include <gtest/gtest.h>

#include "support/request_singleton.h"
#include "tests/unit/client/scripted_host.h"

namespace marrowpress {
namespace {

using Lines = std::vector<std::string>;

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

/// Reports go to `host`.
class MessengerTest : public testing::Test {
protected:
    MessengerTest() { interfaces_.connect(); }

    /// The one console text, without what the record of the call puts in front.
    std::string console() const {
        EXPECT_EQ(host.calls.size(), 1U);
        EXPECT_TRUE(host.calls.front().starts_with("write "));
        return host.calls.front().substr(6);
    }

    ScriptedHost host;

private:
    QsApiInterfacesC interfaces_{host.provider()};
};

class ProgressMessengerTest : public MessengerTest {
protected:
    ProgressMessenger messenger;
};

class ReportMessengerTest : public MessengerTest {
protected:
    ReportMessenger messenger;
};

TEST_F(ProgressMessengerTest, ALineHasTheKindFourAndNoNumber) {
    messenger.reportProgress(MessageId::kProcessingKeySpaces);
    messenger.reportProgress(MessageId::kUpdatingReferences);
    messenger.reportProgress(MessageId::kProcessingReferences);
    EXPECT_EQ(host.calls,
              Lines({"reportProgress 4 -1 Schl\xC3\xBCsselr\xC3\xA4ume werden in Ditamap "
                     "verarbeitet...",
                     "reportProgress 4 -1 Referenzen in Ditamap werden aktualisiert...",
                     "reportProgress 4 -1 Referenzen werden verarbeitet"}));
}

TEST_F(ProgressMessengerTest, AnAppendedDocumentIsNamedWithoutLineEnd) {
    messenger.reportAppending("\xC3\xA4.dita");
    EXPECT_EQ(host.calls, Lines({"reportProgress 4 -1 Wird angeh\xC3\xA4ngt: \xC3\xA4.dita"}));
}

TEST_F(ProgressMessengerTest, ALongNameIsCutAt4095Bytes) {
    messenger.reportAppending(std::string(5000, 'x'));
    const std::string start = "Wird angeh\xC3\xA4ngt: ";
    EXPECT_EQ(host.calls,
              Lines({"reportProgress 4 -1 " + start + std::string(4095 - start.size(), 'x')}));
}

TEST_F(ProgressMessengerTest, IsOnePerRequest) {
    ProgressMessenger& object = ProgressMessenger::instance();
    EXPECT_EQ(RequestSingleton<ProgressMessenger>::existing(), &object);
    RequestSingleton<ProgressMessenger>::destroy();
}

TEST_F(ReportMessengerTest, AMessageEndsInCrAndLf) {
    messenger.reportMessage(MessageId::kKeyNotFound, "k");
    messenger.reportMessage(MessageId::kCannotRead, "/a");
    messenger.reportMessage(MessageId::kCannotWrite, "/b");
    messenger.reportMessage(MessageId::kReferencedFileNotFound, "/c");
    EXPECT_EQ(host.calls,
              Lines({"write Die Definition von Schl\xC3\xBCssel k wurde im geladenen "
                     "Schl\xC3\xBCsselraum nicht gefunden.\r\n",
                     "write Lesen nicht m\xC3\xB6glich: /a\r\n",
                     "write Speichern nicht m\xC3\xB6glich: /b\r\n",
                     "write Die Datei, auf die verwiesen wird, kann nicht gefunden werden: "
                     "/c\r\n"}));
}

TEST_F(ReportMessengerTest, ElementsAreNamedInTheOrderOfTheText) {
    messenger.reportElementNotFound("p", "i", "/f");
    messenger.reportElementInTopicNotFound("p", "i", "t", "/f");
    messenger.reportInvalidConrefEnd();
    EXPECT_EQ(host.calls,
              Lines({"write p/@id=\"i\" wurde in Datei /f nicht gefunden\r\n",
                     "write p/@id=\"i\" wurde im Thema @id=\"t\" in Datei /f nicht gefunden\r\n",
                     "write Geben Sie ein g\xC3\xBCltiges conref-Endelement an.\r\n"}));
}

TEST_F(ReportMessengerTest, AnEmptyArgumentLeavesItsPlaceEmpty) {
    messenger.reportMessage(MessageId::kCannotRead, "");
    EXPECT_EQ(console(), "Lesen nicht m\xC3\xB6glich: \r\n");
}

TEST_F(ReportMessengerTest, PercentSignsOfAnArgumentAreHandedOver) {
    messenger.reportMessage(MessageId::kCannotRead, "/100%/%s%n%%.dita");
    EXPECT_EQ(console(), "Lesen nicht m\xC3\xB6glich: /100%/%s%n%%.dita\r\n");
}

TEST_F(ReportMessengerTest, PercentSignsOfSeveralArgumentsAreHandedOver) {
    messenger.reportElementInTopicNotFound("%s", "%d", "%n", "%%");
    EXPECT_EQ(console(), "%s/@id=\"%d\" wurde im Thema @id=\"%n\" in Datei %% nicht gefunden\r\n");
}

TEST_F(ReportMessengerTest, AnArgumentEndsAtItsFirstNul) {
    messenger.reportMessage(MessageId::kCannotRead, std::string("/a\0b", 4));
    EXPECT_EQ(console(), "Lesen nicht m\xC3\xB6glich: /a\r\n");
}

TEST_F(ReportMessengerTest, TheLineEndIsAddedAsFarAsThereIsRoom) {
    const std::string start = "Lesen nicht m\xC3\xB6glich: ";
    struct {
        std::size_t length;  ///< of the formatted text
        std::string end;
    } const cases[] = {{4092, "\r\n"}, {4093, "\r\n"}, {4094, "\r"}, {4095, ""}};
    for (const auto& [length, end] : cases) {
        host.calls.clear();
        const std::string argument(length - start.size(), 'x');
        messenger.reportMessage(MessageId::kCannotRead, argument);
        EXPECT_EQ(console(), start + argument + end) << length;
    }
}

TEST_F(ReportMessengerTest, ATextThatFillsTheBufferLosesItsEnd) {
    const std::string start = "Lesen nicht m\xC3\xB6glich: ";
    for (const std::size_t length : {4096U, 4097U, 100000U}) {
        host.calls.clear();
        messenger.reportMessage(MessageId::kCannotRead, std::string(length - start.size(), 'x'));
        EXPECT_EQ(console(), start + std::string(4095 - start.size(), 'x')) << length;
    }
}

TEST_F(ReportMessengerTest, TheCutTakesWhatFollowsTheLongArgument) {
    messenger.reportElementNotFound(std::string(4090, 'x'), "i", "/f");
    EXPECT_EQ(console(), std::string(4090, 'x') + "/@id=");
}

TEST_F(ReportMessengerTest, TheCutDoesNotSpareACharacter) {
    const std::string start = "Lesen nicht m\xC3\xB6glich: ";
    const std::string argument(4094 - start.size(), 'x');
    messenger.reportMessage(MessageId::kCannotRead, argument + "\xC3\xA4");
    EXPECT_EQ(console(), start + argument + "\xC3");
}

TEST_F(ReportMessengerTest, AHostThatRefusesChangesNothing) {
    host.hostStatus = 5;
    messenger.reportInvalidConrefEnd();
    host.hostStatus = 0;
    messenger.reportInvalidConrefEnd();
    EXPECT_EQ(host.calls.size(), 2U);
}

TEST_F(ReportMessengerTest, IsOnePerRequest) {
    ReportMessenger& object = ReportMessenger::instance();
    EXPECT_EQ(RequestSingleton<ReportMessenger>::existing(), &object);
    RequestSingleton<ReportMessenger>::destroy();
}

}  // namespace
}  // namespace marrowpress
