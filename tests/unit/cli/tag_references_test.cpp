#include "cli/tag_references.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace marrowpress {
namespace {

/// "href: media", "value: perhaps media"
std::vector<std::string> referencesIn(const char* bytes) {
    const std::optional<StartTag> tag = parseStartTag(bytes);
    std::vector<std::string> shown;
    for (const TagReference& reference : referencesOf(*tag)) {
        shown.push_back(std::string(reference.attribute->name) + ": " +
                        (reference.isCertain ? "" : "perhaps ") +
                        (reference.use == ReferenceUse::kMedia ? "media" : "link"));
    }
    return shown;
}

struct Case {
    const char* tag;
    std::vector<std::string> references;
};

class TagReferencesTest : public testing::TestWithParam<Case> {};

TEST_P(TagReferencesTest, AreTheAttributesThatARunMakesAbsolute) {
    EXPECT_EQ(referencesIn(GetParam().tag), GetParam().references) << GetParam().tag;
}

INSTANTIATE_TEST_SUITE_P(
    Links, TagReferencesTest,
    testing::Values(Case{"<xref href='/a'/>", {"href: link"}},
                    Case{"<p conref='/a' conrefend='/b'/>", {"conref: link", "conrefend: link"}},
                    Case{"<xref xtrf='/a' href='/b'/>", {"xtrf: link", "href: link"}},
                    Case{"<longdescref href='/a'/>", {"href: link"}},
                    Case{"<xref scope='external' href='/a'/>", {"href: perhaps link"}},
                    Case{"<xref scope='peer' href='/a'/>", {"href: link"}}));

INSTANTIATE_TEST_SUITE_P(
    Media, TagReferencesTest,
    testing::Values(Case{"<image href='/a'/>", {"href: media"}},
                    Case{"<hazardsymbol href='/a'/>", {"href: media"}},
                    Case{"<logo class='+ topic/image x-d/logo ' href='/a'/>", {"href: media"}},
                    Case{"<image xtrf='/a'/>", {"xtrf: link"}},
                    Case{"<image scope='external' href='/a'/>", {"href: perhaps media"}},
                    Case{"<object data='/a'/>", {"data: media"}},
                    Case{"<film data='/a'/>", {"data: perhaps media"}},
                    Case{"<param name='src' value='/a'/>", {"value: media"}},
                    Case{"<param value='/a' name='poster'/>", {"value: media"}},
                    Case{"<param name='film' valuetype='ref' value='/a'/>", {"value: media"}},
                    Case{"<param name='width' value='/a'/>", {"value: perhaps media"}}));

INSTANTIATE_TEST_SUITE_P(None, TagReferencesTest,
                         testing::Values(Case{"<p/>", {}}, Case{"<data value='/a'/>", {}},
                                         Case{"<topicref navtitle='/a' copy-to='/b'/>", {}},
                                         Case{"<image alt='/a' x:href='/b' HREF='/c'/>", {}},
                                         Case{"<object codebase='/a' classid='/b'/>", {}}));

TEST(MediaExtensionTest, IsThatOfImagesSoundAndFilm) {
    for (const char* const path : {"/a.png", "/b/a.JPEG", "a.tar.svg", "/a b.Mp4"}) {
        EXPECT_TRUE(hasMediaExtension(path)) << path;
    }
    for (const char* const path : {"", "/", "/png", "/a.dita", "/a.png/b", "/a.png.", "/a.pngx"}) {
        EXPECT_FALSE(hasMediaExtension(path)) << path;
    }
}

}  // namespace
}  // namespace marrowpress
