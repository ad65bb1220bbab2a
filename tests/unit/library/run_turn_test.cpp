#include "library/run_turn.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>

#include "library/failure.h"

namespace marrowpress {
namespace {

using namespace std::chrono_literals;

/// The code with which there is no turn; MP_OK when there is one, which ends at once.
int turnCode(const Order& order) {
    try {
        const RunTurn turn(order);
        return MP_OK;
    } catch (const LibraryFailure& failure) {
        return failure.code();
    }
}

TEST(RunTurnTest, IsOneCallsAtATime) {
    Order order;
    {
        const RunTurn turn(order);
        EXPECT_EQ(turnCode(order), MP_BUSY);
        EXPECT_EQ(std::async(std::launch::async, turnCode, order).get(), MP_BUSY);
        order.flags = MP_WAIT;
        EXPECT_EQ(turnCode(order), MP_BUSY) << "nobody waits for himself";
    }
    EXPECT_EQ(turnCode(order), MP_OK);
}

TEST(RunTurnTest, AnotherThreadMayWait) {
    Order order;
    order.flags = MP_WAIT;
    auto turn = std::make_unique<RunTurn>(order);
    std::future<int> waiting = std::async(std::launch::async, turnCode, order);
    EXPECT_EQ(waiting.wait_for(100ms), std::future_status::timeout);
    turn.reset();
    EXPECT_EQ(waiting.get(), MP_OK);
}

TEST(RunTurnTest, WaitingEndsWhenItIsCancelled) {
    const Order other;
    const RunTurn turn(other);
    std::int32_t cancel = 0;
    Order order;
    order.flags = MP_WAIT;
    order.cancel = &cancel;
    std::future<int> waiting = std::async(std::launch::async, turnCode, order);
    __atomic_store_n(&cancel, 1, __ATOMIC_RELAXED);
    EXPECT_EQ(waiting.get(), MP_CANCELLED);
}

}  // namespace
}  // namespace marrowpress
