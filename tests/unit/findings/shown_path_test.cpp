#include "findings/shown_path.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(ShownPathTest, IsRelativeWhereThatIsShorter) {
    struct Case {
        const char* path;
        const char* folder;
        const char* shown;
    };
    const Case cases[] = {
        {"/guide/topics/b.dita", "/guide", "topics/b.dita"},
        {"/guide/topics/b.dita", "/guide/", "topics/b.dita"},
        {"/guide/topics/b.dita", "/", "guide/topics/b.dita"},
        {"/guide/topics/b.dita", "/guide/maps", "../topics/b.dita"},
        {"/guide/./maps/../b.dita", "/guide", "b.dita"},
        {"/guide2/b.dita", "/guide", "/guide2/b.dita"},
        {"/x/b.dita", "/guide/maps", "/x/b.dita"},
        {"/guide/topics/b.dita", "", "/guide/topics/b.dita"},
        {"b.dita", "/guide", "b.dita"},
        {"", "/guide", ""},
        {"/guide/\xFC\n.dita", "/guide", "\xFC\n.dita"},
    };
    for (const Case& sample : cases) {
        EXPECT_EQ(shownPath(sample.path, sample.folder), sample.shown) << sample.path;
    }
}

TEST(RelativePathTest, IsRelativeEvenWhereThatIsLonger) {
    EXPECT_EQ(relativePath("/x/b.dita", "/guide/maps"), "../../x/b.dita");
    EXPECT_EQ(relativePath("/guide/b.dita", "/guide"), "b.dita");
    EXPECT_EQ(relativePath("/guide", "/guide"), ".");
    EXPECT_EQ(relativePath("prodname", "/guide"), "prodname");
    EXPECT_EQ(relativePath("/x/b.dita", ""), "/x/b.dita");
}

TEST(PathInsideTest, NothingIsGivenForWhatIsOutside) {
    EXPECT_EQ(pathInside("/guide/topics/b.dita", "/guide"), "topics/b.dita");
    EXPECT_EQ(pathInside("/guide/..b.dita", "/guide"), "..b.dita");
    for (const char* const path : {"/guide", "/guide2/b.dita", "/b.dita", "/", "b.dita", ""}) {
        EXPECT_FALSE(pathInside(path, "/guide")) << path;
    }
    EXPECT_FALSE(pathInside("/guide/b.dita", ""));
}

}  // namespace
}  // namespace marrowpress
