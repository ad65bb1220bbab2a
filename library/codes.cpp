#include "marrowpress/marrowpress.h"

const char* mp_code_text(int code) {
    switch (code) {
        case MP_OK:
            return "there is an answer";
        case MP_INVALID:
            return "an argument is null, of an unknown size, not UTF-8, or unknown";
        case MP_BUSY:
            return "a request is being served in this process";
        case MP_FORKED:
            return "the process was forked since it loaded the library";
        case MP_CANCELLED:
            return "the request was cancelled";
        case MP_NO_MEMORY:
            return "there is not enough memory";
        case MP_UNAVAILABLE:
            return "a part of the installation is missing, or cannot be started";
        case MP_SYSTEM:
            return "the system refused a folder, a descriptor or a process";
        case MP_CRASHED:
            return "the child ended without an answer";
        case MP_TIMED_OUT:
            return "the child took longer than it may";
        case MP_INTERNAL:
            return "something went wrong that nothing is known of";
        default:
            return "this code is unknown";
    }
}
