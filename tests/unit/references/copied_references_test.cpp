#include "references/copied_references.h"

#include <filesystem>
#include <utility>

#include "support/publish_exception.h"
#include "tests/support/whole_request.h"

namespace marrowpress {
namespace {

constexpr std::size_t kMostFollowed = 1'000'000;
constexpr std::size_t kMostSearched = 300'000'000;

void follow(CopiedReferences& references, std::size_t count) {
    for (std::size_t index = 0; index < count; ++index) {
        references.follow();
    }
}

TEST(CopiedReferencesTest, AMillionOfThemIsTheMostOfARequest) {
    CopiedReferences references;
    EXPECT_NO_THROW(follow(references, kMostFollowed));
    EXPECT_FALSE(references.isSpent());
    EXPECT_THROW(references.follow(), PublishException);
    EXPECT_TRUE(references.isSpent());
}

TEST(CopiedReferencesTest, WhatIsSearchedForThemIsLimitedToo) {
    CopiedReferences references;
    EXPECT_NO_THROW(references.search(kMostSearched));
    EXPECT_NO_THROW(references.search(0));
    EXPECT_FALSE(references.isSpent());
    EXPECT_THROW(references.search(1), PublishException);
    EXPECT_TRUE(references.isSpent());
}

/// Publications in which each of ten steps holds the one before it twice.
constexpr int kSteps = 10;
constexpr std::size_t kCopies = 1 << kSteps;
constexpr const char* kDeclaresIds = "<!DOCTYPE topic [<!ATTLIST topic id ID #IMPLIED>]>";

std::string twice(const std::string& text) {
    return text + text;
}

std::string conrefToStep(int step) {
    return "<ph conref='library.dita#t/s" + std::to_string(step) + "'/>";
}

std::string conrefStep(int step) {
    return "<ph id='s" + std::to_string(step) + "'>" +
           (step == 0 ? "leaf" : twice(conrefToStep(step - 1))) + "</ph>";
}

/// Each step is met before the one that it leads to, and is all the longer when that is looked for.
void writeConrefs(const TemporaryFolder& folder) {
    std::string library;
    for (int step = kSteps; step >= 0; --step) {
        library += conrefStep(step);
    }
    folder.write("library.dita", kDeclaresIds + topic("t", "<body>" + library + "</body>"));
    folder.write("root.ditamap", map(topicref("href='library.dita'")));
}

void writeMaps(const TemporaryFolder& folder) {
    folder.write("leaf.dita", topic("t", "<body><p>leaf</p></body>"));
    folder.write("0.ditamap", map(topicref("href='leaf.dita'")));
    for (int step = 1; step <= kSteps; ++step) {
        const std::string href = "href='" + std::to_string(step - 1) + ".ditamap' format='ditamap'";
        folder.write((step == kSteps ? "root" : std::to_string(step)) + ".ditamap",
                     map(twice(topicref(href))));
    }
}

void writeFragments(const TemporaryFolder& folder) {
    const auto reference = [](int step) {
        return topicref("href='parts.ditamap#s" + std::to_string(step) + "' format='ditamap'");
    };
    std::string parts;
    for (int step = 0; step <= kSteps; ++step) {
        parts += topicref("id='s" + std::to_string(step) + "'",
                          step == 0 ? topicref("href='leaf.dita'") : twice(reference(step - 1)));
    }
    folder.write("leaf.dita", topic("t", "<body><p>leaf</p></body>"));
    folder.write("parts.ditamap", map(parts));
    folder.write("root.ditamap", map(reference(kSteps)));
}

/// Each step takes what the one before it has become; with the steps the other way round, what it
/// takes is not followed further.
void writeKeys(const TemporaryFolder& folder) {
    const auto reference = [](int step) { return "<ph keyref='s" + std::to_string(step) + "'/>"; };
    std::string keys;
    for (int step = 0; step <= kSteps; ++step) {
        keys += topicref("keys='s" + std::to_string(step) + "'",
                         "<topicmeta class='- map/topicmeta '><linktext class='- map/linktext '>" +
                             (step == 0 ? "leaf" : twice(reference(step - 1))) +
                             "</linktext></topicmeta>");
    }
    folder.write("a.dita", topic("t", "<body><p>" + reference(kSteps) + "</p></body>"));
    folder.write("root.ditamap", map(keys + topicref("href='a.dita'")));
}

struct Growth {
    const char* name;
    void (*write)(const TemporaryFolder& folder);
    std::size_t leaves;
};

// In a library that is published itself, each step has its content.
constexpr Growth kByConrefs{"Conrefs", &writeConrefs, 2 * kCopies - 1};
constexpr Growth kByMapReferences{"MapReferences", &writeMaps, kCopies};
constexpr Growth kByFragments{"Fragments", &writeFragments, kCopies};
constexpr Growth kByKeys{"Keys", &writeKeys, kCopies};

class GrowthTest : public WholeRequestTest, public testing::WithParamInterface<Growth> {
protected:
    GrowthTest() {
        std::filesystem::create_directory(folder.path() / "out");
        GetParam().write(folder);
    }

    std::size_t leaves() const {
        const std::string text = written("out/book.dita");
        std::size_t count = 0;
        for (std::size_t found = text.find("leaf<"); found != std::string::npos;
             found = text.find("leaf<", found + 1)) {
            ++count;
        }
        return count;
    }
};

TEST_P(GrowthTest, ToAThousandCopiesIsExact) {
    EXPECT_EQ(status(publishComposite(composite())), 0);
    EXPECT_EQ(leaves(), GetParam().leaves);
    EXPECT_EQ(console, "");
}

/// The memory of a request is the limit of what keys give.
class FollowedGrowthTest : public GrowthTest {};

TEST_P(FollowedGrowthTest, BeyondTheLimitEndsTheRun) {
    // The first word of the run: all but what is left for this is spent then.
    bool isSpent = false;
    watch = [&](const std::string&) {
        if (!std::exchange(isSpent, true)) {
            follow(CopiedReferences::instance(), kMostFollowed - kCopies / 2);
        }
    };
    EXPECT_EQ(status(publishComposite(composite())), -42);
    EXPECT_TRUE(isSpent);
    EXPECT_FALSE(folder.exists("out/KeyspaceDoc.ditamap"));
    watch = nullptr;
    EXPECT_EQ(status(publishComposite(composite())), 0);
}

std::string nameOf(const testing::TestParamInfo<Growth>& instance) {
    return instance.param.name;
}

INSTANTIATE_TEST_SUITE_P(By, GrowthTest,
                         testing::Values(kByConrefs, kByMapReferences, kByFragments, kByKeys),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(By, FollowedGrowthTest,
                         testing::Values(kByConrefs, kByMapReferences, kByFragments), nameOf);

}  // namespace
}  // namespace marrowpress
