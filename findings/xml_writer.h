#pragma once

#include <libxml/xmlwriter.h>

#include <iosfwd>
#include <memory>
#include <string_view>

namespace marrowpress {

/// Writes an XML document in UTF-8, indented, as its parts are told. What XML can't hold, control
/// characters and bytes that are no UTF-8, becomes U+FFFD.
class XmlWriter {
public:
    /// `out` must outlive the writer and throw nothing. It says itself whether it was written to.
    explicit XmlWriter(std::ostream& out);

    void startElement(const char* name);
    /// For the element that has just been started.
    void attribute(const char* name, std::string_view value);
    void text(std::string_view value);
    /// Ends the last element that is still open.
    void endElement();
    /// Ends all that is open, and writes what is held back.
    void endDocument();

private:
    struct Free {
        void operator()(xmlTextWriter* writer) const noexcept { xmlFreeTextWriter(writer); }
    };

    std::unique_ptr<xmlTextWriter, Free> writer_;
};

}  // namespace marrowpress
