// Another implementation of an Objective-C method for as long as this object lives: to see a call
// that leaves no trace, or to stand in for the rest of the computer. Main thread only.
#pragma once

#import <Foundation/Foundation.h>

#include <objc/runtime.h>

namespace veltrix::test {

class MethodSwap {
  public:
    // `replacement` takes the receiver and the selector first, then the method's own parameters.
    // For a class method, `owner` is object_getClass() of the class. A method that the class
    // inherits is replaced where it is defined.
    template <typename Result, typename... Parameters>
    MethodSwap(Class owner, SEL selector, Result (*replacement)(id, SEL, Parameters...))
        : method_(class_getInstanceMethod(owner, selector)),
          original_(method_setImplementation(method_, reinterpret_cast<IMP>(replacement))) {}
    ~MethodSwap() { method_setImplementation(method_, original_); }
    MethodSwap(const MethodSwap&) = delete;
    MethodSwap& operator=(const MethodSwap&) = delete;

    // What the method did before, with the type of the replacement.
    template <typename Function>
    [[nodiscard]] Function original() const {
        return reinterpret_cast<Function>(original_);
    }

  private:
    Method method_;
    IMP original_;
};

}  // namespace veltrix::test
