#include "host/local_xml_input.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

TEST(FileUriTest, EscapesWhatAUriCannotCarry) {
    EXPECT_EQ(toFileUri("/a b/50%/ä?#[x].dtd"), "file:///a%20b/50%25/%C3%A4%3F%23%5Bx%5D.dtd");
    EXPECT_EQ(toFileUri("/usr/share/a-1.0_b~/x.dtd"), "file:///usr/share/a-1.0_b~/x.dtd");
}

struct UriCase {
    const char* name;
    const char* uri;
    const char* path;  // null: no local path
};

constexpr UriCase kFileUriCases[] = {
    {"ThreeSlashes", "file:///dtd/map.dtd", "/dtd/map.dtd"},
    {"OneSlash", "file:/dtd/map.dtd", "/dtd/map.dtd"},
    {"Localhost", "file://localhost/dtd/map.dtd", "/dtd/map.dtd"},
    {"Escapes", "file:///a%20b/%C3%a4.dtd", "/a b/ä.dtd"},
    {"EscapedPercentOnce", "file:///50%2525", "/50%25"},
    {"NoEscape", "file:///100%/%4", "/100%/%4"},
    {"Fragment", "file:///map.dtd#x", "/map.dtd"},
    {"OtherHost", "file://example.org/map.dtd", nullptr},
    {"HostThatBeginsAlike", "file://localhost.example.org/map.dtd", nullptr},
    {"Relative", "file:map.dtd", nullptr},
    {"EscapedNul", "file:///a%00b", nullptr},
    {"Http", "http://example.org/map.dtd", nullptr},
    {"PlainPath", "/dtd/map.dtd", nullptr},
    {"Empty", "", nullptr},
};

class FileUriCaseTest : public testing::TestWithParam<UriCase> {};

TEST_P(FileUriCaseTest, BecomesAPath) {
    const char* const expected = GetParam().path;
    EXPECT_EQ(fileUriToPath(GetParam().uri),
              expected ? std::optional<std::string>(expected) : std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(, FileUriCaseTest, testing::ValuesIn(kFileUriCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(LibxmlFailureTest, IsWantOfHandlesAndNotAMissingFile) {
    restrictLibxmlToLocalFiles();
    const TemporaryFolder folder;
    const std::string file = folder.write("a.xml", "<a/>");
    const auto read = [](const std::string& path) {
        xmlDoc* const document = xmlReadFile(path.c_str(), nullptr, 0);
        const bool isRead = document != nullptr;
        xmlFreeDoc(document);
        return isRead;
    };
    takeLibxmlFailure();
    EXPECT_FALSE(read(folder.file("none.xml")));
    EXPECT_FALSE(read(folder.path().string()));
    EXPECT_TRUE(read(file));
    EXPECT_FALSE(takeLibxmlFailure());
    {
        const NoFileHandles none;
        EXPECT_FALSE(read(file));
    }
    EXPECT_EQ(takeLibxmlFailure(), std::errc::too_many_files_open);
    EXPECT_FALSE(takeLibxmlFailure());
}

void countError(void* count, const char* /*format*/, ...) {
    ++*static_cast<int*>(count);
}

TEST(LibxmlRestrictionTest, EndsWithWhatTheProcessHadBefore) {
    const TemporaryFolder folder;
    int told = 0;
    endLibxmlRestrictions();
    xmlSetGenericErrorFunc(&told, countError);
    restrictLibxmlToLocalFiles();
    endLibxmlRestrictions();
    endLibxmlRestrictions();
    const std::string path = folder.write("bad.xml", "<a>");
    EXPECT_EQ(xmlReadFile(path.c_str(), nullptr, 0), nullptr);
    EXPECT_GT(told, 0);
    told = 0;
    restrictLibxmlToLocalFiles();
    EXPECT_EQ(xmlReadFile(path.c_str(), nullptr, 0), nullptr);
    EXPECT_EQ(told, 0);
    endLibxmlRestrictions();
    xmlSetGenericErrorFunc(nullptr, nullptr);
}

}  // namespace
}  // namespace marrowpress
