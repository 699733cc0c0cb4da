// What is left of a program that was ended by force while it held one of GNUstep's locks.
#include "common/RetainPtr.h"
#include "support/TempFolder.h"

#import <AppKit/AppKit.h>

#include <chrono>
#include <filesystem>

#include <gtest/gtest.h>

using veltrix::RetainPtr;
using veltrix::test::TempFolder;

namespace {

struct LockTest : ::testing::Test {
    [[nodiscard]] RetainPtr<NSDistributedLock> lock() const {
        return [NSDistributedLock lockWithPath:[NSString stringWithUTF8String:path.c_str()]];
    }

    // As another program takes it, so long ago.
    void take(std::chrono::seconds ago) const {
        std::filesystem::create_directory(path);
        std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() - ago);
    }

    const TempFolder folder;
    const std::string path = folder.path("lock");
};

TEST_F(LockTest, OneThatACrashLeftBehindIsTakenAtOnce) {
    take(std::chrono::seconds(5));
    const auto ours = lock();
    EXPECT_TRUE([ours.get() tryLock]);
    [ours.get() unlock];
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(LockTest, OneThatIsHeldIsRespected) {
    take(std::chrono::seconds(0));
    EXPECT_FALSE([lock().get() tryLock]);
    EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(LockTest, OneThatCannotBeBrokenIsNot) {
    EXPECT_FALSE([[NSDistributedLock lockWithPath:@"/proc/self"] tryLock]);
}

}  // namespace
