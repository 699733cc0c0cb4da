#include "support/DescriptorLimit.h"

#include "support/Processes.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

namespace veltrix::test {

DescriptorLimit::DescriptorLimit(std::size_t spare) {
    EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &original_), 0);
    const std::vector<int> open = openDescriptors();
    rlimit lowered = original_;
    lowered.rlim_cur = static_cast<rlim_t>(open.back()) + 1 + spare;
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &lowered), 0);
    for (int fd = 0; (fd = ::open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;) {
        fillers_.push_back(fd);
    }
    for (std::size_t i = 0; i < spare; ++i) {
        ::close(fillers_.back());
        fillers_.pop_back();
    }
}

DescriptorLimit::~DescriptorLimit() {
    for (const int fd : fillers_) {
        ::close(fd);
    }
    ::setrlimit(RLIMIT_NOFILE, &original_);
}

}  // namespace veltrix::test
