// The functions of marrowpress.h, and nothing but: what they do stands beside.

#include <malloc.h>

#include <exception>
#include <filesystem>
#include <memory>
#include <new>
#include <system_error>
#include <utility>

#include "library/calling_back.h"
#include "library/child_run.h"
#include "library/failure.h"
#include "library/order.h"
#include "library/request_facts.h"
#include "library/result.h"
#include "library/run_turn.h"
#include "library/served_run.h"

namespace marrowpress {
namespace {

/// Tells of what is being thrown.
ResultData resultOfException() {
    try {
        throw;
    } catch (const LibraryFailure& failure) {
        return failedResult(failure.code(), failure.what());
    } catch (const std::bad_alloc&) {
        return failedResult(MP_NO_MEMORY, mp_code_text(MP_NO_MEMORY));
    } catch (const std::system_error& failure) {
        return failedResult(MP_SYSTEM, failure.what());
    } catch (const std::exception& failure) {
        return failedResult(MP_INTERNAL, failure.what());
    } catch (...) {
        return failedResult(MP_INTERNAL, mp_code_text(MP_INTERNAL));
    }
}

/// Gives the result of `work` to the caller, findings to its callback first.
template <class Work>
int answer(const char* request, const mp_options* options, mp_result** result,
           const Work& work) noexcept {
    if (!result) {
        return MP_INVALID;
    }
    *result = nullptr;
    try {
        std::unique_ptr<mp_result> made;
        try {
            made = work(readOrder(request, options));
        } catch (...) {
            made = std::make_unique<mp_result>(resultOfException());
        }
        *result = made.release();
        return (*result)->data().code;
    } catch (...) {
        return MP_NO_MEMORY;
    }
}

std::unique_ptr<mp_result> told(const Order& order, ResultData data) {
    auto result = std::make_unique<mp_result>(std::move(data));
    if (order.onFinding) {
        for (const mp_finding& finding : result->findings()) {
            order.onFinding(finding);
        }
    }
    return result;
}

/// What a run has freed lies in pieces, into which the next one does not fit: each of the first few
/// runs would take more than the one before.
void giveMemoryBack() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

/// What `serve` gives, from within which callbacks may come, but that for findings.
ResultData callingBack(const Order& order, ResultData (*serve)(const Order&)) {
    const bool isTrial = order.has(MP_CHECK | MP_SURVEY);
    const FolderTurn turn(isTrial ? std::filesystem::path() : factsOf(order.request).folder());
    return serve(order);
}

std::unique_ptr<mp_result> serveHere(const Order& order) {
    const RunTurn turn(order);
    chooseLanguage(order.language);
    std::unique_ptr<mp_result> result = told(order, callingBack(order, serve));
    giveMemoryBack();
    return result;
}

template <class Items>
auto* itemAt(const Items& items, std::size_t index) {
    return index < items.size() ? &items[index] : nullptr;
}

}  // namespace
}  // namespace marrowpress

using marrowpress::itemAt;

int mp_run(const char* request, const mp_options* options, mp_result** result) {
    return marrowpress::answer(request, options, result, marrowpress::serveHere);
}

int mp_spawn(const char* request, const mp_options* options, mp_result** result) {
    return marrowpress::answer(request, options, result, [](const marrowpress::Order& order) {
        return marrowpress::told(order, marrowpress::callingBack(order, marrowpress::serveInChild));
    });
}

int mp_serve(int socket) {
    return marrowpress::serveParent(socket);
}

void mp_result_free(mp_result* result) {
    const std::unique_ptr<mp_result> owner(result);
}

int mp_result_code(const mp_result* result) {
    return result ? result->data().code : MP_NO_MEMORY;
}

const char* mp_result_error(const mp_result* result) {
    return result ? result->data().error.c_str() : mp_code_text(MP_NO_MEMORY);
}

std::int32_t mp_result_status(const mp_result* result) {
    return result ? result->data().status.value_or(MP_NO_STATUS) : MP_NO_STATUS;
}

int mp_result_signal(const mp_result* result) {
    return result ? result->data().signal : 0;
}

std::size_t mp_result_value_count(const mp_result* result) {
    return result ? result->values().size() : 0;
}

const mp_value* mp_result_value(const mp_result* result, std::size_t index) {
    return result ? itemAt(result->values(), index) : nullptr;
}

std::size_t mp_result_finding_count(const mp_result* result) {
    return result ? result->findings().size() : 0;
}

const mp_finding* mp_result_finding(const mp_result* result, std::size_t index) {
    return result ? itemAt(result->findings(), index) : nullptr;
}

std::size_t mp_result_dependency_count(const mp_result* result) {
    return result ? result->dependencies().size() : 0;
}

const mp_dependency* mp_result_dependency(const mp_result* result, std::size_t index) {
    return result ? itemAt(result->dependencies(), index) : nullptr;
}

std::size_t mp_result_key_count(const mp_result* result) {
    return result ? result->keys().size() : 0;
}

const char* mp_result_key(const mp_result* result, std::size_t index) {
    return index < mp_result_key_count(result) ? result->keys()[index] : nullptr;
}

std::size_t mp_result_output_count(const mp_result* result) {
    return result ? result->data().outputs.size() : 0;
}

const char* mp_result_output(const mp_result* result, std::size_t index) {
    return index < mp_result_output_count(result) ? result->data().outputs[index].c_str() : nullptr;
}

const char* mp_version(void) {
    return MARROWPRESS_VERSION;
}
