#include "support/xerces_ptr.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

struct Releasable {
    void release() { ++releases; }
    int releases = 0;
};

TEST(XercesPtrTest, ReleasesWhatItHolds) {
    Releasable object;
    {
        const XercesPtr<Releasable> owner(&object);
        EXPECT_EQ(object.releases, 0);
    }
    EXPECT_EQ(object.releases, 1);
}

TEST(DomTextTest, NullReadsAsEmpty) {
    EXPECT_EQ(domText(nullptr), u"");
    EXPECT_EQ(domText(u""), u"");
    EXPECT_EQ(domText(u" a "), u" a ");
}

}  // namespace
}  // namespace marrowpress
