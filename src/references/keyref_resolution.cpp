#include "references/keyref_resolution.h"

namespace marrowpress {

void KeyrefProcessor::resolveAllKeyrefs(xercesc::DOMElement* /*root*/,
                                        xercesc::DOMDocument& /*keyDoc*/) const {}

}  // namespace marrowpress
