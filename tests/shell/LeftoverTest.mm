// A thousand actions through the window, half of them failing: afterwards the program holds no more
// of the system than before.
#include "shell/ShellTest.h"

#include "common/Text.h"
#include "endurance/Usage.h"
#include "support/AppKitDriver.h"
#include "support/LibraryLeak.h"
#include "support/Processes.h"

using namespace veltrix;
using namespace veltrix::test;

namespace {

// AddressSanitizer takes its time, keeps what was freed, and tells of leaks itself.
constexpr int kActions = kFindsLeaks ? 100 : 1'000;

// What the dispatcher may keep for the next time, and what an allocator may not have given back.
constexpr std::size_t kSpareThreads = 4;
constexpr std::size_t kSpareMemory = std::size_t{8} << 20;

class LeftoverTest : public ShellTest {
  protected:
    void SetUp() override {
        launch();
        ASSERT_TRUE(typeInto([app node], toNSString(resources.node())));
    }

    // A pool for each event, as the application has it.
    void act(int count) {
        for (int index = 0; index < count; ++index) {
            @autoreleasepool {
                scriptsDo(index % 2 == 0 ? R"(print {"ok":true,"code":"ready"})" : "exit 1");
                performToEnd(index % 3 == 0 ? "check" : "status");
            }
        }
    }
};

TEST_F(LeftoverTest, IsNoneAfterAThousandActions) {
    act(20);
    const Usage before = usage();
    act(kActions);

    EXPECT_TRUE(pumpUntil([] { return !hasChildren(); })) << "a zombie, or worse";
    EXPECT_TRUE(pumpUntil([&] { return usage().threads <= before.threads + kSpareThreads; }));
    const Usage after = usage();
    EXPECT_EQ(after.descriptors, before.descriptors);
    if (!kFindsLeaks)
        EXPECT_LE(after.memory, before.memory + kSpareMemory);
}

}  // namespace
