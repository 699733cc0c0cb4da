// Which fonts there are, asked before GNUstep is: it settles on its system font while the
// application object is being made.
#pragma once

namespace veltrix::gnustep {

// By PostScript name, as in "Inter-Regular".
bool isFontInstalled(const char* postScriptName);

}  // namespace veltrix::gnustep
