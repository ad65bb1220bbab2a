#include "cli/local_reference.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

/// The reference as a document in `folder` has it; "none" for what names no local file.
std::string seenFrom(const std::string& folder, const std::string& text) {
    const std::optional<LocalReference> reference = localReference(text);
    return reference ? relativeUri(*reference, folder) : "none";
}

TEST(LocalReferenceTest, IsAnAbsolutePath) {
    for (const char* const text : {"", "#a", "a.png", "../a.png", "//server/a.png", "C:/a.png",
                                   "file:/a.png", "file:///a.png", "https://a/b", "\\a"}) {
        EXPECT_EQ(seenFrom("/o", text), "none") << text;
    }
}

TEST(LocalReferenceTest, LeadsOnFromTheFolder) {
    struct Case {
        const char* folder;
        const char* text;
        const char* relative;
    };
    for (const Case& each :
         {Case{"/w/out", "/w/out/a.qs", "a.qs"}, Case{"/w/out", "/w/out/deep/a.qs", "deep/a.qs"},
          Case{"/w/out", "/w/docs/a.dita", "../docs/a.dita"},
          Case{"/w/out", "/w/outer/a.dita", "../outer/a.dita"}, Case{"/w/out", "/w/ou", "../ou"},
          Case{"/w/out", "/x/a", "../../x/a"}, Case{"/w/out", "/w/out", "../out"},
          Case{"/w/out", "/w/out/", "./"}, Case{"/w/out", "/w/", "../"},
          Case{"/w/out", "/", "../../"}, Case{"/", "/a.png", "a.png"},
          Case{"/", "/b/a.png", "b/a.png"},
          Case{"/w/out", "/w/./x//../docs/a.png", "../docs/a.png"},
          Case{"/w/out", "/w/.hidden/a.png", "../.hidden/a.png"},
          Case{"/w/out", "/w/out/..a.png", "..a.png"}}) {
        EXPECT_EQ(seenFrom(each.folder, each.text), each.relative) << each.text;
    }
}

TEST(LocalReferenceTest, KeepsTheFragment) {
    EXPECT_EQ(seenFrom("/w", "/w/a.dita#b/c"), "a.dita#b/c");
    EXPECT_EQ(seenFrom("/w", "/w/a.dita#"), "a.dita#");
    EXPECT_EQ(seenFrom("/w", "/w/a b.mp4#t= 10"), "./a%20b.mp4#t= 10");
    // The last one counts, as for the client.
    EXPECT_EQ(seenFrom("/w", "/w/c#/a.dita#b"), "c%23/a.dita#b");
}

TEST(LocalReferenceTest, EscapesWhatAUriCannotHold) {
    EXPECT_EQ(seenFrom("/w/o", "/w/a b/\"<>\\^`{|}.png"),
              "../a%20b/%22%3C%3E%5C%5E%60%7B%7C%7D.png");
    EXPECT_EQ(seenFrom("/w/o", "/w/\x01\x7F.png"), "../%01%7F.png");
    EXPECT_EQ(seenFrom("/w/o", "/w/it's/ü,;@&=+$!*()[]~.png"), "../it's/ü,;@&=+$!*()[]~.png");
}

TEST(LocalReferenceTest, NamesNoSchemeAndNoEscapesAlone) {
    EXPECT_EQ(seenFrom("/w", "/w/a:b.png"), "./a:b.png");
    EXPECT_EQ(seenFrom("/w", "/w/c/a:b.png"), "c/a:b.png");
    EXPECT_EQ(seenFrom("/w", "/w/a b.png"), "./a%20b.png");
    EXPECT_EQ(seenFrom("/w", "/w/c/a b.png"), "c/a%20b.png");
}

TEST(LocalReferenceTest, KeepsEscapesUnlessAFileHasThemInItsName) {
    const TemporaryFolder folder;
    const std::string base = folder.path().string();
    EXPECT_EQ(seenFrom(base, folder.file("d/a%20b.png")), "d/a%20b.png");
    EXPECT_EQ(seenFrom(base, folder.file("d/100%.png")), "d/100%25.png");
    EXPECT_EQ(seenFrom(base, folder.file("d/a.html?b=%20#c")), "d/a.html?b=%20#c");
    folder.write("d/a%20b.png", "");
    folder.write("d/a?b.png", "");
    folder.write("d/a#b.png", "");
    EXPECT_EQ(seenFrom(base, folder.file("d/a%20b.png")), "d/a%2520b.png");
    EXPECT_EQ(seenFrom(base, folder.file("d/a?b.png")), "d/a%3Fb.png");
    EXPECT_EQ(seenFrom(base, folder.file("d/a#b.png")), "d/a%23b.png");
}

TEST(LocalReferenceTest, MeansAFile) {
    const TemporaryFolder folder;
    const auto meant = [&folder](const char* name) {
        return filePathOf(*localReference(folder.file(name)));
    };
    EXPECT_EQ(meant("a b.png"), folder.file("a b.png"));
    EXPECT_EQ(meant("a%20b.png#c"), folder.file("a b.png"));
    EXPECT_EQ(meant("a.png?b%20c"), folder.file("a.png"));
    EXPECT_EQ(meant("100%.png"), folder.file("100%.png"));
    folder.write("a%20b.png", "");
    EXPECT_EQ(meant("a%20b.png#c"), folder.file("a%20b.png"));
}

TEST(LocalReferenceTest, MayBeMadeFromAFile) {
    EXPECT_EQ(relativeUri(referenceToFile("/w/m/a%20?#.png", "#t"), "/w"), "m/a%2520%3F%23.png#t");
}

}  // namespace
}  // namespace marrowpress
