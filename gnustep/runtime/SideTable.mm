#include "gnustep/runtime/SideTable.h"

#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/MethodWrap.h"
#include "gnustep/runtime/SetUp.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <vector>

namespace veltrix::gnustep {
namespace {

std::vector<SideTableBase*>& tables() {
    static Immortal<std::vector<SideTableBase*>> all;
    return *all;
}

std::vector<id>& dying() {
    static Immortal<std::vector<id>> objects;
    return *objects;
}

// One original to go back to for every class that is wrapped.
template <typename Owner> struct Deallocation {
    static inline void (*original)(id, SEL) = nullptr;

    static void observed(id self, SEL command) {
        dying().push_back(self);
        for (SideTableBase* table : tables())
            table->forget(self);
        original(self, command);
        std::erase(dying(), self);
    }
};

template <typename Owner> void observeDeallocation() {
    wrapMethod([Owner class], @selector(dealloc), Deallocation<Owner>::observed,
               Deallocation<Owner>::original);
}

}  // namespace

bool isBeingDeallocated(id object) {
    return std::find(dying().begin(), dying().end(), object) != dying().end();
}

SideTableBase::SideTableBase() {
    tables().push_back(this);
}

void installSideTables() {
    observeDeallocation<NSView>();
    observeDeallocation<NSWindow>();
    observeDeallocation<NSMenuItem>();
    observeDeallocation<NSImage>();
    observeDeallocation<NSLayoutAnchor>();
    observeDeallocation<NSAlert>();
}

}  // namespace veltrix::gnustep
