// What a library is known to lose, and we can do nothing about, while this object lives: memory
// that is allocated meanwhile is not missed by LeakSanitizer. For one call each, with its reason;
// our own leaks must stay outside. Libraries that keep their function names are named in leaks.supp
// instead.
#pragma once

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#define VELTRIX_FINDS_LEAKS
#endif
#endif

namespace veltrix::test {

#ifdef VELTRIX_FINDS_LEAKS
inline constexpr bool kFindsLeaks = true;
inline void setLeakFinding(bool on) {
    on ? __lsan_enable() : __lsan_disable();
}
#else
inline constexpr bool kFindsLeaks = false;
inline void setLeakFinding(bool) {}
#endif

class LibraryLeak {
  public:
    LibraryLeak() { setLeakFinding(false); }
    ~LibraryLeak() { setLeakFinding(true); }
    LibraryLeak(const LibraryLeak&) = delete;
    LibraryLeak& operator=(const LibraryLeak&) = delete;
};

}  // namespace veltrix::test
