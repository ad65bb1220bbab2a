#include <gtest/gtest.h>

#include <array>
#include <exception>

#include "tests/support/failing_allocations.h"
#include "tests/support/xml_text.h"
#include "xml/document_writer.h"

namespace marrowpress {
namespace {

const std::string kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>";

/// What came of saving a document.
enum class SaveOutcome { kWritten, kFailed, kThrown };

SaveOutcome save(const xercesc::DOMDocument& document, const AllocationFault& fault) {
    try {
        const FailingAllocations failing(fault);
        return saveDocumentInPlace(&document) == WriteStatus::kWritten ? SaveOutcome::kWritten
                                                                       : SaveOutcome::kFailed;
    } catch (const std::exception&) {
        return SaveOutcome::kThrown;
    }
}

/// Saves a document with one allocation after the other failing, and looks at its file each time.
class SavedFile {
public:
    std::size_t countOf(SaveOutcome outcome) const { return counts_[static_cast<int>(outcome)]; }

    void trySaving(const AllocationFault& fault) {
        folder_.write("a.dita", "<a>old</a>");
        SaveOutcome outcome = SaveOutcome::kThrown;
        {
            const XmlSession session;
            const ParsedXml document("<a>new</a>", u"file://" + folder_.file16("a.dita"));
            outcome = save(document.document(), fault);
        }
        ++counts_[static_cast<int>(outcome)];
        EXPECT_EQ(folder_.read("a.dita"),
                  outcome == SaveOutcome::kWritten ? kHead + "<a>new</a>" : "<a>old</a>")
            << fault.number;
        EXPECT_FALSE(folder_.exists("a.dita_tmp")) << fault.number;
    }

private:
    TemporaryFolder folder_;
    std::array<std::size_t, 3> counts_{};
};

/// Without a host: what a host does without memory is its own matter.
TEST(DocumentWriterMemoryTest, AFileThatIsNotWrittenIsTheOldOne) {
    SavedFile file;
    tryEachAllocation(false, [&](const AllocationFault& fault) { file.trySaving(fault); });
    EXPECT_GT(file.countOf(SaveOutcome::kWritten), 0U);
    EXPECT_GT(file.countOf(SaveOutcome::kFailed), 0U);
}

TEST(DocumentWriterMemoryTest, TheOldFileComesBackWithoutMemoryForAReport) {
    SavedFile file;
    tryEachAllocation(true, [&](const AllocationFault& fault) { file.trySaving(fault); });
    EXPECT_GT(file.countOf(SaveOutcome::kThrown), 0U);
}

}  // namespace
}  // namespace marrowpress
