#include "tests/support/refused_converters.h"

#include <dlfcn.h>
#include <unicode/ucnv.h>
#include <unicode/uvernum.h>

namespace {

bool areConvertersRefused = false;
int allowedConverters = 0;
UErrorCode refusal = U_FILE_ACCESS_ERROR;

}  // namespace

// Stands in front of ICU's own for the whole program, the engine included.
U_CAPI UConverter* U_EXPORT2 ucnv_open(const char* name, UErrorCode* error) {
    using Open = UConverter* (*)(const char*, UErrorCode*);
    static const auto open =
        reinterpret_cast<Open>(::dlsym(RTLD_NEXT, "ucnv_open_" U_ICU_VERSION_SHORT));
    if (areConvertersRefused && allowedConverters-- <= 0) {
        *error = refusal;
        return nullptr;
    }
    return open(name, error);
}

namespace marrowpress {

RefusedConverters::RefusedConverters(int allowed, UErrorCode error) {
    refusal = error;
    allowedConverters = allowed;
    areConvertersRefused = true;
}

RefusedConverters::~RefusedConverters() {
    areConvertersRefused = false;
}

}  // namespace marrowpress
