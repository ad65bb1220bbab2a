#include "findings/profile.h"

#include <libxml/SAX2.h>
#include <libxml/encoding.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <unordered_map>

#include "findings/regular_file.h"
#include "findings/text_position.h"
#include "findings/xml_elements.h"
#include "host/libxml_handles.h"
#include "host/local_xml_input.h"

namespace marrowpress {
namespace {

struct FreeContext {
    void operator()(xmlParserCtxt* context) const noexcept {
        xmlFreeDoc(context->myDoc);
        xmlFreeParserCtxt(context);
    }
};

struct FreeBuffer {
    void operator()(xmlBuffer* buffer) const noexcept { xmlBufferFree(buffer); }
};

std::string nameOf(const xmlChar* name, const xmlNs* space) {
    std::string prefix = space && space->prefix ? std::string(asText(space->prefix)) + ":" : "";
    return prefix.append(asText(name));
}

/// One line, without its end.
std::string reasonOf(const xmlError& error) {
    std::string reason = error.message ? error.message : "not well-formed";
    while (reason.ends_with('\n')) {
        reason.pop_back();
    }
    std::replace(reason.begin(), reason.end(), '\n', ' ');
    return reason;
}

/// Where the elements of a parse begin, and the first thing that ended it.
class ParseRecord {
public:
    /// `text` is what `context` parses, in UTF-8.
    ParseRecord(std::string_view text, std::string file, const xmlParserCtxt& context)
        : text_(text), positions_(text), file_(std::move(file)), context_(context) {}

    void addElement(const xmlParserCtxt& parser) {
        // Where an entity is parsed, by a parser of its own, nothing of the file can be named.
        if (&parser == &context_ && parser.node) {
            // No attribute's value holds a "<", so the last one is that of the start tag.
            places_.emplace(parser.node, placeAt(text_.rfind('<', offset())));
        }
    }

    void addError(const xmlError& error) {
        if (error.level == XML_ERR_FATAL && !fault_) {
            fault_ = ProfileFault{ProfileFault::Kind::kNotWellFormed, placeAt(offset()),
                                  reasonOf(error)};
        }
    }

    FindingPlace placeOf(const xmlNode* element) const {
        const auto known = places_.find(element);
        return known == places_.end() ? FindingPlace{file_} : known->second;
    }

    ProfileFault fault() const {
        return fault_.value_or(ProfileFault{ProfileFault::Kind::kNotWellFormed, FindingPlace{file_},
                                            "not well-formed"});
    }

private:
    std::size_t offset() const {
        const xmlParserInput* const input = context_.input;
        return input ? input->consumed + static_cast<std::size_t>(input->cur - input->base) : 0;
    }

    FindingPlace placeAt(std::size_t offset) {
        const TextPosition position = positions_.at(offset);
        return {file_, position.line, position.column};
    }

    std::string_view text_;
    TextPositions positions_;
    std::string file_;
    const xmlParserCtxt& context_;
    std::unordered_map<const xmlNode*, FindingPlace> places_;
    std::optional<ProfileFault> fault_;
};

/// The record of a parse, which parsers of entities share.
ParseRecord& recordOf(const xmlParserCtxt& parser) {
    return *static_cast<ParseRecord*>(parser._private);
}

void onStartElement(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
                    int namespaceCount, const xmlChar** namespaces, int attributeCount,
                    int defaultedCount, const xmlChar** attributes) {
    xmlSAX2StartElementNs(context, name, prefix, uri, namespaceCount, namespaces, attributeCount,
                          defaultedCount, attributes);
    const auto& parser = *static_cast<xmlParserCtxt*>(context);
    recordOf(parser).addElement(parser);
}

/// What is declared outside the file is declared as nothing.
void onEntity(void* context, const xmlChar* name, int type, const xmlChar* publicId,
              const xmlChar* systemId, xmlChar* content) {
    xmlChar nothing[] = {0};
    if (type == XML_EXTERNAL_GENERAL_PARSED_ENTITY) {
        xmlSAX2EntityDecl(context, name, XML_INTERNAL_GENERAL_ENTITY, nullptr, nullptr, nothing);
    } else if (type == XML_EXTERNAL_PARAMETER_ENTITY) {
        xmlSAX2EntityDecl(context, name, XML_INTERNAL_PARAMETER_ENTITY, nullptr, nullptr, nothing);
    } else {
        xmlSAX2EntityDecl(context, name, type, publicId, systemId, content);
    }
}

void onError(void* context, xmlError* error) {
    recordOf(*static_cast<xmlParserCtxt*>(context)).addError(*error);
}

struct CloseConverter {
    void operator()(xmlCharEncodingHandler* converter) const noexcept {
        xmlCharEncCloseFunc(converter);
    }
};

using Converter = std::unique_ptr<xmlCharEncodingHandler, CloseConverter>;
using ParserContext = std::unique_ptr<xmlParserCtxt, FreeContext>;

/// A parser of `text`, which must stay, with a document that goes with it unless it is taken away.
ParserContext makeParser(const std::string& text, int options) {
    ParserContext context(xmlCreateMemoryParserCtxt(text.data(), static_cast<int>(text.size())));
    if (context) {
        xmlCtxtUseOptions(context.get(),
                          options | XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    }
    return context;
}

/// The encoding that the text declares, empty when it declares none.
std::string declaredEncoding(const std::string& bytes) {
    const ParserContext context = makeParser(bytes, 0);
    if (!context) {
        return {};
    }
    xmlParseDocument(context.get());
    return std::string(asText(context->encoding));
}

/// The converter for a text that is not UTF-8, told by its first bytes or by what it declares; null
/// for UTF-8 and for an encoding that is not known.
Converter converterOf(const std::string& bytes) {
    constexpr std::size_t kMarkSize = 4;
    const xmlCharEncoding detected =
        xmlDetectCharEncoding(reinterpret_cast<const unsigned char*>(bytes.data()),
                              static_cast<int>(std::min(bytes.size(), kMarkSize)));
    if (detected == XML_CHAR_ENCODING_UTF16LE || detected == XML_CHAR_ENCODING_UTF16BE) {
        return Converter(xmlGetCharEncodingHandler(detected));
    }
    const std::string declared = declaredEncoding(bytes);
    const bool isUtf8 = xmlParseCharEncoding(declared.c_str()) == XML_CHAR_ENCODING_UTF8;
    return Converter(declared.empty() || isUtf8 ? nullptr
                                                : xmlFindCharEncodingHandler(declared.c_str()));
}

/// `bytes` in UTF-8; empty when some of them mean nothing in their encoding.
std::optional<std::string> converted(const std::string& bytes, xmlCharEncodingHandler& converter) {
    const std::unique_ptr<xmlBuffer, FreeBuffer> in(xmlBufferCreate());
    const std::unique_ptr<xmlBuffer, FreeBuffer> out(xmlBufferCreate());
    xmlBufferAdd(in.get(), reinterpret_cast<const xmlChar*>(bytes.data()),
                 static_cast<int>(bytes.size()));
    while (xmlBufferLength(in.get()) > 0) {
        if (xmlCharEncInFunc(&converter, out.get(), in.get()) <= 0) {
            return std::nullopt;
        }
    }
    return std::string(reinterpret_cast<const char*>(xmlBufferContent(out.get())),
                       static_cast<std::size_t>(xmlBufferLength(out.get())));
}

/// A text to parse.
struct XmlText {
    std::string text;
    bool isConverted = false;  ///< It is UTF-8, whatever it declares.
};

XmlText toUtf8(std::string bytes) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    XmlText result;
    if (const Converter converter = converterOf(bytes)) {
        if (std::optional<std::string> text = converted(bytes, *converter)) {
            result = {std::move(*text), true};
        }
    }
    if (!result.isConverted) {
        result.text = std::move(bytes);
    }
    if (result.text.starts_with(kMark)) {
        result.text.erase(0, kMark.size());
    }
    return result;
}

ProfileElement describe(const xmlNode& element, const ParseRecord& record) {
    ProfileElement described{record.placeOf(&element), tagNameOf(element), {}};
    for (const xmlAttr* attribute = element.properties; attribute; attribute = attribute->next) {
        const LibxmlText value(xmlNodeListGetString(element.doc, attribute->children, 1));
        described.attributes.emplace_back(nameOf(attribute->name, attribute->ns),
                                          asText(value.get()));
    }
    return described;
}

Profile describe(std::shared_ptr<xmlDoc> document, const ParseRecord& record) {
    Profile profile;
    for (xmlNode* element = xmlDocGetRootElement(document.get()); element;
         element = nextElement(*element)) {
        profile.elements.push_back(describe(*element, record));
        const ProfileElement& last = profile.elements.back();
        if (last.name == kRuleElement) {
            profile.rules.push_back({last.place, std::string(last.valueOf("att")),
                                     std::string(last.valueOf("val")),
                                     std::string(last.valueOf("action"))});
        }
    }
    profile.document = std::move(document);
    return profile;
}

std::variant<Profile, ProfileFault> parse(const XmlText& text, const std::string& path) {
    const ParserContext context =
        makeParser(text.text, XML_PARSE_NOENT | XML_PARSE_NOBLANKS |
                                  (text.isConverted ? XML_PARSE_IGNORE_ENC : 0));
    if (!context) {
        return ProfileFault{ProfileFault::Kind::kNotWellFormed, {path}, "the file is empty"};
    }
    ParseRecord record(text.text, path, *context);
    context->_private = &record;
    context->sax->startElementNs = onStartElement;
    context->sax->entityDecl = onEntity;
    context->sax->serror = onError;
    xmlParseDocument(context.get());
    if (!context->wellFormed) {
        return record.fault();
    }
    const std::shared_ptr<xmlDoc> document(std::exchange(context->myDoc, nullptr), xmlFreeDoc);
    return describe(document, record);
}

}  // namespace

std::string_view ProfileElement::valueOf(std::string_view attribute) const {
    const auto found =
        std::find_if(attributes.begin(), attributes.end(),
                     [attribute](const auto& one) { return one.first == attribute; });
    return found == attributes.end() ? std::string_view() : found->second;
}

std::variant<Profile, ProfileFault> readProfile(const std::string& path) {
    restrictLibxmlToLocalFiles();
    RegularFile file(path);
    std::optional<std::string> bytes = file.isOpen() ? file.read() : std::nullopt;
    if (!bytes) {
        return ProfileFault{ProfileFault::Kind::kUnreadable, {path}, file.fault()};
    }
    if (bytes->size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return ProfileFault{ProfileFault::Kind::kUnreadable, {path}, "too large"};
    }
    return parse(toUtf8(std::move(*bytes)), path);
}

}  // namespace marrowpress
