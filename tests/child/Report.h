// What the fixture child sees of itself: how it was called and what it inherited. Read back by
// tests/support/ChildReport.h.
#pragma once

#include <string>

namespace child {

// Records of the form "NAME LENGTH\nBYTES\n", several of the same name for lists:
//   argument, variable, descriptor, blocked and handled (signals), pid, parent, group,
//   errors (the device behind standard error), folder
std::string report(int argumentCount, char** arguments);

}  // namespace child
