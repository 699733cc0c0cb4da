// Ownership of Objective-C objects under manual retain/release: a RetainPtr keeps one object alive
// for as long as it names it, so that nobody writes `retain` or `release`. It may be an instance
// variable, an element of a container or a capture. As thread-safe as a plain pointer.
//
//     RetainPtr<NSWindow> window = adoptNS([[NSWindow alloc] init]);  // takes over the +1 of alloc
//     RetainPtr<NSString> title = retainPtr([window title]);          // shares what others own
//     [window setTitle:@"..."];                                       // converts by itself ...
//     NSWindow* plain = window.get();                                 // ... or when asked
//
// A temporary converts only through get(): the pointer would outlive what keeps the object alive.
#pragma once

#import <Foundation/Foundation.h>

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

#if __has_feature(objc_arc)
#error "RetainPtr is for files compiled without automatic reference counting"
#endif

namespace veltrix {

template <typename T> class RetainPtr {
  public:
    // RetainPtr<NSWindow> holds an NSWindow*, RetainPtr<id> an id.
    using Pointer = std::conditional_t<std::is_pointer_v<T>, T, std::add_pointer_t<T>>;

    constexpr RetainPtr() = default;
    constexpr RetainPtr(std::nullptr_t) {}
    RetainPtr(Pointer object) : object_([object retain]) {}
    RetainPtr(const RetainPtr& other) : RetainPtr(other.object_) {}
    RetainPtr(RetainPtr&& other) noexcept : object_(other.leak()) {}

    // From the holder of a subclass.
    template <typename U>
    requires(!std::is_same_v<T, U> &&
             std::is_convertible_v<typename RetainPtr<U>::Pointer, Pointer>)
        RetainPtr(const RetainPtr<U>& other)
        : RetainPtr(Pointer(other.get())) {}
    template <typename U>
    requires(!std::is_same_v<T, U> &&
             std::is_convertible_v<typename RetainPtr<U>::Pointer, Pointer>)
        RetainPtr(RetainPtr<U>&& other)
    noexcept : object_(other.leak()) {}

    ~RetainPtr() { [object_ release]; }

    // By value: the old object is released last, when nothing can still see the holder half set.
    RetainPtr& operator=(RetainPtr other) noexcept {
        swap(other);
        return *this;
    }

    [[nodiscard]] Pointer get() const { return object_; }
    operator Pointer() const& { return object_; }
    operator Pointer() const&& = delete;
    explicit operator bool() const { return object_ != nullptr; }

    // Gives up the object without releasing it; the caller owns it from then on.
    [[nodiscard]] Pointer leak() { return std::exchange(object_, nullptr); }

    // Gives up the object to the current autorelease pool: for what a method returns.
    [[nodiscard]] Pointer autorelease() { return [leak() autorelease]; }

    void swap(RetainPtr& other) noexcept { std::swap(object_, other.object_); }

    // Identity, never isEqual:.
    friend bool operator==(const RetainPtr& a, const RetainPtr& b) {
        return a.object_ == b.object_;
    }
    template <typename Object>
    requires std::is_convertible_v<Object, id>
    friend bool operator==(const RetainPtr& a, Object b) {
        return static_cast<id>(a.object_) == static_cast<id>(b);
    }

    // Takes over an object that the caller already owns.
    [[nodiscard]] static RetainPtr adopt(Pointer object) {
        RetainPtr owner;
        owner.object_ = object;
        return owner;
    }

  private:
    Pointer object_ = nullptr;
};

template <typename T>
using RetainPtrFor =
    RetainPtr<std::conditional_t<std::is_same_v<T, id>, id, std::remove_pointer_t<T>>>;

// For what `alloc`, `new`, `copy` and `mutableCopy` return.
template <typename Pointer> [[nodiscard]] RetainPtrFor<Pointer> adoptNS(Pointer object) {
    return RetainPtrFor<Pointer>::adopt(object);
}

// For what everything else returns.
template <typename Pointer> [[nodiscard]] RetainPtrFor<Pointer> retainPtr(Pointer object) {
    return RetainPtrFor<Pointer>(object);
}

// The object if it is one of T or of a subclass, else nil: a value of another type counts as
// absent.
template <typename T> [[nodiscard]] T* dynamicCast(id object) {
    return [object isKindOfClass:[T class]] ? static_cast<T*>(object) : nil;
}

}  // namespace veltrix

// Identity, as for plain pointers: usable as the key of an unordered container.
template <typename T> struct std::hash<veltrix::RetainPtr<T>> {
    std::size_t operator()(const veltrix::RetainPtr<T>& owner) const noexcept {
        return std::hash<const void*>()((const void*)owner.get());
    }
};
