#pragma once

namespace marrowpress {

/// While it lasts, ICU opens no converter, so that Xerces can't start.
class RefusedConverters {
public:
    RefusedConverters();
    RefusedConverters(const RefusedConverters&) = delete;
    RefusedConverters& operator=(const RefusedConverters&) = delete;
    ~RefusedConverters();
};

}  // namespace marrowpress
