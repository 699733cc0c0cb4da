// Two processes of one program (instance/Instance.mm), which tell what happens to them.
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

class Instance {
  public:
    Instance() : output_(popen("exec " VELTRIX_TEST_INSTANCE " 2>&1", "r"), pclose) {}

    // The next line, without its end; empty at the end of the output.
    std::string line() {
        char buffer[256];
        if (!std::fgets(buffer, sizeof buffer, output_.get()))
            return {};
        std::string text = buffer;
        text.pop_back();
        return text;
    }

  private:
    std::unique_ptr<FILE, int (*)(FILE*)> output_;
};

std::vector<std::string> words(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> found;
    for (std::string word; stream >> word;)
        found.push_back(word);
    return found;
}

TEST(RunningApplication, ASecondInstanceFindsTheFirstAndBringsItForward) {
    Instance first;
    const auto alone = words(first.line());
    ASSERT_EQ(alone.size(), 2U);

    Instance second;
    const auto both = words(second.line());
    ASSERT_EQ(both.size(), 3U);
    EXPECT_EQ(both[1], alone[1]) << "the one that started first comes first";
    EXPECT_EQ(second.line(), "activated");
    EXPECT_EQ(second.line(), "");

    EXPECT_EQ(first.line(), "reopened without windows");
    EXPECT_EQ(first.line(), "visible");
    EXPECT_EQ(first.line(), "");
}

TEST(RunningApplication, AnInstanceThatHasEndedIsNotFoundAnyMore) {
    {
        Instance first;
        first.line();
        Instance second;
        while (!second.line().empty()) {
        }
        while (!first.line().empty()) {
        }
    }
    Instance third;
    EXPECT_EQ(words(third.line()).size(), 2U);
    Instance fourth;
    while (!fourth.line().empty()) {
    }
}

}  // namespace
