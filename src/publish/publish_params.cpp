#include "publish/publish_params.h"

#include <boost/json/parse.hpp>

#include "support/text.h"

namespace marrowpress {
namespace {

/// Runs `read`; whatever it throws becomes a refusal of the request.
template <class Read>
auto refusing(Read&& read) {
    try {
        return read();
    } catch (...) {
        throw UnsupportedPublishParamsException();
    }
}

boost::json::value parseJson(std::string_view text) {
    boost::json::parse_options options;
    options.max_depth = 32;
    options.allow_comments = false;
    options.allow_trailing_commas = false;
    options.allow_invalid_utf8 = false;
    boost::system::error_code error;
    boost::json::value root = boost::json::parse(text, error, {}, options);
    if (error) {
        throw UnsupportedPublishParamsException();
    }
    return root;
}

const PublishParamsFactory& factoryFor(const PublishParamsFactories& factories,
                                       std::string_view type) {
    for (const std::unique_ptr<PublishParamsFactory>& factory : factories) {
        if (type.starts_with(factory->typeKey())) {
            return *factory;
        }
    }
    throw UnsupportedPublishParamsException();
}

void refuseNulIn(const boost::json::string& text) {
    if (text.find('\0') != boost::json::string::npos) {
        throw UnsupportedPublishParamsException();
    }
}

}  // namespace

void PublishParams::refuseNul() const {
    const boost::json::object* const params = params_.if_object();
    for (const char* const key : {"ditamap", "ditaVal", "keyspaceDocDtd", "compositeDocDtd"}) {
        const boost::json::value* const value = params ? params->if_contains(key) : nullptr;
        if (value && value->is_string()) {
            refuseNulIn(value->get_string());
        }
    }
}

std::u16string PublishParams::readString(std::string_view key) const {
    return refusing([&] {
        const boost::json::string& text = params_.as_object().at(key).as_string();
        refuseNulIn(text);
        return toUtf16(std::string_view(text));
    });
}

bool PublishParams::readBool(std::string_view key) const {
    return refusing([&] { return params_.as_object().at(key).as_bool(); });
}

std::unique_ptr<PublishParams> CompositePublishParamsFactory::create(
    const boost::json::value& params) const {
    return std::make_unique<CompositePublishParams>(params);
}

std::unique_ptr<PublishParams> FlatBookPublishParamsFactory::create(
    const boost::json::value& params) const {
    return std::make_unique<FlatBookPublishParams>(params);
}

std::unique_ptr<PublishParams> parseRequest(const PublishParamsFactories& factories,
                                            const char* text) {
    return refusing([&] {
        const boost::json::value root = parseJson(text ? text : "");
        const boost::json::object& request = root.as_object();
        const boost::json::string& type = request.at("type").as_string();
        const PublishParamsFactory& factory = factoryFor(factories, std::string_view(type));
        // Without "params" the first getter refuses.
        const auto params = request.find("params");
        return factory.create(params == request.end() ? boost::json::value() : params->value());
    });
}

}  // namespace marrowpress
