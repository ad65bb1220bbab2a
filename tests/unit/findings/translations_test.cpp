#include "findings/translations.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

/// The number as a file has it.
std::string bytesOf(std::uint32_t number) {
    return {reinterpret_cast<const char*>(&number), sizeof(number)};
}

/// A file of one text and its translation, whose forms have a NUL between them.
std::string fileOf(const std::string& text, const std::string& translation) {
    constexpr std::uint32_t kTextAt = 36;
    const auto textSize = static_cast<std::uint32_t>(text.size());
    return bytesOf(0x950412DE) + bytesOf(0) + bytesOf(1) + bytesOf(20) + bytesOf(28) +
           bytesOf(textSize) + bytesOf(kTextAt) +
           bytesOf(static_cast<std::uint32_t>(translation.size())) + bytesOf(kTextAt + textSize) +
           text + translation;
}

class TranslationsTest : public testing::Test {
protected:
    Translations read(const std::string& content) const {
        return Translations(folder.write("texts.mo", content));
    }

    TemporaryFolder folder;
};

TEST_F(TranslationsTest, ATextHasItsTranslation) {
    const Translations texts = read(fileOf("Datei", "file"));
    EXPECT_EQ(texts.find("Datei", 1), "file");
    EXPECT_EQ(texts.find("Datei", 7), "file");
    EXPECT_EQ(texts.find("Ordner", 1), "Ordner");
}

TEST_F(TranslationsTest, ACountChoosesTheForm) {
    using namespace std::string_literals;
    const Translations texts = read(fileOf("Datei\0Dateien"s, "file\0files"s));
    EXPECT_EQ(texts.find("Datei", 1, "Dateien"), "file");
    EXPECT_EQ(texts.find("Datei", 0, "Dateien"), "files");
    EXPECT_EQ(texts.find("Ordner", 1, "die Ordner"), "Ordner");
    EXPECT_EQ(texts.find("Ordner", 2, "die Ordner"), "die Ordner");
}

TEST_F(TranslationsTest, WhatIsNoSuchFileHasNone) {
    const std::string file = fileOf("Datei", "file");
    EXPECT_EQ(Translations(folder.file("none.mo")).find("Datei", 1), "Datei");
    EXPECT_EQ(read("no translations at all").find("Datei", 1), "Datei");
    for (std::size_t size = 0; size < 36; ++size) {
        EXPECT_EQ(read(file.substr(0, size)).find("Datei", 1), "Datei") << size;
    }
    EXPECT_EQ(read(bytesOf(0x950412DE) + bytesOf(0) + bytesOf(9) + bytesOf(0xFFFFFFF0) +
                   bytesOf(0xFFFFFFF0))
                  .find("Datei", 1),
              "Datei");
}

}  // namespace
}  // namespace marrowpress
