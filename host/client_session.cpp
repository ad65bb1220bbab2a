#include "host/client_session.h"

#include <stdexcept>

namespace marrowpress {

ClientSession::ClientSession(StandInHostOptions options, const std::filesystem::path& modulePath)
    : module_(modulePath), host_(std::move(options)) {
    if (!host_.attach(module_.entry(), module_.handle())) {
        throw std::runtime_error(modulePath.string() + ": the client did not attach");
    }
    if (!host_.initialize()) {
        throw std::runtime_error(modulePath.string() + ": the client did not start");
    }
}

}  // namespace marrowpress
