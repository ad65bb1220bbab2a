#pragma once

#include <unicode/utypes.h>

namespace marrowpress {

/// While it lasts, ICU opens no more converters than `allowed`, so that Xerces can't start; `error`
/// is its reason.
class RefusedConverters {
public:
    explicit RefusedConverters(int allowed = 0, UErrorCode error = U_FILE_ACCESS_ERROR);
    RefusedConverters(const RefusedConverters&) = delete;
    RefusedConverters& operator=(const RefusedConverters&) = delete;
    ~RefusedConverters();
};

}  // namespace marrowpress
