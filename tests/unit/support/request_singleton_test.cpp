#include "support/request_singleton.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

/// An object that is counted.
struct Counted {
    Counted() {
        ++created;
        ++alive;
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() {
        --alive;
        wasExistingAtEnd = RequestSingleton<Counted>::existing() != nullptr;
    }

    static inline int created = 0;
    static inline int alive = 0;
    static inline bool wasExistingAtEnd = false;
};

class RequestSingletonTest : public testing::Test {
protected:
    RequestSingletonTest() { Counted::created = 0; }
    ~RequestSingletonTest() override { RequestSingleton<Counted>::destroy(); }
};

TEST_F(RequestSingletonTest, IsCreatedOnFirstUse) {
    EXPECT_EQ(RequestSingleton<Counted>::existing(), nullptr);
    EXPECT_EQ(Counted::created, 0);
    Counted& object = RequestSingleton<Counted>::instance();
    EXPECT_EQ(RequestSingleton<Counted>::existing(), &object);
    EXPECT_EQ(Counted::created, 1);
}

TEST_F(RequestSingletonTest, IsOneObject) {
    EXPECT_EQ(&RequestSingleton<Counted>::instance(), &RequestSingleton<Counted>::instance());
    EXPECT_EQ(Counted::created, 1);
}

TEST_F(RequestSingletonTest, EndsWhenDestroyed) {
    RequestSingleton<Counted>::instance();
    RequestSingleton<Counted>::destroy();
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_EQ(RequestSingleton<Counted>::existing(), nullptr);
    EXPECT_FALSE(Counted::wasExistingAtEnd);
}

TEST_F(RequestSingletonTest, IsCreatedAgainAfterThat) {
    RequestSingleton<Counted>::instance();
    RequestSingleton<Counted>::destroy();
    RequestSingleton<Counted>::instance();
    EXPECT_EQ(Counted::created, 2);
    EXPECT_EQ(Counted::alive, 1);
}

TEST_F(RequestSingletonTest, DestroyingNothingDoesNothing) {
    RequestSingleton<Counted>::destroy();
    EXPECT_EQ(Counted::created, 0);
}

TEST_F(RequestSingletonTest, EachTypeHasItsOwn) {
    RequestSingleton<int>::instance() = 5;
    EXPECT_EQ(RequestSingleton<Counted>::existing(), nullptr);
    RequestSingleton<int>::destroy();
    EXPECT_EQ(RequestSingleton<int>::instance(), 0);
    RequestSingleton<int>::destroy();
}

}  // namespace
}  // namespace marrowpress
