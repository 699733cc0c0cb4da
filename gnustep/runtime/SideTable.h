// Additional state of objects whose classes belong to the library: GCC's runtime has no associated
// objects. A row lives until its object is deallocated, which works for views, windows, menu items,
// images, layout anchors and alerts (SideTable.mm wraps their -dealloc). Main thread only.
#pragma once

#import <Foundation/Foundation.h>

#include <unordered_map>

namespace veltrix::gnustep {

class SideTableBase {
  public:
    SideTableBase(const SideTableBase&) = delete;
    SideTableBase& operator=(const SideTableBase&) = delete;

    virtual void forget(id object) = 0;

  protected:
    // Enters the table among those that hear of deallocations. Tables live as long as the process.
    SideTableBase();
    ~SideTableBase() = default;
};

// True while -dealloc of such an object runs. It may still send messages then, but must not be
// remembered any more.
bool isBeingDeallocated(id object);

template <typename Row>
class SideTable final : public SideTableBase {
  public:
    // The row of the object, made if there is none.
    Row& operator[](id object) { return rows_[object]; }

    const Row* find(id object) const {
        const auto found = rows_.find(object);
        return found == rows_.end() ? nullptr : &found->second;
    }

    void forget(id object) override {
        // Taken out first: releasing what the row holds may come back here.
        const auto row = rows_.extract(object);
    }

  private:
    std::unordered_map<id, Row> rows_;
};

}  // namespace veltrix::gnustep
