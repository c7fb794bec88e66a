#include "renderhost/QZLRenderPassDescriptor.hpp"

#include "foundation/QZLError.hpp"
#include "tests/support/FakeGpu.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace {

class QZLRenderPassDescriptor : public testing::Test {
protected:
    fake::ScopedGpu gpu;
    std::optional<platform::Error> error;
    std::array<std::shared_ptr<gpu::RenderPassDescriptor>, 3> array;
};

}  // namespace

TEST_F(QZLRenderPassDescriptor, MultipleMakesSeparateOnes) {
    EXPECT_TRUE(QZLCreateRenderPassDescriptorMultiple(array.data(), 3, &error, 1));
    EXPECT_THAT(array, testing::Each(testing::NotNull()));
    EXPECT_NE(array[0], array[1]);
    EXPECT_NE(array[1], array[2]);
    EXPECT_FALSE(error);
}

TEST_F(QZLRenderPassDescriptor, MultipleOfNoneSucceedsAndTouchesNothing) {
    EXPECT_TRUE(QZLCreateRenderPassDescriptorMultiple(array.data(), 0, &error, 1));
    EXPECT_THAT(array, testing::Each(nullptr));
    EXPECT_FALSE(error);
}

TEST_F(QZLRenderPassDescriptor, MultipleStopsAtTheFirstFailureAndKeepsWhatItMade) {
    for (std::uint64_t failing = 0; failing < 3; ++failing) {
        SCOPED_TRACE(failing);
        const fake::ScopedGpu failingGpu;
        failingGpu->plan().failingRenderPassDescriptors = {failing};
        array = {};
        error.reset();
        EXPECT_FALSE(QZLCreateRenderPassDescriptorMultiple(array.data(), 3, &error, 1007));
        ASSERT_TRUE(error);
        EXPECT_EQ(error->code(), 304);
        EXPECT_EQ(QZLGetErrorSubCode(*error), 1007);
        for (std::size_t index = 0; index < 3; ++index) {
            EXPECT_EQ(array[index] != nullptr, index < failing);
        }
    }
}

TEST_F(QZLRenderPassDescriptor, AFailureNeedsNoPlaceForItsError) {
    gpu->plan().failingRenderPassDescriptors = {0};
    EXPECT_FALSE(QZLCreateRenderPassDescriptorMultiple(array.data(), 3, nullptr, 1));
}

TEST_F(QZLRenderPassDescriptor, SuccessLeavesAFormerErrorInItsPlace) {
    error = QZLCreateError("former", 42, 7);
    EXPECT_TRUE(QZLCreateRenderPassDescriptorMultiple(array.data(), 3, &error, 1));
    EXPECT_TRUE(QZLCreateRenderPassDescriptorMultiple(array.data(), 0, &error, 1));
    EXPECT_EQ(error.value().code(), 42);
}

TEST_F(QZLRenderPassDescriptor, ReleaseNullsTheElements) {
    ASSERT_TRUE(QZLCreateRenderPassDescriptorMultiple(array.data(), 3, nullptr, 0));
    const std::weak_ptr<gpu::RenderPassDescriptor> first = array[0];
    QZLReleaseRenderPassDescriptorMultiple(array.data(), 3);
    EXPECT_TRUE(first.expired());
    EXPECT_THAT(array, testing::Each(nullptr));
}
