#include "references/copied_references.h"

#include "support/publish_exception.h"
#include "support/request_singleton.h"

namespace marrowpress {
namespace {

constexpr std::size_t kMostFollowed = 1'000'000;
constexpr std::size_t kMostSearched = 300'000'000;

void spend(std::size_t& spent, std::size_t more, std::size_t most) {
    spent += more;
    if (spent > most) {
        throw PublishException();
    }
}

}  // namespace

CopiedReferences& CopiedReferences::instance() {
    return RequestSingleton<CopiedReferences>::instance();
}

void CopiedReferences::follow() {
    spend(followed_, 1, kMostFollowed);
}

void CopiedReferences::search(std::size_t elements) {
    spend(searched_, elements, kMostSearched);
}

bool CopiedReferences::isSpent() const noexcept {
    return followed_ > kMostFollowed || searched_ > kMostSearched;
}

}  // namespace marrowpress
