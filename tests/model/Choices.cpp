#include "model/Choices.h"

#include <algorithm>

namespace veltrix::test {
namespace {

constexpr int kMostAttempts = 20'000;

using List = std::vector<unsigned>;

// Keeps the smallest run found so far that goes wrong.
class Shrinker {
  public:
    Shrinker(const Property& property, List list, std::string story)
        : property_(property), list_(std::move(list)), story_(std::move(story)) {}

    std::string smallest() {
        while (dropRuns() || lowerNumbers()) {
        }
        return story_;
    }

  private:
    bool accept(List candidate) {
        if (++attempts_ > kMostAttempts) {
            return false;
        }
        Choices choices(std::move(candidate));
        std::optional<std::string> story = property_(choices);
        // What the run really used: shorter, or of the same length and smaller, or no progress.
        const List& used = choices.made();
        if (!story || used.size() > list_.size() ||
            (used.size() == list_.size() && used >= list_)) {
            return false;
        }
        list_ = used;
        story_ = std::move(*story);
        return true;
    }

    bool dropRuns() {
        bool progress = false;
        for (std::size_t length = std::max<std::size_t>(list_.size() / 2, 1);; length /= 2) {
            for (std::size_t at = 0; at + length <= list_.size();) {
                List shorter = list_;
                const auto first = shorter.begin() + static_cast<std::ptrdiff_t>(at);
                shorter.erase(first, first + static_cast<std::ptrdiff_t>(length));
                const bool accepted = accept(std::move(shorter));
                progress = progress || accepted;
                at += accepted ? 0 : length;
            }
            if (length <= 1) {
                return progress;
            }
        }
    }

    bool lowerNumbers() {
        bool progress = false;
        for (std::size_t at = 0; at < list_.size(); ++at) {
            const unsigned number = list_[at];
            for (const unsigned lower : {0U, number / 2, number - 1}) {
                List simpler = list_;
                simpler[at] = lower;
                if (lower < number && accept(std::move(simpler))) {
                    progress = true;
                    break;
                }
            }
        }
        return progress;
    }

    const Property& property_;
    List list_;
    std::string story_;
    int attempts_ = 0;
};

}  // namespace

unsigned Choices::below(unsigned bound) {
    unsigned choice = 0;
    if (!list_) {
        choice = static_cast<unsigned>(engine_() % bound);
    } else if (made_.size() < list_->size()) {
        choice = (*list_)[made_.size()] % bound;
    }
    made_.push_back(choice);
    return choice;
}

std::optional<std::string> counterexample(const Property& property, std::uint64_t seed) {
    Choices choices(seed);
    std::optional<std::string> story = property(choices);
    if (!story) {
        return std::nullopt;
    }
    return Shrinker(property, choices.made(), std::move(*story)).smallest();
}

}  // namespace veltrix::test
