#include "renderhost/QZLBuffer.hpp"

#include "foundation/QZLError.hpp"
#include "platform/gpu/Backend.hpp"
#include "tests/support/FakeGpu.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>

using testing::Each;

namespace {

class QZLBuffer : public testing::Test {
protected:
    QZLBuffer() { layer->setDevice(gpu::createSystemDefaultDevice()); }

    fake::ScopedGpu gpu;
    std::shared_ptr<gpu::Layer> layer = gpu::createLayer();
    std::optional<platform::Error> error;
    std::array<std::shared_ptr<gpu::Buffer>, 3> array;

    void expectError(std::int64_t subCode) const {
        ASSERT_TRUE(error);
        EXPECT_EQ(error->code(), 108);
        EXPECT_EQ(QZLGetErrorSubCode(*error), subCode);
    }
};

}  // namespace

TEST_F(QZLBuffer, IsMadeWithItsLengthAndLabel) {
    const auto buffer = QZLCreateSharedBuffer(*layer, "style", 48, &error, 1);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer->length(), 48U);
    EXPECT_EQ(buffer->label(), "style");
    EXPECT_NE(buffer->contents(), nullptr);
    EXPECT_FALSE(error);
}

TEST_F(QZLBuffer, HoldsACopyOfTheBytesGiven) {
    char bytes[] = "cloud";
    const auto buffer = QZLCreateSharedBufferWithBytes(*layer, "text", sizeof(bytes), bytes, &error, 1);
    ASSERT_NE(buffer, nullptr);
    bytes[0] = 'X';
    EXPECT_EQ(buffer->length(), sizeof(bytes));
    EXPECT_EQ(std::memcmp(buffer->contents(), "cloud", sizeof(bytes)), 0);
    EXPECT_EQ(buffer->label(), "text");
}

TEST_F(QZLBuffer, AFailureIsReportedWithTheCallersSubCode) {
    gpu->plan().failingBuffers = {0, 1};
    const char byte = 0;
    EXPECT_EQ(QZLCreateSharedBuffer(*layer, "style", 48, &error, 1002), nullptr);
    expectError(1002);
    EXPECT_EQ(QZLCreateSharedBufferWithBytes(*layer, "style", 1, &byte, &error, 7), nullptr);
    expectError(7);
}

TEST_F(QZLBuffer, AFailureNeedsNoPlaceForItsError) {
    gpu->plan().failingBuffers = {0};
    EXPECT_EQ(QZLCreateSharedBuffer(*layer, "style", 48, nullptr, 1), nullptr);
}

TEST_F(QZLBuffer, CannotBeMadeWithoutADevice) {
    layer->setDevice(nullptr);
    const char byte = 0;
    EXPECT_EQ(QZLCreateSharedBuffer(*layer, "style", 48, &error, 3), nullptr);
    expectError(3);
    EXPECT_EQ(QZLCreateSharedBufferWithBytes(*layer, "style", 1, &byte, &error, 4), nullptr);
    expectError(4);
}

TEST_F(QZLBuffer, MultipleAreLabelledWithTheBaseLabelAndTheirIndex) {
    EXPECT_TRUE(QZLCreateSharedBufferMultiple(*layer, "colorStyleBuffer", 48, array.data(), 2, &error, 1));
    EXPECT_EQ(array[0]->label(), "colorStyleBuffer0");
    EXPECT_EQ(array[1]->label(), "colorStyleBuffer1");
    EXPECT_EQ(array[1]->length(), 48U);
    EXPECT_EQ(array[2], nullptr);
    EXPECT_FALSE(error);
}

TEST_F(QZLBuffer, MultipleOfNoneSucceedsAndTouchesNothing) {
    array[0] = QZLCreateSharedBuffer(*layer, "kept", 1, nullptr, 0);
    EXPECT_TRUE(QZLCreateSharedBufferMultiple(*layer, "style", 48, array.data(), 0, &error, 1));
    EXPECT_EQ(array[0]->label(), "kept");
    EXPECT_FALSE(error);
}

TEST_F(QZLBuffer, MultipleStopsAtTheFirstFailureAndKeepsWhatItMade) {
    for (std::uint64_t failing = 0; failing < 3; ++failing) {
        SCOPED_TRACE(failing);
        const fake::ScopedGpu failingGpu;
        failingGpu->plan().failingBuffers = {3 + failing};
        layer->setDevice(gpu::createSystemDefaultDevice());
        ASSERT_TRUE(QZLCreateSharedBufferMultiple(*layer, "former", 1, array.data(), 3, nullptr, 0));
        error.reset();

        EXPECT_FALSE(QZLCreateSharedBufferMultiple(*layer, "later", 1, array.data(), 3, &error, 1003));
        expectError(1003);
        for (std::size_t index = 0; index < 3; ++index) {
            if (index == failing) {
                EXPECT_EQ(array[index], nullptr);
            } else {
                const char* const base = index < failing ? "later" : "former";
                EXPECT_EQ(array[index]->label(), base + std::to_string(index));
            }
        }
    }
}

TEST_F(QZLBuffer, SuccessLeavesAFormerErrorInItsPlace) {
    error = QZLCreateError("former", 42, 7);
    const char byte = 0;
    EXPECT_NE(QZLCreateSharedBuffer(*layer, "style", 48, &error, 1), nullptr);
    EXPECT_NE(QZLCreateSharedBufferWithBytes(*layer, "text", 1, &byte, &error, 1), nullptr);
    EXPECT_TRUE(QZLCreateSharedBufferMultiple(*layer, "style", 48, array.data(), 3, &error, 1));
    EXPECT_TRUE(QZLCreateSharedBufferMultiple(*layer, "style", 48, array.data(), 0, &error, 1));
    EXPECT_EQ(error.value().code(), 42);
}

TEST_F(QZLBuffer, ReleaseNullsTheElements) {
    ASSERT_TRUE(QZLCreateSharedBufferMultiple(*layer, "style", 48, array.data(), 3, nullptr, 0));
    const std::weak_ptr<gpu::Buffer> last = array[2];
    QZLReleaseBufferMultiple(array.data(), 2);
    EXPECT_FALSE(last.expired());
    QZLReleaseBufferMultiple(array.data(), 3);
    EXPECT_TRUE(last.expired());
    EXPECT_THAT(array, Each(nullptr));
}
