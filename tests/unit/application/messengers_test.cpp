#include "application/messengers.h"

#include <gtest/gtest.h>

#include <optional>

#include "application/connection.h"
#include "client/xml_session.h"
#include "support/request_singleton.h"
#include "support/text.h"
#include "tests/support/scripted_host.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using Lines = std::vector<std::string>;

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
    /// A document with this URI.
    const xercesc::DOMDocument& target(std::string_view uri) {
        return target_.emplace("<topic/>", toUtf16(uri)).document();
    }

    ReportMessenger messenger;

private:
    const XmlSession session_;
    std::optional<ParsedXml> target_;
};

TEST_F(ProgressMessengerTest, ALineHasTheKindFourAndNoNumber) {
    messenger.reportProcessingKeySpaces();
    messenger.reportUpdatingReferences();
    messenger.reportProcessingReferences();
    EXPECT_EQ(host.calls,
              Lines({"reportProgress 4 -1 Schl\xC3\xBCsselr\xC3\xA4ume werden in Ditamap "
                     "verarbeitet...",
                     "reportProgress 4 -1 Referenzen in Ditamap werden aktualisiert...",
                     "reportProgress 4 -1 Referenzen werden verarbeitet"}));
}

TEST_F(ProgressMessengerTest, AnAppendedDocumentIsNamedWithoutLineEnd) {
    messenger.reportAppending(u"\u00E4.dita");
    EXPECT_EQ(host.calls, Lines({"reportProgress 4 -1 Wird angeh\xC3\xA4ngt: \xC3\xA4.dita"}));
}

TEST_F(ProgressMessengerTest, ALongNameIsCutAt4095Bytes) {
    messenger.reportAppending(std::u16string(5000, u'x'));
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
    messenger.reportKeyNotFound(u"k", nullptr);
    messenger.reportCannotRead(u"/a", nullptr);
    messenger.reportCannotWrite(u"/b");
    messenger.reportReferencedFileNotFound(u"/c", nullptr);
    EXPECT_EQ(host.calls,
              Lines({"write Die Definition von Schl\xC3\xBCssel k wurde im geladenen "
                     "Schl\xC3\xBCsselraum nicht gefunden.\r\n",
                     "write Lesen nicht m\xC3\xB6glich: /a\r\n",
                     "write Speichern nicht m\xC3\xB6glich: /b\r\n",
                     "write Die Datei, auf die verwiesen wird, kann nicht gefunden werden: "
                     "/c\r\n"}));
}

TEST_F(ReportMessengerTest, ElementsAreNamedInTheOrderOfTheText) {
    messenger.reportElementNotFound(u"p", u"i", target("/f"), nullptr);
    messenger.reportElementInTopicNotFound(u"p", u"i", u"t", target("/f"), nullptr);
    messenger.reportInvalidConrefEnd(nullptr);
    EXPECT_EQ(host.calls,
              Lines({"write p/@id=\"i\" wurde in Datei file:///f nicht gefunden\r\n",
                     "write p/@id=\"i\" wurde im Thema @id=\"t\" in Datei file:///f nicht gefunden\r\n",
                     "write Geben Sie ein g\xC3\xBCltiges conref-Endelement an.\r\n"}));
}

TEST_F(ReportMessengerTest, AnEmptyArgumentLeavesItsPlaceEmpty) {
    messenger.reportCannotRead(u"", nullptr);
    EXPECT_EQ(console(), "Lesen nicht m\xC3\xB6glich: \r\n");
}

TEST_F(ReportMessengerTest, PercentSignsOfAnArgumentAreHandedOver) {
    messenger.reportCannotRead(u"/100%/%s%n%%.dita", nullptr);
    EXPECT_EQ(console(), "Lesen nicht m\xC3\xB6glich: /100%/%s%n%%.dita\r\n");
}

TEST_F(ReportMessengerTest, PercentSignsOfSeveralArgumentsAreHandedOver) {
    messenger.reportElementInTopicNotFound(u"%s", u"%d", u"%n", target("%%"), nullptr);
    EXPECT_EQ(console(), "%s/@id=\"%d\" wurde im Thema @id=\"%n\" in Datei %% nicht gefunden\r\n");
}

TEST_F(ReportMessengerTest, AnArgumentEndsAtItsFirstNul) {
    messenger.reportCannotRead(std::u16string(u"/a\0b", 4), nullptr);
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
        messenger.reportCannotRead(toUtf16(argument), nullptr);
        EXPECT_EQ(console(), start + argument + end) << length;
    }
}

TEST_F(ReportMessengerTest, ATextThatFillsTheBufferLosesItsEnd) {
    const std::string start = "Lesen nicht m\xC3\xB6glich: ";
    for (const std::size_t length : {4096U, 4097U, 100000U}) {
        host.calls.clear();
        messenger.reportCannotRead(std::u16string(length - start.size(), u'x'), nullptr);
        EXPECT_EQ(console(), start + std::string(4095 - start.size(), 'x')) << length;
    }
}

TEST_F(ReportMessengerTest, TheCutTakesWhatFollowsTheLongArgument) {
    messenger.reportElementNotFound(std::u16string(4090, u'x'), u"i", target("/f"), nullptr);
    EXPECT_EQ(console(), std::string(4090, 'x') + "/@id=");
}

TEST_F(ReportMessengerTest, TheCutDoesNotSpareACharacter) {
    const std::string start = "Lesen nicht m\xC3\xB6glich: ";
    const std::string argument(4094 - start.size(), 'x');
    messenger.reportCannotRead(toUtf16(argument) + u"\u00E4", nullptr);
    EXPECT_EQ(console(), start + argument + "\xC3");
}

TEST_F(ReportMessengerTest, AHostThatRefusesChangesNothing) {
    host.hostStatus = 5;
    messenger.reportInvalidConrefEnd(nullptr);
    host.hostStatus = 0;
    messenger.reportInvalidConrefEnd(nullptr);
    EXPECT_EQ(host.calls.size(), 2U);
}

TEST_F(ReportMessengerTest, IsOnePerRequest) {
    ReportMessenger& object = ReportMessenger::instance();
    EXPECT_EQ(RequestSingleton<ReportMessenger>::existing(), &object);
    RequestSingleton<ReportMessenger>::destroy();
}

}  // namespace
}  // namespace marrowpress
