#include "references/key_chains.h"

#include <vector>

#include "dom/attributes.h"
#include "dom/copies.h"
#include "dom/element_walker.h"
#include "dom/nodes.h"
#include "references/copied_references.h"
#include "references/key_definitions.h"
#include "support/work_counts.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;

/// Under this name an element remembers the definition that its content was pulled from.
constexpr const XMLCh* kPulledFrom = u"marrowpress-pulled-from";

const DOMElement* pulledFrom(const DOMNode& node) {
    return static_cast<const DOMElement*>(node.getUserData(kPulledFrom));
}

/// Whether `element` came with content that was pulled.
bool isPulled(const DOMElement& element) {
    for (const DOMNode* node = element.getParentNode(); node; node = node->getParentNode()) {
        if (pulledFrom(*node)) {
            return true;
        }
    }
    return false;
}

/// Lets the children of `target` remember what those of `source`, whose copies they are, do: the
/// engine doesn't carry it over.
void copyMemory(const DOMElement& source, const DOMElement& target) {
    DOMElement* original = firstElementChild(source);
    DOMElement* copy = firstElementChild(target);
    while (original && copy) {
        forEachCopiedElement(*original, *copy, [](const DOMElement& from, DOMElement& to) {
            if (void* const memory = from.getUserData(kPulledFrom)) {
                to.setUserData(kPulledFrom, memory, nullptr);
            }
        });
        original = nextElementSibling(*original);
        copy = nextElementSibling(*copy);
    }
}

}  // namespace

std::size_t KeyChainPass::run() {
    ++WorkCounts::total().chainWalks;
    std::size_t followed = 0;
    ElementWalker walker(keySpace_.document().getDocumentElement(), topicrefFilter_);
    while (DOMElement* const element = walker.nextNode()) {
        if (selects(keyrefFilter_, element) && !states_.contains(element)) {
            followChain(*element);
            ++followed;
        }
    }
    return followed;
}

void KeyChainPass::followChain(DOMElement& start) {
    std::vector<Link> links;
    const DOMElement* const end = chainEnd(&start, links);
    // From the end of the chain back to its start, so that each link gets what the next has become.
    for (; !links.empty(); links.pop_back()) {
        const Link& link = links.back();
        apply(*link.element, link.target);
        states_[link.element] = end ? State::kResolved : State::kFailed;
    }
}

/// Follows the references from `element`, collecting them in `links`. Gives the definition that
/// ends the chain; null when the chain doesn't end in one.
DOMElement* KeyChainPass::chainEnd(DOMElement* element, std::vector<Link>& links) {
    while (element) {
        const auto [entry, isNew] = states_.emplace(element, State::kInProgress);
        if (!isNew && entry->second != State::kResolved) {
            apply(*element, nullptr);
            return nullptr;
        }
        if (!isNew) {
            // A finished definition has no reference left. That it is looked for all the same costs
            // a line for an empty key name, and lets the chain that led here count as failed.
            DOMElement* const target = targetOf(*element);
            apply(*element, target);
            return target;
        }
        if (!selects(keyrefFilter_, element)) {
            entry->second = State::kResolved;
            return element;
        }
        links.push_back({element, targetOf(*element)});
        element = links.back().target;
    }
    return nullptr;
}

/// The definition of the whole reference: a chain with an element part leads nowhere.
DOMElement* KeyChainPass::targetOf(const DOMElement& element) const {
    return keySpace_.find(attributeView(element, u"keyref"), element);
}

void KeyChainPass::apply(DOMElement& element, DOMElement* definition) {
    const bool isEndless = definition && standsInside(element, *definition);
    const DOMElement* const source = applyKeyDefinition(
        element, definition, dtd_, isEndless ? KeyContent::kLeave : KeyContent::kPull);
    if (source) {
        if (isPulled(element)) {
            CopiedReferences::instance().follow();
        }
        element.setUserData(kPulledFrom, definition, nullptr);
        copyMemory(*source, element);
    }
}

/// Whether `element` is part of the definition or of content that was pulled from it: with that
/// content it would get itself, and so on without end, for the walk goes on into what it gets.
bool KeyChainPass::standsInside(const DOMElement& element, const DOMElement& definition) const {
    for (const DOMNode* node = &element; node; node = node->getParentNode()) {
        if (node == &definition) {
            return true;
        }
        // What was pulled from a definition that had pulled it itself is content of both.
        for (const DOMElement* origin = pulledFrom(*node); origin; origin = pulledFrom(*origin)) {
            if (origin == &definition) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace marrowpress
