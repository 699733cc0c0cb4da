// Adds to a method of a library class instead of replacing it: the replacement is called in its
// place and calls the original itself. A category that merely defines the method again would lose
// what the library does there.
#pragma once

#import <Foundation/Foundation.h>

namespace veltrix::gnustep {

// The method must be implemented by `owner` itself, not inherited: wrapping an inherited one would
// change it for every other subclass. Ends the process otherwise, as both can only be mistakes in
// this library.
void wrapMethod(Class owner, SEL selector, void (*replacement)(), void (*&original)());

template <typename Result, typename... Arguments>
void wrapMethod(Class owner, SEL selector, Result (*replacement)(id, SEL, Arguments...),
                Result (*&original)(id, SEL, Arguments...)) {
    using Untyped = void (*)();
    Untyped untyped = nullptr;
    wrapMethod(owner, selector, reinterpret_cast<Untyped>(replacement), untyped);
    original = reinterpret_cast<Result (*)(id, SEL, Arguments...)>(untyped);
}

}  // namespace veltrix::gnustep
