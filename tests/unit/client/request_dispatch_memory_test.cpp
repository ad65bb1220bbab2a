#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "application/connection.h"
#include "client/request_dispatch.h"
#include "client/xml_session.h"
#include "tests/support/failing_allocations.h"
#include "tests/support/host_with_memory.h"
#include "tests/support/scripted_host.h"
#include "tests/unit/client/xml_platform.h"

namespace marrowpress {
namespace {

constexpr const char* kEmptyLists =
    R"(,{"type":6,"value":[]},{"type":15,"value":[]},{"type":15,"value":[]}])";
const std::string kRefused = std::string(R"([{"type":1,"value":-43})") + kEmptyLists;
const std::string kFailed = std::string(R"([{"type":1,"value":-42})") + kEmptyLists;

/// A request that is refused after its publisher has begun.
constexpr const char* kRequest = R"({"type":"PublishComp","params":{"output":"/none/book.dita"}})";

/// Takes what it is told without memory of its own.
class QuietObserver final : public IHostObserver {
public:
    ComStatus queryInterface(const InterfaceId& /*id*/, void** object) override {
        *object = nullptr;
        return kComNoInterface;
    }
    std::uint32_t addRef() override { return ++references_; }
    std::uint32_t release() override { return --references_; }
    ComStatus observe(const Observation* observation) override {
        hasHeardOfMemory |= std::string_view(observation->reason) == "there is not enough memory";
        return kComOk;
    }

    bool hasHeardOfMemory = false;

private:
    std::uint32_t references_ = 0;
};

/// How many allocations the start of a session takes that has no observer.
std::size_t allocationsOfStart() {
    // The first one of the process takes more.
    { const XmlSession first; }
    const FailingAllocations counting({0});
    const XmlSession session;
    return FailingAllocations::count();
}

/// A host with an observer and enough memory, whose client may have none.
class RequestWithoutMemoryTest : public testing::TestWithParam<bool> {
protected:
    RequestWithoutMemoryTest() : firstFault(allocationsOfStart()) {
        interfaces_.observer = InterfaceRef<IHostObserver>::share(&observer);
        interfaces_.connect();
    }

    /// Sends the request. Whether the call has returned.
    bool isServed(const AllocationFault& fault) {
        host.calls.clear();
        host.answers.clear();
        try {
            const FailingAllocations failing(fault);
            onNotify(13, 0, kRequest, 0);
            return true;
        } catch (...) {
            return false;
        }
    }

    /// Behind those that the tests of the session try.
    const std::size_t firstFault;
    ScriptedHost host;
    QuietObserver observer;

private:
    HostWithMemory between_{host.provider()};
    QsApiInterfacesC interfaces_{between_.provider()};
};

TEST_P(RequestWithoutMemoryTest, ARequestIsAnsweredOnceOrHasNotBegun) {
    std::size_t notBegun = 0;
    std::size_t failed = 0;
    isServed({0});
    const auto attempt = [&](const AllocationFault& fault) {
        const bool hasReturned = isServed(fault);
        EXPECT_FALSE(isXmlPlatformUp()) << fault.number;
        if (!hasReturned) {
            ++notBegun;
            EXPECT_EQ(host.calls, std::vector<std::string>{}) << fault.number;
            return;
        }
        ASSERT_EQ(host.answers.size(), 1U) << fault.number;
        failed += host.answers.front() == kFailed ? 1 : 0;
        EXPECT_TRUE(host.answers.front() == kFailed || host.answers.front() == kRefused)
            << fault.number << ' ' << host.answers.front();
    };
    tryEachAllocation(GetParam(), attempt, {firstFault, 1});
    EXPECT_GT(notBegun, 0U);
    EXPECT_GT(failed, 0U);
    // Where none comes back, there is none to tell of it either.
    EXPECT_EQ(observer.hasHeardOfMemory, !GetParam());
    EXPECT_TRUE(isServed({0}));
    EXPECT_EQ(host.answers, std::vector<std::string>{kRefused});
}

INSTANTIATE_TEST_SUITE_P(OneAndAll, RequestWithoutMemoryTest, testing::Values(false, true));

}  // namespace
}  // namespace marrowpress
