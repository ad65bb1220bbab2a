#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "marrowpress/marrowpress.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {

#ifdef __SANITIZE_ADDRESS__
inline constexpr bool kIsSanitized = true;
#else
inline constexpr bool kIsSanitized = false;
#endif

struct FreeResult {
    void operator()(mp_result* result) const noexcept { mp_result_free(result); }
};
using ResultPtr = std::unique_ptr<mp_result, FreeResult>;

/// A call of `mp_run` or `mp_spawn`.
using LibraryFunction = int (*)(const char*, const mp_options*, mp_result**);

/// A map of one topic, which refers to one that is not there, and requests about it.
class LibraryTest : public testing::Test {
protected:
    LibraryTest();

    /// A document whose elements have the class values of its DTD, which it does not name.
    static std::string topic(const std::string& title);

    /// @param output  A file's name in the folder.
    std::string composite(const std::string& output = "out.dita") const;
    std::string flatBook() const;

    /// Calls `function`, whose code is that of the result.
    ResultPtr call(LibraryFunction function, const std::string& request) const;
    ResultPtr run(const std::string& request) const { return call(mp_run, request); }
    ResultPtr spawn(const std::string& request) const { return call(mp_spawn, request); }

    /// Makes `options` call `work` with each progress line.
    void onProgress(std::function<void(const char*)> work);

    /// "MP105 m.ditamap:2" and its like, in their order.
    std::vector<std::string> findings(const ResultPtr& result) const;
    /// "t.dita topic read" and its like, without DTDs and catalogs.
    std::vector<std::string> dependencies(const ResultPtr& result) const;

    TemporaryFolder folder;
    mp_options options = MP_OPTIONS_INIT;

private:
    std::function<void(const char*)> progress_;
};

}  // namespace marrowpress
