#include <xercesc/dom/DOM.hpp>

#include "client/xml_session.h"
#include "dom/copies.h"
#include "dom/nodes.h"
#include "profiling/ditaval.h"
#include "references/exclusion_filter.h"
#include "support/publish_exception.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "tests/fuzz/fuzzing.h"
#include "xml/document_store.h"

namespace {

using marrowpress::DitaValExcludeFilter;
using marrowpress::DocumentStore;
using marrowpress::domText;
using marrowpress::ExclusionFilterHolder;
using marrowpress::require;
using marrowpress::toUtf8;
using marrowpress::Workplace;
using xercesc::DOMDocument;
using xercesc::DOMElement;

std::unique_ptr<DitaValExcludeFilter> filterOf(const DOMDocument& profile) {
    marrowpress::DitaValReader reader;
    reader.readDefaultAction(profile);
    reader.readAttributeRules(profile);
    reader.readValueRules(profile);
    return reader.buildExcludeFilter();
}

/// Calls `check` with each element of `document` that may be left.
template <class Check>
void forEachElement(const DOMDocument& document, Check&& check) {
    DOMElement* const root = document.getDocumentElement();
    for (DOMElement* element = root; element;
         element = marrowpress::nextInSubtree(element, *root)) {
        check(*element);
    }
}

std::size_t elementCount(const DOMDocument& document) {
    std::size_t count = 0;
    forEachElement(document, [&](const DOMElement& /*element*/) { ++count; });
    return count;
}

/// The elements that go, by a walk of our own: those that are excluded, and all that is in them.
std::size_t excludedCount(const DOMDocument& document) {
    std::size_t count = 0;
    forEachElement(document, [&](const DOMElement& element) {
        const xercesc::DOMNode* around = &element;
        while (around && !(marrowpress::asElement(around) &&
                           marrowpress::isExcluded(*marrowpress::asElement(around)))) {
            around = around->getParentNode();
        }
        count += around ? 1 : 0;
    });
    return count;
}

void checkReason(const DitaValExcludeFilter& filter, const DOMElement& element) {
    const std::string tag = toUtf8(domText(element.getTagName()));
    const std::u16string_view reason = filter.attributeThatExcludes(element);
    require(marrowpress::isExcluded(element) == !reason.empty(),
            "an element is excluded by an attribute, and only by one", tag);
    require(reason.empty() || element.hasAttribute(std::u16string(reason).c_str()),
            "the attribute that excludes an element is one of it", tag);
}

void checkProfile(const DOMDocument& profile, DOMDocument& topic) {
    std::unique_ptr<DitaValExcludeFilter> made = filterOf(profile);
    require(made != nullptr, "each document makes a profile");
    const DitaValExcludeFilter& filter = *made;
    ExclusionFilterHolder::instance().reset(std::move(made));
    forEachElement(topic, [&](const DOMElement& element) { checkReason(filter, element); });

    const std::size_t before = elementCount(topic);
    const std::size_t excluded = excludedCount(topic);
    marrowpress::removeExcludedElements(topic);
    require(elementCount(topic) == before - excluded, "what is excluded goes, and nothing else");
    forEachElement(topic, [](const DOMElement& element) {
        require(!marrowpress::isExcluded(element), "nothing that is excluded is left");
    });
}

void checkFiles(const Workplace& place, const std::vector<std::string>& files) {
    const marrowpress::XmlSession session;
    try {
        place.folder.write("profile.ditaval", files[0]);
        place.folder.write("topic.dita", files[1]);
        DocumentStore& store = DocumentStore::instance();
        const DOMDocument* const profile = store.getOrLoad(place.folder.file16("profile.ditaval"));
        DOMDocument* const topic = store.getOrLoad(place.folder.file16("topic.dita"));
        if (profile && topic) {
            checkProfile(*profile, *topic);
        }
    } catch (const marrowpress::PublishException&) {
        // It has taken more memory than a request may.
    }
}

}  // namespace

/// The input is a profile and a topic.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Workplace place;
    marrowpress::keepEngineStarted();
    std::vector<std::string> files =
        marrowpress::cutIntoFiles(marrowpress::inputText(data, size), 2);
    files.resize(2);
    checkFiles(place, files);
    return 0;
}
