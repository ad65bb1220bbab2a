#include "references/conref_lineage.h"

#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

/// Elements play references, targets and copies; only who came from whom counts.
class ConrefLineageTest : public XmlTest {
protected:
    DOMElement& element(std::string_view id) const { return *tree_.byId(id); }

    bool isEndless(std::string_view reference, std::string_view start) const {
        return lineage_.isEndless(element(reference), element(start));
    }

    /// The references in `original` become those of `copy`, in an element that got what `owner`
    /// holds.
    void copyContent(std::string_view original, std::string_view copy, std::string_view owner) {
        lineage_.recordContent(element(original), element(copy), element(owner));
    }

    /// The ids of the references in the ring.
    std::string ring(std::string_view reference, std::string_view start) const {
        std::string ids;
        for (const DOMElement* const member : lineage_.ringOf(element(reference), element(start))) {
            ids += (ids.empty() ? "" : " ") + attribute(*member, "id");
        }
        return ids;
    }

    const ParsedXml tree_{
        "<x><x id='outside' conref='a'/><x id='target'/>"
        "<x id='a'><x id='r' conref='a'/></x><x id='b'><x id='s' conkeyref='b'/></x>"
        "<x id='copy-of-r' conref='a'/><x id='copy-of-s' conref='b'/><x id='second-copy' "
        "conref='a'/>"
        "<x id='tree'><x><x id='first' conref='1'/></x>text<x id='plain'/>"
        "<x id='second' conkeyref='2'><x id='third' conref='3'/></x></x>"
        "<x id='tree-copy'><x><x id='first-copy' conref='1'/></x>text<x id='plain-copy'/>"
        "<x id='second-copied' conkeyref='2'><x id='third-copy' conref='3'/></x></x>"
        "<x id='behind' conref='4'/></x>"};
    ConrefLineage lineage_;
};

TEST_F(ConrefLineageTest, AnOriginalIsNeverEndless) {
    EXPECT_FALSE(isEndless("r", "a"));
    EXPECT_FALSE(isEndless("r", "r"));
    lineage_.follow(element("r"));
    EXPECT_FALSE(isEndless("r", "a"));
    EXPECT_FALSE(isEndless("outside", "a"));
}

TEST_F(ConrefLineageTest, ACopyIsEndlessWhenItRefersToWhatItCameWith) {
    lineage_.follow(element("outside"));
    copyContent("r", "copy-of-r", "a");
    EXPECT_TRUE(isEndless("copy-of-r", "a"));
    EXPECT_FALSE(isEndless("copy-of-r", "b"));
    EXPECT_FALSE(isEndless("copy-of-r", "r"));
}

TEST_F(ConrefLineageTest, ACopyIsEndlessWhenItRefersToWhatLedToItOverOthers) {
    lineage_.follow(element("outside"));
    copyContent("r", "copy-of-r", "a");
    lineage_.follow(element("copy-of-r"));
    copyContent("s", "copy-of-s", "b");
    EXPECT_TRUE(isEndless("copy-of-s", "a"));
    EXPECT_TRUE(isEndless("copy-of-s", "b"));
    EXPECT_FALSE(isEndless("copy-of-s", "target"));
}

TEST_F(ConrefLineageTest, WhatWasFollowedForOthersDoesNotCount) {
    lineage_.follow(element("outside"));
    copyContent("r", "copy-of-r", "a");
    lineage_.follow(element("behind"));
    copyContent("s", "copy-of-s", "b");
    EXPECT_FALSE(isEndless("copy-of-s", "a"));
}

TEST_F(ConrefLineageTest, ACopyOfAReferenceThatLedToItIsEndless) {
    lineage_.follow(element("r"));
    lineage_.recordRangeMember(element("r"), element("copy-of-r"));
    EXPECT_TRUE(isEndless("copy-of-r", "target"));
}

TEST_F(ConrefLineageTest, ARangeMemberIsNotEndlessForItsStart) {
    lineage_.follow(element("outside"));
    lineage_.recordRangeMember(element("r"), element("copy-of-r"));
    EXPECT_FALSE(isEndless("copy-of-r", "a"));
    EXPECT_FALSE(isEndless("copy-of-r", "r"));
}

TEST_F(ConrefLineageTest, CopiesOfCopiesHaveTheSameSource) {
    lineage_.follow(element("outside"));
    lineage_.recordRangeMember(element("r"), element("copy-of-r"));
    lineage_.follow(element("copy-of-r"));
    copyContent("copy-of-r", "second-copy", "target");
    EXPECT_TRUE(isEndless("second-copy", "b"));
    lineage_.follow(element("behind"));
    lineage_.recordRangeMember(element("second-copy"), element("copy-of-s"));
    EXPECT_FALSE(isEndless("copy-of-s", "b"));
}

TEST_F(ConrefLineageTest, ARangeMembersCopyHasTheSameSource) {
    lineage_.follow(element("r"));
    lineage_.recordRangeMember(element("r"), element("copy-of-r"));
    lineage_.recordRangeMember(element("copy-of-r"), element("second-copy"));
    EXPECT_TRUE(isEndless("second-copy", "target"));
}

TEST_F(ConrefLineageTest, TwoCopiesOfOneReferenceSideBySideAreNotEndless) {
    lineage_.follow(element("outside"));
    copyContent("r", "copy-of-r", "b");
    copyContent("r", "second-copy", "b");
    lineage_.follow(element("copy-of-r"));
    EXPECT_FALSE(isEndless("second-copy", "a"));
}

TEST_F(ConrefLineageTest, FindsTheReferencesOfASubtree) {
    lineage_.follow(element("outside"));
    copyContent("tree", "tree-copy", "target");
    for (const std::string_view copy : {"first-copy", "second-copied", "third-copy"}) {
        EXPECT_TRUE(isEndless(copy, "target")) << copy;
        EXPECT_FALSE(isEndless(copy, "a")) << copy;
    }
    EXPECT_FALSE(isEndless("plain-copy", "target"));
    EXPECT_FALSE(isEndless("behind", "target"));
    EXPECT_FALSE(isEndless("third", "target"));
}

TEST_F(ConrefLineageTest, WhatIsRecordedLastCounts) {
    lineage_.follow(element("outside"));
    copyContent("r", "copy-of-r", "a");
    copyContent("s", "copy-of-r", "b");
    EXPECT_FALSE(isEndless("copy-of-r", "a"));
    EXPECT_TRUE(isEndless("copy-of-r", "b"));
}

TEST_F(ConrefLineageTest, TheRingOfAnOriginalIsItself) {
    EXPECT_EQ(ring("r", "a"), "r");
}

TEST_F(ConrefLineageTest, ARingOfOneIsTheReferenceThatCameWithWhatItRefersTo) {
    lineage_.follow(element("outside"));
    copyContent("r", "copy-of-r", "a");
    EXPECT_EQ(ring("copy-of-r", "a"), "r");
}

TEST_F(ConrefLineageTest, ARingIsNamedByTheOriginalsBackToWhatItBeganWith) {
    lineage_.follow(element("outside"));
    copyContent("r", "copy-of-r", "a");
    lineage_.follow(element("copy-of-r"));
    copyContent("s", "copy-of-s", "b");
    EXPECT_EQ(ring("copy-of-s", "a"), "s r");
    EXPECT_EQ(ring("copy-of-s", "b"), "s");
}

TEST_F(ConrefLineageTest, ARingEndsWhereItsOwnOriginalComesAgain) {
    lineage_.follow(element("r"));
    copyContent("s", "copy-of-s", "b");
    lineage_.follow(element("copy-of-s"));
    copyContent("r", "second-copy", "target");
    EXPECT_TRUE(isEndless("second-copy", "outside"));
    EXPECT_EQ(ring("second-copy", "outside"), "r s");
}

}  // namespace
}  // namespace marrowpress
