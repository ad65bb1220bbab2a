#include "publish/doc_publisher.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "application/messengers.h"
#include "application/run_observer.h"
#include "dom/document_path.h"
#include "keys/key_space_loader.h"
#include "marrowpress/output_names.h"
#include "profiling/ditaval.h"
#include "publish/output_observation.h"
#include "references/conref_resolution.h"
#include "references/exclusion_filter.h"
#include "references/keyref_resolution.h"
#include "references/published_content.h"
#include "references/topic_ids.h"
#include "support/file_entry.h"
#include "support/folder_lock.h"
#include "support/paths.h"
#include "support/scope_exit.h"
#include "support/text.h"
#include "xml/document_store.h"
#include "xml/document_writer.h"
#include "xml/replaced_files.h"

namespace marrowpress {
namespace {

/// The filter that the profile of the run describes; null without one, also when it can't be read.
std::unique_ptr<xercesc::DOMNodeFilter> readProfile(const PublishParams& params) {
    const std::u16string ditaVal = params.getDitaVal();
    const xercesc::DOMDocument* const profile =
        ditaVal.empty() ? nullptr : DocumentStore::instance().getOrLoad(ditaVal);
    if (!profile) {
        return nullptr;
    }
    DitaValReader reader;
    reader.readDefaultAction(*profile);
    reader.readAttributeRules(*profile);
    reader.readValueRules(*profile);
    return reader.buildExcludeFilter();
}

/// Sets up what profiling excludes from this run, in the place of what an earlier one left.
void setUpProfiling(const PublishParams& params) {
    ExclusionFilterHolder& holder = ExclusionFilterHolder::instance();
    holder.reset(readProfile(params));
}

/// Whether something stands at `path`; refuses what must not be removed.
bool isOldFileThere(const std::u16string& path) {
    if (!entryExists(path)) {
        return false;
    }
    if (!isReplaceable(path)) {
        throw OutputFileRemoveOperationFailedException();
    }
    return true;
}

/// What `read` gives; empty for a parameter that isn't what it has to be. The step that needs it
/// refuses it.
template <class Read>
std::u16string textOrNone(Read&& read) {
    try {
        return read();
    } catch (const PublishException&) {
        return {};
    }
}

/// The entries that go when `path` is written: its own, and that of the copy beside it.
std::vector<std::optional<FileEntry>> entriesWrittenFor(const std::u16string& path) {
    return {fileEntry(path), fileEntry(path + toUtf16(kAsideSuffix))};
}

/// Refuses what would remove or overwrite the map or the profile, or one output by another.
void requireSeparateFiles(const std::vector<std::u16string>& outputs,
                          const std::vector<std::u16string>& inputs) {
    std::vector<std::optional<FileEntry>> entries;
    std::transform(inputs.begin(), inputs.end(), std::back_inserter(entries),
                   [](const std::u16string& input) {
                       return input.empty() ? std::nullopt : readEntry(input);
                   });
    for (const std::u16string& output : outputs) {
        for (std::optional<FileEntry>& written : entriesWrittenFor(output)) {
            for (const std::optional<FileEntry>& other : entries) {
                if (isOneEntry(written, other)) {
                    throw UnsupportedPublishParamsException();
                }
            }
            entries.push_back(std::move(written));
        }
    }
}

void observePhase(const char* name) {
    if (RunObserver* const observer = RunObserver::existing()) {
        observer->phase(name);
    }
}

}  // namespace

std::unique_ptr<PublishResult> DocPublisher::publish(std::unique_ptr<PublishParams> params) {
    // A run that is refused here touches nothing: what the janitor would remove may be a source, or
    // belong to another run.
    refuseForeignParams(*params);
    const std::u16string keySpaceDocPath = getKeySpaceDocPath(*params);
    const FolderLock lock(parentPath(keySpaceDocPath));
    if (lock.isTaken()) {
        throw PublishException();
    }
    refuseUnsafePlaces(*params);
    params->setKeySpaceDoc(nativePath(keySpaceDocPath));
    IDocPublisherJanitor& janitor = *this;
    const ScopeExit cleanUpAtEnd([&] { janitor.cleanUp(*params); });
    prepare(*params);
    setUpProfiling(*params);

    TopicIdMap topicIds;
    observePhase("keys");
    ProgressMessenger::instance().reportProcessingKeySpaces();
    KeySpace keySpace = buildKeySpaceDoc(*params, topicIds);
    observePhase("map");
    ProgressMessenger::instance().reportUpdatingReferences();
    const std::u16string mapPath = getMapPath(*params);
    resolveMapReferences(mapPath, keySpace, topicIds);

    observePhase("assembly");
    std::unique_ptr<PublishResult> result = assemble(mapPath, keySpace, topicIds, *params);
    if (RunObserver* const observer = RunObserver::existing()) {
        if (params->getUsePrint()) {
            observer->noteForPrint(isLeftOutOfPrint);
        }
        observeOutput(*observer, *result, keySpace, mapPath);
    }
    observePhase("output");
    writeOutput(*params, *result);
    result->status = kPublished;
    result->usedHostDocuments = DocumentStore::instance().touchedOpenDocuments();
    return result;
}

void DocPublisher::cleanUp(const PublishParams& params) noexcept {
    // What can't be removed stays: the run has its outcome already.
    std::error_code ignored;
    const std::filesystem::file_status status =
        std::filesystem::symlink_status(params.keySpaceDoc(), ignored);
    if (std::filesystem::is_regular_file(status) || std::filesystem::is_symlink(status)) {
        std::filesystem::remove(params.keySpaceDoc(), ignored);
    }
}

void DocPublisher::refuseForeignParams(const PublishParams& params) const {
    if (params.publisherId() != publisherId_) {
        throw UnsupportedPublishParamsException();
    }
}

void DocPublisher::refuseUnsafePlaces(const PublishParams& params) {
    params.refuseNul();
    std::vector<std::u16string> outputs = getOutputPaths(params);
    outputs.push_back(getKeySpaceDocPath(params));
    requireSeparateFiles(outputs, {textOrNone([&] { return getMapPath(params); }),
                                   textOrNone([&] { return params.getDitaVal(); })});
    std::for_each(outputs.begin(), outputs.end(), &isOldFileThere);
}

void DocPublisher::prepare(const PublishParams& params) {
    removeOldFile(getKeySpaceDocPath(params));
    removeStaleOutput(params);
}

KeySpace DocPublisher::buildKeySpaceDoc(const PublishParams& params, TopicIdMap& topicIds) {
    const std::u16string mapPath = getMapPath(params);
    const std::u16string keySpaceDocPath = getKeySpaceDocPath(params);
    const std::u16string dtd = params.getKeyspaceDocDtd();
    KeySpace keySpace = KeySpaceLoader().load(mapPath, keySpaceDocPath, topicIds, dtd);
    // The document in memory is what the run reads its keys from.
    goOnAfter(saveDocumentInPlace(&keySpace.document()));
    return keySpace;
}

void DocPublisher::resolveMapReferences(const std::u16string& mapPath, KeySpace& keySpace,
                                        TopicIdMap& topicIds) {
    xercesc::DOMElement* const root =
        DocumentStore::instance().mustLoad(mapPath).getDocumentElement();
    KeyrefProcessor().resolveAllKeyrefs(root, keySpace);
    ConrefProcessor().resolveConrefs(root, keySpace, topicIds);
}

std::u16string DocPublisher::getMapPath(const PublishParams& params) {
    return absolutePath(params.getDitamap());
}

void writeResultDocument(const xercesc::DOMDocument* document) {
    const WriteStatus status = saveDocumentInPlace(document);
    if (RunObserver* const observer = RunObserver::existing();
        observer && status == WriteStatus::kWritten) {
        observer->outputWritten(documentPath(*document));
    }
    goOnAfter(status);
}

void removeOldFile(const std::u16string& path) {
    if (!isOldFileThere(path)) {
        return;
    }
    ReplacedFiles::instance().note(path);
    std::error_code error;
    if (!std::filesystem::remove(nativePath(path), error)) {
        if (error) {
            throw std::filesystem::filesystem_error("remove", nativePath(path), error);
        }
        throw OutputFileRemoveOperationFailedException();
    }
}

}  // namespace marrowpress
