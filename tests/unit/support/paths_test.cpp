#include "support/paths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <system_error>

#include "support/scope_exit.h"
#include "support/text.h"
#include "tests/support/current_folder.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

struct PathCase {
    const char16_t* path;
    const char16_t* expected;
};

std::string show(std::u16string_view path) {
    return "\"" + toUtf8(path) + "\"";
}

TEST(IsAbsolutePathTest, BeginsWithASeparatorOrADriveAndASeparator) {
    for (const char16_t* path :
         {u"/",     u"\\",   u"/a",           u"\\a",           u"//",
          u"///",   u"///a", u"//server",     u"\\\\server\\a", u"/\\server/a",
          u"C:/",   u"C:\\", u"c:/a",         u"Z:\\a",         u"a:/",
          u"z:/",   u"A:/",  u"\\\\?\\C:\\a", u"\\\\.\\a",      u"\\??\\a",
          u"//?/a", u"/..",  u"C:/.."}) {
        EXPECT_TRUE(isAbsolutePath(path)) << show(path);
    }
}

TEST(IsAbsolutePathTest, AnythingElseIsRelative) {
    for (const char16_t* path :
         {u"",     u"a",     u".",    u"..",  u"./a",       u"a/b",   u"a\\b",      u"C:",
          u"C:a",  u"C:a/b", u"C",    u":/a", u"1:/a",      u"CC:/a", u"\u00C4:/a", u"@:/a",
          u"[:/a", u"`:/a",  u"{:/a", u" /a", u"file:///a", u"?/a",   u"\?\?/a",    u"C :/a"}) {
        EXPECT_FALSE(isAbsolutePath(path)) << show(path);
    }
}

TEST(NormalizePathTest, GivesTheLexicalNormalForm) {
    const PathCase cases[] = {
        {u"", u""},
        {u"a", u"a"},
        {u"/a/b", u"/a/b"},
        {u"a//b", u"a/b"},
        {u"a///\\//b", u"a/b"},
        {u"a\\b\\c", u"a/b/c"},
        {u"\\a\\b", u"/a/b"},
        {u"a/", u"a/"},
        {u"a//", u"a/"},
        {u"a\\", u"a/"},
        {u"/", u"/"},
        {u"\\", u"/"},
        {u"//", u"/"},
        {u"///", u"/"},
        {u"///a", u"/a"},
        {u"\\\\\\a", u"/a"},
        {u"////a//b", u"/a/b"},
        // "." goes with the separator behind it.
        {u".", u"."},
        {u"./", u"."},
        {u"././.", u"."},
        {u"./a", u"a"},
        {u"a/.", u"a/"},
        {u"a/./", u"a/"},
        {u"a/./b", u"a/b"},
        {u"a/././/./b", u"a/b"},
        {u"/.", u"/"},
        {u"/./a", u"/a"},
        {u"...", u"..."},
        {u"a/.../b", u"a/.../b"},
        {u".a/b.", u".a/b."},
        // ".." goes with the name in front of it.
        {u"..", u".."},
        {u"../", u".."},
        {u"..\\", u".."},
        {u"../..", u"../.."},
        {u"../../", u"../.."},
        {u"../../a", u"../../a"},
        {u"a/..", u"."},
        {u"a/../", u"."},
        {u"a\\..\\", u"."},
        {u"a/../..", u".."},
        {u"a/../../b", u"../b"},
        {u"a/../b", u"b"},
        {u"a/b/../c", u"a/c"},
        {u"a/b/..", u"a/"},
        {u"a/b/../", u"a/"},
        {u"a/b/../..", u"."},
        {u"a/b/c/../../d", u"a/d"},
        {u"a//..//b", u"b"},
        {u"a/./../b", u"b"},
        {u"../a/..", u".."},
        {u"../a/../", u".."},
        {u"../a/../b", u"../b"},
        {u"a/..b", u"a/..b"},
        {u"a/.../..", u"a/"},
        // Nothing is above a root directory.
        {u"/..", u"/"},
        {u"/../", u"/"},
        {u"/../..", u"/"},
        {u"/../../a", u"/a"},
        {u"/a/..", u"/"},
        {u"/a/../..", u"/"},
        {u"/a/../../b", u"/b"},
        {u"\\..\\a", u"/a"},
        // Drive letters.
        {u"C:", u"C:"},
        {u"C:/", u"C:/"},
        {u"C:\\", u"C:/"},
        {u"C:\\a\\..\\b", u"C:/b"},
        {u"C:\\..", u"C:/"},
        {u"C:/../a", u"C:/a"},
        {u"C:a", u"C:a"},
        {u"C:a\\b", u"C:a/b"},
        {u"C:..", u"C:.."},
        {u"C:..\\", u"C:.."},
        {u"C:../a", u"C:../a"},
        {u"C:.", u"C:"},
        {u"C:a/..", u"C:"},
        {u"c:/A", u"c:/A"},
        // Servers.
        {u"//server", u"//server"},
        {u"\\\\server", u"//server"},
        {u"\\\\server\\", u"//server/"},
        {u"\\\\server\\a\\..\\..\\b", u"//server/b"},
        {u"/\\server\\\\a", u"//server/a"},
        {u"//../a", u"//../a"},
        // Device prefixes.
        {u"\\\\?\\C:\\a\\..\\b", u"//?/C:/b"},
        {u"\\\\?\\..", u"//?/"},
        {u"\\\\.\\a/./b", u"//./a/b"},
        {u"\\??\\a\\..\\b", u"/\?\?/b"},
        {u"\\??\\..\\b", u"/\?\?/b"},
        {u"//s", u"//s"},
        {u"//?/../a", u"//?/a"},
        // Other text stays.
        {u"/\u00E4/\U0001F600", u"/\u00E4/\U0001F600"},
        {u" / a", u" / a"},
        {u"file:///a/../b", u"file:/b"},
        {u"/a b/c#d?e%20", u"/a b/c#d?e%20"},
    };
    for (const PathCase& path : cases) {
        const std::u16string normal = normalizePath(path.path);
        EXPECT_EQ(normal, path.expected) << show(path.path) << " gives " << show(normal);
        EXPECT_EQ(normalizePath(normal), normal) << show(path.path);
        EXPECT_EQ(normal.find(u'\\'), std::u16string::npos) << show(path.path);
    }
}

TEST(BesideFileTest, TakesTheFileAsAFolderThatIsLeftAgain) {
    struct BesideCase {
        const char16_t* base;
        const char16_t* path;
        const char16_t* expected;
    };
    const std::vector<BesideCase> cases{
        {u"/a/b.dita", u"c.dita", u"/a/c.dita"},
        {u"/a/b.dita", u"../d/c.dita", u"/d/c.dita"},
        {u"/a/b.dita", u".", u"/a/"},
        {u"/b.dita", u"c.dita", u"/c.dita"},
        {u"/b.dita", u"\?\?\\..\\c", u"/c"},
        {u"C:\\a\\b.dita", u"c.dita", u"C:/a/c.dita"},
        {u"a/b.dita", u"c.dita", u"a/c.dita"},
        {u"", u"c.dita", u"/c.dita"},
        {u"/a/b/", u"c.dita", u"/a/c.dita"},
        {u"/a/..", u"c.dita", u"/c.dita"},
    };
    for (const BesideCase& path : cases) {
        const std::u16string beside = besideFile(path.base, path.path);
        EXPECT_EQ(beside, path.expected) << show(path.base) << " gives " << show(beside);
    }
}

struct JoinCase {
    const char16_t* path;
    const char16_t* second;
    const char16_t* expected;
};

TEST(JoinPathTest, AppendsTheSecondPath) {
    const JoinCase cases[] = {
        {u"/a", u"b", u"/a/b"},
        {u"a", u"b", u"a/b"},
        {u"a/", u"b", u"a/b"},
        {u"a\\", u"b", u"a\\b"},
        {u"a\\b", u"c\\d", u"a\\b/c\\d"},
        {u"", u"b", u"b"},
        {u"", u"", u""},
        {u"/", u"b", u"/b"},
        {u"\\", u"b", u"\\b"},
        {u"a", u"", u"a/"},
        {u"a/", u"", u"a/"},
        {u"/a", u"../b", u"/a/../b"},
        {u"/a", u"./b", u"/a/./b"},
        {u"/a", u".", u"/a/."},
        // A drive letter by itself takes no separator.
        {u"C:", u"b", u"C:b"},
        {u"C:/a", u"b", u"C:/a/b"},
        {u"C:\\a", u"b", u"C:\\a/b"},
        {u"C:a", u"b", u"C:a/b"},
        {u"C:/", u"b", u"C:/b"},
        {u"C:", u"", u"C:"},
        // Longer root names do.
        {u"//server", u"b", u"//server/b"},
        {u"\\\\server", u"b", u"\\\\server/b"},
        {u"\\\\?", u"b", u"\\\\?/b"},
        // Short names that are no root names do as well.
        {u"ab", u"c", u"ab/c"},
        {u"a", u"c", u"a/c"},
        {u"1:", u"c", u"1:/c"},
        // The same root name is not repeated.
        {u"C:a", u"C:b", u"C:a/b"},
        {u"C:/a", u"C:b", u"C:/a/b"},
        {u"C:", u"C:b", u"C:b"},
    };
    for (const JoinCase& paths : cases) {
        EXPECT_EQ(joinPath(paths.path, paths.second), paths.expected)
            << show(paths.path) << " and " << show(paths.second);
    }
}

TEST(JoinPathTest, AnAbsoluteOrForeignSecondPathStandsAlone) {
    const JoinCase cases[] = {
        {u"/a", u"/b", u"/b"},
        {u"/a", u"\\b", u"\\b"},
        {u"", u"/b", u"/b"},
        {u"C:/a", u"/b", u"/b"},
        {u"C:/a", u"C:/b", u"C:/b"},
        {u"C:/a", u"D:/b", u"D:/b"},
        {u"C:/a", u"D:b", u"D:b"},
        {u"C:/a", u"c:b", u"c:b"},  // root names are compared exactly
        {u"/a", u"C:b", u"C:b"},
        {u"", u"C:b", u"C:b"},
        {u"//server/a", u"C:b", u"C:b"},
        {u"//server/a", u"//other/b", u"//other/b"},
        {u"//server/a", u"//server/b", u"//server/b"},
        {u"/a", u"\\\\?\\b", u"\\\\?\\b"},
        {u"C:/a", u"C:", u"C:/a/"},
        {u"/a", u"C:", u"C:"},
    };
    for (const JoinCase& paths : cases) {
        EXPECT_EQ(joinPath(paths.path, paths.second), paths.expected)
            << show(paths.path) << " and " << show(paths.second);
    }
}

TEST(PathStemTest, CutsTheLastExtension) {
    const PathCase cases[] = {
        {u"/a/topic.dita", u"topic"},
        {u"topic.dita", u"topic"},
        {u"a\\topic.dita", u"topic"},
        {u"a.b/topic", u"topic"},
        {u"a.b.c", u"a.b"},
        {u"topic", u"topic"},
        {u"", u""},
        {u"/a/", u""},
        {u"a\\", u""},
        // Dots at the ends.
        {u"topic.", u"topic"},
        {u"topic..", u"topic."},
        {u".topic", u".topic"},
        {u".topic.dita", u".topic"},
        {u"/a/.topic", u".topic"},
        {u".", u"."},
        {u"..", u".."},
        {u"/a/..", u".."},
        {u"...", u".."},
        {u"..a", u"."},
        {u".a.", u".a"},
        {u"a", u"a"},
        {u"a.", u"a"},
        {u".a", u".a"},
        // The first colon ends the name.
        {u"topic.dita:stream.x", u"topic"},
        {u"a:b:c", u"a"},
        {u"a.b:", u"a"},
        {u":b.c", u""},
        {u"C:topic.dita", u"C"},
        {u"C:\\a\\topic.dita", u"topic"},
        {u".a:b.c", u".a"},
        {u"..:b", u".."},
        {u"a:b/topic.x", u"topic"},
        // Other characters are ordinary.
        {u"a b.c d", u"a b"},
        {u"\u00E4.\u00F6", u"\u00E4"},
        {u"//server.x", u"server"},
    };
    for (const PathCase& path : cases) {
        EXPECT_EQ(pathStem(path.path), path.expected) << show(path.path);
    }
}

TEST(PathFileNameTest, IsWhatStandsBehindTheLastSeparator) {
    const PathCase cases[] = {
        {u"/a/b.c", u"b.c"}, {u"a\\b.c", u"b.c"}, {u"a/b\\c", u"c"}, {u"a\\b/c", u"c"},
        {u"a", u"a"},        {u"", u""},          {u"a/", u""},      {u"a\\", u""},
        {u"/", u""},         {u"C:a", u"C:a"},    {u"..", u".."},    {u"/a:b", u"a:b"},
    };
    for (const PathCase& path : cases) {
        EXPECT_EQ(pathFileName(path.path), path.expected) << show(path.path);
    }
}

TEST(ParentPathTest, CutsTheLastElementAndKeepsTheRoot) {
    const PathCase cases[] = {
        {u"/a/b", u"/a"},
        {u"a\\b", u"a"},
        {u"a/b/c", u"a/b"},
        {u"a//b", u"a"},
        {u"a/\\b", u"a"},
        {u"a/b/", u"a/b"},
        {u"a", u""},
        {u"", u""},
        {u"..", u""},
        {u"/", u"/"},
        {u"\\", u"\\"},
        {u"/a", u"/"},
        {u"///a", u"/"},
        {u"C:", u"C:"},
        {u"C:a", u"C:"},
        {u"C:/", u"C:/"},
        {u"C:\\a", u"C:\\"},
        {u"C:/a/b", u"C:/a"},
        {u"//server", u"//server"},
        {u"//server/", u"//server/"},
        {u"//server/a", u"//server/"},
        {u"\\\\server\\a\\b", u"\\\\server\\a"},
        {u"\\\\?\\a", u"\\\\?\\"},
        {u"\\??\\a", u"\\??\\"},
        {u"\\??\\", u"\\??\\"},
    };
    for (const PathCase& path : cases) {
        EXPECT_EQ(parentPath(path.path), path.expected) << show(path.path);
    }
}

/// The current directory is a fresh folder during a test.
class AbsolutePathTest : public testing::Test {
protected:
    TemporaryFolder folder;
    const CurrentFolder current{folder.path()};
};

TEST_F(AbsolutePathTest, IsTakenAgainstTheCurrentDirectory) {
    EXPECT_EQ(absolutePath(u"a.dita"), folder.file16("a.dita"));
    EXPECT_EQ(absolutePath(u"a\\b/c"), folder.file16("a/b/c"));
    EXPECT_EQ(absolutePath(u"./a/../b"), folder.file16("b"));
    EXPECT_EQ(absolutePath(u"../x"), toUtf16(folder.path().parent_path().string() + "/x"));
    EXPECT_EQ(absolutePath(u"\u00E4"), folder.file16("\xC3\xA4"));
    EXPECT_EQ(absolutePath(u"."), toUtf16(folder.path().string() + "/"));
}

TEST_F(AbsolutePathTest, AnAbsolutePathIsOnlyNormalized) {
    EXPECT_EQ(absolutePath(u"/a/../b"), u"/b");
    EXPECT_EQ(absolutePath(u"\\a\\b"), u"/a/b");
    EXPECT_EQ(absolutePath(u"C:\\a\\.\\b"), u"C:/a/b");
    EXPECT_EQ(absolutePath(u"\\\\server\\a"), u"//server/a");
}

TEST_F(AbsolutePathTest, AnEmptyPathStaysEmpty) {
    EXPECT_EQ(absolutePath(u""), u"");
}

TEST_F(AbsolutePathTest, IsLexical) {
    fs::create_directories(folder.path() / "real/inner");
    fs::create_directory_symlink(folder.path() / "real/inner", folder.path() / "link");
    EXPECT_EQ(absolutePath(u"link/../x"), folder.file16("x"));
}

TEST_F(AbsolutePathTest, WithoutACurrentDirectoryItFails) {
    const fs::path gone = folder.path() / "gone";
    fs::create_directory(gone);
    const CurrentFolder inIt(gone);
    fs::remove(gone);
    try {
        absolutePath(u"a.dita");
        ADD_FAILURE() << "nothing was thrown";
    } catch (const fs::filesystem_error& error) {
        EXPECT_NE(std::string(error.what()).find("absolute"), std::string::npos) << error.what();
        EXPECT_EQ(error.path1(), "a.dita");
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
    EXPECT_EQ(absolutePath(u"/a"), u"/a");
}

class PathExistsTest : public testing::Test {
protected:
    TemporaryFolder folder;
};

TEST_F(PathExistsTest, FindsFilesFoldersAndWhatLinksLeadTo) {
    folder.write("file", "x");
    folder.write("\xC3\xA4/\xF0\x9F\x98\x80", "");
    fs::create_symlink("file", folder.path() / "link");
    EXPECT_TRUE(pathExists(folder.file16("file")));
    EXPECT_TRUE(pathExists(folder.file16("\xC3\xA4")));
    EXPECT_TRUE(pathExists(folder.file16("\xC3\xA4/\xF0\x9F\x98\x80")));
    EXPECT_TRUE(pathExists(folder.file16("link")));
    EXPECT_TRUE(pathExists(folder.file16("\xC3\xA4/../file")));
    EXPECT_TRUE(pathExists(folder.file16("\xC3\xA4/")));
    EXPECT_TRUE(pathExists(u"/"));
}

TEST_F(PathExistsTest, WhatCannotBeDoesNotExist) {
    folder.write("file", "x");
    fs::create_symlink("loop2", folder.path() / "loop1");
    fs::create_symlink("loop1", folder.path() / "loop2");
    fs::create_symlink("nowhere", folder.path() / "dangling");
    EXPECT_FALSE(pathExists(u""));
    EXPECT_FALSE(pathExists(folder.file16("none")));
    EXPECT_FALSE(pathExists(folder.file16("none/file")));
    EXPECT_FALSE(pathExists(folder.file16("file/inside")));
    EXPECT_FALSE(pathExists(folder.file16("file/")));
    EXPECT_FALSE(pathExists(folder.file16("dangling")));
    EXPECT_FALSE(pathExists(folder.file16("loop1")));
    EXPECT_FALSE(pathExists(folder.file16("loop1/inside")));
    EXPECT_FALSE(pathExists(folder.file16(std::string(256, 'x'))));
    EXPECT_FALSE(pathExists(u"/" + std::u16string(10000, u'x')));
    std::u16string deep;
    for (int level = 0; level < 3000; ++level) {
        deep += u"/x";
    }
    EXPECT_FALSE(pathExists(deep));
    EXPECT_FALSE(pathExists(std::u16string(1, char16_t{0xD83D})));
}

TEST_F(PathExistsTest, NamesAreExact) {
    folder.write("File", "x");
    EXPECT_FALSE(pathExists(folder.file16("file")));
    EXPECT_FALSE(pathExists(folder.file16("File ")));
}

TEST_F(PathExistsTest, WhatMayNotBeLookedAtIsAFailure) {
    folder.write("closed/file", "x");
    const fs::path closed = folder.path() / "closed";
    fs::permissions(closed, fs::perms::none);
    const ScopeExit open([&] { fs::permissions(closed, fs::perms::owner_all); });
    fs::permissions(folder.path(), fs::perms::all);
    const WithoutRights nobody;
    try {
        static_cast<void>(pathExists(folder.file16("closed/file")));
        ADD_FAILURE() << "nothing was thrown";
    } catch (const fs::filesystem_error& error) {
        EXPECT_NE(std::string(error.what()).find("exists"), std::string::npos) << error.what();
        EXPECT_EQ(error.path1(), closed / "file");
        EXPECT_EQ(error.code(), std::errc::permission_denied);
    }
}

TEST(IsBelowTest, ComparesWholeNames) {
    EXPECT_TRUE(isBelow(u"/a/b", u"/a"));
    EXPECT_TRUE(isBelow(u"/a/b/c", u"/a"));
    EXPECT_TRUE(isBelow(u"/a/b", u"/a/"));
    EXPECT_TRUE(isBelow(u"/a", u"/"));
    EXPECT_TRUE(isBelow(u"a", u""));
    EXPECT_TRUE(isBelow(u"..a", u""));
    EXPECT_FALSE(isBelow(u"/a", u"/a"));
    EXPECT_FALSE(isBelow(u"/a/", u"/a/"));
    EXPECT_FALSE(isBelow(u"/ab", u"/a"));
    EXPECT_FALSE(isBelow(u"/b", u"/a"));
    EXPECT_FALSE(isBelow(u"../a", u""));
    EXPECT_FALSE(isBelow(u"/a", u""));
}

using LeadsOutOfTest = PathExistsTest;

TEST_F(LeadsOutOfTest, FollowsLinksOnTheWayAndNotInTheOwnPlace) {
    folder.write("in/sub/file", "x");
    folder.write("out/file", "x");
    fs::create_directory_symlink("../out", folder.path() / "in/away");
    fs::create_directory_symlink("sub", folder.path() / "in/stays");
    fs::create_symlink("../out/file", folder.path() / "in/far");
    fs::create_symlink("sub/file", folder.path() / "in/near");
    fs::create_symlink("sub/none", folder.path() / "in/dangling");
    for (const char* name : {"in/file", "in/sub/file", "in/none/file", "in/stays/new", "in/near",
                             "in/far", "in/dangling"}) {
        EXPECT_FALSE(leadsOutOf(folder.file16(name), folder.file16("in"))) << name;
        EXPECT_FALSE(leadsOutOf(folder.file16(name), folder.file16("in/"))) << name;
    }
    for (const char* name : {"in/away/file", "in/away/none/new"}) {
        EXPECT_TRUE(leadsOutOf(folder.file16(name), folder.file16("in"))) << name;
    }
}

TEST_F(PathExistsTest, ALinkIsAnEntryWhateverItLeadsTo) {
    folder.write("file", "x");
    fs::create_symlink("file", folder.path() / "link");
    fs::create_symlink("none", folder.path() / "dangling");
    fs::create_symlink("loop", folder.path() / "loop");
    fs::create_directory_symlink(".", folder.path() / "folder");
    for (const char* name : {"file", "link", "dangling", "loop", "folder"}) {
        EXPECT_TRUE(entryExists(folder.file16(name))) << name;
        EXPECT_TRUE(isReplaceable(folder.file16(name))) << name;
    }
    for (const char* name : {"none", "file/none", "loop/none"}) {
        EXPECT_FALSE(entryExists(folder.file16(name))) << name;
        EXPECT_FALSE(isReplaceable(folder.file16(name))) << name;
    }
    EXPECT_TRUE(entryExists(folder.file16(".")));
    EXPECT_FALSE(isReplaceable(folder.file16(".")));
    EXPECT_FALSE(isReplaceable(u"/dev/null"));
}

TEST_F(PathExistsTest, OnlyWhatIsNoFileIsIrregular) {
    folder.write("file", "x");
    fs::create_symlink("file", folder.path() / "link");
    fs::create_symlink("link2", folder.path() / "link2");
    EXPECT_FALSE(isIrregularFile(folder.file16("file")));
    EXPECT_FALSE(isIrregularFile(folder.file16("link")));
    EXPECT_FALSE(isIrregularFile(folder.file16("link2")));
    EXPECT_FALSE(isIrregularFile(folder.file16("none")));
    EXPECT_FALSE(isIrregularFile(folder.file16("file/inside")));
    EXPECT_FALSE(isIrregularFile(u""));
    EXPECT_TRUE(isIrregularFile(toUtf16(folder.path().string())));
    EXPECT_TRUE(isIrregularFile(u"/dev/null"));
}

TEST(UnreadableReasonTest, IsTheSystemsForWhatCannotBeRead) {
    const TemporaryFolder folder;
    folder.write("file", "x");
    makePipe(folder.file("pipe"));
    fs::create_symlink("link", folder.path() / "link");
    EXPECT_EQ(unreadableReason(folder.file16("file")), "");
    EXPECT_EQ(unreadableReason(folder.file16("none")), "No such file or directory");
    EXPECT_EQ(unreadableReason(folder.file16("file/inside")), "Not a directory");
    EXPECT_EQ(unreadableReason(folder.file16("link")), "Too many levels of symbolic links");
    EXPECT_EQ(unreadableReason(toUtf16(folder.path().string())), "not a regular file");
    EXPECT_EQ(unreadableReason(folder.file16("pipe")), "not a regular file");
    EXPECT_EQ(unreadableReason(u"/dev/null"), "not a regular file");
    EXPECT_EQ(unreadableReason(u""), "No such file or directory");
}

TEST(UnreadableReasonTest, NamesMissingRights) {
    const TemporaryFolder folder;
    folder.write("file", "x");
    fs::permissions(folder.path() / "file", fs::perms::none);
    const WithoutRights nobody;
    EXPECT_EQ(unreadableReason(folder.file16("file")), "Permission denied");
}

TEST(PartThatCutsReferencesTest, EndsWithTheNameThatHoldsTheSign) {
    const TemporaryFolder folder;
    folder.write("a#b/c.png", "x");
    folder.write("d#1.png", "x");
    folder.write("e\\f.png", "x");
    folder.write("plain.png", "x");
    const auto partOf = [&](const char* name) {
        const std::string part = toUtf8(partThatCutsReferences(folder.file16(name)));
        const std::size_t start = folder.path().string().size() + 1;
        return part.empty() ? part : part.substr(start);
    };
    EXPECT_EQ(partOf("a#b/c.png"), "a#b");
    EXPECT_EQ(partOf("d#1.png"), "d#1.png");
    EXPECT_EQ(partOf("e\\f.png"), "e\\f.png");
    EXPECT_EQ(partOf("plain.png"), "");
    EXPECT_EQ(partOf("a#b/none.png"), "");
    EXPECT_EQ(partOf("d#2.png"), "");
    EXPECT_EQ(partThatCutsReferences(u""), u"");
    EXPECT_EQ(partThatCutsReferences(std::u16string(u"#\xD800")), u"");
}

TEST(PartThatHadBackslashTest, IsFoundWhereSlashesStandNow) {
    const TemporaryFolder folder;
    folder.write("e\\f.png", "x");
    folder.write("s\\t/u.png", "x");
    folder.write("v/w\\x\\y.png", "x");
    folder.write("plain/z.png", "x");
    const auto partOf = [&](const char* name) {
        const std::string part = toUtf8(partThatHadBackslash(folder.file16(name)));
        const std::size_t start = folder.path().string().size() + 1;
        return part.empty() ? part : part.substr(start);
    };
    EXPECT_EQ(partOf("e/f.png"), "e\\f.png");
    EXPECT_EQ(partOf("s/t/u.png"), "s\\t");
    EXPECT_EQ(partOf("v/w/x/y.png"), "v/w\\x\\y.png");
    EXPECT_EQ(partOf("plain/none.png"), "");
    EXPECT_EQ(partThatHadBackslash(u""), u"");
    EXPECT_EQ(partThatHadBackslash(std::u16string(u"/a/\xD800")), u"");
}

TEST(NativePathTest, HasItsNameInUtf8) {
    EXPECT_EQ(nativePath(u"/\u00E4\U0001F600").native(), "/\xC3\xA4\xF0\x9F\x98\x80");
    EXPECT_EQ(nativePath(u"").native(), "");
}

}  // namespace
}  // namespace marrowpress
