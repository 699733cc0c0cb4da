#include "gnustep/runtime/MethodWrap.h"

#include <objc/runtime.h>

#include <cstdio>
#include <cstdlib>

namespace veltrix::gnustep {
namespace {

Method methodOfItsOwn(Class owner, SEL selector) {
    unsigned count = 0;
    Method* const methods = class_copyMethodList(owner, &count);
    Method found = nullptr;
    for (unsigned i = 0; i < count && !found; ++i)
        if (sel_isEqual(method_getName(methods[i]), selector))
            found = methods[i];
    std::free(methods);
    return found;
}

}  // namespace

void wrapMethod(Class owner, SEL selector, void (*replacement)(), void (*&original)()) {
    const Method method = methodOfItsOwn(owner, selector);
    if (!method) {
        std::fprintf(stderr, "%s does not implement -%s\n", class_getName(owner),
                     sel_getName(selector));
        std::abort();
    }
    original = reinterpret_cast<void (*)()>(
        method_setImplementation(method, reinterpret_cast<IMP>(replacement)));
}

}  // namespace veltrix::gnustep
