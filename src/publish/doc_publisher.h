#pragma once

#include <memory>
#include <string>

#include "publish/publish_params.h"
#include "publish/publish_result.h"

namespace marrowpress {

class KeySpace;
class TopicIdMap;

/// What has to be cleaned up after a run, however it ended.
class IDocPublisherJanitor {
public:
    /// Neither throws nor allocates: it may be memory that the run failed for.
    virtual void cleanUp(const PublishParams& params) noexcept = 0;

protected:
    ~IDocPublisherJanitor() = default;
};

/// The one sequence of a publish run; a derived class supplies the steps that
/// depend on the kind of output. Publishers hold nothing of a run and serve
/// all requests.
///
/// The key space document stands on the disk for the length of a run, so that
/// references in and beside it resolve like those of any source document. It
/// is removed on every path.
class DocPublisher : private IDocPublisherJanitor {
public:
    explicit DocPublisher(PublisherId publisherId) : publisherId_(publisherId) {}
    DocPublisher(const DocPublisher&) = delete;
    DocPublisher& operator=(const DocPublisher&) = delete;
    virtual ~DocPublisher() = default;

    PublisherId publisherId() const noexcept { return publisherId_; }

    /// Runs the request. While it runs, no other run writes into the folder of its key space
    /// document: that one fails, and touches nothing. A result that comes back has the status 0;
    /// faults in the documents are report lines. Needs an open `XmlSession`.
    ///
    /// @throws PublishException, or what else a step throws. What an earlier step had rightly
    ///         written stays on the disk.
    std::unique_ptr<PublishResult> publish(std::unique_ptr<PublishParams> params);

protected:
    void cleanUp(const PublishParams& params) noexcept override;

    /// Removes what an earlier run left behind.
    virtual void prepare(const PublishParams& params);

    /// Builds and writes the key space document.
    virtual KeySpace buildKeySpaceDoc(const PublishParams& params, TopicIdMap& topicIds);

    /// Resolves the keyrefs and conrefs of the root map.
    virtual void resolveMapReferences(const std::u16string& mapPath, KeySpace& keySpace,
                                      TopicIdMap& topicIds);

    /// Builds the output in memory.
    virtual std::unique_ptr<PublishResult> assemble(const std::u16string& mapPath,
                                                    KeySpace& keySpace, TopicIdMap& topicIds,
                                                    const PublishParams& params) = 0;

    virtual void removeStaleOutput(const PublishParams& params) = 0;
    virtual void writeOutput(const PublishParams& params, const PublishResult& result) = 0;
    /// The absolute path of "ditamap".
    virtual std::u16string getMapPath(const PublishParams& params);
    virtual std::u16string getKeySpaceDocPath(const PublishParams& params) = 0;
    /// The absolute paths of the outputs that are known before the run.
    virtual std::vector<std::u16string> getOutputPaths(const PublishParams& params) = 0;

private:
    void refuseForeignParams(const PublishParams& params) const;
    /// Refuses a request by which an output would take the place of the map, of the profile or of
    /// another output, or of what is no file.
    void refuseUnsafePlaces(const PublishParams& params);

    PublisherId publisherId_;
};

/// Writes a document of the result over its file; null fails. A failure is message 107.
///
/// @throws as `saveDocumentInPlace`.
void writeResultDocument(const xercesc::DOMDocument* document);

/// Removes the file at `path` if there is one; of a link, whatever it leads to, the link alone.
///
/// @throws std::filesystem::filesystem_error "remove" when the system says why it can't,
///         OutputFileRemoveOperationFailedException when it says nothing, and for what is neither
///         a regular file nor a link: that is nobody's old output.
void removeOldFile(const std::u16string& path);

}  // namespace marrowpress
