// Entry of a test program that uses AppKit: one application object for all its tests, which is
// never run, and an autorelease pool for each test.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#ifndef __APPLE__
#include "support/LibraryLeak.h"
#include "support/gnustep/IsolatedHome.h"
#endif

#include <cstdio>

#include <gtest/gtest.h>

namespace {

class PoolPerTest : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override {
        pool_ = veltrix::adoptNS([[NSAutoreleasePool alloc] init]);
    }
    void OnTestEnd(const ::testing::TestInfo&) override { pool_ = nullptr; }

    veltrix::RetainPtr<NSAutoreleasePool> pool_;
};

int runTests() {
    @try {
        return RUN_ALL_TESTS();
    } @catch (NSException* exception) {
        std::fprintf(stderr, "%s: %s\n", [[exception name] UTF8String],
                     [[exception reason] UTF8String]);
        return EXIT_FAILURE;
    }
}

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    // To GoogleTest an Objective-C exception is an unknown one; runTests() says what it was.
    ::testing::GTEST_FLAG(catch_exceptions) = false;
    ::testing::GTEST_FLAG(death_test_style) = "threadsafe";
    ::testing::UnitTest::GetInstance()->listeners().Append(new PoolPerTest);
#ifndef __APPLE__
    const veltrix::test::IsolatedHome home;
#endif
    @autoreleasepool {
#ifndef __APPLE__
        {
            // GNUstep's +[NSArray initialize] makes an object that nobody ever gets.
            const veltrix::test::LibraryLeak leak;
            [NSArray class];
        }
#endif
        [NSApplication sharedApplication];
        [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
        [NSApp finishLaunching];
        return runTests();
    }
}
