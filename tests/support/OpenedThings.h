// Stands in for the browser and the file manager: writes down what the workspace is asked to open,
// and opens nothing. One at a time; main thread only.
#pragma once

#include "support/MethodSwap.h"

#import <AppKit/AppKit.h>

#include <string>
#include <vector>

namespace veltrix::test {

class OpenedThings {
  public:
    OpenedThings();

    // The absolute address of every page and the path of every folder, in order, the refused ones
    // included.
    [[nodiscard]] const std::vector<std::string>& list() const;

    // From now on nothing can be opened.
    void refuse();

  private:
    MethodSwap swap_;
};

}  // namespace veltrix::test
