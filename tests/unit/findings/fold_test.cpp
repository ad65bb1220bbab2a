#include "findings/fold.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <string>

namespace marrowpress {
namespace {

Finding findingAbout(std::string target, FindingPlace place) {
    Finding result;
    result.id = "MP105";
    result.text = "The key is not defined";
    result.target = std::move(target);
    result.place = std::move(place);
    return result;
}

FindingPlace at(std::uint32_t line) {
    return {"/guide/a.dita", line, 1};
}

class FindingListTest : public testing::Test {
protected:
    FindingList list_;
};

TEST_F(FindingListTest, KeepsTheOrder) {
    for (const char* const target : {"c", "a", "b", "a"}) {
        list_.add(findingAbout(target, at(1)));
    }
    ASSERT_EQ(list_.findings().size(), 3U);
    EXPECT_EQ(list_.findings()[0].target, "c");
    EXPECT_EQ(list_.findings()[1].target, "a");
    EXPECT_EQ(list_.findings()[2].target, "b");
}

TEST_F(FindingListTest, FoldsTheSameIdSeverityAndTarget) {
    list_.add(findingAbout("k", at(1)));
    list_.add(findingAbout("k", at(2)));
    ASSERT_EQ(list_.findings().size(), 1U);
    EXPECT_EQ(list_.findings()[0].place, at(1));
    EXPECT_EQ(list_.findings()[0].places, std::vector{at(2)});
}

TEST_F(FindingListTest, FoldsNothingElse) {
    list_.add(findingAbout("k", at(1)));
    list_.add(findingAbout("l", at(1)));
    Finding other = findingAbout("k", at(1));
    other.id = "MP106";
    list_.add(other);
    other = findingAbout("k", at(1));
    other.severity = Severity::kWarning;
    list_.add(other);
    other = findingAbout("k", at(1));
    other.isArtefact = true;
    list_.add(other);
    EXPECT_EQ(list_.findings().size(), 5U);
    list_.add(other);
    EXPECT_EQ(list_.findings().size(), 5U);
}

TEST_F(FindingListTest, TellsAPlaceOnce) {
    for (const std::uint32_t line : {1U, 2U, 1U, 3U, 2U, 3U}) {
        list_.add(findingAbout("k", at(line)));
    }
    EXPECT_EQ(list_.findings()[0].place, at(1));
    EXPECT_EQ(list_.findings()[0].places, (std::vector{at(2), at(3)}));
    list_.add(findingAbout("l", at(2)));
    EXPECT_EQ(list_.findings()[1].places.size(), 0U);
}

TEST_F(FindingListTest, TakesInThePlacesThatCameWithAFinding) {
    Finding first = findingAbout("k", at(1));
    first.places = {at(2), at(1), at(2)};
    list_.add(first);
    Finding second = findingAbout("k", at(2));
    second.places = {at(3), at(1)};
    list_.add(second);
    EXPECT_EQ(list_.findings()[0].places, (std::vector{at(2), at(3)}));
}

TEST_F(FindingListTest, APlaceThatIsNotKnownIsNoFurtherOne) {
    list_.add(findingAbout("k", at(1)));
    list_.add(findingAbout("k", {}));
    EXPECT_TRUE(list_.findings()[0].places.empty());
}

TEST_F(FindingListTest, AddsProfilesOnce) {
    Finding some = findingAbout("k", at(1));
    some.profiles = {"b"};
    list_.add(some);
    some.profiles = {"a", "b"};
    list_.add(some);
    EXPECT_EQ(list_.findings()[0].profiles, (std::vector<std::string>{"b", "a"}));
}

TEST_F(FindingListTest, KeepsTheFirstViaHintAndHostTextThatThereIs) {
    list_.add(findingAbout("k", at(1)));
    for (const char* const text : {"first", "second"}) {
        Finding some = findingAbout("k", at(2));
        some.hint = text;
        some.hostText = text;
        some.via = {{at(9), text}};
        some.text = "another";
        list_.add(some);
    }
    const Finding& kept = list_.findings()[0];
    EXPECT_EQ(kept.text, "The key is not defined");
    EXPECT_EQ(kept.hint, "first");
    EXPECT_EQ(kept.hostText, "first");
    EXPECT_EQ(kept.via, (std::vector<FindingStep>{{at(9), "first"}}));
}

TEST_F(FindingListTest, CountsWhatAnotherCouldNotKeep) {
    FindingList full;
    for (std::size_t i = 0; i <= FindingList::kMostFindings; ++i) {
        full.add(findingAbout(std::to_string(i), at(1)));
    }
    list_.addDropped(full);
    list_.addDropped(FindingList());
    EXPECT_TRUE(list_.findings().empty());
    EXPECT_EQ(list_.dropped(), 1U);
    EXPECT_EQ(list_.worstDropped(), full.worstDropped());
    EXPECT_TRUE(list_.worstDropped());
}

TEST_F(FindingListTest, CountsFindingsThatItCannotKeep) {
    for (std::size_t i = 0; i < FindingList::kMostFindings; ++i) {
        list_.add(findingAbout(std::to_string(i), at(1)));
    }
    EXPECT_EQ(list_.dropped(), 0U);
    EXPECT_FALSE(list_.worstDropped());
    Finding further = findingAbout("one more", at(1));
    further.severity = Severity::kWarning;
    list_.add(further);
    EXPECT_EQ(list_.worstDropped(), Severity::kWarning);
    further.severity = Severity::kError;
    list_.add(further);
    further.severity = Severity::kNote;
    list_.add(further);
    EXPECT_EQ(list_.findings().size(), FindingList::kMostFindings);
    EXPECT_EQ(list_.dropped(), 3U);
    EXPECT_EQ(list_.worstDropped(), Severity::kError);
    list_.add(findingAbout("5", at(2)));
    EXPECT_EQ(list_.findings()[5].places, std::vector{at(2)});
    EXPECT_EQ(list_.dropped(), 3U);
}

TEST_F(FindingListTest, CountsPlacesThatItCannotKeep) {
    for (std::uint32_t line = 0; line <= FindingList::kMostPlaces; ++line) {
        list_.add(findingAbout(line % 2 == 0 ? "k" : "l", at(line + 10)));
    }
    EXPECT_EQ(list_.dropped(), 0U);
    list_.add(findingAbout("l", at(1)));
    EXPECT_EQ(list_.dropped(), 0U);
    list_.add(findingAbout("l", at(2)));
    list_.add(findingAbout("k", at(11)));
    EXPECT_EQ(list_.dropped(), 2U);
    const std::size_t kept = list_.findings()[0].places.size() + list_.findings()[1].places.size();
    EXPECT_EQ(kept, FindingList::kMostPlaces);
}

TEST_F(FindingListTest, ArtefactsLeaveRoomForWhatCounts) {
    for (std::size_t i = 0; i < FindingList::kMostFindings; ++i) {
        Finding artefact = findingAbout(std::to_string(i), at(1));
        artefact.isArtefact = true;
        list_.add(artefact);
    }
    EXPECT_EQ(list_.findings().size(), FindingList::kMostFindings / 2);
    list_.add(findingAbout("k", at(1)));
    EXPECT_EQ(list_.findings().size(), FindingList::kMostFindings / 2 + 1);
    EXPECT_EQ(list_.dropped(), 0U);
    for (std::uint32_t line = 0; line < FindingList::kMostPlaces; ++line) {
        Finding artefact = findingAbout("0", at(line + 2));
        artefact.isArtefact = true;
        list_.add(artefact);
    }
    EXPECT_EQ(list_.findings()[0].places.size(), FindingList::kMostPlaces / 2);
    EXPECT_EQ(list_.dropped(), 0U);
}

TEST_F(FindingListTest, GivesItsFindingsAway) {
    list_.add(findingAbout("k", at(1)));
    EXPECT_EQ(list_.take().size(), 1U);
    EXPECT_TRUE(list_.findings().empty());
    list_.add(findingAbout("k", at(2)));
    EXPECT_EQ(list_.findings()[0].place, at(2));
}

Finding typicalFinding(std::uint32_t number) {
    const std::string folder = "/home/writer/documents/guide-of-a-product/topics/";
    const std::string name = std::to_string(number) + ".dita";
    Finding result = findingAbout(folder + "missing-" + name + "#topic/paragraph",
                                  {folder + "installing-and-removing-" + name, number, 14});
    result.text = "The file `" + result.target + "` does not exist";
    result.element = "xref";
    result.hint = "there is `" + name + "`, which differs in letter case only";
    result.via = {{{folder + "parts-" + name, 14, 32}, "conref installing-and-removing-" + name},
                  {{folder + "chapter.ditamap", 7, 20}, "href topics/parts-" + name},
                  {{folder + "root.ditamap", 3, 5}, "href topics/chapter.ditamap"}};
    result.hostText = "Die Datei wurde nicht gefunden: " + result.target + "\r\n";
    return result;
}

std::size_t bytesInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

TEST_F(FindingListTest, TenThousandTakeLessThanTwentyMegabytes) {
    const std::size_t before = bytesInUse();
    if (before == 0) {
        GTEST_SKIP() << "a sanitizer's allocator does not tell";
    }
    for (std::uint32_t number = 0; number < FindingList::kMostFindings; ++number) {
        list_.add(typicalFinding(number));
    }
    EXPECT_EQ(list_.findings().size(), FindingList::kMostFindings);
    EXPECT_LT(bytesInUse() - before, 20'000'000U);
}

TEST(SummarizeTest, CountsFindingsBySeverityAndTheirFiles) {
    std::vector<Finding> findings;
    const Severity severities[] = {Severity::kError, Severity::kError, Severity::kWarning,
                                   Severity::kNote};
    for (const Severity severity : severities) {
        findings.push_back(findingAbout("k", at(1)));
        findings.back().severity = severity;
    }
    findings.push_back(findingAbout("k", {"/guide/b.dita", 0, 0}));
    findings.back().places = {{"/guide/c.dita", 1, 1}};
    findings.push_back(findingAbout("k", {}));
    findings.push_back(findingAbout("k", {"/guide/d.dita", 1, 1}));
    findings.back().isArtefact = true;
    const FindingSummary summary = summarize(findings);
    EXPECT_EQ(summary.errors, 4U);
    EXPECT_EQ(summary.warnings, 1U);
    EXPECT_EQ(summary.notes, 1U);
    EXPECT_EQ(summary.files, 2U);
    EXPECT_EQ(summary.topics, 0U);
}

TEST(SummarizeTest, NothingCountsToNothing) {
    const FindingSummary summary = summarize({});
    EXPECT_EQ(summary.errors + summary.warnings + summary.notes + summary.files, 0U);
}

}  // namespace
}  // namespace marrowpress
