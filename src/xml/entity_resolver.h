#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>

namespace marrowpress {

/// The commands of the client "XmlUtilities", which knows the file that a
/// public identifier stands for. UTF-8; values stand between double quotes and
/// nothing in them is escaped.
class EntityResolverCommands {
public:
    static std::string startCommand(std::string_view path);
    static std::string endCommand();
    static std::string terminateCommand();
    /// Without a `baseUri` only the public identifier is named.
    static std::string resolveCommand(std::string_view publicId, std::string_view baseUri);
};

/// Tells "XmlUtilities" that the questions to come are about the document at `path`, until
/// `sendEnd`.
void sendStart(std::u16string_view path);
void sendEnd() noexcept;

/// Tells "XmlUtilities" that a parser has gone.
void sendTerminate() noexcept;

/// Finds the files of external entities: at their system identifier if a file
/// is there, else by asking "XmlUtilities" for the public identifier.
///
/// Answers, empty ones too, are kept by public identifier for the life of the
/// resolver. What is no local file is never opened, over no protocol: the
/// engine left to itself would connect to whatever an identifier names.
class QSXMLEntityResolver final : public xercesc::XMLEntityResolver {
public:
    /// A source that the parser will own, never null: the engine would go on with the system
    /// identifier by itself, and open what stands there by then. What is no local file is a source
    /// that fails like a server that can't be reached.
    xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* identifier) override;

    /// The path of the entity's file, empty if there is none.
    std::u16string resolvePath(xercesc::XMLResourceIdentifier& identifier);

    /// From now on, each public identifier that a file is looked for by is added to `publicIds`,
    /// whether its answer is known or not; null for no longer.
    void recordQuestions(std::vector<std::string>* publicIds) noexcept { recorded_ = publicIds; }

    /// The path in UTF-8 that stands for `publicId`, empty if nobody knows one. Asks once.
    std::string resolvePublicId(const std::string& publicId);

    /// The source for a public identifier in UTF-8; null for null or for one that nobody knows. The
    /// file need not exist.
    std::unique_ptr<xercesc::InputSource> sourceForPublicId(const std::string* publicId);

private:
    std::unique_ptr<xercesc::InputSource> findSource(
        const xercesc::XMLResourceIdentifier& identifier);

    std::unordered_map<std::string, std::string> pathsByPublicId_;
    std::vector<std::string>* recorded_ = nullptr;
};

}  // namespace marrowpress
