// The end of the road for programming errors: a bundle without resources, a constant URL that
// does not parse. Never for anything a person, a script or the system can cause at run time.
#pragma once

namespace veltrix {

// Writes the message to standard error and stops the process (abort(3)). Any thread.
[[noreturn]] void fatalProgrammingError(const char* message);

}  // namespace veltrix
