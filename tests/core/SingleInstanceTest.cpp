#include "app/SingleInstance.h"

#include <gtest/gtest.h>

#include <vector>

namespace veltrix {
namespace {

TEST(SingleInstance, RunsWhenNobodyElseDoes) {
    EXPECT_EQ(otherInstance(10, std::vector<pid_t>{}), std::nullopt);
    EXPECT_EQ(otherInstance(10, std::vector<pid_t>{10}), std::nullopt);
    EXPECT_EQ(otherInstance(10, std::vector<pid_t>{10, 10}), std::nullopt);
}

TEST(SingleInstance, DefersToTheFirstOther) {
    EXPECT_EQ(otherInstance(10, std::vector<pid_t>{7}), 0u);
    EXPECT_EQ(otherInstance(10, std::vector<pid_t>{7, 10}), 0u);
    EXPECT_EQ(otherInstance(10, std::vector<pid_t>{10, 7}), 1u);
    EXPECT_EQ(otherInstance(10, std::vector<pid_t>{10, 12, 7}), 1u) << "listed order, not age";
}

TEST(SingleInstance, MayDeferEachToTheOtherWhenTwoStartAtOnce) {
    const std::vector<pid_t> both{7, 10};
    EXPECT_TRUE(otherInstance(7, both));
    EXPECT_TRUE(otherInstance(10, both));
}

}  // namespace
}  // namespace veltrix
