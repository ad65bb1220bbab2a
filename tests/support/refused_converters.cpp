#include "tests/support/refused_converters.h"

#include <dlfcn.h>
#include <unicode/ucnv.h>
#include <unicode/uvernum.h>

namespace {

bool areConvertersRefused = false;

}  // namespace

// Stands in front of ICU's own for the whole program, the engine included.
U_CAPI UConverter* U_EXPORT2 ucnv_open(const char* name, UErrorCode* error) {
    using Open = UConverter* (*)(const char*, UErrorCode*);
    static const auto open =
        reinterpret_cast<Open>(::dlsym(RTLD_NEXT, "ucnv_open_" U_ICU_VERSION_SHORT));
    if (areConvertersRefused) {
        *error = U_FILE_ACCESS_ERROR;
        return nullptr;
    }
    return open(name, error);
}

namespace marrowpress {

RefusedConverters::RefusedConverters() {
    areConvertersRefused = true;
}

RefusedConverters::~RefusedConverters() {
    areConvertersRefused = false;
}

}  // namespace marrowpress
