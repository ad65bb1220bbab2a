#pragma once

namespace marrowpress {

/// While it lasts, no file can be renamed, as if each name were on a volume of its own.
class SeparateVolumes {
public:
    SeparateVolumes();
    SeparateVolumes(const SeparateVolumes&) = delete;
    SeparateVolumes& operator=(const SeparateVolumes&) = delete;
    ~SeparateVolumes();
};

}  // namespace marrowpress
