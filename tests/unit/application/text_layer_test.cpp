#include "application/text_layer.h"

#include <gtest/gtest.h>

#include "application/connection.h"
#include "application/host_operations.h"
#include "tests/support/icu_data_directory.h"
#include "tests/support/scripted_host.h"

namespace marrowpress {
namespace {

using Lines = std::vector<std::string>;

TEST(HostSetClientEncodingTest, TakesOnlyNamesOfTheLibrary) {
    for (const char* name : {"QuillRoman", "UTF-8"}) {
        EXPECT_TRUE(HostSetClientEncoding(name)) << name;
    }
    for (const char* name : {"", "utf-8", "UTF8", "UTF-8 ", "UTF-80", "no-such-encoding"}) {
        EXPECT_FALSE(HostSetClientEncoding(name)) << name;
    }
}

/// What the text layer finds at its start, and makes of it.
class TextLayerTest : public testing::Test {
protected:
    TextLayerTest() {
        interfaces_.connect();
        HostLastError = 0;
        HostSetClientEncoding("UTF-8");
    }
    ~TextLayerTest() override { HostLastError = 0; }

    ScriptedHost host;

private:
    IcuDataDirectory none_;
    QsApiInterfacesC interfaces_{host.provider()};
};

TEST_F(TextLayerTest, ShowsIcuTheHostsDataFolder) {
    host.texts[{0, 89}] = "/opt/host";
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "/opt/host/icu_data");
    EXPECT_EQ(host.calls, Lines{"getStringProp 0 0 89"});
}

TEST_F(TextLayerTest, LeavesADirectoryThatIcuHas) {
    const IcuDataDirectory earlier("/usr/share/other");
    host.texts[{0, 89}] = "/opt/host";
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "/usr/share/other");
    EXPECT_EQ(host.calls, Lines{});
}

TEST_F(TextLayerTest, SetsNoDirectoryFromAnEmptyProperty) {
    host.texts[{0, 89}] = "";
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "");
}

TEST_F(TextLayerTest, SetsNoDirectoryWithoutTheProperty) {
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "");
}

TEST_F(TextLayerTest, SetsNoDirectoryFromAFailedRead) {
    host.texts[{0, 89}] = "/opt/host";
    host.hostStatus = 17;
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "");
    EXPECT_EQ(HostLastError, 17);
    host.hostStatus = 0;
    host.comStatus = kComFailed;
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "");
    EXPECT_EQ(HostLastError, -1);
}

TEST_F(TextLayerTest, AnEarlierErrorDoesNotCountAsAFailedRead) {
    host.texts[{0, 89}] = "/opt/host";
    HostLastError = 17;
    initializeTextLayer();
    EXPECT_EQ(IcuDataDirectory::current(), "/opt/host/icu_data");
    EXPECT_EQ(HostLastError, 17);
}

}  // namespace
}  // namespace marrowpress
