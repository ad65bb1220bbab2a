#include "cli/exclusion_list.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "cli/start_tag.h"
#include "findings/run_facts.h"
#include "findings/source_lines.h"

namespace marrowpress {
namespace {

/// The byte of `line` at a column that counts bytes. Where characters of more than one byte stand
/// in front of a tag, the tag is looked for from there on.
std::string_view tagAt(std::string_view line, std::uint32_t column) {
    const std::size_t begin = line.find('<', column == 0 ? 0 : column - 1);
    const std::size_t end = begin == std::string_view::npos ? begin : line.find('>', begin);
    return end == std::string_view::npos ? std::string_view() : line.substr(begin, end - begin + 1);
}

/// The value as it stands in the tag, where that is one line.
std::string valueIn(std::string_view line, const ExcludedElement& element) {
    const std::optional<StartTag> tag = parseStartTag(tagAt(line, element.place.column));
    return tag && tag->name == element.element ? attributeText(*tag, element.attribute)
                                               : std::string();
}

bool comesBefore(const ExcludedElement& left, const ExcludedElement& right) {
    return PlaceOrder()(left.place, right.place);
}

}  // namespace

void ExclusionList::observe(const Observation& observation) {
    if (observation.kind != ObservationKind::kExcluded) {
        return;
    }
    FindingPlace place = placeOf(observation.steps[0].place);
    if (place.file.empty() || index_.contains(place)) {
        return;
    }
    if (elements_.size() >= kMost) {
        ++dropped_;
        return;
    }
    index_.emplace(place, elements_.size());
    elements_.push_back(
        {std::move(place), observation.element, observation.detail, {}, observation.target});
}

void ExclusionList::finish() {
    std::sort(elements_.begin(), elements_.end(), comesBefore);
    SourceLines lines;
    for (std::size_t index = 0; index < elements_.size(); ++index) {
        ExcludedElement& element = elements_[index];
        index_[element.place] = index;
        const auto line = lines.line(element.place.file, element.place.line);
        if (line && !element.attribute.empty()) {
            element.value = valueIn(*line, element);
        }
    }
}

std::span<const ExcludedElement> ExclusionList::in(const std::string& file) const {
    const auto begin = std::partition_point(
        elements_.begin(), elements_.end(),
        [&file](const ExcludedElement& element) { return element.place.file < file; });
    const auto end = std::find_if(begin, elements_.end(), [&file](const ExcludedElement& element) {
        return element.place.file != file;
    });
    return {begin, end};
}

const ExcludedElement* ExclusionList::find(const FindingPlace& place) const {
    const auto known = index_.find(place);
    return known == index_.end() ? nullptr : &elements_[known->second];
}

}  // namespace marrowpress
