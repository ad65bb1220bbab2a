#pragma once

#include <cstdint>
#include <unordered_map>
#include <xercesc/dom/DOMElement.hpp>

#include "references/key_space.h"
#include "references/node_filters.h"

namespace marrowpress {

class ParserBundle;

/// One pass over a key space that makes definitions direct which
/// themselves refer to a key, so that each of them has the href and the text
/// of what stands at the end of its chain.
///
/// A loop over a stack of its own: how long a chain is, is up to the maps.
/// A definition that is reached while it is being resolved, or that failed
/// before, ends the chain with message 105.
class KeyChainPass {
public:
    /// Both must outlive the pass. `dtd` tells what element types declare.
    KeyChainPass(const KeySpace& keySpace, const ParserBundle& dtd)
        : keySpace_(keySpace), dtd_(dtd) {}

    /// Gives the number of references that were followed.
    std::size_t run();

private:
    enum class State : std::uint8_t { kFailed = 0, kInProgress = 1, kResolved = 2 };
    struct Link {
        xercesc::DOMElement* element;
        xercesc::DOMElement* target;  ///< null when the key isn't defined
    };

    void followChain(xercesc::DOMElement& start);
    xercesc::DOMElement* chainEnd(xercesc::DOMElement* element, std::vector<Link>& links);
    xercesc::DOMElement* targetOf(const xercesc::DOMElement& element) const;
    void apply(xercesc::DOMElement& element, xercesc::DOMElement* definition);
    bool standsInside(const xercesc::DOMElement& element,
                      const xercesc::DOMElement& definition) const;

    const KeySpace& keySpace_;
    const ParserBundle& dtd_;
    TopicrefNodeFilter topicrefFilter_;
    KeyrefAttrContainingNodeFilter keyrefFilter_;
    std::unordered_map<const xercesc::DOMElement*, State> states_;
};

}  // namespace marrowpress
