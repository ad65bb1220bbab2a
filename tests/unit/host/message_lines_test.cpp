#include "host/message_lines.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/message_texts.h"
#include "tests/support/texts.h"

namespace marrowpress {
namespace {

struct LineCase {
    std::string line;
    std::optional<MessageId> id;
};

const LineCase kLineCases[] = {
    {processingReferences(), MessageId::kProcessingReferences},
    {appending("a.dita"), MessageId::kAppending},
    {keyNotFound("k"), MessageId::kKeyNotFound},
    {cannotRead("/o.dita"), MessageId::kCannotRead},
    {cannotRead(cannotWrite("")), MessageId::kCannotRead},
    {cannotWrite("/o.dita"), MessageId::kCannotWrite},
    {cannotWrite(""), MessageId::kCannotWrite},
    {elementInTopicNotFound("p", "e", "t", "/f"), MessageId::kElementInTopicNotFound},
    {elementNotFound("p", "e", "/f"), MessageId::kElementNotFound},
    {invalidConrefEnd(), MessageId::kInvalidConrefEnd},
    {referencedFileNotFound("/a"), MessageId::kReferencedFileNotFound},
    // Cut: what stands behind the argument is missing.
    {keyNotFound(std::string(5000, 'k')).substr(0, 5000), MessageId::kKeyNotFound},

    {"", std::nullopt},
    // Without the colon, with something in front, without the end.
    {cannotWrite("").substr(0, cannotWrite("").find(':')), std::nullopt},
    {" " + cannotWrite("/o.dita"), std::nullopt},
    {keyNotFound("k").substr(0, keyNotFound("k").find(" k ") + 2), std::nullopt},
    // Case counts, and so does all that stands around an argument.
    {"s" + cannotWrite("/o.dita").substr(1), std::nullopt},
    {replacedAll(elementNotFound("p", "e", "/f"), "/@id=\"e\"", ""), std::nullopt},
    {"anything else\r\n", std::nullopt},
};

TEST(MessageIdOfTest, TellsByTheTextAroundTheArguments) {
    for (const auto& [line, id] : kLineCases) {
        EXPECT_EQ(messageIdOf(line), id) << line;
    }
}

}  // namespace
}  // namespace marrowpress
