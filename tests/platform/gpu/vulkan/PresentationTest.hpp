#pragma once

#include "TestWindow.hpp"
#include "platform/gpu/Backend.hpp"
#include "platform/gpu/CommandBuffer.hpp"
#include "platform/gpu/Layer.hpp"
#include "tests/support/Waiting.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// The real backend under validation, with a device, a queue and a layer of 64 x 48 pixels. Whatever validation, the X
/// server or the system log has to say fails the test.
class PresentationTest : public testing::Test {
protected:
    static constexpr gpu::Extent defaultSize{64, 48};
    static constexpr int framesInFlight = 3;

    PresentationTest();
    ~PresentationTest() override;

    /// Draws one frame of this colour 0xRRGGBB, with at most three in flight. False when there is no drawable.
    bool drawFrame(std::uint32_t color);
    /// Draws frames of this colour, each after its predecessor's end, until the point shows it. False if it never does.
    bool drawUntilShown(const TestWindow& window, gpu::Origin point, std::uint32_t color);
    bool waitUntilShown(const TestWindow& window, gpu::Origin point, std::uint32_t color);
    bool waitUntilCompleted();

    /// Lines of the system log so far; the test has then seen them.
    std::vector<std::string> takeLog();

    TestServer _server;
    TestServer _otherServer;
    std::shared_ptr<gpu::Backend> _backend;
    std::shared_ptr<gpu::Device> _device;
    std::shared_ptr<gpu::CommandQueue> _queue;
    std::shared_ptr<gpu::Layer> _layer;
    std::atomic<int> _framesCommitted{0};
    std::atomic<int> _framesCompleted{0};

private:
    std::mutex _mutex;
    std::vector<std::string> _validation;
    std::vector<std::string> _log;
};

using fake::eventually;
