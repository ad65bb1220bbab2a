#include "references/topic_ids.h"

#include <array>
#include <set>

#include "support/text.h"
#include "tests/support/texts.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

/// The Mersenne Twister MT19937 of 32 bits, with its usual seed.
class MersenneTwister {
public:
    MersenneTwister() {
        state_[0] = 5489;
        for (std::uint32_t index = 1; index < kSize; ++index) {
            const std::uint32_t last = state_[index - 1];
            state_[index] = 1812433253U * (last ^ (last >> 30)) + index;
        }
    }

    std::uint32_t draw() {
        if (position_ == kSize) {
            twist();
        }
        std::uint32_t value = state_[position_++];
        value ^= value >> 11;
        value ^= (value << 7) & 0x9D2C5680U;
        value ^= (value << 15) & 0xEFC60000U;
        return value ^ (value >> 18);
    }

private:
    static constexpr std::size_t kSize = 624;
    static constexpr std::size_t kShift = 397;

    void twist() {
        for (std::size_t index = 0; index < kSize; ++index) {
            const std::uint32_t joined =
                (state_[index] & 0x80000000U) | (state_[(index + 1) % kSize] & 0x7FFFFFFFU);
            state_[index] = state_[(index + kShift) % kSize] ^ (joined >> 1) ^
                            ((joined & 1U) != 0 ? 0x9908B0DFU : 0U);
        }
        position_ = 0;
    }

    std::array<std::uint32_t, kSize> state_{};
    std::size_t position_ = kSize;
};

/// Four draws, low byte first, as a version 4 UUID behind "id".
std::u16string expectedId(MersenneTwister& engine) {
    std::array<std::uint32_t, 16> bytes{};
    for (std::size_t word = 0; word < 4; ++word) {
        const std::uint32_t value = engine.draw();
        for (std::size_t byte = 0; byte < 4; ++byte) {
            bytes[word * 4 + byte] = (value >> (8 * byte)) & 0xFFU;
        }
    }
    bytes[8] = (bytes[8] & 0x3FU) | 0x80U;
    bytes[6] = (bytes[6] & 0x0FU) | 0x40U;
    constexpr std::u16string_view kDigits = u"0123456789abcdef";
    std::u16string id = u"id";
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        if (index == 4 || index == 6 || index == 8 || index == 10) {
            id += u'-';
        }
        id += kDigits[bytes[index] >> 4];
        id += kDigits[bytes[index] & 0xFU];
    }
    return id;
}

using TopicIdGeneratorTest = XmlTest;

TEST_F(TopicIdGeneratorTest, BeginsWithTheseIds) {
    for (const std::string_view id : kGeneratedIds) {
        EXPECT_EQ(toUtf8(TopicIdGenerator::instance().nextTopicId()), id);
    }
}

TEST_F(TopicIdGeneratorTest, FollowsTheEngineBeyondItsFirstState) {
    constexpr int kMoreThanOneState = 400;
    MersenneTwister engine;
    std::set<std::u16string> ids;
    for (int count = 0; count < kMoreThanOneState; ++count) {
        const std::u16string id = TopicIdGenerator::instance().nextTopicId();
        ASSERT_EQ(id, expectedId(engine)) << count;
        ASSERT_EQ(id.size(), 38U);
        ASSERT_EQ(id[16], u'4');
        ASSERT_NE(std::u16string_view(u"89ab").find(id[21]), std::u16string_view::npos);
        ASSERT_TRUE(ids.insert(id).second) << count;
    }
}

TEST_F(TopicIdGeneratorTest, InstanceGoesOnWithOneSequence) {
    MersenneTwister engine;
    EXPECT_EQ(TopicIdGenerator::instance().nextTopicId(), expectedId(engine));
    EXPECT_EQ(TopicIdGenerator::instance().nextTopicId(), expectedId(engine));
    EXPECT_EQ(&TopicIdGenerator::instance(), &TopicIdGenerator::instance());
}

TEST(TopicIdGeneratorLifeTest, EachSessionBeginsAnew) {
    const RecordingHost host;
    for (int request = 0; request < 2; ++request) {
        const XmlSession session;
        MersenneTwister engine;
        for (int count = 0; count < 3; ++count) {
            EXPECT_EQ(TopicIdGenerator::instance().nextTopicId(), expectedId(engine));
        }
    }
}

TEST(TopicIdMapTest, FindsWhatWasAdded) {
    TopicIdMap topics;
    EXPECT_TRUE(topics.add(u"/p/a.dita#t", u"#X"));
    EXPECT_EQ(topics.find(u"/p/a.dita#t"), u"#X");
    EXPECT_EQ(topics.byReference(), (TopicIdMap::Entries{{u"/p/a.dita#t", u"#X"}}));
    EXPECT_EQ(topics.byFile(), (TopicIdMap::Entries{{u"/p/a.dita", u"#X"}}));
}

TEST(TopicIdMapTest, KeepsWhatWasAddedFirst) {
    TopicIdMap topics;
    EXPECT_TRUE(topics.add(u"/p/a.dita#t", u"#X"));
    EXPECT_FALSE(topics.add(u"/p/a.dita#t", u"#Y"));
    EXPECT_EQ(topics.byReference(), (TopicIdMap::Entries{{u"/p/a.dita#t", u"#X"}}));
    EXPECT_EQ(topics.byFile(), (TopicIdMap::Entries{{u"/p/a.dita", u"#X"}}));
}

TEST(TopicIdMapTest, AFileIsItsFirstTopic) {
    TopicIdMap topics;
    EXPECT_TRUE(topics.add(u"/p/a.dita#t", u"#X"));
    EXPECT_TRUE(topics.add(u"/p/a.dita#u", u"#Y"));
    EXPECT_TRUE(topics.add(u"/p/b.dita#t", u"#Z"));
    EXPECT_EQ(topics.byFile(), (TopicIdMap::Entries{{u"/p/a.dita", u"#X"}, {u"/p/b.dita", u"#Z"}}));
    EXPECT_EQ(topics.find(u"/p/a.dita#u"), u"#Y");
    EXPECT_EQ(topics.find(u"/p/b.dita"), u"#Z");
}

TEST(TopicIdMapTest, AFileNameMayHoldAHash) {
    TopicIdMap topics;
    EXPECT_TRUE(topics.add(u"/p/a#b.dita#t", u"#X"));
    EXPECT_EQ(topics.byFile(), (TopicIdMap::Entries{{u"/p/a#b.dita", u"#X"}}));
    EXPECT_EQ(topics.find(u"/p/a#b.dita#t"), u"#X");
    EXPECT_EQ(topics.find(u"/p/a#b.dita#"), u"#X");
}

struct FindCase {
    std::u16string_view key;
    std::u16string_view location;
};

constexpr FindCase kFindCases[] = {
    {u"/p/a.dita#t", u"#X"},
    {u"/p/a.dita#u", u"#Y"},
    {u"/p/a.dita", u"#X"},
    {u"/p/a.dita#", u"#X"},
    {u"/p/a.dita#.", u"#X"},
    {u"/p/a.dita#./e", u"#X"},
    {u"/p/a.dita#/e", u"#X"},
    {u"/p/a.dita#v", u""},
    {u"/p/a.dita#..", u""},
    {u"/p/a.dita#t/e", u""},
    {u"/p/a.dita#T", u""},
    {u"/P/a.dita", u""},
    {u"/p/b.dita", u""},
    {u"/p/b.dita#t", u""},
    {u"/p/b.dita#.", u""},
    {u"/p/../p/a.dita", u""},
    {u"", u""},
    {u"#t", u""},
    {u"/p/a.dita ", u""},
    {u"mailto:a@b", u""},
};

TEST(TopicIdMapTest, FindsByTopicOrByFileAndNeverFallsBack) {
    TopicIdMap topics;
    topics.add(u"/p/a.dita#t", u"#X");
    topics.add(u"/p/a.dita#u", u"#Y");
    for (const FindCase& example : kFindCases) {
        EXPECT_EQ(topics.find(example.key), example.location) << toUtf8(example.key);
    }
    EXPECT_EQ(TopicIdMap().find(u"/p/a.dita"), u"");
}

TEST(TopicIdMapTest, MergingPutsThePrefixInFront) {
    TopicIdMap component;
    component.add(u"/p/a.dita#t", u"#X");
    component.add(u"/p/a.dita#u", u"#Y");
    TopicIdMap book;
    book.mergeWithPrefix(component, u"one.qs");
    EXPECT_EQ(book.byReference(),
              (TopicIdMap::Entries{{u"/p/a.dita#t", u"one.qs#X"}, {u"/p/a.dita#u", u"one.qs#Y"}}));
    EXPECT_EQ(book.byFile(), (TopicIdMap::Entries{{u"/p/a.dita", u"one.qs#X"}}));
    EXPECT_EQ(component.find(u"/p/a.dita#t"), u"#X") << "the other map stays as it is";
}

TEST(TopicIdMapTest, MergingReplacesNothing) {
    TopicIdMap first;
    first.add(u"/p/a.dita#t", u"#X");
    TopicIdMap second;
    second.add(u"/p/a.dita#u", u"#U");
    second.add(u"/p/a.dita#t", u"#T");
    second.add(u"/p/b.dita#t", u"#B");
    TopicIdMap book;
    book.mergeWithPrefix(first, u"one.qs");
    book.mergeWithPrefix(second, u"two.qs");
    EXPECT_EQ(book.byReference(), (TopicIdMap::Entries{{u"/p/a.dita#t", u"one.qs#X"},
                                                       {u"/p/a.dita#u", u"two.qs#U"},
                                                       {u"/p/b.dita#t", u"two.qs#B"}}));
    EXPECT_EQ(book.byFile(),
              (TopicIdMap::Entries{{u"/p/a.dita", u"one.qs#X"}, {u"/p/b.dita", u"two.qs#B"}}));
    EXPECT_FALSE(book.add(u"/p/b.dita#t", u"#N"));
    EXPECT_EQ(book.find(u"/p/b.dita#t"), u"two.qs#B");
}

TEST(TopicIdMapTest, MergingWithoutAPrefixTakesLocationsAsTheyAre) {
    TopicIdMap other;
    other.add(u"/p/a.dita#t", u"one.qs#X");
    TopicIdMap topics;
    topics.mergeWithPrefix(other, u"");
    topics.mergeWithPrefix(TopicIdMap(), u"two.qs");
    EXPECT_EQ(topics.find(u"/p/a.dita"), u"one.qs#X");
}

}  // namespace
}  // namespace marrowpress
