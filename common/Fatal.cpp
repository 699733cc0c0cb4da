#include "common/Fatal.h"

#include <cstdio>
#include <cstdlib>

namespace veltrix {

void fatalProgrammingError(const char* message) {
    std::fprintf(stderr, "fatal programming error: %s\n", message);
    std::abort();
}

}  // namespace veltrix
