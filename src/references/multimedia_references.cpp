#include "references/multimedia_references.h"

#include <algorithm>
#include <cassert>
#include <memory>
#include <vector>

#include "dom/attributes.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

/// A handler of the attributes that a derived class names.
class NamedMultimediaNodeHandler : public MultimediaNodeHandler {
public:
    std::u16string getRefValue(const DOMElement& element) const override {
        return attributeOf(element, refName_);
    }
    void setRefValue(DOMElement& element, const std::u16string& value) const override {
        element.setAttribute(refName_, value.c_str());
    }
    std::u16string getKeyrefValue(const DOMElement& element) const override {
        return attributeOf(element, keyrefName_);
    }
    void setKeyrefValue(DOMElement& element, const std::u16string& value) const override {
        element.setAttribute(keyrefName_, value.c_str());
    }
    void removeRefAttr(DOMElement& element) const override { element.removeAttribute(refName_); }
    void removeKeyrefAttr(DOMElement& element) const override {
        element.removeAttribute(keyrefName_);
    }

protected:
    NamedMultimediaNodeHandler(MultimediaNodeType type, const XMLCh* refName,
                               const XMLCh* keyrefName)
        : MultimediaNodeHandler(type), refName_(refName), keyrefName_(keyrefName) {}

private:
    const XMLCh* refName_;
    const XMLCh* keyrefName_;
};

class MultimediaObjectNodeHandler final : public NamedMultimediaNodeHandler {
public:
    MultimediaObjectNodeHandler()
        : NamedMultimediaNodeHandler(MultimediaNodeType::MultimediaNodeObject, u"data",
                                     u"datakeyref") {}
};

class MultimediaParamNodeHandler final : public NamedMultimediaNodeHandler {
public:
    MultimediaParamNodeHandler()
        : NamedMultimediaNodeHandler(MultimediaNodeType::MultimediaNodeParam, u"value", u"keyref") {
    }
};

using MultimediaHandlers = std::vector<std::unique_ptr<MultimediaNodeHandler>>;

MultimediaHandlers makeMultimediaHandlers() {
    MultimediaHandlers handlers;
    handlers.push_back(std::make_unique<MultimediaObjectNodeHandler>());
    handlers.push_back(std::make_unique<MultimediaParamNodeHandler>());
    return handlers;
}

}  // namespace

const MultimediaNodeHandler& multimediaNodeHandler(MultimediaNodeType type) {
    static const MultimediaHandlers handlers = makeMultimediaHandlers();
    const auto found = std::find_if(handlers.begin(), handlers.end(),
                                    [&](const auto& handler) { return handler->type() == type; });
    assert(found != handlers.end());
    return **found;
}

}  // namespace marrowpress
