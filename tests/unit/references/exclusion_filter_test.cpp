#include "references/exclusion_filter.h"

#include "support/request_singleton.h"
#include "tests/unit/references/filter_answers.h"

namespace marrowpress {
namespace {

/// Accepts every element, and tells of its end.
class LastingFilter final : public xercesc::DOMNodeFilter {
public:
    explicit LastingFilter(bool& isAlive, FilterAction action = FILTER_ACCEPT)
        : isAlive_(isAlive), action_(action) {
        isAlive_ = true;
    }
    LastingFilter(const LastingFilter&) = delete;
    LastingFilter& operator=(const LastingFilter&) = delete;
    ~LastingFilter() override { isAlive_ = false; }

    FilterAction acceptNode(const xercesc::DOMNode*) const override { return action_; }

private:
    bool& isAlive_;
    FilterAction action_;
};

using ExclusionFilterHolderTest = XmlTest;

TEST_F(ExclusionFilterHolderTest, IsEmptyAtFirstAndExcludesNothing) {
    const ParsedXml parsed("<p excluded='yes'/>");
    EXPECT_EQ(ExclusionFilterHolder::instance().filter(), nullptr);
    EXPECT_FALSE(isExcluded(*parsed.root()));
}

TEST_F(ExclusionFilterHolderTest, ExcludesWhatItsFilterAccepts) {
    const ParsedXml parsed("<p excluded='yes'><q/></p>");
    excludeMarkedElements();
    EXPECT_TRUE(isExcluded(*parsed.root()));
    EXPECT_FALSE(isExcluded(*parsed.root()->getFirstElementChild()));
}

TEST_F(ExclusionFilterHolderTest, ExcludesAllThatIsInAnExcludedElement) {
    const ParsedXml parsed("<p><q excluded='yes'><r/></q></p>");
    const xercesc::DOMElement& excluded = *parsed.root()->getFirstElementChild();
    EXPECT_FALSE(isInExcluded(excluded));
    excludeMarkedElements();
    EXPECT_FALSE(isInExcluded(*parsed.root()));
    EXPECT_TRUE(isInExcluded(excluded));
    EXPECT_TRUE(isInExcluded(*excluded.getFirstElementChild()));
}

TEST_F(ExclusionFilterHolderTest, WhatItsFilterRejectsOrSkipsIsNotExcluded) {
    const ParsedXml parsed("<x keys='k'/>");
    bool isAlive = false;
    for (const auto action :
         {xercesc::DOMNodeFilter::FILTER_REJECT, xercesc::DOMNodeFilter::FILTER_SKIP}) {
        ExclusionFilterHolder::instance().reset(std::make_unique<LastingFilter>(isAlive, action));
        EXPECT_FALSE(isExcluded(*parsed.root()));
        EXPECT_EQ(answerAbout(KeyDefinitionNodeFilter(), parsed.root()), "accept");
    }
}

TEST_F(ExclusionFilterHolderTest, OwnsOneFilter) {
    bool isFirstAlive = false;
    bool isSecondAlive = false;
    ExclusionFilterHolder::instance().reset(std::make_unique<LastingFilter>(isFirstAlive));
    auto second = std::make_unique<LastingFilter>(isSecondAlive);
    const xercesc::DOMNodeFilter* const held = second.get();
    ExclusionFilterHolder::instance().reset(std::move(second));
    EXPECT_FALSE(isFirstAlive);
    EXPECT_TRUE(isSecondAlive);
    EXPECT_EQ(ExclusionFilterHolder::instance().filter(), held);
    ExclusionFilterHolder::instance().reset(nullptr);
    EXPECT_FALSE(isSecondAlive);
    EXPECT_EQ(ExclusionFilterHolder::instance().filter(), nullptr);
}

TEST(ExclusionFilterHolderLifeTest, EndsWithTheSession) {
    const RecordingHost host;
    bool isAlive = false;
    {
        const XmlSession session;
        ExclusionFilterHolder::instance().reset(std::make_unique<LastingFilter>(isAlive));
        EXPECT_TRUE(isAlive);
    }
    EXPECT_FALSE(isAlive);
    const XmlSession session;
    EXPECT_EQ(ExclusionFilterHolder::instance().filter(), nullptr);
}

}  // namespace
}  // namespace marrowpress
