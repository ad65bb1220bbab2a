#include "references/conref_resolution.h"

namespace marrowpress {

void ConrefProcessor::resolveConrefs(xercesc::DOMElement* /*root*/,
                                     xercesc::DOMDocument& /*keyDoc*/,
                                     TopicIdMap& /*topicIds*/) const {}

}  // namespace marrowpress
