#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <memory>

#include "client/notifications.h"
#include "publish/output_formats.h"
#include "publish/publish_params.h"
#include "support/text.h"
#include "tests/fuzz/fuzzing.h"

namespace {

using namespace std::string_literals;

using marrowpress::CompositePublishParams;
using marrowpress::FlatBookPublishParams;
using marrowpress::NotificationRecord;
using marrowpress::OutputFormats;
using marrowpress::PublisherId;
using marrowpress::PublishParams;
using marrowpress::require;
using marrowpress::toUtf8;

/// The parameters of `text`; null when it is refused.
std::unique_ptr<PublishParams> paramsOf(const std::string& text) {
    try {
        return marrowpress::parseRequest(OutputFormats::instance().factories(), text.c_str());
    } catch (const marrowpress::UnsupportedPublishParamsException&) {
        return nullptr;
    }
}

/// The request that `params` were made of, as their getters tell it; empty when one of them
/// refuses.
std::string requestOf(const PublishParams& params) try {
    boost::json::object values{{"ditamap", toUtf8(params.getDitamap())},
                               {"ditaVal", toUtf8(params.getDitaVal())},
                               {"keyspaceDocDtd", toUtf8(params.getKeyspaceDocDtd())},
                               {"compositeDocDtd", toUtf8(params.getCompositeDocDtd())},
                               {"usePrint", params.getUsePrint()}};
    if (params.publisherId() == PublisherId::kComposite) {
        const auto& composite = dynamic_cast<const CompositePublishParams&>(params);
        values["output"] = toUtf8(composite.getOutput());
        return boost::json::serialize(
            boost::json::object{{"type", "PublishComp"}, {"params", values}});
    }
    const auto& flatBook = dynamic_cast<const FlatBookPublishParams&>(params);
    values["outputDir"] = toUtf8(flatBook.getOutputDir());
    values["generateQSComponentsAtOneLoc"] = flatBook.getGenerateQSComponentsAtOneLoc();
    return boost::json::serialize(
        boost::json::object{{"type", "PublishFlatBook"}, {"params", values}});
} catch (const marrowpress::UnsupportedPublishParamsException&) {
    return {};
}

void checkRequest(const std::string& text) {
    const std::unique_ptr<PublishParams> params = paramsOf(text);
    if (!params) {
        return;
    }
    OutputFormats::instance().publisherFor(*params);
    const std::string request = requestOf(*params);
    if (request.empty()) {
        return;
    }
    const std::unique_ptr<PublishParams> again = paramsOf(request);
    require(again != nullptr, "what the getters give makes a request", request);
    require(requestOf(*again) == request, "the getters give what the request has", request);
}

void checkRecord(const std::string& text) {
    const NotificationRecord record(text.c_str());
    std::string joined;
    for (std::uint32_t field = 0; field < record.count(); ++field) {
        joined.append(field == 0 ? ""s : "\x1E"s).append(record.fields()[field]);
    }
    require(record.fields()[record.count()] == nullptr, "a null pointer ends the fields", text);
    require(joined == text.substr(0, text.find('\0')), "a record's fields are its text", joined);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = marrowpress::inputText(data, size);
    checkRequest(text);
    checkRecord(text);
    return 0;
}
