#include <xercesc/dom/DOM.hpp>

#include "client/xml_session.h"
#include "dom/copies.h"
#include "dom/nodes.h"
#include "profiling/condition_merge.h"
#include "support/publish_exception.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "tests/fuzz/fuzzing.h"
#include "xml/document_store.h"
#include "xml/document_writer.h"

namespace {

using marrowpress::ConditionCatalog;
using marrowpress::ConditionMergeState;
using marrowpress::ConditionRecord;
using marrowpress::DocumentStore;
using marrowpress::require;
using marrowpress::toUtf8;
using marrowpress::Workplace;
using marrowpress::WriteStatus;
using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;

constexpr std::size_t kMostDocuments = 4;

DOMDocument& load(const std::u16string& path) {
    DOMDocument* const document = DocumentStore::instance().getOrLoad(path);
    require(document != nullptr, "what was written can be read", toUtf8(path));
    return *document;
}

/// Merges a document into the set, and copies it with the markers around its root to `output`.
void take(ConditionMergeState& state, DOMDocument& document, DOMElement& output) {
    DOMElement& root = *document.getDocumentElement();
    ConditionCatalog catalog;
    marrowpress::loadConditionCatalog(catalog, root);
    marrowpress::mergeConditionCatalog(state, catalog);
    for (DOMNode* const node : marrowpress::childrenOf(document)) {
        if (node == &root) {
            marrowpress::appendCopies(output, {node}, {});
        } else {
            marrowpress::carryConditionMarker(state, *node, output);
        }
    }
}

/// What is read of a document again has to be the set that it was given.
void checkRead(const ConditionMergeState& state, const ConditionCatalog& read,
               const std::string& text) {
    const std::vector<ConditionRecord>& wanted = state.conditions.records();
    const std::vector<ConditionRecord>& found = read.conditions.records();
    require(found.size() >= wanted.size(), "no condition is lost", text);
    for (std::size_t index = 0; index < wanted.size(); ++index) {
        require(found[index].name == wanted[index].name && found[index].data == wanted[index].data,
                "a condition is read as it was written", text);
        // With further tokens the state of a renamed one doesn't stand where it is looked for.
        const bool isPlain =
            marrowpress::splitTokens(wanted[index].data).size() == marrowpress::kConditionTokens;
        require(!isPlain || found[index].shown == wanted[index].shown,
                "a condition is as visible as it was", text);
    }
    if (read.showAll || !state.expression || state.expression->text.empty()) {
        return;
    }
    require(read.expression && read.expression->text == state.expression->text &&
                read.expression->active == state.expression->active,
            "the expression is read as it was written", text);
}

void checkSet(const Workplace& place, ConditionMergeState& state, DOMDocument& output) {
    marrowpress::writeConditionPIs(state, output.getDocumentElement());
    const WriteStatus written =
        marrowpress::writeDocument(&output, place.folder.file16("again.dita"));
    require(written == WriteStatus::kWritten, "instructions that were read can be written");
    const std::string text = place.folder.read("again.dita");
    ConditionCatalog read;
    marrowpress::loadConditionCatalog(
        read, *load(place.folder.file16("again.dita")).getDocumentElement());
    checkRead(state, read, text);
}

void checkMerge(const Workplace& place, const std::vector<std::string>& files) {
    const marrowpress::XmlSession session;
    try {
        place.folder.write("book.dita", "<dita/>");
        DOMDocument& output = load(place.folder.file16("book.dita"));
        ConditionMergeState state;
        state.mergeEnabled = true;
        for (std::size_t index = 0; index < files.size(); ++index) {
            const std::string name = std::to_string(index) + ".dita";
            place.folder.write(name, files[index]);
            DOMDocument* const document =
                DocumentStore::instance().getOrLoad(place.folder.file16(name));
            if (document) {
                take(state, *document, *output.getDocumentElement());
            }
        }
        checkSet(place, state, output);
    } catch (const marrowpress::PublishException&) {
        // It has taken more memory than a request may.
    }
}

}  // namespace

/// The input is up to four documents, which come together in one.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Workplace place;
    marrowpress::keepEngineStarted();
    checkMerge(place,
               marrowpress::cutIntoFiles(marrowpress::inputText(data, size), kMostDocuments));
    return 0;
}
