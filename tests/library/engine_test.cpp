#include <memory>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "tests/library/library_fixture.h"

/// The engine keeps the declaration of each external DTD for ever, so that nothing can use it when
/// it is gone. In memory of the library that goes with the run, in memory of the caller it stays.
// NOLINTBEGIN(readability-identifier-naming,bugprone-reserved-identifier): the sanitizer's name
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:xercesc_3_2::XMLScanner::scanProlog\n";
}
// NOLINTEND(readability-identifier-naming,bugprone-reserved-identifier)

namespace marrowpress {
namespace {

/// The engine, as a caller uses it.
class OwnEngine {
public:
    OwnEngine() { xercesc::XMLPlatformUtils::Initialize(); }
    OwnEngine(const OwnEngine&) = delete;
    OwnEngine& operator=(const OwnEngine&) = delete;
    ~OwnEngine() { xercesc::XMLPlatformUtils::Terminate(); }
};

/// A document of the caller's.
class OwnDocument {
public:
    OwnDocument() {
        const std::string text = "<a><b>text</b><b/><b/></a>";
        const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()),
                                                text.size(), "own");
        parser_.parse(source);
    }

    /// Whether it is as it was, and can be changed.
    bool isWhole() {
        xercesc::DOMDocument& document = *parser_.getDocument();
        xercesc::DOMElement& root = *document.getDocumentElement();
        root.appendChild(document.createElement(u"c"));
        ++added_;
        return root.getChildElementCount() == 3 + added_ &&
               xercesc::XMLString::equals(root.getFirstElementChild()->getTextContent(), u"text");
    }

private:
    xercesc::XercesDOMParser parser_;
    std::size_t added_ = 0;
};

class EngineTest : public LibraryTest {
protected:
    /// Runs of either outcome.
    void runAll() {
        EXPECT_EQ(mp_result_status(run(composite()).get()), 0);
        EXPECT_EQ(mp_result_status(run("{}").get()), -43);
        EXPECT_EQ(mp_result_status(run(flatBook()).get()), 0);
    }
};

TEST_F(EngineTest, ACallerThatWasFirstKeepsItsDocuments) {
    const OwnEngine engine;
    OwnDocument before;
    runAll();
    EXPECT_TRUE(before.isWhole());
    OwnDocument after;
    runAll();
    EXPECT_TRUE(before.isWhole());
    EXPECT_TRUE(after.isWhole());
}

TEST_F(EngineTest, ACallerThatComesSecondKeepsItsDocuments) {
    runAll();
    {
        const OwnEngine engine;
        OwnDocument document;
        runAll();
        EXPECT_TRUE(document.isWhole());
    }
    runAll();
}

TEST_F(EngineTest, ACallerMayUseItsDocumentsFromACallback) {
    const OwnEngine engine;
    OwnDocument document;
    bool isWhole = false;
    onProgress([&](const char*) {
        const OwnEngine again;
        OwnDocument other;
        isWhole = document.isWhole() && other.isWhole();
    });
    runAll();
    EXPECT_TRUE(isWhole);
    EXPECT_TRUE(document.isWhole());
}

}  // namespace
}  // namespace marrowpress
