#include "cli/relative_references.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>

#include "cli/file_failure.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/texts.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class RelativeReferencesTest : public testing::Test {
protected:
    RelativeReferencesTest() {
        fs::create_directories(folder.path() / "out/media");
        copies.emplace(folder.path() / "out/media");
    }

    /// The document with "$" for the test's folder, as it is when it stands in "out".
    std::string rewritten(const std::string& text, bool isCopying = false) {
        const std::string path =
            folder.write("out/m.dita", replacedAll(text, "$", folder.path().string()));
        RelativeReferences(folder.path() / "docs", isCopying ? &*copies : nullptr)
            .rewriteFile(path, folder.file("out"));
        EXPECT_FALSE(folder.exists("out/m.dita_tmp"));
        return replacedAll(folder.read("out/m.dita"), folder.path().string(), "$");
    }

    static std::string failureOf(const std::function<void()>& action) {
        try {
            action();
        } catch (const FileFailure& failure) {
            return failure.what();
        }
        return "";
    }

    TemporaryFolder folder;
    std::optional<MediaCopies> copies;
};

TEST_F(RelativeReferencesTest, LeadOnFromTheOutput) {
    EXPECT_EQ(rewritten(R"(<dita><xref href="$/docs/a b.dita#x/y" scope='local'>$/docs</xref>)"
                        R"(<p conref='$/docs/it&apos;s.dita#p' conrefend = "$/docs/c&amp;d.dita"/>)"
                        R"(<object data="$/v.mp4"><param name="src" value="$/out/v.mp4"/></object>)"
                        R"(<xref xtrf="$/out/a.qs#id" href="#id"/></dita>)"),
              R"(<dita><xref href="../docs/a%20b.dita#x/y" scope='local'>$/docs</xref>)"
              R"(<p conref='../docs/it&apos;s.dita#p' conrefend = "../docs/c&amp;d.dita"/>)"
              R"(<object data="../v.mp4"><param name="src" value="v.mp4"/></object>)"
              R"(<xref xtrf="a.qs#id" href="#id"/></dita>)");
}

TEST_F(RelativeReferencesTest, LeaveEveryOtherByteAsItIs) {
    for (const std::string& text :
         {std::string(), std::string("<dita/>"), std::string("no xml <"),
          std::string(
              "\xEF\xBB\xBF<?xml version='1.0'?>\r\n<!DOCTYPE a [<!ENTITY b '<c href=\"$/x\"/>'"
              ">]>\n<a b = '>' c=\"\"\t>&b;&#10;\xC3\xBC</a >\r"),
          std::string("<a><!-- <xref href=\"$/x\"/> --><![CDATA[<xref href=\"$/x\"/>]]></a>"),
          std::string("<a><?Qs <xref href=\"$/x\"/> ?></a>"),
          std::string("<a href='x.png' conref='#a' navtitle=\"$/x\" alt='$/x' x:href='$/x'/>"),
          std::string("<xref href='https://x/y'/><xref href='file:///x'/><xref href='//x/y'/>"),
          std::string("<xref href='$/x&unknown;'/><xref href='$/x' broken/>")}) {
        EXPECT_EQ(rewritten(text), text);
    }
    EXPECT_EQ(rewritten("<a x='1'\r\n href='$/x'\t/>\r\n<!-- -->"),
              "<a x='1'\r\n href='../x'\t/>\r\n<!-- -->");
}

TEST_F(RelativeReferencesTest, TakeAnExternalOrDoubtfulOneOnlyForAFileOrInTheSources) {
    folder.write("other/there.pdf", "");
    for (const char* const form :
         {"<xref scope='external' href='@'/>", "<param name='x' value='@'/>", "<film data='@'/>"}) {
        for (const auto& [path, relative] :
             {std::pair("$/other/there.pdf", "../other/there.pdf"),
              std::pair("$/other/none.pdf", "$/other/none.pdf"),
              std::pair("$/docs/none.pdf", "../docs/none.pdf"), std::pair("$/other", "$/other"),
              std::pair("/manual/index.html", "/manual/index.html")}) {
            EXPECT_EQ(rewritten(replacedAll(form, "@", path)), replacedAll(form, "@", relative));
        }
    }
}

TEST_F(RelativeReferencesTest, LeadToCopiesOfWhatIsShownOrPlayed) {
    for (const char* const name : {"a/x.png", "b/x.png", "a/clip.bin", "a/y z.svg", "a/t.dita"}) {
        folder.write(name, name);
    }
    EXPECT_EQ(rewritten("<image href='$/a/x.png'/><image href='$/b/x.png'/>"
                        "<image href='$/a/x.png'/><object data='$/a/clip.bin#t'/>"
                        "<xref href='$/a/y%20z.svg#s'/><xref href='$/a/t.dita'/>"
                        "<image href='$/a/none.png'/><image href='$/a'/>",
                        true),
              "<image href='media/x.png'/><image href='media/x-2.png'/>"
              "<image href='media/x.png'/><object data='media/clip.bin#t'/>"
              "<xref href='media/y%20z.svg#s'/><xref href='../a/t.dita'/>"
              "<image href='../a/none.png'/><image href='../a'/>");
    EXPECT_EQ(folder.read("out/media/x-2.png"), "b/x.png");
    EXPECT_EQ(folder.read("out/media/y z.svg"), "a/y z.svg");
}

TEST_F(RelativeReferencesTest, AreTheSameWhenTheyAreRewrittenAgain) {
    const std::string once = rewritten("<xref href='$/a b.dita#x'/>");
    EXPECT_EQ(rewritten(once), once);
}

TEST_F(RelativeReferencesTest, RewriteDocumentsOfAnySize) {
    std::string text;
    std::string wanted;
    for (int number = 0; number < 20000; ++number) {
        text += "<image href=\"$/docs/images/" + std::to_string(number) + ".png\"/>some text\n";
        wanted += "<image href=\"../docs/images/" + std::to_string(number) + ".png\"/>some text\n";
    }
    EXPECT_EQ(rewritten("<a>" + text + "</a>"), "<a>" + wanted + "</a>");
}

TEST_F(RelativeReferencesTest, KeepTheModeOfTheFile) {
    const std::string path = folder.write("out/m.dita", "<a href='/x'/>");
    chmod(path.c_str(), 0664);
    RelativeReferences(folder.path(), nullptr).rewriteFile(path, "/");
    struct stat status {};
    stat(path.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0664U);
    EXPECT_EQ(folder.read("out/m.dita"), "<a href='x'/>");
}

TEST_F(RelativeReferencesTest, LeaveAFileAloneThatHasNothingToChange) {
    const std::string path = folder.write("out/m.dita", "<a href='x'/>");
    struct stat before {};
    stat(path.c_str(), &before);
    RelativeReferences(folder.path(), nullptr).rewriteFile(path, "/");
    struct stat after {};
    stat(path.c_str(), &after);
    EXPECT_EQ(after.st_ino, before.st_ino);
}

TEST_F(RelativeReferencesTest, FailWithTheOldFileWhereItWas) {
    const std::string text = "<a href='/x'>" + std::string(300000, 'x') + "</a>";
    const std::string path = folder.write("out/m.dita", text);
    const RelativeReferences references(folder.path(), nullptr);
    {
        const FileSizeLimit limit(100000);
        EXPECT_EQ(failureOf([&] { references.rewriteFile(path, "/"); }),
                  "cannot write " + path + ": File too large");
    }
    EXPECT_EQ(folder.read("out/m.dita"), text);
    EXPECT_FALSE(folder.exists("out/m.dita_tmp"));
    EXPECT_EQ(failureOf([&] { references.rewriteFile(folder.path() / "none", "/"); }),
              "cannot read " + folder.file("none") + ": No such file or directory");
    EXPECT_EQ(failureOf([&] { references.rewriteFile(folder.path() / "out", "/"); }),
              "cannot read " + folder.file("out") + ": not a regular file");
}

}  // namespace
}  // namespace marrowpress
