#pragma once

namespace marrowpress {

/// While it lasts, ICU opens no more converters than `allowed`, so that Xerces can't start.
class RefusedConverters {
public:
    explicit RefusedConverters(int allowed = 0);
    RefusedConverters(const RefusedConverters&) = delete;
    RefusedConverters& operator=(const RefusedConverters&) = delete;
    ~RefusedConverters();
};

}  // namespace marrowpress
