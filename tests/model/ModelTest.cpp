// Thousands of seeded runs of everything a person and the scripts can do, in any order, each step
// held against a model. VELTRIX_MODEL_SEED plays a single seed back.
#include "model/World.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <string>

namespace veltrix::test {
namespace {

constexpr std::uint64_t kRuns = 15'000;

Property companion(const ResourceFixture& bundle) {
    return [&bundle](Choices& choices) { return World(choices, bundle).play(); };
}

TEST(Model, AgreesWithTheCompanionAfterEveryStep) {
    const ResourceFixture bundle;
    const char* const wanted = std::getenv("VELTRIX_MODEL_SEED");
    const std::uint64_t first = wanted != nullptr ? std::strtoull(wanted, nullptr, 10) : 1;
    const std::uint64_t end = wanted != nullptr ? first + 1 : first + kRuns;
    for (std::uint64_t seed = first; seed < end; ++seed) {
        const std::optional<std::string> story = counterexample(companion(bundle), seed);
        ASSERT_FALSE(story.has_value()) << "VELTRIX_MODEL_SEED=" << seed << "\n" << *story;
    }
}

// A model test is worth as much as the ways it takes.
TEST(Model, LeadsEverywhere) {
    std::set<std::string> unseen{
        "refused to save",
        "opened",
        "not opened",
        "bundle incomplete",
        "  node: ~/node",
        "  status: Action failed. Check configuration.",
        "  status: Open the complete bundle to update or repair this installation.",
        "  open folder: /opt/node",
        "  open page: https://dvr.example/",
        "quit",
        "quit: refused",
        "    choose \"status\"",
        "        choose \"setup\"",
        "    press password.configure",
        "    channel has shut down",
        "    answer password.configure: {\"code\":\"login_configured\"",
    };
    const ResourceFixture bundle;
    for (std::uint64_t seed = 1; seed <= kRuns && !unseen.empty(); ++seed) {
        Choices choices(seed);
        World world(choices, bundle);
        EXPECT_EQ(world.play(), std::nullopt);
        std::erase_if(unseen, [&world](const std::string& landmark) {
            return world.story().find("\n" + landmark) != std::string::npos;
        });
    }
    EXPECT_EQ(unseen, std::set<std::string>());
}

TEST(Model, PlaysTheSameRunForTheSameSeed) {
    const ResourceFixture bundle;
    Choices first(7);
    Choices second(7);
    EXPECT_EQ(companion(bundle)(first), companion(bundle)(second));
    EXPECT_EQ(first.made(), second.made());
}

TEST(Counterexample, IsToldWithAsLittleAsWillDo) {
    const auto threeLargeNumbers = [](Choices& choices) -> std::optional<std::string> {
        std::string story;
        int large = 0;
        for (unsigned left = choices.below(50); left > 0; --left) {
            const unsigned number = choices.below(1000);
            large += number >= 100 ? 1 : 0;
            story += std::to_string(number) + " ";
        }
        return large >= 3 ? std::optional(story) : std::nullopt;
    };
    EXPECT_EQ(counterexample(threeLargeNumbers, 1), "100 100 100 ");
}

TEST(Counterexample, IsNotFoundWhereThereIsNone) {
    const auto fine = [](Choices& choices) -> std::optional<std::string> {
        static_cast<void>(choices.below(10));
        return std::nullopt;
    };
    EXPECT_EQ(counterexample(fine, 1), std::nullopt);
}

}  // namespace
}  // namespace veltrix::test
