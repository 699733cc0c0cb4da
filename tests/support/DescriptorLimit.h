// A process that has run out of descriptors: while this lives, exactly `spare` more can be opened.
// Lowers the limit of the whole process, so nothing else may open any meanwhile.
#pragma once

#include <sys/resource.h>

#include <cstddef>
#include <vector>

namespace veltrix::test {

class DescriptorLimit {
  public:
    explicit DescriptorLimit(std::size_t spare);
    ~DescriptorLimit();
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;

  private:
    rlimit original_{};
    std::vector<int> fillers_;
};

}  // namespace veltrix::test
