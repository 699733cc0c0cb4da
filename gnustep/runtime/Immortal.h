// A static object that is never destroyed: AppKit still sends messages when the process is already
// on its way out and has begun to destroy static objects.
//
//     static Immortal<std::vector<NSView*>> views;
#pragma once

#include <new>
#include <utility>

namespace veltrix::gnustep {

template <typename T>
class Immortal {
  public:
    template <typename... Arguments>
    explicit Immortal(Arguments&&... arguments) {
        new (storage_) T(std::forward<Arguments>(arguments)...);
    }
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    T& operator*() { return *std::launder(reinterpret_cast<T*>(storage_)); }

  private:
    alignas(T) unsigned char storage_[sizeof(T)];
};

}  // namespace veltrix::gnustep
