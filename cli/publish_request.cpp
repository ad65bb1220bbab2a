#include "cli/publish_request.h"

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <utility>

namespace marrowpress {

std::string buildRequest(const PublishOptions& options, const PublishPaths& paths,
                         const std::optional<std::filesystem::path>& filter) {
    boost::json::object params{{"ditamap", paths.map.string()}};
    const char* type = nullptr;
    switch (options.format) {
        case OutputFormat::kComposite:
            type = "PublishComp";
            params["output"] = paths.output.string();
            break;
        case OutputFormat::kFlatBook:
            type = "PublishFlatBook";
            params["outputDir"] = paths.output.string();
            params["generateQSComponentsAtOneLoc"] = options.isAtOneLocation;
            break;
    }
    params["ditaVal"] = filter ? filter->string() : std::string();
    params["keyspaceDocDtd"] = options.keySpaceDtd;
    params["compositeDocDtd"] = options.compositeDtd;
    params["usePrint"] = options.isForPrint;
    return boost::json::serialize(
        boost::json::object{{"type", type}, {"params", std::move(params)}});
}

}  // namespace marrowpress
