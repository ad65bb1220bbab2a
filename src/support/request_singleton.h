#pragma once

#include <memory>

namespace marrowpress {

/// The one object of type `T` of a request: created on first use, ended by
/// `destroy` when the `XmlSession` closes.
///
/// Not guarded: requests run on one thread, one after the other.
template <class T>
class RequestSingleton {
public:
    static T& instance() {
        if (!object_) {
            object_ = std::make_unique<T>();
        }
        return *object_;
    }

    /// The object if it was created since the last `destroy`, else null.
    static T* existing() noexcept { return object_.get(); }

    static void destroy() noexcept { object_.reset(); }

private:
    static inline std::unique_ptr<T> object_;
};

}  // namespace marrowpress
