#pragma once

#include <cstdint>
#include <string>
#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

/// Which kind of multimedia element one is; two of these are what filters answer beside a kind.
enum class MultimediaNodeType : std::int32_t {
    MultimediaNodeNone = -1,
    MultimediaNodeObject = 0,
    MultimediaNodeParam = 1,
    MultimediaNodeRejected = 2,
};

/// Reads and writes the attributes by which one kind of multimedia element
/// refers: directly, or through a key.
class MultimediaNodeHandler {
public:
    MultimediaNodeHandler(const MultimediaNodeHandler&) = delete;
    MultimediaNodeHandler& operator=(const MultimediaNodeHandler&) = delete;
    virtual ~MultimediaNodeHandler() = default;

    virtual std::u16string getRefValue(const xercesc::DOMElement& element) const = 0;
    virtual void setRefValue(xercesc::DOMElement& element, const std::u16string& value) const = 0;
    virtual std::u16string getKeyrefValue(const xercesc::DOMElement& element) const = 0;
    virtual void setKeyrefValue(xercesc::DOMElement& element,
                                const std::u16string& value) const = 0;
    virtual void removeRefAttr(xercesc::DOMElement& element) const = 0;
    virtual void removeKeyrefAttr(xercesc::DOMElement& element) const = 0;

    MultimediaNodeType type() const noexcept { return type_; }

protected:
    explicit MultimediaNodeHandler(MultimediaNodeType type) : type_(type) {}

private:
    MultimediaNodeType type_;
};

/// The handler of objects ("data", "datakeyref") or of params ("value", "keyref"); lives as long
/// as the process. `type` must be one of these two.
const MultimediaNodeHandler& multimediaNodeHandler(MultimediaNodeType type);

}  // namespace marrowpress
