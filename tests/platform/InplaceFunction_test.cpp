#include "platform/InplaceFunction.hpp"

#include <gtest/gtest.h>

#include <array>
#include <memory>

namespace {

using Function = platform::InplaceFunction<int(int), 64>;

TEST(InplaceFunction, IsEmptyUntilItHoldsACallable) {
    Function function;
    EXPECT_FALSE(function);
    function = [](int value) { return value + 1; };
    EXPECT_TRUE(function);
}

TEST(InplaceFunction, CallsWhatItHolds) {
    const int added = 40;
    Function function = [added](int value) { return value + added; };
    EXPECT_EQ(function(2), 42);
}

TEST(InplaceFunction, KeepsStateBetweenCalls) {
    Function function = [sum = 0](int value) mutable { return sum += value; };
    function(1);
    EXPECT_EQ(function(2), 3);
}

TEST(InplaceFunction, MovingTakesTheCallableAndLeavesNothing) {
    Function from = [owned = std::make_unique<int>(5)](int value) { return *owned + value; };
    Function to = std::move(from);
    EXPECT_FALSE(from);  // NOLINT(bugprone-use-after-move): the state after a move is part of the contract
    EXPECT_EQ(to(1), 6);
}

TEST(InplaceFunction, AssigningDestroysTheFormerCallable) {
    const auto counted = std::make_shared<int>();
    Function function = [counted](int value) { return value; };
    EXPECT_EQ(counted.use_count(), 2);
    function = [](int value) { return -value; };
    EXPECT_EQ(counted.use_count(), 1);
    EXPECT_EQ(function(3), -3);
}

TEST(InplaceFunction, DestroysItsCallableExactlyOnce) {
    const auto counted = std::make_shared<int>();
    {
        Function first = [counted](int value) { return value; };
        Function second = std::move(first);
        EXPECT_EQ(counted.use_count(), 2);
    }
    EXPECT_EQ(counted.use_count(), 1);
}

TEST(InplaceFunction, AssigningAnEmptyOneEmptiesIt) {
    const auto counted = std::make_shared<int>();
    Function function = [counted](int value) { return value; };
    function = Function();
    EXPECT_FALSE(function);
    EXPECT_EQ(counted.use_count(), 1);
}

TEST(InplaceFunction, SurvivesAssignmentToItself) {
    Function function = [](int value) { return value * 2; };
    Function& same = function;
    function = std::move(same);
    EXPECT_EQ(function(4), 8);
}

TEST(InplaceFunction, HoldsACallableThatFillsItsPlace) {
    std::array<char, 64> full{};
    full.back() = 9;
    Function function = [full](int value) { return value + full.back(); };
    EXPECT_EQ(function(1), 10);
}

TEST(InplaceFunction, ForwardsReferencesAndMoveOnlyArguments) {
    platform::InplaceFunction<void(std::unique_ptr<int>, int&), 16> function = [](std::unique_ptr<int> given,
                                                                                  int& taken) { taken = *given; };
    int taken = 0;
    function(std::make_unique<int>(11), taken);
    EXPECT_EQ(taken, 11);
}

TEST(InplaceFunction, CannotBeCopied) {
    static_assert(!std::is_copy_constructible_v<Function>);
    static_assert(!std::is_copy_assignable_v<Function>);
    static_assert(std::is_nothrow_move_constructible_v<Function>);
}

}  // namespace
