#include "host/client_module.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Why there is no module at `path`.
std::string moduleFaultOf(const fs::path& path) {
    try {
        const ClientModule module(path);
        return "(none)";
    } catch (const std::runtime_error& fault) {
        return fault.what();
    }
}

TEST(ClientModuleTest, HasTheEntryFunction) {
    const ClientModule module(defaultModulePath());
    EXPECT_NE(module.handle(), nullptr);
    ASSERT_NE(module.entry(), nullptr);
    EXPECT_EQ(module.entry()(module.handle(), nullptr, nullptr, nullptr), -1);
}

TEST(ClientModuleTest, WhatCannotBeLoadedIsNone) {
    const TemporaryFolder folder;
    const std::string start = "cannot load the client module: ";
    EXPECT_TRUE(moduleFaultOf(folder.file("none.so")).starts_with(start + folder.file("none.so")));
    EXPECT_TRUE(moduleFaultOf(folder.write("text.so", "no code")).starts_with(start));
}

TEST(ClientModuleTest, ALibraryWithoutTheEntryFunctionIsNone) {
    const std::string fault = moduleFaultOf("libc.so.6");
    EXPECT_TRUE(fault.starts_with("libc.so.6 is no client module: ")) << fault;
    EXPECT_NE(fault.find(kClientEntryName), std::string::npos) << fault;
}

TEST(DefaultModulePathTest, IsBesideTheProgram) {
    EXPECT_EQ(defaultModulePath(),
              fs::read_symlink("/proc/self/exe").parent_path() / "marrowpress_client.so");
}

}  // namespace
}  // namespace marrowpress
