#include "xml/document_writer.h"

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <xercesc/dom/DOM.hpp>

#include "application/host_operations.h"
#include "application/messengers.h"
#include "application/run_observer.h"
#include "dom/document_path.h"
#include "dom/nesting_depth.h"
#include "marrowpress/output_names.h"
#include "support/paths.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "xml/checked_file_target.h"
#include "xml/document_store.h"
#include "xml/replaced_files.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

xercesc::DOMImplementation* loadAndSaveImplementation() {
    return xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
}

XercesPtr<xercesc::DOMLSSerializer> makeSerializer(xercesc::DOMImplementation& implementation) {
    XercesPtr<xercesc::DOMLSSerializer> serializer(
        implementation.createLSSerializer(xercesc::XMLPlatformUtils::fgMemoryManager));
    xercesc::DOMConfiguration* const config = serializer->getDomConfig();
    if (config->canSetParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, false)) {
        config->setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, false);
    }
    return serializer;
}

void serialize(xercesc::DOMImplementation& implementation, const xercesc::DOMDocument& document,
               const std::u16string& path) {
    if (isNestedTooDeeply(document.getDocumentElement())) {
        throw std::length_error("elements nest too deeply");
    }
    const XercesPtr<xercesc::DOMLSSerializer> serializer = makeSerializer(implementation);
    const XercesPtr<xercesc::DOMLSOutput> output(
        implementation.createLSOutput(xercesc::XMLPlatformUtils::fgMemoryManager));
    output->setEncoding(u"UTF-8");
    ReplacedFiles& replaced = ReplacedFiles::instance();
    replaced.note(path);
    CheckedFileFormatTarget target(path, replaced.modeOf(path));
    output->setByteStream(&target);
    serializer->write(&document, output.get());
    target.close();
}

/// Moves a file over another one, by a copy where the two are on different volumes.
void moveFile(const fs::path& from, const fs::path& to) {
    std::error_code error;
    fs::rename(from, to, error);
    if (error == std::errc::cross_device_link) {
        error.clear();
        fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
        if (!error) {
            fs::remove(from, error);
        }
    }
    if (error) {
        throw fs::filesystem_error("rename", from, to, error);
    }
}

void removeFile(const fs::path& path) {
    std::error_code error;
    fs::remove(path, error);
    if (error) {
        throw fs::filesystem_error("remove", path, error);
    }
}

/// A file that stands aside while its successor is written. It comes back unless it is removed, and
/// takes no memory for that.
class FileAside {
public:
    /// Moves `file` to `aside`.
    FileAside(const std::u16string& file, const std::u16string& aside)
        : file_(nativePath(file)), aside_(nativePath(aside)) {
        moveFile(file_, aside_);
    }
    FileAside(const FileAside&) = delete;
    FileAside& operator=(const FileAside&) = delete;
    ~FileAside() {
        if (isAside_) {
            std::error_code ignored;
            fs::rename(aside_, file_, ignored);
        }
    }

    void remove() {
        isAside_ = false;
        removeFile(aside_);
    }
    void moveBack() {
        isAside_ = false;
        moveFile(aside_, file_);
    }

private:
    fs::path file_;
    fs::path aside_;
    bool isAside_ = true;
};

WriteStatus reportFailure(const std::u16string& path, std::string_view reason) {
    ReportMessenger::instance().reportCannotWrite(path, reason);
    return WriteStatus::kFailed;
}

}  // namespace

WriteStatus writeDocument(const xercesc::DOMDocument* document, const std::u16string& path) {
    if (!document) {
        return WriteStatus::kFailed;
    }
    try {
        xercesc::DOMImplementation* const implementation = loadAndSaveImplementation();
        if (!implementation) {
            return WriteStatus::kFailed;
        }
        serialize(*implementation, *document, path);
        if (RunObserver* const observer = RunObserver::existing()) {
            observer->noteOwnFile(path);
        }
        return WriteStatus::kWritten;
    } catch (const std::system_error& failure) {
        return reportFailure(path, failure.code().message());
    } catch (const std::exception& failure) {
        return reportFailure(path, failure.what());
    } catch (...) {
        return reportFailure(path, {});
    }
}

WriteStatus saveDocumentInPlace(const xercesc::DOMDocument* document) {
    if (!document) {
        return WriteStatus::kFailed;
    }
    requireWorkingHost();
    const std::u16string target = documentPath(*document);
    const std::u16string temporary = target + toUtf16(kAsideSuffix);
    if (DocumentStore::instance().hasRead(temporary)) {
        return reportFailure(target, "a source stands in the place of the copy");
    }
    ReplacedFiles::instance().note(target);
    FileAside old(target, temporary);
    const WriteStatus status = writeDocument(document, target);
    if (status == WriteStatus::kWritten) {
        old.remove();
    } else {
        old.moveBack();
    }
    return status;
}

WriteStatus writeEmptyDocument(std::string_view rootName, std::string_view publicId,
                               std::string_view systemId, const std::u16string& path) {
    requireWorkingHost();
    XercesPtr<xercesc::DOMDocument> document;
    if (xercesc::DOMImplementation* const implementation = loadAndSaveImplementation()) {
        const std::u16string root = toUtf16(rootName);
        XercesPtr<xercesc::DOMDocumentType> doctype(implementation->createDocumentType(
            root.c_str(), toUtf16(publicId).c_str(), toUtf16(systemId).c_str()));
        document.reset(implementation->createDocument(nullptr, root.c_str(), doctype.get(),
                                                      xercesc::XMLPlatformUtils::fgMemoryManager));
        // The document owns it now.
        static_cast<void>(doctype.release());
    }
    return writeDocument(document.get(), path);
}

}  // namespace marrowpress
