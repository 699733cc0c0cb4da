// Files that a crash has cut off: a file is replaced by writing another one beside it and renaming
// that, and in between a process may end. Any thread.
#pragma once

#include <string>

namespace veltrix::gnustep {

// Removes what was written in `folder` to replace the file `name` and was never renamed: Foundation
// calls it `name` and six letters or digits. What is a minute old nobody is writing any more.
void removeUnfinishedFiles(const std::string& folder, const std::string& name);

}  // namespace veltrix::gnustep
