// Where a property test gets its decisions from: a random engine with a seed, or a list that is
// played back. Every decision is a small number, and smaller means simpler, so a run that went
// wrong can be cut down by cutting its list down, whatever the decisions were about. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace veltrix::test {

class Choices {
  public:
    explicit Choices(std::uint64_t seed) : engine_(seed) {}
    // Plays the list back; whatever is asked for beyond its end is 0.
    explicit Choices(std::vector<unsigned> list) : list_(std::move(list)) {}

    // A number below `bound`, which is not 0.
    unsigned below(unsigned bound);
    bool oneIn(unsigned count) { return below(count) == count - 1; }

    template <typename Range>
    const auto& from(const Range& range) {
        return range[below(static_cast<unsigned>(std::size(range)))];
    }

    // Everything decided so far.
    [[nodiscard]] const std::vector<unsigned>& made() const { return made_; }

  private:
    std::mt19937_64 engine_;
    std::optional<std::vector<unsigned>> list_;
    std::vector<unsigned> made_;
};

// Plays one run through and tells its story if it went wrong.
using Property = std::function<std::optional<std::string>(Choices&)>;

// The story of the run with this seed if that goes wrong, told with as few decisions as could be
// found in a bounded number of attempts.
[[nodiscard]] std::optional<std::string> counterexample(const Property& property,
                                                        std::uint64_t seed);

}  // namespace veltrix::test
