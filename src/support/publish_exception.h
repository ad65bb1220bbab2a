#pragma once

#include <cstdint>
#include <exception>

#include "marrowpress/publish_status.h"

namespace marrowpress {

/// A failed run. The code is what the caller of the request gets as status.
class PublishException : public std::exception {
public:
    const char* what() const noexcept override { return "Publish Exception"; }
    virtual std::int32_t code() const noexcept { return kRunFailed; }
};

/// A request or a parameter that isn't what it has to be.
class UnsupportedPublishParamsException : public PublishException {
public:
    std::int32_t code() const noexcept override { return kRequestRefused; }
};

/// An old output file that is still there after its removal. The same code as a bad request, on
/// purpose: callers tell two kinds of failure apart, not three.
class OutputFileRemoveOperationFailedException : public PublishException {
public:
    std::int32_t code() const noexcept override { return kRequestRefused; }
};

}  // namespace marrowpress
