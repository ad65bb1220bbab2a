#include "xml/entity_resolver.h"

#include <cstdlib>
#include <utility>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLNetAccessor.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>
#include <xercesc/util/XMLURL.hpp>
#include <xercesc/util/XMLUri.hpp>

#include "application/host_operations.h"
#include "application/run_observer.h"
#include "support/paths.h"
#include "support/text.h"
#include "support/work_counts.h"
#include "support/xerces_ptr.h"
#include "xml/mapped_input.h"

namespace marrowpress {
namespace {

constexpr const char* kXmlUtilities = "XmlUtilities";
constexpr const char* kEndCommand = "EntityResolver end";
constexpr const char* kTerminateCommand = "EntityResolver terminate";

std::string quoted(std::string_view value) {
    std::string text = "\"";
    text += value;
    text += '"';
    return text;
}

/// The path that a reply names: the text of its one value. Empty for any other reply.
std::string pathInReply(const HostTypedValueList& reply) {
    if (reply.count != 1 || !reply.values || reply.values[0].type != HostValueType::kString ||
        !reply.values[0].value.string) {
        return {};
    }
    return reply.values[0].value.string;
}

/// An entity that is not to be opened: fails like a server that can't be reached.
class RefusedInputSource final : public xercesc::InputSource {
public:
    explicit RefusedInputSource(const XMLCh* systemId) : InputSource(systemId) {}

    xercesc::BinInputStream* makeStream() const override {
        ThrowXMLwithMemMgr1(xercesc::NetAccessorException, xercesc::XMLExcepts::NetAcc_ConnSocket,
                            getSystemId(), getMemoryManager());
    }
};

/// A local file under the system id by which the engine would know it: the files that are named in
/// it, and the grammars that are kept, depend on that.
class LocalEntitySource final : public xercesc::InputSource {
public:
    LocalEntitySource(const XMLCh* systemId, std::u16string file)
        : InputSource(systemId), file_(std::move(file)) {}

    xercesc::BinInputStream* makeStream() const override {
        return openLocalFile(file_.c_str(), getMemoryManager());
    }

    const std::u16string& file() const noexcept { return file_; }

private:
    std::u16string file_;
};

const XMLCh* systemIdOf(const xercesc::XMLResourceIdentifier& identifier) {
    return identifier.getSystemId() ? identifier.getSystemId() : u"";
}

std::u16string percentDecoded(std::u16string_view text) {
    std::u16string decoded;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const std::u16string_view escape = text.substr(position, 3);
        const bool isEscape = escape.size() == 3 && escape[0] == u'%';
        if (isEscape) {
            const std::string digits = toUtf8(escape.substr(1));
            decoded += static_cast<char16_t>(std::strtoul(digits.c_str(), nullptr, 16));
            position += 2;
        } else {
            decoded += text[position];
        }
    }
    return decoded;
}

/// The local file that the engine would open for `identifier` by itself; null if it would not be a
/// local file.
std::unique_ptr<xercesc::InputSource> engineSource(
    const xercesc::XMLResourceIdentifier& identifier) {
    const XMLCh* const base = identifier.getBaseURI();
    const XMLCh* const systemId = systemIdOf(identifier);
    xercesc::XMLURL url;
    if (!url.setURL(base, systemId, url) || url.isRelative()) {
        xercesc::XMLBuffer path;
        xercesc::XMLUri::normalizeURI(systemId, path);
        return std::make_unique<MemMapLocalFileInputSource>(base, path.getRawBuffer());
    }
    const bool isLocal = domText(url.getHost()).empty() ||
                         xercesc::XMLString::compareIStringASCII(url.getHost(), u"localhost") == 0;
    if (url.getProtocol() != xercesc::XMLURL::File || !isLocal) {
        return nullptr;
    }
    return std::make_unique<LocalEntitySource>(url.getURLText(),
                                               percentDecoded(domText(url.getPath())));
}

/// Tells which file is opened for the entity, which must be a local one.
void observeEntity(const xercesc::XMLResourceIdentifier& identifier,
                   const xercesc::InputSource& source) {
    if (RunObserver* const observer = RunObserver::existingForReferences()) {
        const auto* const local = dynamic_cast<const LocalEntitySource*>(&source);
        observer->entity(local ? std::u16string_view(local->file()) : domText(source.getSystemId()),
                         domText(identifier.getBaseURI()));
    }
}

}  // namespace

std::string EntityResolverCommands::startCommand(std::string_view path) {
    return "EntityResolver start -basefile " + quoted(path);
}

std::string EntityResolverCommands::endCommand() {
    return kEndCommand;
}

std::string EntityResolverCommands::terminateCommand() {
    return kTerminateCommand;
}

std::string EntityResolverCommands::resolveCommand(std::string_view publicId,
                                                   std::string_view baseUri) {
    std::string command = "EntityResolver resolveentity ";
    if (!baseUri.empty()) {
        command += "-baseuri " + quoted(baseUri);
    }
    return command + "-publicid " + quoted(publicId);
}

void sendStart(std::u16string_view path) {
    HostCallClient(kXmlUtilities, EntityResolverCommands::startCommand(toUtf8(path)).c_str());
}

void sendEnd() noexcept {
    HostCallClient(kXmlUtilities, kEndCommand);
}

void sendTerminate() noexcept {
    HostCallClient(kXmlUtilities, kTerminateCommand);
}

xercesc::InputSource* QSXMLEntityResolver::resolveEntity(
    xercesc::XMLResourceIdentifier* identifier) {
    ++WorkCounts::total().resolverCalls;
    std::unique_ptr<xercesc::InputSource> source = findSource(*identifier);
    if (!source) {
        source = engineSource(*identifier);
    }
    if (source) {
        observeEntity(*identifier, *source);
    } else {
        source = std::make_unique<RefusedInputSource>(systemIdOf(*identifier));
    }
    return source.release();
}

std::u16string QSXMLEntityResolver::resolvePath(xercesc::XMLResourceIdentifier& identifier) {
    const std::unique_ptr<xercesc::InputSource> source = findSource(identifier);
    return source ? std::u16string(domText(source->getSystemId())) : std::u16string();
}

std::unique_ptr<xercesc::InputSource> QSXMLEntityResolver::findSource(
    const xercesc::XMLResourceIdentifier& identifier) {
    auto local = std::make_unique<MemMapLocalFileInputSource>(identifier.getBaseURI(),
                                                              systemIdOf(identifier));
    if (sourceFileExists(*local)) {
        return local;
    }
    const std::u16string_view publicId = domText(identifier.getPublicId());
    if (publicId.empty()) {
        // The parser hands over an empty text where the document gives no public identifier.
        return nullptr;
    }
    const std::string narrowPublicId = toUtf8(publicId);
    if (recorded_) {
        recorded_->push_back(narrowPublicId);
    }
    return sourceForPublicId(&narrowPublicId);
}

std::unique_ptr<xercesc::InputSource> QSXMLEntityResolver::sourceForPublicId(
    const std::string* publicId) {
    const std::u16string path = publicId ? toUtf16(resolvePublicId(*publicId)) : std::u16string();
    if (path.empty()) {
        return nullptr;
    }
    return std::make_unique<MemMapLocalFileInputSource>(path.c_str(),
                                                        xercesc::XMLPlatformUtils::fgMemoryManager);
}

std::string QSXMLEntityResolver::resolvePublicId(const std::string& publicId) {
    const auto known = pathsByPublicId_.find(publicId);
    if (known != pathsByPublicId_.end()) {
        return known->second;
    }
    const HostTypedValues reply = HostCallClientTyped(
        kXmlUtilities, EntityResolverCommands::resolveCommand(publicId, {}).c_str());
    return pathsByPublicId_.emplace(publicId, pathInReply(reply.list())).first->second;
}

}  // namespace marrowpress
