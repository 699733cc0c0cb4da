// A home of the test program's own: its user defaults, library folder and runtime folder lie in a
// temporary folder. To be made before the first use of Foundation, which looks at these once. (For
// the temporary folder of GNUstep itself main() is too late: see on-a-display.)
#pragma once

#include "support/TempFolder.h"

namespace veltrix::test {

class IsolatedHome {
  public:
    IsolatedHome();

  private:
    TempFolder folder_;
};

}  // namespace veltrix::test
