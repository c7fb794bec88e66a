#include "renderhost/QZLSemaphore.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

namespace {

/// How many waits pass before one would block.
int passes(QZLSemaphore& semaphore) {
    int count = 0;
    while (semaphore.try_acquire()) {
        ++count;
    }
    return count;
}

}  // namespace

TEST(QZLSemaphore, LetsThroughAsManyAsItsCount) {
    EXPECT_EQ(passes(*QZLDispatchSemaphoreCreate(1)), 1);
    EXPECT_EQ(passes(*QZLDispatchSemaphoreCreate(3)), 3);
}

TEST(QZLSemaphore, TheFirstWaitBlocksWhenTheCountIsZeroOrLess) {
    EXPECT_EQ(passes(*QZLDispatchSemaphoreCreate(0)), 0);
    EXPECT_EQ(passes(*QZLDispatchSemaphoreCreate(-1)), 0);
    EXPECT_EQ(passes(*QZLDispatchSemaphoreCreate(INT32_MIN)), 0);
}

TEST(QZLSemaphore, ASignalLetsOneMoreThrough) {
    const auto semaphore = QZLDispatchSemaphoreCreate(0);
    semaphore->release();
    EXPECT_EQ(passes(*semaphore), 1);
}

TEST(QZLSemaphore, MultipleFillsTheArrayWithSeparateSemaphores) {
    std::array<std::shared_ptr<QZLSemaphore>, 4> array;
    const auto last = array[3] = QZLDispatchSemaphoreCreate(0);
    QZLDispatchSemaphoreCreateMultiple(2, array.data(), 3);
    for (std::size_t index = 0; index < 3; ++index) {
        EXPECT_EQ(passes(*array[index]), 2) << index;
    }
    EXPECT_EQ(array[3], last);
}

TEST(QZLSemaphore, MultipleOfNoneTouchesNothing) {
    std::shared_ptr<QZLSemaphore> element;
    QZLDispatchSemaphoreCreateMultiple(2, &element, 0);
    EXPECT_EQ(element, nullptr);
}
