#pragma once

#include <map>
#include <memory>
#include <string>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "profiling/ditaval_filters.h"

namespace marrowpress {

/// Reads the include and exclude rules of a DITAVAL document into one filter.
///
/// The passes are called in the order in which they stand here, so that the
/// order of the rules in the file decides little: the default comes first,
/// then the rules for whole attributes, of which the first for an attribute
/// counts, then those for single values.
class DitaValReader {
public:
    /// Exclusion is the default if any `prop` without attribute and value says so.
    void readDefaultAction(const xercesc::DOMDocument& document);

    /// Reads the rules for attributes as a whole.
    void readAttributeRules(const xercesc::DOMDocument& document);

    /// Reads the rules for values. One that only repeats its attribute's rule, or the default,
    /// has no effect.
    void readValueRules(const xercesc::DOMDocument& document);

    /// Gives the rules away. By default excluded, the five attributes of conditional processing
    /// are filtered even if no rule names them; other attributes are not.
    std::unique_ptr<DitaValExcludeFilter> buildExcludeFilter();

private:
    std::unique_ptr<DitaValAttrValFilter> filterForValue(const std::u16string& attribute,
                                                         const std::u16string& value,
                                                         DitaValAction action) const;

    /// Other than include or exclude until the first pass has been made.
    DitaValAction defaultAction_ = DitaValAction::kOther;
    std::map<std::u16string, std::unique_ptr<DitaValAttrValFilter>> attrFilters_;
};

/// What a `prop` says, in exactly these words: "include", "exclude", or something else.
DitaValAction readAction(const xercesc::DOMElement& prop);

/// A filter without values for an attribute whose values are included, or excluded, as a whole;
/// null for any other action.
std::unique_ptr<DitaValAttrValFilter> createAttrValFilter(const std::u16string& attribute,
                                                          DitaValAction action);

}  // namespace marrowpress
