#include "references/key_space.h"

#include <string>

namespace marrowpress {

using xercesc::DOMElement;

DOMElement* KeySpace::find(std::u16string_view keyName, const DOMElement& /*reference*/) const {
    return elementOf(keyName);
}

bool KeySpace::defines(std::u16string_view keyName) const {
    return elementOf(keyName);
}

void KeySpace::add(std::u16string_view keyName, DOMElement& definition) {
    definition.setAttribute(u"keys", std::u16string(keyName).c_str());
    definition.setIdAttribute(u"keys", true);
    document_->getDocumentElement()->appendChild(&definition);
    noteChange();
}

DOMElement* KeySpace::elementOf(std::u16string_view keyName) const {
    return document_->getElementById(std::u16string(keyName).c_str());
}

}  // namespace marrowpress
