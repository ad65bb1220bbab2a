#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

#include "marrowpress/client_entry.h"

namespace marrowpress {
namespace {

/// A provider that breaks the rule that nothing is thrown.
class ThrowingProvider final : public IHostObject {
public:
    ComStatus queryInterface(const InterfaceId& /*id*/, void** /*object*/) override {
        throw std::runtime_error("no interfaces");
    }
    std::uint32_t addRef() override { return 1; }
    std::uint32_t release() override { return 1; }
};

/// The symbols that the module offers, a line each.
std::string exportedSymbols() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(
        ::popen("nm --dynamic --defined-only --format=posix \"" MARROWPRESS_CLIENT_MODULE "\"",
                "r"),
        &::pclose);
    EXPECT_TRUE(output);
    std::string names;
    char line[512];
    while (output && std::fgets(line, sizeof line, output.get())) {
        const std::string text(line);
        names += text.substr(0, text.find(' ')) + "\n";
    }
    return names;
}

TEST(BuiltModuleTest, OffersOneFunction) {
    EXPECT_EQ(exportedSymbols(), std::string(kClientEntryName) + "\n");
}

TEST(BuiltModuleTest, FailsWithoutAProviderOfInterfaces) {
    void* const module = ::dlopen(MARROWPRESS_CLIENT_MODULE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_TRUE(module) << ::dlerror();
    const auto attach = reinterpret_cast<ClientEntry>(::dlsym(module, kClientEntryName));
    ASSERT_TRUE(attach) << ::dlerror();
    EXPECT_EQ(attach(module, nullptr, nullptr, nullptr), -1);
    ThrowingProvider provider;
    EXPECT_EQ(attach(module, &provider, nullptr, nullptr), -1);
    ::dlclose(module);
}

}  // namespace
}  // namespace marrowpress
