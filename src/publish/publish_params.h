#pragma once

#include <boost/json/value.hpp>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "publish/publisher_id.h"
#include "support/publish_exception.h"

/// The publish request and its parameters.
///
/// Nothing is checked when a request is parsed, apart from its "type": each
/// getter reads its key at the moment when a run needs it, so that a bad
/// parameter ends the run at that point.
namespace marrowpress {

/// The parameters of a run. The getters read the value anew at each call; paths and identifiers
/// come back in UTF-16, as they stand in the request.
///
/// Every getter throws `UnsupportedPublishParamsException` when "params" is no object, the key is
/// missing or its value has another type, and for a text with a NUL.
class PublishParams {
public:
    PublishParams(const PublishParams&) = delete;
    PublishParams& operator=(const PublishParams&) = delete;
    virtual ~PublishParams() = default;

    PublisherId publisherId() const noexcept { return publisherId_; }

    std::u16string getDitamap() const { return readString("ditamap"); }
    std::u16string getDitaVal() const { return readString("ditaVal"); }
    std::u16string getKeyspaceDocDtd() const { return readString("keyspaceDocDtd"); }
    std::u16string getCompositeDocDtd() const { return readString("compositeDocDtd"); }
    bool getUsePrint() const { return readBool("usePrint"); }

    /// Refuses a NUL in the texts of the getters above, before a step does that needs one: cut
    /// there, it would name another file. What else is wrong with them shows at that step.
    ///
    /// @throws UnsupportedPublishParamsException.
    void refuseNul() const;

    /// The key space document's file, once the run has named it: to remove it must take no memory,
    /// which may be what the run fails for.
    const std::filesystem::path& keySpaceDoc() const noexcept { return keySpaceDoc_; }
    void setKeySpaceDoc(std::filesystem::path file) noexcept { keySpaceDoc_ = std::move(file); }

protected:
    /// Keeps a deep copy of `params`.
    PublishParams(PublisherId publisherId, const boost::json::value& params)
        : params_(params), publisherId_(publisherId) {}

    std::u16string readString(std::string_view key) const;
    bool readBool(std::string_view key) const;

private:
    boost::json::value params_;
    std::filesystem::path keySpaceDoc_;
    PublisherId publisherId_;
};

class CompositePublishParams final : public PublishParams {
public:
    explicit CompositePublishParams(const boost::json::value& params)
        : PublishParams(PublisherId::kComposite, params) {}

    std::u16string getOutput() const { return readString("output"); }
};

class FlatBookPublishParams final : public PublishParams {
public:
    explicit FlatBookPublishParams(const boost::json::value& params)
        : PublishParams(PublisherId::kFlatBook, params) {}

    std::u16string getOutputDir() const { return readString("outputDir"); }
    bool getGenerateQSComponentsAtOneLoc() const {
        return readBool("generateQSComponentsAtOneLoc");
    }
};

/// Makes the parameters of one type of request.
class PublishParamsFactory {
public:
    explicit PublishParamsFactory(std::string_view typeKey) : typeKey_(typeKey) {}
    PublishParamsFactory(const PublishParamsFactory&) = delete;
    PublishParamsFactory& operator=(const PublishParamsFactory&) = delete;
    virtual ~PublishParamsFactory() = default;

    /// The start of every "type" that this factory serves.
    const std::string& typeKey() const noexcept { return typeKey_; }

    virtual std::unique_ptr<PublishParams> create(const boost::json::value& params) const = 0;

private:
    std::string typeKey_;
};

class CompositePublishParamsFactory final : public PublishParamsFactory {
public:
    CompositePublishParamsFactory() : PublishParamsFactory("PublishComp") {}
    std::unique_ptr<PublishParams> create(const boost::json::value& params) const override;
};

class FlatBookPublishParamsFactory final : public PublishParamsFactory {
public:
    FlatBookPublishParamsFactory() : PublishParamsFactory("PublishFlatBook") {}
    std::unique_ptr<PublishParams> create(const boost::json::value& params) const override;
};

using PublishParamsFactories = std::vector<std::unique_ptr<PublishParamsFactory>>;

/// Makes the parameters of the request `text`, NUL-terminated UTF-8; null counts as empty.
///
/// The factory is the first whose key the request's "type" begins with, so that
/// "PublishCompanion" is served like "PublishComp".
///
/// @throws UnsupportedPublishParamsException for a text that is no JSON (comments, trailing
///         commas, invalid UTF-8 or more than 32 levels included), a root that is no object, or a
///         "type" that is missing, no string, or served by no factory.
std::unique_ptr<PublishParams> parseRequest(const PublishParamsFactories& factories,
                                            const char* text);

}  // namespace marrowpress
