#include "xml/mapped_input.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <xercesc/util/BinFileInputStream.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "support/text.h"
#include "tests/support/file_conditions.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

using Stream = std::unique_ptr<xercesc::BinInputStream>;

Stream openFile(const std::u16string& path) {
    return Stream(MemMapLocalFileInputSource(path.c_str()).makeStream());
}

std::string readIn(xercesc::BinInputStream& stream, std::size_t piece) {
    std::string text;
    std::string buffer(piece, '\0');
    while (const XMLSize_t count =
               stream.readBytes(reinterpret_cast<XMLByte*>(buffer.data()), piece)) {
        text.append(buffer, 0, count);
    }
    return text;
}

bool isMapped(const Stream& stream) {
    return dynamic_cast<const MemMapFileInputStream*>(stream.get()) != nullptr;
}

class MemMapLocalFileInputSourceTest : public XmlTest {
protected:
    static constexpr std::size_t kLargestRead = 16 << 20;
};

TEST_F(MemMapLocalFileInputSourceTest, ReadsAFileThroughAHandle) {
    folder.write("a.xml", "<a>text</a>");
    const Stream stream = openFile(folder.file16("a.xml"));
    ASSERT_TRUE(stream);
    EXPECT_FALSE(isMapped(stream));
    EXPECT_EQ(readIn(*stream, 4096), "<a>text</a>");
}

TEST_F(MemMapLocalFileInputSourceTest, ReadsALargeFileThroughAMapping) {
    for (const std::size_t size : {kLargestRead, kLargestRead + 1}) {
        folder.write("a.xml", std::string(size, 'x'));
        const Stream stream = openFile(folder.file16("a.xml"));
        ASSERT_TRUE(stream);
        EXPECT_EQ(isMapped(stream), size > kLargestRead);
        EXPECT_EQ(readIn(*stream, 1 << 20), std::string(size, 'x'));
    }
}

TEST_F(MemMapLocalFileInputSourceTest, ReadsThroughItsHandleWhatCannotBeMapped) {
    const std::string text(kLargestRead + 4096, 'x');
    folder.write("a.xml", text);
    EXPECT_TRUE(isMapped(openFile(folder.file16("a.xml"))));
    Stream stream;
    {
        // A mapping opens the file once more.
        const OneFileHandle one;
        stream = openFile(folder.file16("a.xml"));
    }
    ASSERT_TRUE(stream);
    EXPECT_FALSE(isMapped(stream));
    EXPECT_EQ(readIn(*stream, 1 << 20), text);
}

TEST_F(MemMapLocalFileInputSourceTest, AFileThatIsShortenedMeanwhileIsAnError) {
    const std::string path = folder.write("a.xml", std::string(kLargestRead + 4096, 'x'));
    const Stream stream = openFile(folder.file16("a.xml"));
    ASSERT_TRUE(isMapped(stream));
    XMLByte bytes[16];
    EXPECT_EQ(stream->readBytes(bytes, 16), 16U);
    ASSERT_EQ(::truncate(path.c_str(), 100), 0);
    EXPECT_THROW(stream->readBytes(bytes, 16), xercesc::XMLPlatformUtilsException);
}

TEST_F(MemMapLocalFileInputSourceTest, ASmallFileThatIsShortenedMeanwhileEnds) {
    const std::string path = folder.write("a.xml", std::string(1 << 20, 'x'));
    const Stream stream = openFile(folder.file16("a.xml"));
    XMLByte bytes[16];
    EXPECT_EQ(stream->readBytes(bytes, 16), 16U);
    ASSERT_EQ(::truncate(path.c_str(), 0), 0);
    EXPECT_LT(readIn(*stream, 4096).size(), 1U << 20);
}

TEST_F(MemMapLocalFileInputSourceTest, ThrowsWhenThereAreNoMoreHandles) {
    folder.write("a.xml", "<a/>");
    const NoFileHandles none;
    EXPECT_THROW(openFile(folder.file16("a.xml")), std::system_error);
}

TEST_F(MemMapLocalFileInputSourceTest, DoesNotWaitForAFileThatBlocks) {
    const Watchdog watchdog(60);
    // Regular by its mode, and read only by those who may.
    const Stream stream = openFile(u"/proc/kmsg");
    if (!stream) {
        GTEST_SKIP() << "/proc/kmsg can't be opened here";
    }
    const auto readAll = [&] {
        while (!readIn(*stream, 65536).empty()) {
        }
    };
    EXPECT_THROW(readAll(), xercesc::XMLException);
}

TEST_F(MemMapLocalFileInputSourceTest, ReadsInPiecesOfTheReadersSize) {
    std::string text;
    for (int line = 0; line < 3000; ++line) {
        text += "line " + std::to_string(line) + "\n";
    }
    folder.write("a.xml", text);
    for (const std::size_t piece : {1UL, 7UL, 4096UL, 100000UL}) {
        const Stream stream = openFile(folder.file16("a.xml"));
        ASSERT_TRUE(stream);
        EXPECT_EQ(readIn(*stream, piece), text) << piece;
    }
}

TEST_F(MemMapLocalFileInputSourceTest, GivesAsMuchAtOnceAsItIsAskedFor) {
    const std::string text(300000, 'x');
    folder.write("a.xml", text);
    for (const std::size_t room : {text.size(), text.size() + 100000}) {
        const Stream stream = openFile(folder.file16("a.xml"));
        ASSERT_TRUE(stream);
        std::vector<XMLByte> buffer(room);
        EXPECT_EQ(stream->readBytes(buffer.data(), room), text.size());
        EXPECT_EQ(stream->readBytes(buffer.data(), room), 0U);
    }
}

TEST_F(MemMapLocalFileInputSourceTest, TakesBytesAsTheyAre) {
    const std::string bytes("\0\xff\r\n\x1a\xc3", 6);
    folder.write("a.bin", bytes);
    const Stream stream = openFile(folder.file16("a.bin"));
    ASSERT_TRUE(stream);
    EXPECT_EQ(readIn(*stream, 2), bytes);
}

TEST_F(MemMapLocalFileInputSourceTest, FindsARelativePathAtItsBase) {
    folder.write("maps/a.ditamap", "map");
    folder.write("topics/a.dita", "topic");
    const MemMapLocalFileInputSource source(folder.file16("maps/a.ditamap").c_str(),
                                            u"../topics/a.dita");
    EXPECT_EQ(std::u16string(source.getSystemId()), folder.file16("topics/a.dita"));
    const Stream stream(source.makeStream());
    ASSERT_TRUE(stream);
    EXPECT_EQ(readIn(*stream, 64), "topic");
}

TEST_F(MemMapLocalFileInputSourceTest, KeepsWhatALocalSourceCanBeTold) {
    MemMapLocalFileInputSource source(folder.file16("a.xml").c_str());
    EXPECT_EQ(source.getEncoding(), nullptr);
    EXPECT_EQ(source.getPublicId(), nullptr);
    EXPECT_TRUE(source.getIssueFatalErrorIfNotFound());
    source.setEncoding(u"UTF-16");
    source.setPublicId(u"id");
    source.setIssueFatalErrorIfNotFound(false);
    EXPECT_EQ(std::u16string(source.getEncoding()), u"UTF-16");
    EXPECT_EQ(std::u16string(source.getPublicId()), u"id");
    EXPECT_FALSE(source.getIssueFatalErrorIfNotFound());
}

TEST_F(MemMapLocalFileInputSourceTest, OpensNamesOutsideAscii) {
    for (const char* name : {"größe.xml", "日本.xml", "a b%20c.xml", "\xf0\x9f\x98\x80.xml"}) {
        folder.write(name, name);
        const Stream stream = openFile(folder.file16(name));
        ASSERT_TRUE(stream) << name;
        EXPECT_EQ(readIn(*stream, 64), name);
    }
}

TEST_F(MemMapLocalFileInputSourceTest, FallsBackForAFileThatCannotBeMapped) {
    // A file with text whose size reads as zero.
    std::ostringstream expected;
    expected << std::ifstream("/proc/version").rdbuf();
    const Stream stream = openFile(u"/proc/version");
    ASSERT_NE(dynamic_cast<xercesc::BinFileInputStream*>(stream.get()), nullptr);
    EXPECT_EQ(readIn(*stream, 64), expected.str());
    EXPECT_FALSE(expected.str().empty());
}

TEST_F(MemMapLocalFileInputSourceTest, GivesNoBytesForAnEmptyFile) {
    folder.write("empty.xml", "");
    const Stream stream = openFile(folder.file16("empty.xml"));
    ASSERT_TRUE(stream);
    EXPECT_EQ(readIn(*stream, 64), "");
    EXPECT_EQ(readIn(*stream, 64), "");
}

TEST_F(MemMapLocalFileInputSourceTest, HasNoStreamForWhatCannotBeOpened) {
    folder.write("a.xml", "x");
    fs::create_symlink("loop", folder.path() / "loop");
    for (const std::u16string& path :
         {folder.file16("missing.xml"), folder.file16("a.xml/b.xml"), folder.file16("loop"),
          folder.file16(std::string(300, 'n')), folder.file16("lone") + char16_t{0xD800}}) {
        EXPECT_EQ(openFile(path), nullptr) << toUtf8(path);
    }
}

TEST_F(MemMapLocalFileInputSourceTest, HasNoStreamForAFileOutOfReach) {
    const std::string path = folder.write("a.xml", "x");
    ASSERT_EQ(::chmod(path.c_str(), 0), 0);
    const WithoutRights nobody;
    EXPECT_EQ(openFile(folder.file16("a.xml")), nullptr);
}

TEST_F(MemMapLocalFileInputSourceTest, NeverOpensWhatIsNoRegularFile) {
    const Watchdog watchdog(60);
    makePipe(folder.file("pipe"));
    fs::create_directory(folder.path() / "folder");
    fs::create_symlink("pipe", folder.path() / "link");
    for (const std::u16string& path :
         {folder.file16("pipe"), folder.file16("folder"), folder.file16("link"),
          std::u16string(u"/dev/zero"), std::u16string(u"/dev/null")}) {
        EXPECT_EQ(openFile(path), nullptr) << toUtf8(path);
    }
}

TEST_F(MemMapLocalFileInputSourceTest, LetsGoOfTheFileWithTheStream) {
    for (const std::size_t size : {std::size_t{4}, kLargestRead + 1}) {
        const std::string path = folder.write("a.xml", std::string(size, 'x'));
        Stream stream = openFile(folder.file16("a.xml"));
        ASSERT_TRUE(stream);
        EXPECT_EQ(isMappedByProcess(path), size > kLargestRead);
        EXPECT_TRUE(isOpenInProcess(path));
        stream.reset();
        EXPECT_FALSE(isMappedByProcess(path));
        EXPECT_FALSE(isOpenInProcess(path));
    }
}

class MemMapFileInputStreamTest : public XmlTest {
protected:
    MemMapFileInputStream open(const char* name) {
        return {folder.file16(name).c_str(), xercesc::XMLPlatformUtils::fgMemoryManager};
    }
};

TEST_F(MemMapFileInputStreamTest, StandsAtOneAlways) {
    folder.write("a.xml", "abcdef");
    MemMapFileInputStream stream = open("a.xml");
    XMLByte bytes[4];
    EXPECT_EQ(stream.curPos(), 1U);
    stream.readBytes(bytes, 4);
    EXPECT_EQ(stream.curPos(), 1U);
    stream.readBytes(bytes, 4);
    stream.readBytes(bytes, 4);
    EXPECT_EQ(stream.curPos(), 1U);
}

TEST_F(MemMapFileInputStreamTest, TellsHowMuchItReadUpToTheEnd) {
    folder.write("a.xml", "abcdef");
    MemMapFileInputStream stream = open("a.xml");
    XMLByte bytes[4];
    EXPECT_EQ(stream.readBytes(bytes, 4), 4U);
    EXPECT_EQ(stream.readBytes(bytes, 4), 2U);
    EXPECT_EQ(bytes[0], 'e');
    EXPECT_EQ(bytes[1], 'f');
    EXPECT_EQ(stream.readBytes(bytes, 4), 0U);
    EXPECT_EQ(stream.readBytes(bytes, 4), 0U);
}

TEST_F(MemMapFileInputStreamTest, KnowsNoContentTypeAndNoEncoding) {
    folder.write("a.xml", "<a/>");
    const MemMapFileInputStream stream = open("a.xml");
    EXPECT_TRUE(stream.isOpen());
    EXPECT_EQ(stream.getContentType(), nullptr);
    EXPECT_EQ(stream.getEncoding(), nullptr);
}

TEST_F(MemMapFileInputStreamTest, ThrowsForAMissingFile) {
    EXPECT_THROW(open("missing.xml"), std::ios_base::failure);
}

class SourceFileExistsTest : public XmlTest {
protected:
    static bool exists(const std::u16string& path) {
        return sourceFileExists(MemMapLocalFileInputSource(path.c_str()));
    }
};

TEST_F(SourceFileExistsTest, AsksForAnyEntryOfTheName) {
    folder.write("größe.dtd", "x");
    makePipe(folder.file("pipe"));
    EXPECT_TRUE(exists(folder.file16("größe.dtd")));
    EXPECT_TRUE(exists(folder.file16("")));
    EXPECT_TRUE(exists(folder.file16("pipe")));
    EXPECT_FALSE(exists(folder.file16("missing.dtd")));
    EXPECT_FALSE(exists(folder.file16("größe.dtd/x")));
}

TEST_F(SourceFileExistsTest, CountsEveryFailureAsNo) {
    fs::create_symlink("loop", folder.path() / "loop");
    EXPECT_FALSE(exists(folder.file16("loop")));
    EXPECT_FALSE(exists(folder.file16(std::string(5000, 'n'))));
    folder.write("closed/a.dtd", "x");
    ASSERT_EQ(::chmod(folder.file("closed").c_str(), 0), 0);
    {
        const WithoutRights nobody;
        EXPECT_FALSE(exists(folder.file16("closed/a.dtd")));
    }
    ASSERT_EQ(::chmod(folder.file("closed").c_str(), 0700), 0);
}

TEST_F(SourceFileExistsTest, IsNoForASourceWithoutSystemId) {
    class Nameless final : public xercesc::InputSource {
    public:
        Nameless() : InputSource(xercesc::XMLPlatformUtils::fgMemoryManager) {}
        xercesc::BinInputStream* makeStream() const override { return nullptr; }
    };
    EXPECT_FALSE(sourceFileExists(Nameless()));
}

}  // namespace
}  // namespace marrowpress
