#include "marrowpress/interface_ref.h"

#include <gtest/gtest.h>

#include "tests/support/scripted_host.h"

namespace marrowpress {
namespace {

TEST(InterfaceRefTest, TakesOverOneReference) {
    ScriptedHost host;
    host.addRef();
    {
        const InterfaceRef<IHostMain> held(&host);
        EXPECT_EQ(held.get(), static_cast<IHostMain*>(&host));
        EXPECT_EQ(host.references, 1U);
    }
    EXPECT_EQ(host.references, 0U);
}

TEST(InterfaceRefTest, SharesByAReferenceOfItsOwn) {
    ScriptedHost host;
    {
        const auto shared = InterfaceRef<IHostObject>::share(&host.provider());
        EXPECT_EQ(host.references, 1U);
    }
    EXPECT_EQ(host.references, 0U);
    EXPECT_FALSE(InterfaceRef<IHostObject>::share(nullptr));
}

TEST(InterfaceRefTest, MovesItsReference) {
    ScriptedHost host;
    InterfaceRef<IHostObject> first = InterfaceRef<IHostObject>::share(&host.provider());
    InterfaceRef<IHostObject> second(std::move(first));
    // NOLINTNEXTLINE(bugprone-use-after-move): what is left behind is what is asked about.
    EXPECT_FALSE(first);
    EXPECT_EQ(host.references, 1U);
    InterfaceRef<IHostObject> third;
    third = std::move(second);
    // NOLINTNEXTLINE(bugprone-use-after-move): as above.
    EXPECT_FALSE(second);
    EXPECT_TRUE(third);
    EXPECT_EQ(host.references, 1U);
}

}  // namespace
}  // namespace marrowpress
