#include "bench/floor/engine_run.h"

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/LocalFileFormatTarget.hpp>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>

namespace marrowpress::bench {
namespace {

constexpr XMLSize_t kEntityExpansionLimit = 250000;

struct Release {
    template <typename Object>
    void operator()(Object* object) const {
        object->release();
    }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

class EngineSession {
public:
    EngineSession() {
        try {
            xercesc::XMLPlatformUtils::Initialize();
        } catch (const xercesc::XMLException&) {
            throw std::runtime_error("the engine doesn't start");
        }
    }
    EngineSession(const EngineSession&) = delete;
    EngineSession& operator=(const EngineSession&) = delete;
    ~EngineSession() { xercesc::XMLPlatformUtils::Terminate(); }
};

std::u16string toUtf16(const std::string& text) {
    const xercesc::TranscodeFromStr transcoded(reinterpret_cast<const XMLByte*>(text.data()),
                                               text.size(), "UTF-8");
    return {transcoded.str(), transcoded.length()};
}

std::string toUtf8(const XMLCh* text) {
    const xercesc::TranscodeToStr transcoded(text ? text : u"", "UTF-8");
    return {reinterpret_cast<const char*>(transcoded.str()), transcoded.length()};
}

/// Finds entities at their system identifier, else by their public identifier. Never gives null:
/// the engine would look for them by itself then, in the network, too.
class ListedFilesResolver final : public xercesc::XMLEntityResolver {
public:
    explicit ListedFilesResolver(const SourceList& list) : list_(list) {}

    xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* identifier) override {
        const XMLCh* const systemId = identifier->getSystemId();
        auto local = std::make_unique<xercesc::LocalFileInputSource>(identifier->getBaseURI(),
                                                                     systemId ? systemId : u"");
        std::error_code ignored;
        if (!std::filesystem::exists(toUtf8(local->getSystemId()), ignored)) {
            const auto listed = list_.filesByPublicId.find(toUtf8(identifier->getPublicId()));
            if (listed != list_.filesByPublicId.end()) {
                const std::u16string path = toUtf16(listed->second);
                return std::make_unique<xercesc::LocalFileInputSource>(path.c_str()).release();
            }
        }
        return local.release();
    }

private:
    const SourceList& list_;
};

/// A parser, and what it needs as long as it is there.
class Parser {
public:
    explicit Parser(const SourceList& list) : resolver_(list) {
        expansionLimit_.setEntityExpansionLimit(kEntityExpansionLimit);
        parser_.setValidationScheme(xercesc::XercesDOMParser::Val_Auto);
        parser_.setErrorHandler(&errorHandler_);
        parser_.setXMLEntityResolver(&resolver_);
        parser_.setDoNamespaces(false);
        parser_.setDoSchema(true);
        parser_.setValidationSchemaFullChecking(true);
        parser_.setCreateEntityReferenceNodes(false);
        parser_.cacheGrammarFromParse(true);
        parser_.useCachedGrammarInParse(true);
        parser_.setIgnoreCachedDTD(true);
        parser_.setSecurityManager(&expansionLimit_);
    }

    /// The document belongs to the parser. Null for one that can't be parsed.
    const xercesc::DOMDocument* parse(const std::string& path) {
        try {
            const std::u16string widePath = toUtf16(path);
            parser_.parse(xercesc::LocalFileInputSource(widePath.c_str()));
            return parser_.getDocument();
        } catch (const xercesc::XMLException&) {
            dropDocument();
        } catch (const xercesc::SAXException&) {
            dropDocument();
        }
        return nullptr;
    }

private:
    void dropDocument() {
        const Owned<xercesc::DOMDocument> dropped(parser_.adoptDocument());
        parser_.resetDocument();
    }

    ListedFilesResolver resolver_;
    xercesc::HandlerBase errorHandler_;
    xercesc::SecurityManager expansionLimit_;
    xercesc::XercesDOMParser parser_{nullptr, xercesc::XMLPlatformUtils::fgMemoryManager, nullptr};
};

void takeIn(const xercesc::DOMDocument& source, xercesc::DOMDocument& output) {
    output.getDocumentElement()->appendChild(output.importNode(source.getDocumentElement(), true));
}

void write(xercesc::DOMImplementation& implementation, const xercesc::DOMDocument& document,
           const std::string& path) {
    const Owned<xercesc::DOMLSSerializer> serializer(implementation.createLSSerializer());
    serializer->getDomConfig()->setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, false);
    const Owned<xercesc::DOMLSOutput> output(implementation.createLSOutput());
    output->setEncoding(u"UTF-8");
    xercesc::LocalFileFormatTarget target(toUtf16(path).c_str());
    output->setByteStream(&target);
    if (!serializer->write(&document, output.get())) {
        throw std::runtime_error("the output can't be written: " + path);
    }
}

EngineCounts takeInAll(const SourceList& list, xercesc::DOMDocument& output, Parser& parser) {
    EngineCounts counts;
    for (const Source& source : list.sources) {
        const xercesc::DOMDocument* const document = parser.parse(source.path);
        if (!document) {
            ++counts.unread;
            continue;
        }
        ++counts.documents;
        if (source.isTopic) {
            takeIn(*document, output);
            ++counts.topics;
        }
    }
    return counts;
}

}  // namespace

EngineCounts runEngine(const SourceList& list, const std::string& output) {
    const EngineSession session;
    xercesc::DOMImplementation* const implementation =
        xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
    if (!implementation) {
        throw std::runtime_error("the engine can't write");
    }
    try {
        const Owned<xercesc::DOMDocument> document(
            implementation->createDocument(nullptr, u"dita", nullptr));
        Parser parser(list);
        const EngineCounts counts = takeInAll(list, *document, parser);
        write(*implementation, *document, output);
        return counts;
    } catch (const xercesc::XMLException& failure) {
        throw std::runtime_error(toUtf8(failure.getMessage()));
    }
}

}  // namespace marrowpress::bench
