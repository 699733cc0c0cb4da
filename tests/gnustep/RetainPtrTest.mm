#include "common/RetainPtr.h"

#include <unordered_set>

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::dynamicCast;
using veltrix::RetainPtr;
using veltrix::retainPtr;

@interface Witness : NSObject {
  @public
    int* _deaths;
}
@end

@implementation Witness
- (void)dealloc {
    ++*_deaths;
    [super dealloc];
}
@end

@interface WitnessKeeper : NSObject {
  @public
    RetainPtr<Witness> _kept;
}
@end

@implementation WitnessKeeper
@end

namespace {

struct RetainPtrTest : ::testing::Test {
    RetainPtr<Witness> makeWitness() {
        RetainPtr<Witness> witness = adoptNS([[Witness alloc] init]);
        witness.get()->_deaths = &deaths;
        return witness;
    }

    int deaths = 0;
};

TEST_F(RetainPtrTest, ReleasesWhatItAdopted) {
    makeWitness();
    EXPECT_EQ(deaths, 1);
}

TEST_F(RetainPtrTest, EveryCopyKeepsTheObjectAlive) {
    RetainPtr<Witness> first = makeWitness();
    RetainPtr<Witness> second = first;
    first = nullptr;
    EXPECT_EQ(deaths, 0);
    second = nullptr;
    EXPECT_EQ(deaths, 1);
}

TEST_F(RetainPtrTest, MovingLeavesNothingBehind) {
    RetainPtr<Witness> first = makeWitness();
    const RetainPtr<Witness> second = std::move(first);
    EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move)
    EXPECT_TRUE(second);
    EXPECT_EQ(deaths, 0);
}

TEST_F(RetainPtrTest, SurvivesAssigningItselfAndWhatItKeepsAlive) {
    RetainPtr<Witness> witness = makeWitness();
    const RetainPtr<Witness>& itself = witness;
    witness = itself;
    EXPECT_EQ(deaths, 0);
    witness = witness.get();
    EXPECT_EQ(deaths, 0);
}

TEST_F(RetainPtrTest, ConvertsToHoldersOfSuperclassesAndOfAnyObject) {
    const RetainPtr<Witness> witness = makeWitness();
    const RetainPtr<NSObject> asObject = witness;
    const RetainPtr<id> asAnything = witness.get();
    EXPECT_TRUE(asObject == witness.get());
    EXPECT_TRUE(asAnything == witness.get());
}

TEST_F(RetainPtrTest, TakesMessagesAsThePlainPointerDoes) {
    const RetainPtr<NSString> text = @"three";
    EXPECT_EQ([text length], 5U);
    EXPECT_TRUE([[text uppercaseString] isEqualToString:@"THREE"]);
}

TEST_F(RetainPtrTest, NilIsEmpty) {
    const RetainPtr<NSString> nothing;
    EXPECT_FALSE(nothing);
    EXPECT_TRUE(nothing == nil);
    EXPECT_EQ([nothing length], 0U);
}

TEST_F(RetainPtrTest, IsAnInstanceVariableOfAnyClass) {
    RetainPtr<WitnessKeeper> keeper = adoptNS([[WitnessKeeper alloc] init]);
    keeper.get()->_kept = makeWitness();
    EXPECT_EQ(deaths, 0);
    keeper = nullptr;
    EXPECT_EQ(deaths, 1);
}

TEST_F(RetainPtrTest, HandsItsObjectToTheAutoreleasePool) {
    @autoreleasepool {
        Witness* const witness = makeWitness().autorelease();
        EXPECT_EQ(deaths, 0);
        EXPECT_TRUE(witness);
    }
    EXPECT_EQ(deaths, 1);
}

TEST_F(RetainPtrTest, IsAKeyByIdentity) {
    const RetainPtr<Witness> witness = makeWitness();
    const std::unordered_set<RetainPtr<Witness>> set = {witness, witness, makeWitness()};
    EXPECT_EQ(set.size(), 2U);
}

TEST(DynamicCast, GivesTheObjectOnlyIfItIsOfTheClass) {
    const RetainPtr<NSMutableString> text = adoptNS([[NSMutableString alloc] init]);
    EXPECT_TRUE(dynamicCast<NSString>(text) == text.get());
    EXPECT_FALSE(dynamicCast<NSNumber>(text));
    EXPECT_FALSE(dynamicCast<NSString>(nil));
    EXPECT_FALSE(dynamicCast<NSString>(@(1)));
}

}  // namespace
