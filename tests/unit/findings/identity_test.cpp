#include "findings/identity.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

Finding linkToNothing(const std::string& folder) {
    Finding finding;
    finding.id = "MP203";
    finding.text = "text";
    finding.place = {folder + "/a.dita", 3, 5};
    finding.element = "xref";
    finding.target = folder + "/b.dita#t/p";
    return finding;
}

TEST(FingerprintOfTest, IsTheSameOnEveryMachine) {
    EXPECT_EQ(fingerprintOf(linkToNothing("/guide"), "/guide"),
              "edd24884-e0f6-5262-b622-89a77288ac7a");
}

TEST(FingerprintOfTest, IsTheSameForACopyOfTheSourcesElsewhere) {
    const std::string here = fingerprintOf(linkToNothing("/guide"), "/guide");
    EXPECT_EQ(fingerprintOf(linkToNothing("/builds/7/guide"), "/builds/7/guide"), here);
    EXPECT_NE(fingerprintOf(linkToNothing("/guide"), "/"), here);
}

TEST(FingerprintOfTest, DoesNotGoByLinesSeveritiesAndTexts) {
    const std::string fingerprint = fingerprintOf(linkToNothing("/guide"), "/guide");
    Finding other = linkToNothing("/guide");
    other.place.line = 400;
    other.place.column = 1;
    other.severity = Severity::kNote;
    other.text = "Text";
    other.hint = "hint";
    other.via = {{{"/guide/root.ditamap", 1, 1}, "href a.dita"}};
    EXPECT_EQ(fingerprintOf(other, "/guide"), fingerprint);
}

TEST(FingerprintOfTest, GoesByIdFileElementAndTarget) {
    const std::string fingerprint = fingerprintOf(linkToNothing("/guide"), "/guide");
    Finding other = linkToNothing("/guide");
    other.id = "MP204";
    EXPECT_NE(fingerprintOf(other, "/guide"), fingerprint);
    other = linkToNothing("/guide");
    other.place.file = "/guide/c.dita";
    EXPECT_NE(fingerprintOf(other, "/guide"), fingerprint);
    other = linkToNothing("/guide");
    other.element = "link";
    EXPECT_NE(fingerprintOf(other, "/guide"), fingerprint);
    other = linkToNothing("/guide");
    other.target = "/guide/b.dita#t/q";
    EXPECT_NE(fingerprintOf(other, "/guide"), fingerprint);
}

TEST(IdentityOfTest, PartsDoNotRunTogether) {
    Finding left = linkToNothing("/guide");
    left.element = "ab";
    left.target = "c";
    Finding right = linkToNothing("/guide");
    right.element = "a";
    right.target = "bc";
    EXPECT_NE(identityOf(left, left.place, ""), identityOf(right, right.place, ""));
}

TEST(IdentityOfTest, BytesThatAreNoUtf8AreThoseOfTheRecord) {
    Finding left = linkToNothing("/guide");
    left.place.file = "/guide/\xFC.dita";
    Finding right = linkToNothing("/guide");
    right.place.file = "/guide/\xEF\xBF\xBD.dita";
    EXPECT_EQ(identityOf(left, left.place, "/guide"), identityOf(right, right.place, "/guide"));
}

TEST(IdentityOfTest, AFragmentIsNoPartOfThePath) {
    Finding left = linkToNothing("/guide");
    left.target = "/guide/b.dita#t/..";
    Finding right = linkToNothing("/guide");
    right.target = "/guide/b.dita#t";
    EXPECT_NE(identityOf(left, left.place, "/guide"), identityOf(right, right.place, "/guide"));
}

}  // namespace
}  // namespace marrowpress
