#include "application/messengers.h"

#include <gtest/gtest.h>

#include <optional>

#include "application/connection.h"
#include "client/xml_session.h"
#include "support/request_singleton.h"
#include "support/text.h"
#include "tests/support/message_texts.h"
#include "tests/support/recording_observer.h"
#include "tests/support/scripted_host.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using Lines = std::vector<std::string>;

/// `line` without its CR and LF.
std::string withoutEnd(const std::string& line) {
    return line.substr(0, line.size() - 2);
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
    EXPECT_EQ(host.calls, Lines({"reportProgress 4 -1 " + processingKeySpaces(),
                                 "reportProgress 4 -1 " + updatingReferences(),
                                 "reportProgress 4 -1 " + processingReferences()}));
}

TEST_F(ProgressMessengerTest, AnAppendedDocumentIsNamedWithoutLineEnd) {
    messenger.reportAppending(u"\u00E4.dita");
    EXPECT_EQ(host.calls, Lines({"reportProgress 4 -1 " + appending("\xC3\xA4.dita")}));
}

TEST_F(ProgressMessengerTest, ALongNameIsCutAt4095Bytes) {
    messenger.reportAppending(std::u16string(5000, u'x'));
    const std::string cut = appending(std::string(5000, 'x')).substr(0, 4095);
    EXPECT_EQ(host.calls, Lines({"reportProgress 4 -1 " + cut}));
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
              Lines({"write " + keyNotFound("k"), "write " + cannotRead("/a"),
                     "write " + cannotWrite("/b"), "write " + referencedFileNotFound("/c")}));
}

TEST_F(ReportMessengerTest, ElementsAreNamedInTheOrderOfTheText) {
    messenger.reportElementNotFound(u"p", u"i", target("/f"), nullptr);
    messenger.reportElementInTopicNotFound(u"p", u"i", u"t", target("/f"), nullptr);
    messenger.reportInvalidConrefEnd(nullptr);
    EXPECT_EQ(host.calls, Lines({"write " + elementNotFound("p", "i", "file:///f"),
                                 "write " + elementInTopicNotFound("p", "i", "t", "file:///f"),
                                 "write " + invalidConrefEnd()}));
}

TEST_F(ReportMessengerTest, AnEmptyArgumentLeavesItsPlaceEmpty) {
    messenger.reportCannotRead(u"", nullptr);
    EXPECT_EQ(console(), cannotRead(""));
}

TEST_F(ReportMessengerTest, PercentSignsOfAnArgumentAreHandedOver) {
    messenger.reportCannotRead(u"/100%/%s%n%%.dita", nullptr);
    EXPECT_EQ(console(), cannotRead("/100%/%s%n%%.dita"));
}

TEST_F(ReportMessengerTest, PercentSignsOfSeveralArgumentsAreHandedOver) {
    messenger.reportElementInTopicNotFound(u"%s", u"%d", u"%n", target("%%"), nullptr);
    EXPECT_EQ(console(), elementInTopicNotFound("%s", "%d", "%n", "%%"));
}

TEST_F(ReportMessengerTest, AnArgumentEndsAtItsFirstNul) {
    messenger.reportCannotRead(std::u16string(u"/a\0b", 4), nullptr);
    EXPECT_EQ(console(), cannotRead("/a"));
}

TEST_F(ReportMessengerTest, TheLineEndIsAddedAsFarAsThereIsRoom) {
    const std::string start = withoutEnd(cannotRead(""));
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
    const std::string start = withoutEnd(cannotRead(""));
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
    const std::string start = withoutEnd(cannotRead(""));
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

/// Reports about a reference that stands somewhere, to a host with an observer.
class ObservedReportTest : public XmlTest {
protected:
    ObservedReportTest() {
        SourcePlaces& places = *SourcePlaces::existing();
        places.record(*reference_.root(), {places.fileNumber(u"/a.dita"), 7, 3});
    }

    const xercesc::DOMElement* element() const { return reference_.root(); }

    /// The fault of the one report so far, with its line in front.
    std::string told() {
        const std::string faults = observed.faults();
        EXPECT_EQ(observed.host.observations.size(), 1U);
        EXPECT_EQ(host.console(), Lines({observed.host.observations.front().line}));
        return faults;
    }

    ReportMessenger messenger;
    ObservedScope observed;
    const ParsedXml target{"<topic id='t'><p id='p'/></topic>", u"file:///b.dita"};

private:
    const ParsedXml reference_{"<ph conref='#t/p' conrefend='#t/q' href='c.dita'/>",
                               u"file:///a.dita"};
};

TEST_F(ObservedReportTest, AMissingKeyIsTheTarget) {
    messenger.reportKeyNotFound(u"k", element());
    EXPECT_EQ(told(), "105 /a.dita:7:3 <ph> k");
}

TEST_F(ObservedReportTest, AKeyThatNobodyWroteIsAnArtefact) {
    messenger.reportKeyNotFound(u"", element(), true);
    EXPECT_EQ(told(), "artefact 105 /a.dita:7:3 <ph>");
}

TEST_F(ObservedReportTest, AFileThatCannotBeReadHasTheReferenceOrTheStopAsItsPlace) {
    messenger.reportCannotRead(u"/b.dita", element(), {u"gone", {}, 0, 0});
    EXPECT_EQ(told(), "106 /a.dita:7:3 <ph> /b.dita reason=gone");
    observed.host.observations.clear();
    host.forget();
    messenger.reportCannotRead(u"/b.dita", element(), {u"bad", u"/b.dita", 4, 2});
    EXPECT_EQ(told(), "106 /b.dita:4:2 <ph> /b.dita reason=bad via /a.dita:7:3 conref=#t/p");
}

TEST_F(ObservedReportTest, AFileThatCannotBeWrittenHasNoPlace) {
    messenger.reportCannotWrite(u"/out", "no room");
    EXPECT_EQ(told(), "107 ?:0:0 /out reason=no room");
}

TEST_F(ObservedReportTest, ANavtitleIsToldWithTheLineOfAFileThatCannotBeWritten) {
    messenger.reportNoFileName(u"/x.qs", u"../x", *element());
    EXPECT_EQ(told(), "212 /a.dita:7:3 <ph> ../x detail=/x.qs");
    EXPECT_EQ(host.console(), Lines({cannotWrite("/x.qs")}));
}

TEST_F(ObservedReportTest, AMissingElementIsToldWithWhatBearsItsId) {
    messenger.reportElementInTopicNotFound(u"ph", u"p", u"t", target.document(), element());
    EXPECT_EQ(told(), "108 /a.dita:7:3 <ph> /b.dita#t/p detail=ph reason=p");
    observed.host.observations.clear();
    host.forget();
    messenger.reportElementNotFound(u"ph", u"t", target.document(), element());
    EXPECT_EQ(told(), "109 /a.dita:7:3 <ph> /b.dita#t detail=ph reason=topic");
    observed.host.observations.clear();
    host.forget();
    messenger.reportElementNotFound(u"ph", u"u", target.document(), element());
    EXPECT_EQ(told(), "109 /a.dita:7:3 <ph> /b.dita#u detail=ph");
}

TEST_F(ObservedReportTest, ALoopHasItsRingAndTheLineOfAMissingElement) {
    const SourcePlace place = SourcePlaces::existing()->placeOf(*element());
    messenger.reportConrefLoop(u"ph", u"p", target.document(), *element(), {place});
    EXPECT_EQ(told(), "205 /a.dita:7:3 <ph> /b.dita#t/p ring /a.dita:7:3");
    EXPECT_EQ(host.console(), Lines({elementNotFound("ph", "p", "file:///b.dita")}));
}

TEST_F(ObservedReportTest, AnInvalidEndIsToldWithItsStart) {
    messenger.reportInvalidConrefEnd(element());
    EXPECT_EQ(told(), "110 /a.dita:7:3 <ph> #t/q detail=#t/p");
}

TEST_F(ObservedReportTest, AMissingFileIsTheTarget) {
    messenger.reportReferencedFileNotFound(u"/c.dita", element());
    EXPECT_EQ(told(), "111 /a.dita:7:3 <ph> /c.dita");
}

TEST_F(ObservedReportTest, AMissingFileElsewhereIsAnArtefact) {
    const ParsedXml map(
        "<map scope='peer'><topicref id='inherits'/><topicref id='local' scope='local'/>"
        "<topicref id='external' scope='external'/></map>");
    for (const char* const id : {"inherits", "external"}) {
        messenger.reportReferencedFileNotFound(u"/c.dita", map.byId(id));
        EXPECT_EQ(told(), "artefact 111 ?:0:0 <topicref> /c.dita") << id;
        observed.host.observations.clear();
        host.forget();
    }
    messenger.reportReferencedFileNotFound(u"/c.dita", map.byId("local"));
    EXPECT_EQ(told(), "111 ?:0:0 <topicref> /c.dita");
}

TEST_F(ObservedReportTest, ANameWithASignThatCutsReferencesIsToldInstead) {
    folder.write("c#d.dita", "x");
    const std::string href = folder.file("c#d.dita");
    const ParsedXml map("<topicref href='" + href + "'/>", u"file:///root.ditamap");
    messenger.reportReferencedFileNotFound(u"/c", map.root());
    EXPECT_EQ(told(), "213 ?:0:0 <topicref> " + href + " detail=#");
}

TEST_F(ReportMessengerTest, IsOnePerRequest) {
    ReportMessenger& object = ReportMessenger::instance();
    EXPECT_EQ(RequestSingleton<ReportMessenger>::existing(), &object);
    RequestSingleton<ReportMessenger>::destroy();
}

}  // namespace
}  // namespace marrowpress
