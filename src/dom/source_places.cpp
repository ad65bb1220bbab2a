#include "dom/source_places.h"

#include <algorithm>
#include <xercesc/dom/DOMDocument.hpp>

#include "dom/attributes.h"
#include "support/request_singleton.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;

/// More steps than any sane publication has. A way that is longer is cut.
constexpr std::size_t kMostSteps = 200;

bool isElement(const DOMNode& node) {
    return node.getNodeType() == DOMNode::ELEMENT_NODE;
}

}  // namespace

CopyCause causeOf(const DOMElement& reference) {
    for (const XMLCh* const attribute : {u"conref", u"href", u"conkeyref", u"keyref"}) {
        const std::u16string_view value = attributeView(reference, attribute);
        if (!value.empty()) {
            return {&reference, attribute, value};
        }
    }
    return {&reference, u"href", {}};
}

SourcePlaces* SourcePlaces::existing() noexcept {
    return RequestSingleton<SourcePlaces>::existing();
}

void SourcePlaces::begin() {
    RequestSingleton<SourcePlaces>::instance();
}

void SourcePlaces::end() noexcept {
    RequestSingleton<SourcePlaces>::destroy();
}

std::uint32_t SourcePlaces::fileNumber(std::u16string_view path) {
    const auto known = fileNumbers_.find(path);
    if (known != fileNumbers_.end()) {
        return known->second;
    }
    const auto number = static_cast<std::uint32_t>(files_.size());
    files_.emplace_back(path);
    fileNumbers_.emplace(path, number);
    return number;
}

void SourcePlaces::forget(const xercesc::DOMDocument& document) {
    boost::unordered::erase_if(
        entries_, [&](const auto& entry) { return entry.first->getOwnerDocument() == &document; });
}

void SourcePlaces::recordCopy(const DOMNode& original, const DOMNode& copy,
                              const CopyCause& cause) {
    const Inclusion outer = inclusionBy(cause);
    // A stack of its own, and children by the plain links: the engine finds parents by casts, which
    // cost several times what is done here.
    std::vector<std::pair<const DOMNode*, const DOMNode*>> pending{{&original, &copy}};
    while (!pending.empty()) {
        const auto [from, to] = pending.back();
        pending.pop_back();
        if (!isElement(*from)) {
            continue;
        }
        const auto known = entries_.find(from);
        if (known != entries_.end()) {
            Entry entry = known->second;
            entry.inclusion = continued(entry.inclusion, outer);
            entries_.insert_or_assign(to, entry);
        }
        const DOMNode* child = from->getFirstChild();
        const DOMNode* copiedChild = to->getFirstChild();
        while (child && copiedChild) {
            pending.emplace_back(child, copiedChild);
            child = child->getNextSibling();
            copiedChild = copiedChild->getNextSibling();
        }
    }
}

void SourcePlaces::recordReference(std::u16string_view path, const DOMElement& reference) {
    const std::uint32_t file = fileNumber(path);
    if (!firstReferences_.contains(file)) {
        firstReferences_.emplace(file, inclusionBy(causeOf(reference)));
    }
}

SourcePlace SourcePlaces::placeOf(const DOMNode& element) const {
    const Entry* const entry = entryAround(element);
    return entry ? entry->place : SourcePlace();
}

std::vector<SourceStep> SourcePlaces::stepsTo(const DOMNode& element) const {
    const Entry* const entry = entryAround(element);
    std::vector<SourceStep> steps(1);
    if (entry) {
        steps.front().place = entry->place;
        appendInclusions(steps, entry->inclusion);
        appendFirstReferences(steps);
    }
    return steps;
}

std::vector<SourceStep> SourcePlaces::stepsTo(SourcePlace place) const {
    std::vector<SourceStep> steps{{place, nullptr, {}}};
    appendFirstReferences(steps);
    return steps;
}

const SourcePlaces::Entry* SourcePlaces::entryAround(const DOMNode& node) const {
    for (const DOMNode* around = &node; around; around = around->getParentNode()) {
        const auto known = entries_.find(around);
        if (known != entries_.end()) {
            return &known->second;
        }
    }
    return nullptr;
}

SourcePlaces::Inclusion SourcePlaces::add(InclusionRecord record) {
    const InclusionRecord& last = inclusions_.back();
    // A reference mostly copies several nodes, one behind the other.
    if (last.outer == record.outer && last.step.place == record.step.place &&
        last.step.attribute == record.step.attribute && last.step.target == record.step.target &&
        last.takesTopic == record.takesTopic) {
        return static_cast<Inclusion>(inclusions_.size() - 1);
    }
    inclusions_.push_back(std::move(record));
    return static_cast<Inclusion>(inclusions_.size() - 1);
}

SourcePlaces::Inclusion SourcePlaces::inclusionBy(const CopyCause& cause) {
    const Entry* const entry = cause.reference ? entryAround(*cause.reference) : nullptr;
    if (!entry) {
        return kNoInclusion;
    }
    return add({{entry->place, cause.attribute, std::u16string(cause.target)},
                entry->inclusion,
                cause.takesTopic});
}

/// The way of `inner`, up to where it came into the output, and behind its end that of `outer`.
SourcePlaces::Inclusion SourcePlaces::continued(Inclusion inner, Inclusion outer) {
    if (inner == kNoInclusion || outer == kNoInclusion) {
        return std::max(inner, outer);
    }
    const auto known = continued_.find({inner, outer});
    if (known != continued_.end()) {
        return known->second;
    }
    std::vector<Inclusion> way;
    for (Inclusion step = inner;
         step != kNoInclusion && !inclusions_[step].takesTopic && way.size() < kMostSteps;
         step = inclusions_[step].outer) {
        way.push_back(step);
    }
    Inclusion whole = outer;
    for (auto step = way.rbegin(); step != way.rend(); ++step) {
        whole = add({inclusions_[*step].step, whole, false});
    }
    return continued_[{inner, outer}] = whole;
}

void SourcePlaces::appendInclusions(std::vector<SourceStep>& steps, Inclusion inclusion) const {
    for (; inclusion != kNoInclusion && steps.size() < kMostSteps;
         inclusion = inclusions_[inclusion].outer) {
        steps.push_back(inclusions_[inclusion].step);
    }
}

/// From the file of the last step on, by the first reference to each file.
void SourcePlaces::appendFirstReferences(std::vector<SourceStep>& steps) const {
    std::vector<std::uint32_t> seen;
    for (;;) {
        const std::uint32_t file = steps.back().place.file;
        const auto first = firstReferences_.find(file);
        if (first == firstReferences_.end() ||
            std::find(seen.begin(), seen.end(), file) != seen.end() || steps.size() >= kMostSteps) {
            return;
        }
        seen.push_back(file);
        appendInclusions(steps, first->second);
    }
}

}  // namespace marrowpress
