// Defaults of GNUstep's own that make its windows behave on the desktop at hand. Registered, not
// set: what a user has set for GNUstep programs wins.
#pragma once

namespace veltrix::gnustep {

void registerDefaults();

}  // namespace veltrix::gnustep
